#include <kexlib/controls/bitmap_button.h>
#include <kexlib/imaging/dib.h>

#include <controls/subclass_instead.h>
#include <wbzframe/themed_std_button.h>

#include <algorithm>
#include <iterator>
#include <utility>
#include <vector>

namespace {

constexpr int no_image = -1;

// Sets a flag until the end of a scope.
class Running {
 public:
  explicit Running(BOOL& running) : running_(running) { running_ = TRUE; }
  Running(const Running&) = delete;
  Running& operator=(const Running&) = delete;
  ~Running() { running_ = FALSE; }

 private:
  BOOL& running_;
};

void add_to(HIMAGELIST images, kexWTLDIB& picture) {
  const HBITMAP bitmap = picture.detach_bitmap();
  ImageList_Add(images, bitmap, nullptr);
  DeleteObject(bitmap);
}

// BeginPaint may not have been called: without the validation the system would send WM_PAINT again and again.
void painting_failed(HWND button) {
  OutputDebugStringA("kexWTLBitmapButton: an exception has ended painting\n");
  if (IsWindow(button)) ValidateRect(button, nullptr);  // with a null handle, all windows would be redrawn
}

// SetImageList would size the button by a list that is not there.
void set_images(WTL::CBitmapButton& button, HIMAGELIST images) {
  if (images)
    button.SetImageList(images);
  else
    button.m_ImageList.m_hImageList = nullptr;
}

// WTL adds each text to the tooltip anew, which would go on showing the first one.
void set_tooltip(WTL::CBitmapButton& button, const char* text) {
  if (button.m_tip.IsWindow()) button.m_tip.DelTool(WTL::CToolInfo(0, button));
  if (!button.SetToolTipText(text)) AtlThrow(E_OUTOFMEMORY);
}

// WTL does not look at BM_SETSTATE. A program that shows a button pressed sees it pressed, as the system's own buttons.
void show_pressed(WTL::CBitmapButton& button, bool pressed) {
  if (button.m_fPressed == pressed) return;
  button.m_fPressed = pressed;
  button.Invalidate(FALSE);
  button.UpdateWindow();
}

// WTL notifies the parent while the button still has the mouse: a dialog that opens on the click would get no clicks.
void end_press(WTL::CBitmapButton& button) {
  const HWND window = button;
  if (GetCapture() != window) return;
  const bool is_clicked = button.m_fPressed;
  if (is_clicked && (button.m_dwExtendedStyle & BMPBTN_AUTOCHECK)) button.SetCheck(!button.GetCheck(), false);
  ReleaseCapture();
  if (is_clicked)
    SendMessageA(GetParent(window), WM_COMMAND, MAKEWPARAM(static_cast<WORD>(GetDlgCtrlID(window)), BN_CLICKED),
                 reinterpret_cast<LPARAM>(window));
}

void copy_look(WTL::CBitmapButton& button, const WTL::CBitmapButton& other) {
  button.m_dwExtendedStyle = other.m_dwExtendedStyle | BMPBTN_SHAREIMAGELISTS;
  set_images(button, other.GetImageList());
  std::copy(std::begin(other.m_nImage), std::end(other.m_nImage), button.m_nImage);
  button.SetCheck(other.GetCheck(), false);
  std::vector<char> tooltip(static_cast<size_t>(std::max(other.GetToolTipTextLength(), 0)) + 1);
  const bool has_tooltip = other.GetToolTipText(tooltip.data(), static_cast<int>(tooltip.size()));
  set_tooltip(button, has_tooltip ? tooltip.data() : nullptr);
}

void share_window(WTL::CBitmapButton& button, const WTL::CBitmapButton& other) {
  button.m_hWnd = other.m_hWnd;
  button.m_tip.m_hWnd = other.m_tip.m_hWnd;
  button.m_fMouseOver = other.m_fMouseOver;
  button.m_fFocus = other.m_fFocus;
  button.m_fPressed = other.m_fPressed;
}

}  // namespace

kexWTLBitmapButton::kexWTLBitmapButton(kexWTLButtonType type) : type_(type) {
  if (type_ != kexBtnTypePlain) themer_ = wbzThemer::create(wbzThemedStdButton::create(&m_hWnd), nullptr);
  SetBitmapButtonExtendedStyle(BMPBTN_HOVER | BMPBTN_AUTO3D_SINGLE | BMPBTN_SHAREIMAGELISTS,
                               BMPBTN_HOVER | BMPBTN_AUTO3D_SINGLE | BMPBTN_SHAREIMAGELISTS | BMPBTN_AUTOSIZE);
}

