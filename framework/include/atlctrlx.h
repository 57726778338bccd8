// WTL's bitmap button: a button that shows an image of an image list for each of its states.
//
//     CBitmapButton button(BMPBTN_HOVER | BMPBTN_AUTO3D_SINGLE, images);
//     button.SetImages(0, 1, 2, 3);
//     button.SubclassWindow(GetDlgItem(IDC_OPEN));
//     button.SetToolTipText("Open");
#ifndef FRAMEWORK_ATLCTRLX_H
#define FRAMEWORK_ATLCTRLX_H

#ifndef FRAMEWORK_ATLAPP_H
#error "atlctrlx.h requires atlapp.h to be included first"
#endif
#ifndef FRAMEWORK_ATLCTRLS_H
#error "atlctrlx.h requires atlctrls.h to be included first"
#endif

#include <atlgdi.h>

#include <new>
#include <utility>

// Extended styles of a bitmap button.
#define BMPBTN_HOVER 0x00000001            // highlighted while the mouse is over it, instead of while it has the focus
#define BMPBTN_AUTO3D_SINGLE 0x00000002    // edge one pixel wide
#define BMPBTN_AUTO3D_DOUBLE 0x00000004    // edge two pixels wide
#define BMPBTN_AUTOSIZE 0x00000008         // has the size of its images
#define BMPBTN_SHAREIMAGELISTS 0x00000010  // does not own the image list
#define BMPBTN_AUTOFIRE 0x00000020         // clicks again and again while it is held down
#define BMPBTN_CHECK 0x00000040            // looks pressed while it is checked
#define BMPBTN_AUTOCHECK 0x00000080        // a click changes whether it is checked

namespace WTL {

// A button T, derived from this class. Members of T with the names below replace them.
//
// In hover mode this class handles the mouse, and the button takes no focus; otherwise the system's button does. The
// parent is notified of clicks (BN_CLICKED): in hover and check mode while the button still has the mouse (SetCapture).
template <class T, class TBase = CButton, class TWinTraits = ATL::CControlWinTraits>
class CBitmapButtonImpl : public ATL::CWindowImpl<T, TBase, TWinTraits> {
  using Window = ATL::CWindowImpl<T, TBase, TWinTraits>;

 public:
  using Window::StartWindowProc;
  DECLARE_WND_SUPERCLASS(nullptr, TBase::GetWndClassName())

  enum { _nImageNormal, _nImagePushed, _nImageFocusOrHover, _nImageDisabled, _nImageCount };
  enum { ID_TIMER_FIRST = 1000, ID_TIMER_REPEAT = 1001 };

  explicit CBitmapButtonImpl(DWORD extendedStyle = BMPBTN_AUTOSIZE, HIMAGELIST images = nullptr)
      : m_dwExtendedStyle(extendedStyle), m_ImageList(images) {}
  ~CBitmapButtonImpl() override {
    if (!(m_dwExtendedStyle & BMPBTN_SHAREIMAGELISTS)) m_ImageList.Destroy();
    delete[] m_lpstrToolTipText;
  }

  BOOL SubclassWindow(HWND button) {
    if (!Window::SubclassWindow(button)) return FALSE;
    self().Init();
    return TRUE;
  }

  DWORD GetBitmapButtonExtendedStyle() const { return m_dwExtendedStyle; }
  // Changes the styles in the mask, or with 0 all of them, and returns the previous ones.
  DWORD SetBitmapButtonExtendedStyle(DWORD style, DWORD mask = 0) {
    DWORD changed = mask ? (m_dwExtendedStyle & ~mask) | (style & mask) : style;
    return std::exchange(m_dwExtendedStyle, changed);
  }

