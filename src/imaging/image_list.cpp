#include <kexlib/imaging/dib.h>
#include <kexlib/imaging/image_list.h>

#include <atlctrls.h>

int kexWTLImageList::m_DefaultSize = 16;

kexWTLImageList::kexWTLImageList(int size, DWORD mask_color) : m_size(size), m_mask_color(mask_color) {}

bool kexWTLImageList::Create() {
  constexpr int grow = 4;
  m_handle = ImageList_Create(m_size, m_size, ILC_COLOR32 | ILC_MASK, m_DefaultSize, grow);
  return m_handle != nullptr;
}

int kexWTLImageList::Destroy() {
  WTL::CImageList list(m_handle);
  const int destroyed = list.Destroy();
  m_handle = list;
  return destroyed;
}

bool kexWTLImageList::Add(UINT bitmap_id, HINSTANCE instance, kexImageType type) {
  kexWTLDIB picture;
  if (!picture.load_bitmap_transparent(bitmap_id, instance, m_mask_color)) return false;

  constexpr COLORREF dark_blue = 0x500000, blue = 0xAA0000, white = 0xFFFFFF;
  if (type == kexImageDisabled) picture.insensitive(m_mask_color);
  if (type == kexImageTinted) picture.Color3Tint(dark_blue, blue, white, m_mask_color, 0);

  WTL::CWindowDC screen(nullptr);
  WTL::CBitmap bitmap;
  bitmap.CreateCompatibleBitmap(screen, m_size, m_size);
  picture.get_bitmap(&bitmap);  // fails if the size differs; the bitmap then keeps its undefined contents
  if (m_handle) WTL::CImageList(m_handle).Add(bitmap, m_mask_color);
  return true;  // kept for compatibility: callers see only a failed load
}

int kexWTLImageList::GetImageCount() const { return m_handle ? WTL::CImageList(m_handle).GetImageCount() : 0; }

bool kexWTLImageList::IsNull() const { return !m_handle; }

int kexWTLImageList::SetOverlayImage(int image, int overlay) {
  return m_handle && WTL::CImageList(m_handle).SetOverlayImage(image, overlay);
}

kexWTLImageList::operator HIMAGELIST() const { return m_handle; }
