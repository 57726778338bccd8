#include <atlbase.h>
#include <wincodec.h>

#include <rqgfx/png_writer.h>

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <fstream>
#include <new>
#include <vector>

namespace {

constexpr int rows_of_a_band = 32;

// Keeps COM initialised on this thread while the object exists, unless it is already initialised.
class ComOnThread {
 public:
  ComOnThread() : result_(CoInitializeEx(nullptr, COINIT_MULTITHREADED)) {}
  ~ComOnThread() {
    if (SUCCEEDED(result_)) CoUninitialize();
  }
  ComOnThread(const ComOnThread&) = delete;
  ComOnThread& operator=(const ComOnThread&) = delete;

 private:
  HRESULT result_;
};

// A write-only stream without seeking. It is on the stack and outlives the encoder, so references are not counted.
class SinkStream final : public IStream {
 public:
  SinkStream(rqPNGWriterDuctImage::Sink sink, void* context) : sink_(sink), context_(context) {}

  STDMETHODIMP QueryInterface(REFIID id, void** object) override {
    if (id != IID_IUnknown && id != IID_ISequentialStream && id != IID_IStream) {
      *object = nullptr;
      return E_NOINTERFACE;
    }
    *object = static_cast<IStream*>(this);
    return S_OK;
  }
  STDMETHODIMP_(ULONG) AddRef() override { return 2; }
  STDMETHODIMP_(ULONG) Release() override { return 1; }

  STDMETHODIMP Write(const void* data, ULONG count, ULONG* written) override {
    if (written) *written = 0;
    if (!is_taken(static_cast<const unsigned char*>(data), count)) return E_FAIL;
    position_ += count;
    if (written) *written = count;
    return S_OK;
  }
  STDMETHODIMP Seek(LARGE_INTEGER distance, DWORD from, ULARGE_INTEGER* position) override {
    const auto here = static_cast<LONGLONG>(position_);  // also the end
    if ((from == STREAM_SEEK_SET ? distance.QuadPart : here + distance.QuadPart) != here) return STG_E_INVALIDFUNCTION;
    if (position) position->QuadPart = position_;
    return S_OK;
  }
  STDMETHODIMP Stat(STATSTG* description, DWORD) override {
    *description = {};
    description->type = STGTY_STREAM;
    description->cbSize.QuadPart = position_;
    return S_OK;
  }
  STDMETHODIMP SetSize(ULARGE_INTEGER) override { return S_OK; }
  STDMETHODIMP Commit(DWORD) override { return S_OK; }
  STDMETHODIMP Read(void*, ULONG, ULONG*) override { return STG_E_ACCESSDENIED; }
  STDMETHODIMP CopyTo(IStream*, ULARGE_INTEGER, ULARGE_INTEGER*, ULARGE_INTEGER*) override { return E_NOTIMPL; }
  STDMETHODIMP Revert() override { return E_NOTIMPL; }
  STDMETHODIMP LockRegion(ULARGE_INTEGER, ULARGE_INTEGER, DWORD) override { return STG_E_INVALIDFUNCTION; }
  STDMETHODIMP UnlockRegion(ULARGE_INTEGER, ULARGE_INTEGER, DWORD) override { return STG_E_INVALIDFUNCTION; }
  STDMETHODIMP Clone(IStream**) override { return E_NOTIMPL; }

 private:
  // No exception may propagate: the encoder's stack frames are between this function and the caller.
  bool is_taken(const unsigned char* data, ULONG count) try { return sink_(context_, data, count); } catch (...) {
    return false;
  }

