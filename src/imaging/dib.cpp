#include <kexlib/imaging/dib.h>

#include <imaging/pixel_effects.h>

#include <climits>
#include <cstring>
#include <utility>

namespace {

kexlib::Pixel system_pixel(int index) { return kexlib::pixel_of(GetSysColor(index)); }

// GDI batches drawing calls: it must finish them before the pixels are accessed.
kexlib::PixelSpan span_of(const DWORD* bits, SIZE size) {
  static_assert(sizeof(DWORD) == sizeof(kexlib::Pixel));
  GdiFlush();
  return {reinterpret_cast<kexlib::Pixel*>(const_cast<DWORD*>(bits)), static_cast<int>(size.cx),
          static_cast<int>(size.cy)};
}

}  // namespace

kexWTLDIB::kexWTLDIB() {
  if (m_dc.CreateCompatibleDC()) m_old_bitmap = m_dc.GetCurrentBitmap();
}

// Memberwise by design: callers hand the handles on.
kexWTLDIB& kexWTLDIB::operator=(const kexWTLDIB& other) = default;

kexWTLDIB::~kexWTLDIB() {
  destroy();
  if (m_dc.m_hDC) m_dc.DeleteDC();  // callers that hand the handles on clear them
}

int kexWTLDIB::create(int width, int height) {
  destroy();
  constexpr LONGLONG most_pixels = INT_MAX / static_cast<int>(sizeof(DWORD));
  if (width < 1 || height < 1 || LONGLONG{width} * height > most_pixels) return 0;

  BITMAPINFOHEADER& header = m_bmi.bmiHeader;
  header = {};
  header.biSize = sizeof header;
  header.biWidth = width;
  header.biHeight = height;
  header.biPlanes = 1;
  header.biBitCount = 32;
  header.biCompression = BI_RGB;
  header.biSizeImage = static_cast<DWORD>(width * height) * sizeof(DWORD);
  m_bmi.bmiColors[0] = {};

  void* bits = nullptr;
  m_bitmap = CreateDIBSection(m_dc, &m_bmi, DIB_RGB_COLORS, &bits, nullptr, 0);
  if (!m_bitmap) return 0;
  m_bits = static_cast<DWORD*>(bits);
  if (m_dc.m_hDC) m_dc.SelectBitmap(m_bitmap);
  m_size = WTL::CSize(width, height);
  return 1;
}

int kexWTLDIB::destroy() {
  if (HBITMAP bitmap = detach_bitmap()) DeleteObject(bitmap);
  return 1;
}

HBITMAP kexWTLDIB::detach_bitmap() {
  if (m_dc.m_hDC) m_dc.SelectBitmap(m_old_bitmap);
  m_bits = nullptr;
  m_size = WTL::CSize();
  return std::exchange(m_bitmap, nullptr);
}

const WTL::CSize& kexWTLDIB::GetSize() const { return m_size; }

int kexWTLDIB::is_blank() const { return m_state == 1; }

void kexWTLDIB::Fill(COLORREF color) { kexlib::fill(span_of(m_bits, m_size), kexlib::pixel_of(color)); }

int kexWTLDIB::set_bitmap(WTL::CBitmapT<true>* bitmap) {
  BITMAP description{};
  if (bitmap && !bitmap->IsNull() && bitmap->GetBitmap(description)) {
    if (m_size != WTL::CSize(description.bmWidth, description.bmHeight))
      create(description.bmWidth, description.bmHeight);
    if (!m_bitmap) return 0;

    HDC desktop = GetDC(GetDesktopWindow());
    const DWORD error_before = GetLastError();
    SetLastError(ERROR_SUCCESS);
    GetDIBits(desktop, *bitmap, 0, static_cast<UINT>(m_size.cy), m_bits, &m_bmi, DIB_RGB_COLORS);
    const bool copied = GetLastError() == ERROR_SUCCESS;  // kept for compatibility: GetDIBits's result is ignored
    SetLastError(error_before);
    if (desktop) DeleteDC(desktop);  // not ReleaseDC: kept for compatibility
    if (copied) return 1;
  }
  destroy();
  return 0;
}

int kexWTLDIB::get_bitmap(WTL::CBitmapT<true>* bitmap) {
  BITMAP description{};
  if (!bitmap || bitmap->IsNull() || !m_bitmap) return 0;
  bitmap->GetBitmap(description);
  if (m_size != WTL::CSize(description.bmWidth, description.bmHeight)) return 0;
  const auto rows = static_cast<UINT>(m_size.cy);
  return SetDIBits(m_dc, *bitmap, 0, rows, m_bits, &m_bmi, DIB_RGB_COLORS) != 0;
}

int kexWTLDIB::set_bitmap_transparent(HBITMAP bitmap) {
  WTL::CBitmap owned(bitmap);
  if (!set_bitmap(&owned)) return 0;
  UpdateSubstituteBits(GetSysColor(COLOR_BTNFACE));
  return 1;
}

