// WTL's controls: a window handle with the messages of a control as methods.
//
// Each method is the message of that name (GetCheck is BM_GETCHECK); a comment documents what else it does. The objects
// own nothing, except image lists with t_bManaged.
//
//     CListViewCtrl list = GetDlgItem(IDC_LIST);
//     list.InsertColumn(0, "Name", LVCFMT_LEFT, 100, 0);
#ifndef FRAMEWORK_ATLCTRLS_H
#define FRAMEWORK_ATLCTRLS_H

#ifndef FRAMEWORK_ATLAPP_H
#error "atlctrls.h requires atlapp.h to be included first"
#endif
#ifndef FRAMEWORK_ATLWIN_H
#error "atlctrls.h requires atlwin.h to be included first"
#endif

#include <atlgdi.h>

namespace WTL {

// The common part of the wrappers: the handle, and creation of a window of the control's class.
#define KEXFRAMEWORK_CONTROL(theClass, windowClass)                                                                \
 public:                                                                                                           \
  theClass(HWND window = nullptr) noexcept : TBase(window) {}                                                      \
  theClass& operator=(HWND window) noexcept {                                                                      \
    this->m_hWnd = window;                                                                                         \
    return *this;                                                                                                  \
  }                                                                                                                \
  static LPCTSTR GetWndClassName() noexcept { return windowClass; }                                                \
  HWND Create(HWND parent, ATL::_U_RECT rect = nullptr, LPCTSTR name = nullptr, DWORD style = 0,                   \
              DWORD extendedStyle = 0, ATL::_U_MENUorID menuOrId = 0U, LPVOID parameter = nullptr) noexcept {      \
    return ATL::CWindow::Create(GetWndClassName(), parent, rect, name, style, extendedStyle, menuOrId, parameter); \
  }                                                                                                                \
                                                                                                                   \
 private:                                                                                                          \
  /* A message whose result is a number, and one whose parameter is a text or a structure. */                      \
  int number(UINT message, WPARAM wParam = 0, LPARAM lParam = 0) const noexcept {                                  \
    return static_cast<int>(this->SendMessage(message, wParam, lParam));                                           \
  }                                                                                                                \
  int number(UINT message, WPARAM wParam, const void* parameter) const noexcept {                                  \
    return number(message, wParam, reinterpret_cast<LPARAM>(parameter));                                           \
  }

// A push button, check box or radio button.
template <class TBase>
class CButtonT : public TBase {
  KEXFRAMEWORK_CONTROL(CButtonT, WC_BUTTON)

 public:
  // BST_UNCHECKED, BST_CHECKED or BST_INDETERMINATE.
  int GetCheck() const noexcept { return number(BM_GETCHECK); }
  void SetCheck(int check) noexcept { number(BM_SETCHECK, static_cast<WPARAM>(check)); }
  // BST_PUSHED, BST_FOCUS and the check state.
  UINT GetState() const noexcept { return static_cast<UINT>(number(BM_GETSTATE)); }
  // Shows the button pressed or released.
};
using CButton = CButtonT<ATL::CWindow>;

// An edit control.
template <class TBase>
class CEditT : public TBase {
  KEXFRAMEWORK_CONTROL(CEditT, WC_EDIT)

 public:
  // Copies a line and returns its length: up to `room` characters, without a terminator.
  int GetLine(int line, LPTSTR text, int room) const noexcept {
    auto size = static_cast<WORD>(room);
    std::memcpy(text, &size, sizeof size);  // the message takes the size from the start of the buffer
    return number(EM_GETLINE, static_cast<WPARAM>(line), text);
  }
};
using CEdit = CEditT<ATL::CWindow>;

// A text or a picture.
template <class TBase>
class CStaticT : public TBase {
  KEXFRAMEWORK_CONTROL(CStaticT, WC_STATIC)

