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

#include <atlstr.h>
#include <atlgdi.h>

#include <utility>

namespace WTL {

// Extended styles of a bitmap button.
enum {
  BMPBTN_HOVER = 0x01,            // highlighted while the mouse is over it, instead of while it has the focus
  BMPBTN_AUTO3D_SINGLE = 0x02,    // edge one pixel wide
  BMPBTN_AUTO3D_DOUBLE = 0x04,    // edge two pixels wide
  BMPBTN_AUTOSIZE = 0x08,         // has the size of its images
  BMPBTN_SHAREIMAGELISTS = 0x10,  // does not own the image list
  BMPBTN_CHECK = 0x40,            // looks pressed while it is checked
};

// A button T, derived from this class. Members of T with the names below replace them.
//
// The system's button handles mouse and keyboard and notifies the parent (BN_CLICKED); this class paints it.
template <class T, class TBase = CButton, class TWinTraits = ATL::CControlWinTraits>
class CBitmapButtonImpl : public ATL::CWindowImpl<T, TBase, TWinTraits> {
  using Window = ATL::CWindowImpl<T, TBase, TWinTraits>;

 public:
  using Window::StartWindowProc;
  DECLARE_WND_SUPERCLASS(nullptr, TBase::GetWndClassName())

  enum { _nImageNormal, _nImagePushed, _nImageFocusOrHover, _nImageDisabled, _nImageCount };