  HIMAGELIST GetImageList() const { return m_ImageList; }
  // Returns the previous list, which the caller then owns. With BMPBTN_AUTOSIZE and a window it must not be null.
  HIMAGELIST SetImageList(HIMAGELIST images) {
    HIMAGELIST before = std::exchange(m_ImageList.m_hImageList, images);
    if ((m_dwExtendedStyle & BMPBTN_AUTOSIZE) && this->IsWindow()) SizeToImage();
    return before;
  }
  // The images of the states; -1 keeps the one of that state. A state without an image shows the normal one.
  void SetImages(int normal, int pushed = -1, int focusOrHover = -1, int disabled = -1) {
    const int images[_nImageCount] = {normal, pushed, focusOrHover, disabled};
    for (int i = 0; i < _nImageCount; ++i)
      if (images[i] != -1) m_nImage[i] = images[i];
  }

  // -1 without a text.
  int GetToolTipTextLength() const { return m_lpstrToolTipText ? ::lstrlen(m_lpstrToolTipText) : -1; }
  // Copies what fits. False without a text.
  bool GetToolTipText(LPTSTR text, int length) const {
    ATLASSERT(text);
    return m_lpstrToolTipText && ::lstrcpyn(text, m_lpstrToolTipText, length);
  }
  // False if no memory is left: the previous text is gone then. Null switches the tooltip off. Every text is added to
  // the tooltip anew; the tooltip decides which one it shows.
  bool SetToolTipText(LPCTSTR text) {
    delete[] std::exchange(m_lpstrToolTipText, nullptr);
    if (!text) {
      if (m_tip.IsWindow()) m_tip.Activate(FALSE);
      return true;
    }
    int size = ::lstrlen(text) + 1;
    m_lpstrToolTipText = new (std::nothrow) TCHAR[static_cast<size_t>(size)];
    if (!m_lpstrToolTipText) return false;
    ::lstrcpyn(m_lpstrToolTipText, text, size);
    if (m_tip.IsWindow()) show_tooltip_text();
    return true;
  }

  // The check state, for BMPBTN_CHECK.
  bool GetCheck() const { return m_fChecked; }
  // To update, it needs a window.
  void SetCheck(bool check, bool update = true) {
    m_fChecked = check;
    if (update) redraw();
  }

  // Resizes the button to its images.
  BOOL SizeToImage() {
    ATLASSERT(this->IsWindow() && m_ImageList.m_hImageList);
    int width = 0, height = 0;
    if (!m_ImageList.GetIconSize(width, height)) return FALSE;
    RECT window, client;
    this->GetWindowRect(&window);
    this->GetClientRect(&client);
    return this->SetWindowPos(nullptr, 0, 0, width + (window.right - window.left) - client.right,
                              height + (window.bottom - window.top) - client.bottom,
                              SWP_NOMOVE | SWP_NOZORDER | SWP_NOACTIVATE);
  }

  bool IsHoverMode() const { return (m_dwExtendedStyle & BMPBTN_HOVER) != 0; }
  bool IsCheckMode() const { return (m_dwExtendedStyle & (BMPBTN_CHECK | BMPBTN_AUTOCHECK)) != 0; }