 public:
  // Returns the previous bitmap. A control of version 6 may show a copy of the new one (then GetBitmap differs); the
  // caller deletes both.
  HBITMAP SetBitmap(HBITMAP bitmap) noexcept {
    return reinterpret_cast<HBITMAP>(this->SendMessage(STM_SETIMAGE, IMAGE_BITMAP, reinterpret_cast<LPARAM>(bitmap)));
  }
  HBITMAP GetBitmap() const noexcept {
    return reinterpret_cast<HBITMAP>(this->SendMessage(STM_GETIMAGE, IMAGE_BITMAP));
  }
};
using CStatic = CStaticT<ATL::CWindow>;

// A combo box. Items are counted from 0; CB_ERR (-1) if there is none.
template <class TBase>
class CComboBoxT : public TBase {
  KEXFRAMEWORK_CONTROL(CComboBoxT, WC_COMBOBOX)

 public:
  int GetCount() const noexcept { return number(CB_GETCOUNT); }
  int AddString(LPCTSTR text) noexcept { return number(CB_ADDSTRING, 0, text); }
  void ResetContent() noexcept { number(CB_RESETCONTENT); }
  // Returns the length of the text. The buffer must hold it and the terminator (GetLBTextLen).
  int GetLBText(int item, LPTSTR text) const noexcept { return number(CB_GETLBTEXT, static_cast<WPARAM>(item), text); }
  int GetLBTextLen(int item) const noexcept { return number(CB_GETLBTEXTLEN, static_cast<WPARAM>(item)); }
  int GetCurSel() const noexcept { return number(CB_GETCURSEL); }
  int SetCurSel(int item) noexcept { return number(CB_SETCURSEL, static_cast<WPARAM>(item)); }
  // In pixels. Item -1 is the selection field.
  int GetItemHeight(int item) const noexcept { return number(CB_GETITEMHEIGHT, static_cast<WPARAM>(item)); }
  int GetDroppedWidth() const noexcept { return number(CB_GETDROPPEDWIDTH); }
  // The list is never narrower than the control.
  int SetDroppedWidth(UINT width) noexcept { return number(CB_SETDROPPEDWIDTH, width); }
};
using CComboBox = CComboBoxT<ATL::CWindow>;

// A list of items with columns.
template <class TBase>
class CListViewCtrlT : public TBase {
  KEXFRAMEWORK_CONTROL(CListViewCtrlT, WC_LISTVIEW)

 public:
  int GetItemCount() const noexcept { return number(LVM_GETITEMCOUNT); }
  // Returns the next item (-1: the first one) with all of these LVNI_ flags, or -1.
  int GetNextItem(int item, int flags) const noexcept {
    return number(LVM_GETNEXTITEM, static_cast<WPARAM>(item), MAKELPARAM(flags, 0));
  }

  BOOL GetColumn(int column, LVCOLUMN* description) const noexcept {
    return number(LVM_GETCOLUMN, static_cast<WPARAM>(column), description);
  }
  BOOL SetColumn(int column, const LVCOLUMN* description) noexcept {
    return number(LVM_SETCOLUMN, static_cast<WPARAM>(column), description);
  }
  // Returns the index, or -1. A negative width or subitem leaves the choice to the control.
  int InsertColumn(int column, LPCTSTR heading, int format = LVCFMT_LEFT, int width = -1, int subitem = -1) noexcept {
    LVCOLUMN description{};
    description.mask = LVCF_TEXT | LVCF_FMT;
    description.fmt = format;
    description.pszText = const_cast<LPTSTR>(heading);
    if (width >= 0) description.mask |= LVCF_WIDTH, description.cx = width;
    if (subitem >= 0) description.mask |= LVCF_SUBITEM, description.iSubItem = subitem;
    return number(LVM_INSERTCOLUMN, static_cast<WPARAM>(column), &description);
  }

