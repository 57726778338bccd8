// Static bitmap: a static control that shows a bitmap, and who deletes which.
//
//     wbzStaticBitmapTemplate<WTL::CStaticT<ATL::CWindow>> logo;
//     logo.get_static().Attach(dialog.GetDlgItem(IDC_LOGO));         // with the style SS_BITMAP
//     logo.set_bitmap_from_file("logo.png");
//
// A static control of the common controls' version 6 shows a copy of a bitmap of 32 bits with alpha, and then both are
// for the application to delete; any other bitmap it shows itself. This class keeps the two apart: it deletes the copy
// when the next bitmap is set, and the bitmap if it owns it. A copy that the control still shows when the object goes
// is not deleted: SetBitmap(nullptr) first, where that matters.
//
// Errors. None is reported: what cannot be loaded shows nothing.
//
// Threads. For the thread of the control's window. Not to be used in DllMain, where GDI+ cannot be started.
#ifndef KEXLIB_IMAGING_STATIC_BITMAP_H
#define KEXLIB_IMAGING_STATIC_BITMAP_H

#include <kexlib/export.h>

#include <atlbase.h>

#include <atlapp.h>
#include <atlctrls.h>

/// `Static` is the wrapper of the control; kexlib.dll has the class for WTL::CStaticT<ATL::CWindow>.
template <class Static>
class wbzStaticBitmapTemplate {
 public:
  /// No control, no bitmap.
  wbzStaticBitmapTemplate() = default;

  wbzStaticBitmapTemplate(const wbzStaticBitmapTemplate&) = delete;
  wbzStaticBitmapTemplate& operator=(const wbzStaticBitmapTemplate&) = delete;

  /// Deletes the bitmap if it is owned; nothing else.
  ~wbzStaticBitmapTemplate();

  /// The wrapped control, to attach it and for all else.
  Static& get_static() { return control_; }

  /// Shows a bitmap that stays the caller's and must be there as long as it is shown; null shows nothing
  /// (STM_SETIMAGE).
  void SetBitmap(HBITMAP bitmap);

  /// Shows a bitmap that becomes the object's.
  void set_internal_bitmap(HBITMAP bitmap);

  /// Shows a bitmap resource of the application (AfxFindResourceHandle, LoadBitmapW).
  void set_bitmap_from_id(UINT id);

  /// Shows a bitmap resource of a module (LoadBitmapA).
  void set_bitmap_from_id_given_resources(HINSTANCE module, UINT id);

  /// Shows an image file of any format that GDI+ reads; the path is in the thread's code page.
  void set_bitmap_from_file(const char* path);

 private:
  HBITMAP bitmap_ = nullptr;  // what was handed to the control
  HBITMAP shown_ = nullptr;   // what the control shows of it: the same, or its copy
  bool owned_ = false;        // whether bitmap_ is to be deleted here
  Static control_;
};

extern template class KEXLIB_API wbzStaticBitmapTemplate<WTL::CStaticT<ATL::CWindow>>;

#endif