  // Paints the button. T may replace it.
  void DoPaint(CDCHandle dc) {
    ATLASSERT(m_ImageList.m_hImageList);
    ATLASSERT(m_nImage[_nImageNormal] != -1);
    bool pressed = m_fPressed || (IsCheckMode() && m_fChecked);
    bool edge = (m_dwExtendedStyle & (BMPBTN_AUTO3D_SINGLE | BMPBTN_AUTO3D_DOUBLE)) != 0;
    bool highlighted = IsHoverMode() ? m_fMouseOver : m_fFocus;

    int state = !this->IsWindowEnabled() ? _nImageDisabled
                : pressed                ? _nImagePushed
                : highlighted            ? _nImageFocusOrHover
                                         : _nImageNormal;
    int image = m_nImage[state] == -1 ? m_nImage[_nImageNormal] : m_nImage[state];
    // Without its own image, a pressed button with an edge moves the normal one.
    int shift = pressed && edge && m_nImage[_nImagePushed] == -1 ? 1 : 0;
    m_ImageList.Draw(dc, image, shift, shift, ILD_NORMAL);

    if (!edge) return;
    RECT rect;
    this->GetClientRect(&rect);
    bool single = (m_dwExtendedStyle & BMPBTN_AUTO3D_SINGLE) != 0;
    if (pressed)
      dc.DrawEdge(&rect, single ? BDR_SUNKENOUTER : EDGE_SUNKEN, BF_RECT);
    else if (!IsHoverMode() || m_fMouseOver)
      dc.DrawEdge(&rect, single ? BDR_RAISEDINNER : EDGE_RAISED, BF_RECT);

    if (!IsHoverMode() && m_fFocus) {
      ::InflateRect(&rect, -2 * ::GetSystemMetrics(SM_CXEDGE), -2 * ::GetSystemMetrics(SM_CYEDGE));
      dc.DrawFocusRect(&rect);
    }
  }

  // Called when the object has its window.
  void Init() {
    this->ModifyStyle(0, BS_OWNERDRAW);
    m_tip.Create(this->m_hWnd, nullptr, nullptr, WS_POPUP);
    if (m_lpstrToolTipText) show_tooltip_text();
    if (!m_ImageList.IsNull() && (m_dwExtendedStyle & BMPBTN_AUTOSIZE)) SizeToImage();
  }

  BEGIN_MSG_MAP(CBitmapButtonImpl)
    MESSAGE_HANDLER(WM_CREATE, OnCreate)
    MESSAGE_HANDLER(WM_DESTROY, OnDestroy)
    MESSAGE_RANGE_HANDLER(WM_MOUSEFIRST, WM_MOUSELAST, OnMouseMessage)
    MESSAGE_HANDLER(WM_ERASEBKGND, OnEraseBackground)
    MESSAGE_HANDLER(WM_PAINT, OnPaint)
    MESSAGE_HANDLER(WM_PRINTCLIENT, OnPaint)
    MESSAGE_HANDLER(WM_SETFOCUS, OnFocus)
    MESSAGE_HANDLER(WM_KILLFOCUS, OnFocus)
    MESSAGE_HANDLER(WM_ENABLE, OnEnable)
    MESSAGE_HANDLER(WM_LBUTTONDOWN, OnLButtonDown)
    MESSAGE_HANDLER(WM_LBUTTONDBLCLK, OnLButtonDblClk)
    MESSAGE_HANDLER(WM_LBUTTONUP, OnLButtonUp)
    MESSAGE_HANDLER(WM_CAPTURECHANGED, OnCaptureChanged)
    MESSAGE_HANDLER(WM_MOUSEMOVE, OnMouseMove)
    MESSAGE_HANDLER(WM_MOUSELEAVE, OnMouseLeave)
    MESSAGE_HANDLER(WM_KEYDOWN, OnKeyDown)
    MESSAGE_HANDLER(WM_KEYUP, OnKeyUp)
    MESSAGE_HANDLER(WM_TIMER, OnTimer)
    MESSAGE_HANDLER(WM_UPDATEUISTATE, OnUpdateUiState)
  END_MSG_MAP()

  LRESULT OnCreate(UINT uMsg, WPARAM wParam, LPARAM lParam, BOOL&) {
    LRESULT result = this->DefWindowProc(uMsg, wParam, lParam);
    if (result != -1) self().Init();
    return result;
  }

  LRESULT OnDestroy(UINT, WPARAM, LPARAM, BOOL& bHandled) {
    if (m_tip.IsWindow()) m_tip.DestroyWindow();
    m_tip.m_hWnd = nullptr;  // the system may have destroyed it with its owner
    bHandled = FALSE;
    return 0;
  }