// The base is not copied: WTL's copies its window procedure and its tooltip text, and both objects would free them.
kexWTLBitmapButton::kexWTLBitmapButton(const kexWTLBitmapButton& other)
    : CBitmapButton(BMPBTN_SHAREIMAGELISTS), type_(other.type_) {
  *this = other;
}

kexWTLBitmapButton& kexWTLBitmapButton::operator=(const kexWTLBitmapButton& other) {
  if (this == &other) return *this;
  type_ = other.type_;
  themer_ = other.themer_;
  if (!(m_dwExtendedStyle & BMPBTN_SHAREIMAGELISTS) && m_ImageList != other.m_ImageList) m_ImageList.Destroy();
  const bool keeps_window = kexlib::is_subclassed<CWindowImpl>(*this);
  if (!keeps_window) m_hWnd = m_tip.m_hWnd = nullptr;
  copy_look(*this, other);
  if (keeps_window)
    Invalidate(FALSE);
  else
    share_window(*this, other);
  return *this;
}

kexWTLBitmapButton::~kexWTLBitmapButton() = default;

BOOL kexWTLBitmapButton::ProcessWindowMessage(HWND window, UINT message, WPARAM wParam, LPARAM lParam, LRESULT& result,
                                              DWORD map) {
  if (map != 0) return FALSE;
  if (message == BM_SETSTATE) {
    result = DefWindowProc(message, wParam, lParam);
    show_pressed(*this, wParam != 0);
    return TRUE;
  }
  if (message == WM_LBUTTONUP && (IsHoverMode() || IsCheckMode())) {
    end_press(*this);
    result = 0;
    return TRUE;
  }
  if (message != WM_PAINT && message != WM_PRINTCLIENT)
    return CBitmapButton::ProcessWindowMessage(window, message, wParam, lParam, result, map);
  result = 0;
  try {
    BOOL handled = TRUE;
    result = OnPaint(message, wParam, lParam, handled);
  } catch (CException* exception) {
    exception->Delete();
    painting_failed(m_hWnd);
  } catch (...) {
    painting_failed(m_hWnd);
  }
  return TRUE;
}

// WTL's own takes no second window: the procedure of the first would serve both, and its tooltip would be lost.
BOOL kexWTLBitmapButton::SubclassWindow(HWND button) {
  if (!kexlib::subclass_instead<CWindowImpl>(*this, button)) return FALSE;
  if (m_tip.IsWindow()) m_tip.DestroyWindow();
  m_tip.m_hWnd = nullptr;
  m_fMouseOver = m_fFocus = m_fPressed = 0;
  Init();
  return TRUE;
}

int kexWTLBitmapButton::AddImage(WTL::CImageListT<false>* images, int bitmap_id, HINSTANCE instance) {
  const HIMAGELIST list = images ? images->m_hImageList : nullptr;
  const COLORREF face = GetSysColor(COLOR_BTNFACE);
  kexWTLDIB picture;
  picture.load_bitmap_transparent(static_cast<UINT>(bitmap_id), instance, face);
  add_to(list, picture);
  const int index = ImageList_GetImageCount(list) - 1;

  picture.load_bitmap_transparent(static_cast<UINT>(bitmap_id), instance, face);
  if (type_ == kexBtnTypeThemed) picture.insensitive(face);
  add_to(list, picture);
  return index;
}

void kexWTLBitmapButton::SetInfo(HWND button, WTL::CImageListT<false>* images, int bitmap_id, const char* tooltip,
                                 HINSTANCE instance) {
  const int image = AddImage(images, bitmap_id, instance);
  if (button != m_hWnd || !kexlib::is_subclassed<CWindowImpl>(*this)) SubclassWindow(button);
  set_images(*this, images ? images->m_hImageList : nullptr);
  SetImages(image, image, no_image, image + 1);
  set_tooltip(*this, tooltip);
}

// Kept for compatibility: callers see the pushed image of SetInfo.
void kexWTLBitmapButton::SetImage(int index) {
  if (m_nImage[_nImageNormal] == index && m_nImage[_nImageDisabled] == index + 1) return;
  SetImages(index, no_image, no_image, index + 1);
  if (IsWindow()) Invalidate(FALSE);  // a null handle would invalidate all windows of the screen
}