  rqPNGWriterDuctImage::Sink sink_;
  void* context_;
  ULONGLONG position_ = 0;
};

// Whether most pixels equal their left neighbours, sampled in one row of each band: filters make such files larger.
bool is_flat(const hnDuctImage& image) {
  LONGLONG equal = 0, all = 0;
  for (int y = 0; y < image.height(); y += rows_of_a_band) {
    const std::uint32_t* row = image.row(y);
    for (int x = 1; x < image.width(); ++x) equal += row[x] == row[x - 1];
    all += image.width() - 1;
  }
  return 2 * equal >= all;
}

HRESULT set_filter(IPropertyBag2* options, WICPngFilterOption filter) {
  wchar_t name[] = L"FilterOption";
  PROPBAG2 option{};
  option.pstrName = name;
  VARIANT value{};
  value.vt = VT_UI1;
  value.bVal = static_cast<BYTE>(filter);
  return options->Write(1, &option, &value);
}

// A band in the format that is passed to WIC; the stride is in bytes.
struct Band {
  BYTE* bytes;
  UINT stride;
};

Band band_of(hnDuctImage* image, int first, int rows, bool with_alpha, std::vector<BYTE>* memory) {
  const auto width = static_cast<UINT>(image->width());
  if (with_alpha) return {reinterpret_cast<BYTE*>(image->row(first)), width * 4};
  memory->resize(std::size_t{width} * 3 * static_cast<std::size_t>(rows) + 1);
  BYTE* to = memory->data();
  const std::uint32_t* from = image->row(first);
  for (std::size_t i = 0, count = std::size_t{width} * static_cast<std::size_t>(rows); i < count; ++i, to += 3) {
    to[0] = static_cast<BYTE>(from[i]);
    to[1] = static_cast<BYTE>(from[i] >> 8);
    to[2] = static_cast<BYTE>(from[i] >> 16);
  }
  return {memory->data(), width * 3};
}

HRESULT encode(hnDuctImage* image, IStream* stream, int filter, int bits) {
  const bool with_alpha = image->has_alpha() && bits != 24;
  const bool unfiltered = filter == 0 || ((filter == 1 || filter == -1) && is_flat(*image));
  const WICPixelFormatGUID wanted = with_alpha ? GUID_WICPixelFormat32bppBGRA : GUID_WICPixelFormat24bppBGR;
  WICPixelFormatGUID format = wanted;

  ComOnThread com;
  CComPtr<IWICImagingFactory> factory;
  CComPtr<IWICBitmapEncoder> encoder;
  CComPtr<IWICBitmapFrameEncode> frame;
  CComPtr<IPropertyBag2> options;
  HRESULT result = factory.CoCreateInstance(CLSID_WICImagingFactory);
  if (SUCCEEDED(result)) result = factory->CreateEncoder(GUID_ContainerFormatPng, nullptr, &encoder);
  if (SUCCEEDED(result)) result = encoder->Initialize(stream, WICBitmapEncoderNoCache);
  if (SUCCEEDED(result)) result = encoder->CreateNewFrame(&frame, &options);
  if (SUCCEEDED(result) && unfiltered) result = set_filter(options, WICPngFilterNone);
  if (SUCCEEDED(result)) result = frame->Initialize(options);
  if (SUCCEEDED(result)) result = frame->SetSize(static_cast<UINT>(image->width()), static_cast<UINT>(image->height()));
  if (SUCCEEDED(result)) result = frame->SetPixelFormat(&format);
  if (SUCCEEDED(result) && format != wanted) result = E_FAIL;

  std::vector<BYTE> memory;
  for (int y = 0; SUCCEEDED(result) && y < image->height(); y += rows_of_a_band) {
    const int rows = std::min(rows_of_a_band, image->height() - y);
    const Band band = band_of(image, y, rows, with_alpha, &memory);
    result =
        frame->WritePixels(static_cast<UINT>(rows), band.stride, band.stride * static_cast<UINT>(rows), band.bytes);
  }
  if (SUCCEEDED(result)) result = frame->Commit();
  if (SUCCEEDED(result)) result = encoder->Commit();
  return result;
}

bool has_pixels(const hnDuctImage* image) { return image && image->width() > 0 && image->height() > 0; }

bool write_to_stream(void* stream, const unsigned char* data, unsigned __int64 count) {
  auto& file = *static_cast<std::ofstream*>(stream);
  return static_cast<bool>(file.write(reinterpret_cast<const char*>(data), static_cast<std::streamsize>(count)));
}

}  // namespace

int rqPNGWriterDuctImage::write_file(hnDuctImage* image, Sink sink, void* context, int filter, int bits) try {
  if (!has_pixels(image)) return 0;
  SinkStream stream(sink, context);
  return SUCCEEDED(encode(image, &stream, filter, bits));
} catch (const std::bad_alloc&) {
  return 0;
}

int rqPNGWriterDuctImage::write_file(hnDuctImage* image, const bzString& path, int filter, int bits) try {
  if (!has_pixels(image)) return 0;  // before an existing file is truncated
  std::ofstream file(path.c_str(), std::ios::binary | std::ios::trunc);
  if (!file || !write_file(image, write_to_stream, &file, filter, bits)) return 0;
  file.close();
  return !file.fail();
} catch (const std::bad_alloc&) {
  return 0;
}