  LRESULT OnMouseMessage(UINT uMsg, WPARAM wParam, LPARAM lParam, BOOL& bHandled) {
    MSG message{this->m_hWnd, uMsg, wParam, lParam, static_cast<DWORD>(::GetMessageTime()), place(::GetMessagePos())};
    if (m_tip.IsWindow()) m_tip.RelayEvent(&message);
    bHandled = FALSE;
    return 0;
  }

  // Painting covers the whole client area.
  LRESULT OnEraseBackground(UINT, WPARAM, LPARAM, BOOL&) { return 1; }

  LRESULT OnPaint(UINT, WPARAM wParam, LPARAM, BOOL&) {
    if (wParam)
      self().DoPaint(CDCHandle(reinterpret_cast<HDC>(wParam)));
    else
      self().DoPaint(CDCHandle(CPaintDC(this->m_hWnd).m_hDC));
    return 0;
  }

  LRESULT OnFocus(UINT uMsg, WPARAM, LPARAM, BOOL& bHandled) {
    m_fFocus = uMsg == WM_SETFOCUS;
    redraw();
    bHandled = FALSE;
    return 0;
  }

  LRESULT OnEnable(UINT, WPARAM, LPARAM, BOOL& bHandled) {
    redraw();
    bHandled = FALSE;
    return 0;
  }

  LRESULT OnLButtonDown(UINT uMsg, WPARAM wParam, LPARAM lParam, BOOL&) {
    LRESULT result = 0;
    if (IsHoverMode())
      this->SetCapture();
    else
      result = this->DefWindowProc(uMsg, wParam, lParam);
    if (::GetCapture() == this->m_hWnd) press();
    return result;
  }

  // The second of two quick clicks is a click like the first.
  LRESULT OnLButtonDblClk(UINT uMsg, WPARAM wParam, LPARAM lParam, BOOL&) {
    LRESULT result = IsHoverMode() ? 0 : this->DefWindowProc(uMsg, wParam, lParam);
    if (::GetCapture() != this->m_hWnd) this->SetCapture();
    if (!m_fPressed) press();
    return result;
  }

  LRESULT OnLButtonUp(UINT uMsg, WPARAM wParam, LPARAM lParam, BOOL&) {
    if (m_fPressed && (m_dwExtendedStyle & BMPBTN_AUTOCHECK)) SetCheck(!GetCheck(), false);
    if (!IsHoverMode() && !IsCheckMode()) return this->DefWindowProc(uMsg, wParam, lParam);
    if (::GetCapture() != this->m_hWnd) return 0;
    if (m_fPressed) click();
    ::ReleaseCapture();
    return 0;
  }

  LRESULT OnCaptureChanged(UINT, WPARAM, LPARAM, BOOL& bHandled) {
    set_pressed(false);
    bHandled = FALSE;
    return 0;
  }

  LRESULT OnMouseMove(UINT, WPARAM, LPARAM lParam, BOOL& bHandled) {
    if (::GetCapture() == this->m_hWnd) {
      RECT rect;
      this->GetClientRect(&rect);
      set_pressed(::PtInRect(&rect, place(lParam)));
    } else if (IsHoverMode()) {
      set_mouse_over(true);
    }
    bHandled = FALSE;
    return 0;
  }

  LRESULT OnMouseLeave(UINT, WPARAM, LPARAM, BOOL& bHandled) {
    set_mouse_over(false);
    bHandled = FALSE;
    return 0;
  }

  // By design the space bar does not press a button in hover mode, as in a toolbar.
  LRESULT OnKeyDown(UINT, WPARAM wParam, LPARAM, BOOL& bHandled) {
    bHandled = wParam == VK_SPACE && IsHoverMode();
    if (wParam == VK_SPACE && !IsHoverMode()) set_pressed(true);
    return 0;
  }
  LRESULT OnKeyUp(UINT, WPARAM wParam, LPARAM, BOOL& bHandled) {
    bHandled = wParam == VK_SPACE && IsHoverMode();
    if (wParam != VK_SPACE || IsHoverMode() || !m_fPressed) return 0;
    if (m_dwExtendedStyle & BMPBTN_AUTOCHECK) SetCheck(!GetCheck(), false);
    set_pressed(false);
    return 0;
  }