void kexWTLBitmapButton::set_themer(std::shared_ptr<wbzThemer> themer) { themer_ = std::move(themer); }

// WM_PRINTCLIENT is painted with BeginPaint as well: kept for compatibility, callers see it on the screen only.
LRESULT kexWTLBitmapButton::OnPaint(UINT, WPARAM, LPARAM, BOOL&) {
  if (painting_) return 0;
  const Running painting(painting_);
  // The parent and the drawer may call set_themer: one themer serves the whole painting, and lives as long.
  const std::shared_ptr<wbzThemer> themer = themer_;
  const bool themed = type_ != kexBtnTypePlain && wbzThemer::can_draw(themer);
  repaint_behind();
  if (!IsWindow()) return 0;  // the parent has destroyed it
  paint(WTL::CDCHandle(WTL::CPaintDC(m_hWnd).m_hDC), themed, themer.get());
  return 0;
}

void kexWTLBitmapButton::repaint_behind() {
  ATL::CWindow parent = GetParent();
  if (!parent.m_hWnd) return;
  RECT rect;
  GetWindowRect(&rect);
  parent.ScreenToClient(&rect);
  parent.InvalidateRect(&rect);
  parent.UpdateWindow();
}

// By value, as in WTL's buttons.
// NOLINTNEXTLINE(performance-unnecessary-value-param)
void kexWTLBitmapButton::DoPaint(WTL::CDCT<false> dc, bool themed) {
  if (!IsWindow()) return;
  const std::shared_ptr<wbzThemer> themer = themer_;
  paint(dc, themed, themer.get());
}

void kexWTLBitmapButton::paint(const WTL::CDCT<false>& dc, bool themed, const wbzThemer* themer) {
  const bool has_edge = (m_dwExtendedStyle & (BMPBTN_AUTO3D_SINGLE | BMPBTN_AUTO3D_DOUBLE)) != 0;
  const bool highlighted = IsHoverMode() ? m_fMouseOver : m_fFocus;

  // Kept for compatibility: a button that is disabled while it is pressed or under the mouse keeps looking so.
  wbzThemeStyle style = wbzThemeHot;
  int image = m_nImage[_nImageFocusOrHover];
  if (m_fPressed) {
    style = wbzThemePressed;
    image = m_nImage[_nImagePushed];
  } else if (!highlighted && IsWindowEnabled()) {
    style = m_dwExtendedStyle & BMPBTN_CHECK ? wbzThemePressed : wbzThemeNormal;
    image = m_nImage[_nImageNormal];
  } else if (!highlighted) {
    style = wbzThemeDisabled;
    image = m_nImage[_nImageDisabled];
  }
  if (image == no_image) image = m_nImage[_nImageNormal];

  WTL::CRect client;
  GetClientRect(client);
  if (themed && themer) themer->draw_theme(dc, client, style);

  if (!m_ImageList.IsNull()) {
    int width = 0, height = 0;
    m_ImageList.GetIconSize(width, height);
    const int shift = m_fPressed && has_edge && m_nImage[_nImagePushed] == no_image ? 1 : 0;
    m_ImageList.Draw(dc, image, (client.Width() - width) / 2 + shift, (client.Height() - height) / 2 + shift,
                     ILD_NORMAL);
  }

  if (!themed && has_edge) draw_edge(dc, client);
}

void kexWTLBitmapButton::draw_edge(WTL::CDCT<false> dc, RECT rect) {
  const bool single = (m_dwExtendedStyle & BMPBTN_AUTO3D_SINGLE) != 0;
  if (m_fPressed || m_dwExtendedStyle & BMPBTN_CHECK)
    dc.DrawEdge(&rect, single ? BDR_SUNKENOUTER : EDGE_SUNKEN, BF_RECT);
  else if (!IsHoverMode() || m_fMouseOver)
    dc.DrawEdge(&rect, single ? BDR_RAISEDINNER : EDGE_RAISED, BF_RECT);

  if (IsHoverMode() || !m_fFocus) return;
  InflateRect(&rect, -2 * GetSystemMetrics(SM_CXEDGE), -2 * GetSystemMetrics(SM_CYEDGE));
  dc.DrawFocusRect(&rect);
}