  // Returns the index, or -1.
  int InsertItem(int item, LPCTSTR text) noexcept {
    LVITEM description{};
    description.mask = LVIF_TEXT;
    description.iItem = item;
    description.pszText = const_cast<LPTSTR>(text);
    return number(LVM_INSERTITEM, 0, &description);
  }
  BOOL DeleteAllItems() noexcept { return number(LVM_DELETEALLITEMS); }
  BOOL SetItemText(int item, int subitem, LPCTSTR text) noexcept {
    LVITEM description{};
    description.iSubItem = subitem;
    description.pszText = const_cast<LPTSTR>(text);
    return number(LVM_SETITEMTEXT, static_cast<WPARAM>(item), &description);
  }
  // Copies what fits into the buffer and returns its length.
  int GetItemText(int item, int subitem, LPTSTR text, int room) const noexcept {
    LVITEM description{};
    description.iSubItem = subitem;
    description.pszText = text;
    description.cchTextMax = room;
    return number(LVM_GETITEMTEXT, static_cast<WPARAM>(item), &description);
  }
  // The LVIS_ bits of the mask. Item -1 is all items.
  BOOL SetItemState(int item, UINT state, UINT mask) noexcept {
    LVITEM description{};
    description.state = state;
    description.stateMask = mask;
    return number(LVM_SETITEMSTATE, static_cast<WPARAM>(item), &description);
  }
};
using CListViewCtrl = CListViewCtrlT<ATL::CWindow>;

// A tree of items.
template <class TBase>
class CTreeViewCtrlT : public TBase {
  KEXFRAMEWORK_CONTROL(CTreeViewCtrlT, WC_TREEVIEW)

 public:
  // Inserts below a parent (TVI_ROOT), after a sibling (or TVI_FIRST, TVI_LAST, TVI_SORT). Returns null on failure.
  HTREEITEM InsertItem(LPCTSTR text, HTREEITEM parent, HTREEITEM after) noexcept {
    TVINSERTSTRUCT description{};
    description.hParent = parent;
    description.hInsertAfter = after;
    description.item.mask = TVIF_TEXT;
    description.item.pszText = const_cast<LPTSTR>(text);
    return reinterpret_cast<HTREEITEM>(this->SendMessage(TVM_INSERTITEM, 0, reinterpret_cast<LPARAM>(&description)));
  }
  BOOL DeleteItem(HTREEITEM item) noexcept { return number(TVM_DELETEITEM, 0, item); }
  // Truncated to the size of the buffer.
  BOOL GetItemText(HTREEITEM item, LPTSTR text, int room) const noexcept {
    TVITEM description{};
    description.mask = TVIF_TEXT;
    description.hItem = item;
    description.pszText = text;
    description.cchTextMax = room;
    return number(TVM_GETITEM, 0, &description);
  }

  // Returns the item in this relation (TVGN_); null if there is none.
  HTREEITEM GetNextItem(HTREEITEM item, UINT relation) const noexcept {
    return reinterpret_cast<HTREEITEM>(this->SendMessage(TVM_GETNEXTITEM, relation, reinterpret_cast<LPARAM>(item)));
  }
  HTREEITEM GetRootItem() const noexcept { return GetNextItem(nullptr, TVGN_ROOT); }
  HTREEITEM GetChildItem(HTREEITEM item) const noexcept { return GetNextItem(item, TVGN_CHILD); }
  HTREEITEM GetNextSiblingItem(HTREEITEM item) const noexcept { return GetNextItem(item, TVGN_NEXT); }
};
using CTreeViewCtrl = CTreeViewCtrlT<ATL::CWindow>;

// A tool of a tooltip control: an area of a window with an identifier, or with identifier 0 a whole window of any size.
class CToolInfo : public TOOLINFO {
 public:
  // A null area is the current client area.
  CToolInfo(UINT flags, HWND window, UINT_PTR id = 0, LPCRECT area = nullptr, LPTSTR text = LPSTR_TEXTCALLBACK,
            LPARAM parameter = 0) noexcept
      : TOOLINFO{} {
    cbSize = sizeof(TOOLINFO);
    uFlags = flags;
    lpszText = text;
    lParam = parameter;
    if (id) {
      hwnd = window;
      uId = id;
      if (area)
        rect = *area;
      else
        ::GetClientRect(window, &rect);
    } else {
      uFlags |= TTF_IDISHWND;
      hwnd = ::GetParent(window);
      uId = reinterpret_cast<UINT_PTR>(window);
    }
  }
  operator LPTOOLINFO() noexcept { return this; }
};

// A tooltip control.
template <class TBase>
class CToolTipCtrlT : public TBase {
  KEXFRAMEWORK_CONTROL(CToolTipCtrlT, TOOLTIPS_CLASS)

