// Static bitmap: a static control that shows a bitmap, with the ownership of the bitmaps.
//
//     wbzStaticBitmapTemplate<WTL::CStaticT<ATL::CWindow>> logo;
//     logo.get_static().Attach(dialog.GetDlgItem(IDC_LOGO));         // with the style SS_BITMAP
//     logo.set_bitmap_from_file("logo.png");
//
// A static control of the common controls version 6 creates and shows a copy of a bitmap of 32 bits with alpha; the
// application must delete both. It shows any other bitmap itself. This class deletes the copy when the next bitmap is
// set, and the bitmap if it owns it. The destructor does not delete a copy that the control still shows: call
// SetBitmap(nullptr) before.
//
// Errors. None is reported. If a bitmap cannot be loaded, the control shows nothing.
//
// Loading an image file starts GDI+ and stops it again (CImage); a program need do neither.
//
// Threads. Use it on the thread of the control's window, and not in DllMain: GDI+ cannot be started there.
#ifndef KEXLIB_IMAGING_STATIC_BITMAP_H
#define KEXLIB_IMAGING_STATIC_BITMAP_H

#include <kexlib/export.h>
#include <kexlib/windows.h>

#include <atlbase.h>
#include <atlapp.h>
#include <atlctrls.h>

/// `Static` is the wrapper of the control. kexlib.dll exports the class for WTL::CStaticT<ATL::CWindow>.
//
// No member is inline, not even a defaulted one: GCC does not export the inline members of an instantiation, and users
// without optimisation import them.
template <class Static>
class wbzStaticBitmapTemplate {
 public:
  /// No control, no bitmap.
  wbzStaticBitmapTemplate();

  wbzStaticBitmapTemplate(const wbzStaticBitmapTemplate&) = delete;
  wbzStaticBitmapTemplate& operator=(const wbzStaticBitmapTemplate&) = delete;

  /// Deletes the bitmap if the object owns it, and nothing else.
  ~wbzStaticBitmapTemplate();

  /// The wrapped control, for Attach and all other calls.
  Static& get_static();

  /// Shows a bitmap (STM_SETIMAGE); null shows nothing. The caller keeps its ownership and must not delete it while it
  /// is shown.
  void SetBitmap(HBITMAP bitmap);

  /// Shows a bitmap and takes ownership of it.
  void set_internal_bitmap(HBITMAP bitmap);

  /// Shows a bitmap resource; the framework finds its module (AfxFindResourceHandle, LoadBitmapW).
  void set_bitmap_from_id(UINT id);

  /// Shows a bitmap resource of the given module (LoadBitmapA).
  void set_bitmap_from_id_given_resources(HINSTANCE module, UINT id);

  /// Shows an image file of any format that GDI+ reads; the path is in the thread's code page.
  void set_bitmap_from_file(const char* path);

 private:
  HBITMAP bitmap_ = nullptr;  // the bitmap passed to the control
  HBITMAP shown_ = nullptr;   // the bitmap that the control shows: the same one or a copy
  bool owned_ = false;        // whether this object deletes bitmap_
  Static control_;
};

extern template class KEXLIB_API_INSTANTIATION wbzStaticBitmapTemplate<WTL::CStaticT<ATL::CWindow>>;

#endif