int kexWTLDIB::load_bitmap(UINT id, HINSTANCE instance) { return load_bitmap(MAKEINTRESOURCEA(id), instance); }

int kexWTLDIB::load_bitmap(const char* name, HINSTANCE instance) {
  WTL::CBitmap bitmap(LoadBitmapA(instance, name));
  // Kept for compatibility: callers keep the previous picture if the resource is missing, unlike LoadBitmapFromFile.
  return bitmap.IsNull() ? 0 : set_bitmap(&bitmap);
}

int kexWTLDIB::load_bitmap_transparent(UINT id, HINSTANCE instance, COLORREF substitute) {
  return load_bitmap_transparent(MAKEINTRESOURCEA(id), instance, substitute);
}

int kexWTLDIB::load_bitmap_transparent(const char* name, HINSTANCE instance, COLORREF substitute) {
  if (!load_bitmap(name, instance)) return 0;
  UpdateSubstituteBits(substitute);
  return 1;
}

int kexWTLDIB::LoadBitmapFromFile(const char* path, COLORREF substitute) {
  WTL::CBitmap bitmap(static_cast<HBITMAP>(LoadImageA(nullptr, path, IMAGE_BITMAP, 0, 0, LR_LOADFROMFILE)));
  if (!set_bitmap(&bitmap)) return 0;
  UpdateSubstituteBits(substitute);
  return 1;
}

void kexWTLDIB::UpdateSubstituteBits(COLORREF substitute) {
  m_state = kexlib::substitute_key(span_of(m_bits, m_size), kexlib::pixel_of(substitute)) ? 1 : 2;
}

void kexWTLDIB::copy_from(kexWTLDIB* source) {
  if (!source || source == this) return;
  if (m_size != source->m_size) create(source->m_size.cx, source->m_size.cy);
  const kexlib::PixelSpan from = span_of(source->m_bits, source->m_size);
  if (m_bits && source->m_bits) std::memmove(m_bits, from.pixels, from.count() * sizeof(DWORD));
}

void kexWTLDIB::copy_to_dc(WTL::CDCT<true>* dc, int x, int y) {
  if (!dc || !m_bits) return;
  const auto rows = static_cast<UINT>(m_size.cy);
  dc->SetDIBitsToDevice(x, y, static_cast<DWORD>(m_size.cx), rows, 0, 0, 0, rows, m_bits, &m_bmi, DIB_RGB_COLORS);
}

DWORD kexWTLDIB::TintColor(DWORD pixel, COLORREF dark, COLORREF mid, COLORREF light) {
  return kexlib::tint(pixel, dark, mid, light);
}

void kexWTLDIB::Color3Tint(COLORREF dark, COLORREF mid, COLORREF light, COLORREF skip, BYTE threshold) {
  kexlib::tint_all(span_of(m_bits, m_size), dark, mid, light, skip, threshold);
}

void kexWTLDIB::insensitive(COLORREF skip) {
  Color3Tint(GetSysColor(COLOR_BTNSHADOW), GetSysColor(COLOR_BTNFACE), RGB(255, 255, 255), skip, 0);
}

void kexWTLDIB::cool_stipple() {
  kexlib::stipple(span_of(m_bits, m_size), system_pixel(COLOR_BTNFACE), system_pixel(COLOR_BTNHIGHLIGHT));
}

void kexWTLDIB::down() { kexlib::shift_down_right(span_of(m_bits, m_size)); }

void kexWTLDIB::merge(const kexWTLDIB& other) {
  if (m_size != other.m_size) return;
  const kexlib::PixelSpan from = span_of(other.m_bits, other.m_size);
  kexlib::merge(span_of(m_bits, m_size), from.pixels, system_pixel(COLOR_BTNFACE));
}

void kexWTLDIB::draw_button_edge(int raised, COLORREF face) {
  constexpr kexlib::Pixel white = 0xFFFFFF, grey = 0x808080, black = 0x000000;
  const kexlib::Pixel inner = kexlib::pixel_of(face);
  // Kept for compatibility: callers see a black corner in both.
  const kexlib::EdgePixels raised_edge{white, inner, black, grey, white, black, black};
  const kexlib::EdgePixels sunken_edge{black, grey, white, inner, black, white, black};
  kexlib::draw_edge(span_of(m_bits, m_size), raised ? raised_edge : sunken_edge);
}

void kexWTLDIB::draw_button_flat(kexWTLDIBEdgeStyle style, COLORREF face) {
  const kexlib::Pixel inner = kexlib::pixel_of(face);
  kexlib::Pixel upper = inner, lower = inner;
  if (style == kexEdgeRaised || style == kexEdgeSunken) {
    upper = system_pixel(style == kexEdgeRaised ? COLOR_BTNHIGHLIGHT : COLOR_BTNSHADOW);
    lower = system_pixel(style == kexEdgeRaised ? COLOR_BTNSHADOW : COLOR_BTNHIGHLIGHT);
  }
  kexlib::draw_edge(span_of(m_bits, m_size), {upper, inner, lower, inner, upper, lower, lower});
}