 public:
  // Enables or disables tooltips.
  void Activate(BOOL active) noexcept { number(TTM_ACTIVATE, static_cast<WPARAM>(active)); }
  BOOL AddTool(LPTOOLINFO tool) noexcept { return number(TTM_ADDTOOL, 0, tool); }
  void DelTool(LPTOOLINFO tool) noexcept { number(TTM_DELTOOL, 0, tool); }
  int GetToolCount() const noexcept { return number(TTM_GETTOOLCOUNT); }
  void SetDelayTime(DWORD which, int milliseconds) noexcept {
    number(TTM_SETDELAYTIME, which, MAKELPARAM(milliseconds, 0));
  }
  // Passes it a mouse message of a tool's window.
  void RelayEvent(LPMSG message) noexcept { number(TTM_RELAYEVENT, 0, message); }
};
using CToolTipCtrl = CToolTipCtrlT<ATL::CWindow>;

#undef KEXFRAMEWORK_CONTROL

// An image list. With t_bManaged the object owns the list: the destructor and an assignment destroy it. A copy of the
// object refers to the same list.
template <bool t_bManaged>
class CImageListT {
 public:
  CImageListT(HIMAGELIST list = nullptr) noexcept : m_hImageList(list) {}
  CImageListT(const CImageListT&) = default;
  CImageListT& operator=(const CImageListT&) = default;
  ~CImageListT() {
    if (t_bManaged && m_hImageList) Destroy();
  }

  CImageListT& operator=(HIMAGELIST list) noexcept {
    Attach(list);
    return *this;
  }
  operator HIMAGELIST() const noexcept { return m_hImageList; }
  bool IsNull() const noexcept { return !m_hImageList; }

  void Attach(HIMAGELIST list) noexcept {
    if (t_bManaged && m_hImageList != list) Destroy();
    m_hImageList = list;
  }
  HIMAGELIST Detach() noexcept { return std::exchange(m_hImageList, nullptr); }

  // `flags` are ILC_ flags. `initial` is the initial capacity, `grow` by how many images it grows.
  BOOL Create(int width, int height, UINT flags, int initial, int grow) noexcept {
    ATLASSERT(!m_hImageList);
    m_hImageList = ::ImageList_Create(width, height, flags, initial, grow);
    return m_hImageList != nullptr;
  }
  BOOL Destroy() noexcept {
    if (!m_hImageList || !::ImageList_Destroy(m_hImageList)) return FALSE;
    m_hImageList = nullptr;
    return TRUE;
  }

  // Returns the index of the first new image, or -1. The caller keeps the bitmap. With a mask colour the bitmap is
  // modified.
  int Add(HBITMAP bitmap, HBITMAP mask = nullptr) noexcept { return ::ImageList_Add(list(), bitmap, mask); }
  int Add(HBITMAP bitmap, COLORREF mask) noexcept { return ::ImageList_AddMasked(list(), bitmap, mask); }
  int GetImageCount() const noexcept { return ::ImageList_GetImageCount(list()); }
  BOOL GetIconSize(int& width, int& height) const noexcept { return ::ImageList_GetIconSize(list(), &width, &height); }
  BOOL SetOverlayImage(int image, int overlay) noexcept { return ::ImageList_SetOverlayImage(list(), image, overlay); }
  // ILD_ style.
  BOOL Draw(HDC dc, int image, int x, int y, UINT style) noexcept {
    return ::ImageList_Draw(list(), image, dc, x, y, style);
  }

  HIMAGELIST m_hImageList;

 private:
  HIMAGELIST list() const noexcept {
    ATLASSERT(m_hImageList);
    return m_hImageList;
  }
};
using CImageList = CImageListT<false>;

}  // namespace WTL

#ifndef _WTL_NO_AUTOMATIC_NAMESPACE
using namespace WTL;
#endif

#endif
