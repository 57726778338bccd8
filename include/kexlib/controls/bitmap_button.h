// Bitmap button: a push button of a dialog with a picture on the face of the system's visual style.
//
//     WTL::CImageListT<false> images;
//     images.Create(16, 16, ILC_COLOR32, 2, 2);
//     kexWTLBitmapButton open;
//     open.SetInfo(dialog.GetDlgItem(IDC_OPEN), &images, IDB_OPEN, "Open a file", instance);
//     ...
//     images.Destroy();              // after the dialog is destroyed: the caller owns the list
//
// The picture comes from a bitmap resource and is centred on the button. Magenta pixels get the system's button face
// colour. Each picture adds two consecutive images to the list: the normal one and the disabled one.
//
// The button notifies its parent of clicks as before (BN_CLICKED), after it has released the mouse. It looks different
// while the mouse is over it. Before it paints itself it makes its parent paint the area behind it. A parent with the
// style WS_CLIPCHILDREN paints nothing there: a plain button then keeps the edge that it had under the mouse.
//
// Errors. None is reported: a picture that cannot be loaded is not shown. Out of memory, the text of the tooltip throws
// MFC's memory exception; the constructor, which creates the themer, throws std::bad_alloc.
//
// An exception of a themer does not leave the window procedure, whatever causes the painting: EndPaint is called, the
// region is validated, and the message is handled. The rest of this painting is missing. The debugger is informed
// (OutputDebugString). The same holds for exceptions that a parent throws while it paints, if the system passes them
// on; on 64-bit Windows it ends the process.
//
// Threads. Call on the thread of the button's window.
#ifndef KEXLIB_CONTROLS_BITMAP_BUTTON_H
#define KEXLIB_CONTROLS_BITMAP_BUTTON_H

// Both buttons have the same bases, and Visual C++ exports those of the button menu: without its declaration a source
// would compile them once more.
#include <kexlib/controls/button_menu.h>
#include <kexlib/export.h>
#include <kexlib/windows.h>
#include <kexlib/wtl_geometry.h>

#include <atlbase.h>
#include <atlapp.h>
#include <atlctrls.h>
#include <atlctrlx.h>

#include <wbzframe/themer.h>

#include <memory>

/// The look of a button. Any other value: a themed face; the disabled picture is the same as the normal one.
enum kexWTLButtonType : int {
  kexBtnTypeThemed = 0,  ///< a themed face; the disabled picture is greyed
  kexBtnTypePlain = 1    ///< no themed face, but an edge while it is pressed or under the mouse
};

/// The button. It does not destroy its window: destroy the window first, with the dialog. The other operations of WTL's
/// button are available: SetBitmapButtonExtendedStyle(BMPBTN_CHECK, BMPBTN_CHECK) draws it pressed, BMPBTN_AUTOCHECK
/// makes clicks change GetCheck().
class KEXLIB_API kexWTLBitmapButton : public WTL::CBitmapButton {
 public:
  /// No window. The extended style is BMPBTN_HOVER | BMPBTN_AUTO3D_SINGLE | BMPBTN_SHAREIMAGELISTS. A button that is
  /// not plain has a themer for push buttons.
  kexWTLBitmapButton(kexWTLButtonType type = kexBtnTypeThemed);
  /// A copy has the same window handle and tooltip, but does not get the window's messages. It does not own the image
  /// list: it has BMPBTN_SHAREIMAGELISTS. It shares the themer, which reads the window handle of the button that it was
  /// created for. That button must outlive the copy, or set another themer on the copy.
  kexWTLBitmapButton(const kexWTLBitmapButton& other);
  /// The same. An object that gets the messages of a window keeps that window and its tooltip, and shows there what is
  /// copied. An image list that it owned is destroyed.
  kexWTLBitmapButton& operator=(const kexWTLBitmapButton& other);

  /// WM_PAINT and WM_PRINTCLIENT paint; BM_SETSTATE shows the button pressed or not; WTL handles the other messages.
  /// Message maps other than 0 handle nothing.
  BOOL ProcessWindowMessage(HWND window, UINT message, WPARAM wParam, LPARAM lParam, LRESULT& result,
                            DWORD map = 0) override;

  /// Does not destroy the window. Destroys the image list only if BMPBTN_SHAREIMAGELISTS was removed.
  ~kexWTLBitmapButton() override;

  /// Subclasses a button, as WTL does; the previous one, if any, is detached and keeps the style BS_OWNERDRAW. The new
  /// one is neither pressed nor under the mouse, has a tooltip window of its own, and gets the images and the text that
  /// the object has. FALSE, and nothing is changed, if the system refuses, or if other code has subclassed the previous
  /// one since: this object still receives its messages.
  BOOL SubclassWindow(HWND button);

  /// Adds a bitmap resource and its disabled picture to the list and returns the index of the first. A bitmap that
  /// cannot be loaded adds nothing; the result is then the index of the last image, -1 for an empty list.
  ///   images     the list; borrowed
  ///   bitmap_id  identifier of the bitmap resource
  ///   instance   module that has the resource
  int AddImage(WTL::CImageListT<false>* images, int bitmap_id, HINSTANCE instance);

  /// Calls AddImage, subclasses the button, and sets its image list, its images and its tooltip. With BMPBTN_AUTOSIZE
  /// the button takes the size of the images.
  ///   button   the window to subclass (SubclassWindow), in place of the object's previous one if that is another. If
  ///            it cannot be subclassed, the rest is set all the same
  ///   images   must live as long as the button
  ///   tooltip  copied; null switches the tooltip off
  void SetInfo(HWND button, WTL::CImageListT<false>* images, int bitmap_id, const char* tooltip, HINSTANCE instance);

  /// Shows the picture of an index that AddImage returned. -1 sets only the disabled picture, to image 0. Kept for
  /// compatibility: the pushed picture stays the one of SetInfo.
  void SetImage(int index);

  /// Beyond the contract of the unit: the index in the image list of the picture that is shown while the button is
  /// neither pressed nor disabled, as SetInfo or SetImage has set it; -1 for none.
  int GetImage() const { return m_nImage[_nImageNormal]; }

  /// Sets the themer for the next painting; a painting in progress keeps the previous one. Call it at any time. An
  /// empty pointer draws no face. A plain button does not use it.
  void set_themer(std::shared_ptr<wbzThemer> themer);

 protected:
  /// Paints with BeginPaint; the device context of WM_PRINTCLIENT is ignored. Returns at once when it is called again
  /// while it runs, which the parent's painting may cause. Exceptions pass, after EndPaint.
  LRESULT OnPaint(UINT message, WPARAM wParam, LPARAM lParam, BOOL& handled);

  /// Draws the face if `themed`, then the picture of the button's state, then the edge if not `themed`. Nothing without
  /// a window.
  void DoPaint(WTL::CDCT<false> dc, bool themed);

 private:
  void repaint_behind();
  void paint(const WTL::CDCT<false>& dc, bool themed, const wbzThemer* themer);
  void draw_edge(WTL::CDCT<false> dc, RECT rect);

  BOOL painting_ = FALSE;
  kexWTLButtonType type_;
  std::shared_ptr<wbzThemer> themer_;
};

#endif
