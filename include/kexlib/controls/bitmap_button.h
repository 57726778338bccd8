// Bitmap button: a push button of a dialog with a picture on the face that the system's visual style gives it.
//
//     WTL::CImageListT<false> images;
//     images.Create(16, 16, ILC_COLOR32, 2, 2);
//     kexWTLBitmapButton open;
//     open.SetInfo(dialog.GetDlgItem(IDC_OPEN), &images, IDB_OPEN, "Open a file", instance);
//     ...
//     images.Destroy();              // once the dialog is gone: the list stays the caller's
//
// The picture comes from a bitmap resource, in which magenta stands for the face (the system's button face colour), and
// stands in the middle of the button. Of each picture the list gets two images side by side in number: as it is, and as
// it looks on a disabled button.
//
// The button clicks, and tells its parent so, as before (BN_CLICKED). It looks different while the mouse is over it.
// Before it paints itself it has its parent paint what lies behind. A parent with the style WS_CLIPCHILDREN paints
// nothing there: a plain button then keeps the edge that it had under the mouse.
//
// Errors. None is reported: what cannot be loaded is not shown. Running out of memory throws MFC's memory exception.
// What a themer throws leaves the window procedure, with painting ended.
//
// Threads. For the thread of the button's window.
#ifndef KEXLIB_CONTROLS_BITMAP_BUTTON_H
#define KEXLIB_CONTROLS_BITMAP_BUTTON_H

#include <kexlib/export.h>

#include <atlbase.h>

#include <atlapp.h>
#include <atlctrlx.h>
#include <wbzframe/themer.h>

#include <memory>

/// What a button looks like. Any other value: a themed face, and the disabled picture is as the other one.
enum kexWTLButtonType : int {
  kexBtnTypeThemed = 0,  ///< a themed face; the disabled picture is greyed
  kexBtnTypePlain = 1    ///< no themed face, but an edge while it is pressed or under the mouse
};

/// The button. It does not destroy its window; the window goes first, with the dialog. Everything else that WTL's
/// button can do, it can do too: SetBitmapButtonExtendedStyle(BMPBTN_CHECK, BMPBTN_CHECK) draws it as pressed.
class KEXLIB_API kexWTLBitmapButton : public WTL::CBitmapButton {
 public:
  /// No window. Its extended style is BMPBTN_HOVER | BMPBTN_AUTO3D_SINGLE | BMPBTN_SHAREIMAGELISTS, and unless it is
  /// plain it has a themer for push buttons.
  explicit kexWTLBitmapButton(kexWTLButtonType type = kexBtnTypeThemed);
  /// A copy shares the themer, which reads the window of the button that it was made for: let that one live longer, or
  /// give the copy a themer of its own.
  kexWTLBitmapButton(const kexWTLBitmapButton& other);
  /// The same.
  kexWTLBitmapButton& operator=(const kexWTLBitmapButton& other);

  /// WM_PAINT and WM_PRINTCLIENT paint; all else is WTL's. Of other message maps than 0 nothing is handled.
  BOOL ProcessWindowMessage(HWND window, UINT message, WPARAM wParam, LPARAM lParam, LRESULT& result,
                            DWORD map = 0) override;

  /// Leaves the window alone, and the image list too unless BMPBTN_SHAREIMAGELISTS was taken away.
  ~kexWTLBitmapButton() override;

  /// Adds a bitmap resource to the list, and after it its disabled look, and returns the index of the first. A bitmap
  /// that cannot be loaded adds nothing; then the index is that of the last image, -1 in an empty list.
  int AddImage(WTL::CImageListT<false>* images, int bitmap_id, HINSTANCE instance);

  /// All at once: adds the picture to the list, takes the button over, shows the picture from the list, which must
  /// live as long as the button, and sets the text of the tooltip, where null is none. A button that cannot be taken
  /// over, and a second one while there is a first, does not keep the rest from being set.
  void SetInfo(HWND button, WTL::CImageListT<false>* images, int bitmap_id, const char* tooltip, HINSTANCE instance);

  /// Shows the picture of an index that AddImage returned; -1 changes nothing but the disabled picture, which becomes
  /// image 0. The picture of the pressed button stays what SetInfo made it.
  void SetImage(int index);

  /// Paints with another themer from now on; an empty one draws no face. A plain button does not ask for it.
  void set_themer(std::shared_ptr<wbzThemer> themer);

 protected:
  /// Paints into the window, whatever device context the message carries. While it runs it does nothing when called
  /// again, as the parent's painting may.
  LRESULT OnPaint(UINT message, WPARAM wParam, LPARAM lParam, BOOL& handled);

  /// Draws the face if it is themed, the picture of the button's state, and without a theme the edge.
  void DoPaint(WTL::CDCT<false> dc, bool themed);

 private:
  void repaint_behind();
  void draw_edge(WTL::CDCT<false> dc, RECT rect);

  BOOL m_painting = FALSE;
  kexWTLButtonType m_type;
  std::shared_ptr<wbzThemer> m_themer;
};

#endif
