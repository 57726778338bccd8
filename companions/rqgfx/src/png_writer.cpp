#include <atlbase.h>
#include <wincodec.h>

#include <rqgfx/png_writer.h>

#include "palette.h"
#include <algorithm>
#include <array>
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

// How the pixels are passed to WIC.
struct Form {
  WICPixelFormatGUID format;
  UINT bytes_of_a_pixel;
};
constexpr UINT indexed = 1, without_alpha = 3, with_alpha = 4;

Form form_of(UINT bytes_of_a_pixel) {
  return {bytes_of_a_pixel == indexed         ? GUID_WICPixelFormat8bppIndexed
          : bytes_of_a_pixel == without_alpha ? GUID_WICPixelFormat24bppBGR
                                              : GUID_WICPixelFormat32bppBGRA,
          bytes_of_a_pixel};
}

void write_colors(const std::uint32_t* from, std::size_t count, BYTE* to) {
  for (std::size_t i = 0; i < count; ++i, to += without_alpha) {
    to[0] = static_cast<BYTE>(from[i]);
    to[1] = static_cast<BYTE>(from[i] >> 8);
    to[2] = static_cast<BYTE>(from[i] >> 16);
  }
}

HRESULT set_palette(IWICImagingFactory* factory, IWICBitmapFrameEncode* frame, const Palette& palette) {
  std::array<WICColor, 256> colors;
  std::copy_n(palette.colors(), palette.count(), colors.begin());
  CComPtr<IWICPalette> made;
  HRESULT result = factory->CreatePalette(&made);
  if (SUCCEEDED(result)) result = made->InitializeCustom(colors.data(), palette.count());
  if (SUCCEEDED(result)) result = frame->SetPalette(made);
  return result;
}

HRESULT encode(hnDuctImage* image, IStream* stream, int filter, int bits) {
  Palette palette;
  const Form form = form_of(image->has_alpha() && bits != 24 ? with_alpha
                            : palette.add(*image)            ? indexed
                                                             : without_alpha);
  const bool is_indexed = form.bytes_of_a_pixel == indexed;
  // Neighbouring indices say nothing about each other.
  const bool unfiltered = is_indexed || filter == 0 || ((filter == 1 || filter == -1) && is_flat(*image));
  WICPixelFormatGUID format = form.format;

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
  if (SUCCEEDED(result) && format != form.format) result = E_FAIL;
  if (SUCCEEDED(result) && is_indexed) result = set_palette(factory, frame, palette);

  const UINT stride = static_cast<UINT>(image->width()) * form.bytes_of_a_pixel;
  std::vector<BYTE> band;
  for (int y = 0; SUCCEEDED(result) && y < image->height(); y += rows_of_a_band) {
    const auto rows = static_cast<UINT>(std::min(rows_of_a_band, image->height() - y));
    const std::size_t count = static_cast<std::size_t>(image->width()) * rows;
    auto* bytes = reinterpret_cast<BYTE*>(image->row(y));
    if (form.bytes_of_a_pixel != with_alpha) {
      band.resize(std::size_t{stride} * rows);
      bytes = band.data();
      if (is_indexed)
        palette.write_indices(image->row(y), count, bytes);
      else
        write_colors(image->row(y), count, bytes);
    }
    result = frame->WritePixels(rows, stride, stride * rows, bytes);
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