  LRESULT OnTimer(UINT, WPARAM wParam, LPARAM, BOOL& bHandled) {
    bHandled = wParam == ID_TIMER_FIRST || wParam == ID_TIMER_REPEAT;
    if (!bHandled) return 0;
    if (wParam == ID_TIMER_FIRST || ::GetCapture() != this->m_hWnd) this->KillTimer(wParam);
    if (::GetCapture() != this->m_hWnd) return 0;
    if (wParam == ID_TIMER_FIRST) this->SetTimer(ID_TIMER_REPEAT, repeat_delay);
    if (m_fPressed) click();
    return 0;
  }

  // The system's button would paint itself.
  LRESULT OnUpdateUiState(UINT, WPARAM, LPARAM, BOOL&) { return 0; }

  DWORD m_dwExtendedStyle;
  CImageList m_ImageList;
  int m_nImage[_nImageCount] = {-1, -1, -1, -1};
  CToolTipCtrl m_tip;
  LPTSTR m_lpstrToolTipText = nullptr;

  // The values are bits, 0 or 1.
  unsigned m_fMouseOver : 1 = 0;
  unsigned m_fFocus : 1 = 0;
  unsigned m_fPressed : 1 = 0;
  unsigned m_fChecked : 1 = 0;

 private:
  static constexpr UINT first_delay = 250, repeat_delay = 50;  // milliseconds

  T& self() { return static_cast<T&>(*this); }

  // Signed: a position may be left of or above the origin.
  template <typename Packed>
  static POINT place(Packed packed) {
    return {static_cast<short>(LOWORD(packed)), static_cast<short>(HIWORD(packed))};
  }

  // Immediately: the handler of the click may take long.
  void redraw() {
    this->Invalidate(FALSE);
    this->UpdateWindow();
  }

  void press() {
    if (m_dwExtendedStyle & BMPBTN_AUTOFIRE) this->SetTimer(ID_TIMER_FIRST, first_delay);
    set_pressed(true);
  }

  void set_pressed(bool pressed) {
    if (m_fPressed == pressed) return;
    m_fPressed = pressed;
    redraw();
  }

  void click() {
    ::SendMessage(::GetParent(this->m_hWnd), WM_COMMAND,
                  MAKEWPARAM(static_cast<WORD>(this->GetDlgCtrlID()), BN_CLICKED),
                  reinterpret_cast<LPARAM>(this->m_hWnd));
  }

  void set_mouse_over(bool over) {
    if (m_fMouseOver == over) return;
    m_fMouseOver = over;
    redraw();
    if (!over) return;
    // Version 6 of the common controls asks for the tooltip text too; version 5 does not.
    TRACKMOUSEEVENT leaving{sizeof(TRACKMOUSEEVENT), TME_LEAVE, this->m_hWnd, 0};
    ::TrackMouseEvent(&leaving);
  }

  void show_tooltip_text() {
    m_tip.Activate(TRUE);
    CToolInfo tool(0, this->m_hWnd, 0, nullptr, m_lpstrToolTipText);
    m_tip.AddTool(tool);
  }
};

// The bitmap button, as a class to use directly.
class CBitmapButton : public CBitmapButtonImpl<CBitmapButton> {
 public:
  DECLARE_WND_SUPERCLASS("WTL_BitmapButton", GetWndClassName())

  explicit CBitmapButton(DWORD extendedStyle = BMPBTN_AUTOSIZE, HIMAGELIST images = nullptr)
      : CBitmapButtonImpl(extendedStyle, images) {}
};

}  // namespace WTL

#ifndef _WTL_NO_AUTOMATIC_NAMESPACE
using namespace WTL;
#endif

#endif