  explicit CBitmapButtonImpl(DWORD extendedStyle = BMPBTN_AUTOSIZE, HIMAGELIST images = nullptr)
      : m_dwExtendedStyle(extendedStyle), m_ImageList(images) {}
  CBitmapButtonImpl(const CBitmapButtonImpl&) = default;
  CBitmapButtonImpl& operator=(const CBitmapButtonImpl&) = default;
  ~CBitmapButtonImpl() override {
    if (!(m_dwExtendedStyle & BMPBTN_SHAREIMAGELISTS)) m_ImageList.Destroy();
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
  // Returns the previous list, which the caller then owns.
  HIMAGELIST SetImageList(HIMAGELIST images) {
    HIMAGELIST before = std::exchange(m_ImageList.m_hImageList, images);
    if (images && takes_size_of_images()) SizeToImage();
    return before;
  }
  // The images of the states; -1 keeps the one of that state. A state without an image shows the normal one.
  void SetImages(int normal, int pushed = -1, int focusOrHover = -1, int disabled = -1) {
    const int images[_nImageCount] = {normal, pushed, focusOrHover, disabled};
    for (int i = 0; i < _nImageCount; ++i)
      if (images[i] != -1) m_nImage[i] = images[i];
  }

  // Null or empty: no tooltip.
  void SetToolTipText(LPCTSTR text) {
    m_strToolTipText = text;
    if (m_tip.IsWindow()) show_tooltip_text();
  }

  // The check state, for BMPBTN_CHECK.
  bool GetCheck() const { return m_fChecked; }
  void SetCheck(bool check, bool update = true) {
    m_fChecked = check;
    if (update && this->IsWindow()) redraw();
  }

  // Resizes the button to its images.
  void SizeToImage() {
    int width = 0, height = 0;
    if (!m_ImageList.GetIconSize(width, height)) return;
    RECT window, client;
    this->GetWindowRect(&window);
    this->GetClientRect(&client);
    this->SetWindowPos(nullptr, 0, 0, width + (window.right - window.left) - client.right,
                       height + (window.bottom - window.top) - client.bottom,
                       SWP_NOMOVE | SWP_NOZORDER | SWP_NOACTIVATE);
  }

  bool IsHoverMode() const { return (m_dwExtendedStyle & BMPBTN_HOVER) != 0; }

  // Paints the button. T may replace it.
  void DoPaint(CDCHandle dc) {
    bool pressed = m_fPressed || ((m_dwExtendedStyle & BMPBTN_CHECK) && m_fChecked);
    bool edge = (m_dwExtendedStyle & (BMPBTN_AUTO3D_SINGLE | BMPBTN_AUTO3D_DOUBLE)) != 0;
    bool highlighted = IsHoverMode() ? m_fMouseOver : m_fFocus;

    int state = pressed                    ? _nImagePushed
                : highlighted              ? _nImageFocusOrHover
                : !this->IsWindowEnabled() ? _nImageDisabled
                                           : _nImageNormal;
    int image = m_nImage[state] == -1 ? m_nImage[_nImageNormal] : m_nImage[state];
    // Without its own image, a pressed button with an edge moves the normal one.
    int shift = pressed && edge && m_nImage[_nImagePushed] == -1 ? 1 : 0;
    if (image != -1) m_ImageList.Draw(dc, image, shift, shift, ILD_NORMAL);

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
    if (!m_strToolTipText.IsEmpty()) show_tooltip_text();
    if (!m_ImageList.IsNull() && takes_size_of_images()) SizeToImage();
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
    MESSAGE_HANDLER(WM_MOUSEMOVE, OnMouseMove)
    MESSAGE_HANDLER(WM_MOUSELEAVE, OnMouseLeave)
    MESSAGE_HANDLER(WM_LBUTTONDBLCLK, OnLButtonDblClk)
    MESSAGE_HANDLER(WM_KEYDOWN, OnKey)
    MESSAGE_HANDLER(WM_KEYUP, OnKey)
    MESSAGE_HANDLER(BM_SETSTATE, OnSetState)
  END_MSG_MAP()

  LRESULT OnCreate(UINT uMsg, WPARAM wParam, LPARAM lParam, BOOL&) {
    LRESULT result = this->DefWindowProc(uMsg, wParam, lParam);
    if (result != -1) self().Init();
    return result;
  }

  LRESULT OnDestroy(UINT, WPARAM, LPARAM, BOOL& bHandled) {
    if (!m_tip.DestroyWindow()) m_tip.m_hWnd = nullptr;  // the system destroys it with its owner
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

  LRESULT OnMouseMove(UINT, WPARAM, LPARAM lParam, BOOL& bHandled) {
    RECT rect;
    this->GetClientRect(&rect);
    // Mouse messages arrive from outside the button while it has the capture.
    if (IsHoverMode()) set_mouse_over(::PtInRect(&rect, place(lParam)));
    bHandled = FALSE;
    return 0;
  }

  LRESULT OnMouseLeave(UINT, WPARAM, LPARAM, BOOL& bHandled) {
    set_mouse_over(false);
    bHandled = FALSE;
    return 0;
  }

  // The system treats the second of two quick clicks on an owner-drawn button as a double click. By design it is a
  // click here: callers expect one notification for each click.
  LRESULT OnLButtonDblClk(UINT, WPARAM wParam, LPARAM lParam, BOOL&) {
    return this->DefWindowProc(WM_LBUTTONDOWN, wParam, lParam);
  }

  // By design the space bar does not press a button in hover mode, as in a toolbar.
  LRESULT OnKey(UINT, WPARAM wParam, LPARAM, BOOL& bHandled) {
    bHandled = wParam == VK_SPACE && IsHoverMode();
    return 0;
  }

  // The system's button sends it whenever mouse, keyboard or capture press or release it.
  LRESULT OnSetState(UINT uMsg, WPARAM wParam, LPARAM lParam, BOOL&) {
    LRESULT result = this->DefWindowProc(uMsg, wParam, lParam);
    if (m_fPressed != (wParam != 0)) {
      m_fPressed = wParam != 0;
      redraw();
    }
    return result;
  }

  DWORD m_dwExtendedStyle;
  CImageList m_ImageList;
  int m_nImage[_nImageCount] = {-1, -1, -1, -1};
  CToolTipCtrl m_tip;
  CString m_strToolTipText;

  // The values are bits, 0 or 1.
  unsigned m_fMouseOver : 1 = 0;
  unsigned m_fFocus : 1 = 0;
  unsigned m_fPressed : 1 = 0;
  unsigned m_fChecked : 1 = 0;

 private:
  T& self() { return static_cast<T&>(*this); }

  // Signed: a position may be left of or above the origin.
  template <typename Packed>
  static POINT place(Packed packed) {
    return {static_cast<short>(LOWORD(packed)), static_cast<short>(HIWORD(packed))};
  }

  bool takes_size_of_images() const { return (m_dwExtendedStyle & BMPBTN_AUTOSIZE) && this->IsWindow(); }

  // Immediately: the handler of the click may take long.
  void redraw() {
    this->Invalidate(FALSE);
    this->UpdateWindow();
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
    CToolInfo tool(0, this->m_hWnd, 0, nullptr, const_cast<LPTSTR>(m_strToolTipText.GetString()));
    if (m_tip.GetToolCount())
      m_tip.UpdateTipText(tool);
    else
      m_tip.AddTool(tool);
    m_tip.Activate(!m_strToolTipText.IsEmpty());
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
