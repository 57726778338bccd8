#include <kexlib/imaging/static_bitmap.h>

#include <algorithm>

// The headers of GDI+ use the macros min and max of windows.h, which are switched off here.
namespace Gdiplus {
using std::max;  // NOLINT(misc-unused-using-decls): for Microsoft's gdiplus.h
using std::min;  // NOLINT(misc-unused-using-decls)
}  // namespace Gdiplus

#include <atlimage.h>

template <class Static>
wbzStaticBitmapTemplate<Static>::wbzStaticBitmapTemplate() = default;

template <class Static>
wbzStaticBitmapTemplate<Static>::~wbzStaticBitmapTemplate() {
  // Not a copy: the control may outlive this object and still paint it.
  if (owned_) DeleteObject(bitmap_);
}

template <class Static>
Static& wbzStaticBitmapTemplate<Static>::get_static() {
  return control_;
}

template <class Static>
void wbzStaticBitmapTemplate<Static>::SetBitmap(HBITMAP bitmap) {
  if (owned_) DeleteObject(bitmap_);
  if (shown_ && shown_ != bitmap_) DeleteObject(shown_);  // the control's copy
  const bool has_control = control_.IsWindow();
  if (has_control) control_.SetBitmap(bitmap);
  bitmap_ = bitmap;
  shown_ = has_control ? control_.GetBitmap() : nullptr;
  owned_ = false;
}

template <class Static>
void wbzStaticBitmapTemplate<Static>::set_internal_bitmap(HBITMAP bitmap) {
  SetBitmap(bitmap);
  if (shown_ != bitmap_) {
    DeleteObject(bitmap_);
    bitmap_ = nullptr;
  } else {
    owned_ = true;
  }
}

template <class Static>
void wbzStaticBitmapTemplate<Static>::set_bitmap_from_id(UINT id) {
  HINSTANCE module = AfxFindResourceHandle(MAKEINTRESOURCEA(id), reinterpret_cast<LPCSTR>(RT_BITMAP));
  // Without a module LoadBitmap would load a bitmap of the system.
  set_internal_bitmap(module ? LoadBitmapW(module, MAKEINTRESOURCEW(id)) : nullptr);
}

template <class Static>
void wbzStaticBitmapTemplate<Static>::set_bitmap_from_id_given_resources(HINSTANCE module, UINT id) {
  set_internal_bitmap(LoadBitmapA(module, MAKEINTRESOURCEA(id)));
}

template <class Static>
void wbzStaticBitmapTemplate<Static>::set_bitmap_from_file(const char* path) {
  ATL::CImage image;
  image.Load(path);
  set_internal_bitmap(image.IsNull() ? nullptr : image.Detach());
}

template class KEXLIB_API_INSTANTIATED wbzStaticBitmapTemplate<WTL::CStaticT<ATL::CWindow>>;
