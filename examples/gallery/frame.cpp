#include <kexlib/diagnostics.h>
#include <kexlib/text.h>
#include <kexlib/windowtools.h>

#include <gallery/frame.h>
#include <gallery/texts.h>

#include <algorithm>
#include <string>

namespace gallery {

namespace {

constexpr int tree_width = 210;
constexpr char view_name[] = "view";

}  // namespace

// ---- the window of a page -------------------------------------------------------------------------------------------

bool PageFrame::open(HWND client) {
  RECT place{0, 0, 700, 520};
  if (!Create(client, place, entry_.title, WS_CHILD | WS_VISIBLE | WS_OVERLAPPEDWINDOW | WS_CLIPCHILDREN,
              WS_EX_MDICHILD))
    return false;
  page_ = entry_.make();
  if (!page_->open(m_hWnd, entry_.title, entry_.words)) return false;
  // The views of all pages have the same name. The table returns the view in the active child window.
  kexHWNDTable::singleton().reg_window(page_->m_hWnd, view_name, 0);
  return true;
}

LRESULT PageFrame::OnSize(UINT, WPARAM, LPARAM size, BOOL& handled) {
  handled = FALSE;  // the MDI window processes WM_SIZE as well
  if (page_ && page_->m_hWnd) page_->SetWindowPos(nullptr, 0, 0, LOWORD(size), HIWORD(size), SWP_NOZORDER);
  return 0;
}

LRESULT PageFrame::OnSetFocus(UINT, WPARAM, LPARAM, BOOL&) {
  if (page_ && page_->m_hWnd) ::SetFocus(::GetNextDlgTabItem(page_->m_hWnd, nullptr, FALSE));
  return 0;
}

// ---- the main window ------------------------------------------------------------------------------------------------

bool Frame::open(HINSTANCE texts) {
  texts_ = texts;
  RECT place{0, 0, 1000, 720};
  return Create(nullptr, place, caption("{1}kexlib gallery"), WS_OVERLAPPEDWINDOW | WS_CLIPCHILDREN | WS_VISIBLE) !=
         nullptr;
}

// Captions are references to texts of the module, with the text to show if the module has none.
CString Frame::caption(const char* text) const {
  ATL::CComBSTR result;
  kexLocalizeString(texts_, IDS_BASE, ATL::CComVariant(text), &result);
  return CString(result);
}

LRESULT Frame::OnCreate(UINT, WPARAM, LPARAM, BOOL&) {
  const HINSTANCE module = ATL::_AtlBaseModule.GetModuleInstance();
  make_menu();
  tree_ = ::CreateWindowEx(
      WS_EX_CLIENTEDGE, WC_TREEVIEW, "",
      WS_CHILD | WS_VISIBLE | WS_TABSTOP | TVS_HASBUTTONS | TVS_HASLINES | TVS_LINESATROOT | TVS_SHOWSELALWAYS, 0, 0, 0,
      0, m_hWnd, reinterpret_cast<HMENU>(id_tree), module, nullptr);
  status_ = ::CreateWindowEx(0, STATUSCLASSNAME, "", WS_CHILD | WS_VISIBLE | SBARS_SIZEGRIP, 0, 0, 0, 0, m_hWnd,
                             reinterpret_cast<HMENU>(id_status), module, nullptr);
  CLIENTCREATESTRUCT creation{window_menu_, first_page_frame};
  client_ = ::CreateWindowEx(WS_EX_CLIENTEDGE, "MDICLIENT", "", WS_CHILD | WS_VISIBLE | WS_CLIPCHILDREN, 0, 0, 0, 0,
                             m_hWnd, reinterpret_cast<HMENU>(id_client), module, &creation);
  if (!tree_.m_hWnd || !status_ || !client_) return -1;
  fill_tree();
  return 0;
}

void Frame::make_menu() {
  const HMENU gallery = ::CreatePopupMenu(), record = ::CreatePopupMenu();
  window_menu_ = ::CreatePopupMenu();
  ::AppendMenu(gallery, MF_STRING, id_exit, caption("{10}E&xit"));
  ::AppendMenu(record, MF_STRING, id_profile, caption("{11}&Profile"));
  ::AppendMenu(record, MF_STRING, id_trace, caption("{12}&Trace to a file"));
  ::AppendMenu(window_menu_, MF_STRING, id_cascade, caption("{13}&Cascade"));
  ::AppendMenu(window_menu_, MF_STRING, id_tile, caption("{14}&Tile"));
  ::AppendMenu(window_menu_, MF_STRING, id_close, caption("{15}C&lose"));
  const HMENU bar = ::CreateMenu();
  ::AppendMenu(bar, MF_POPUP, reinterpret_cast<UINT_PTR>(gallery), caption("{16}&Gallery"));
  ::AppendMenu(bar, MF_POPUP, reinterpret_cast<UINT_PTR>(record), caption("{17}&Record"));
  ::AppendMenu(bar, MF_POPUP, reinterpret_cast<UINT_PTR>(window_menu_), caption("{18}&Window"));
  ::SetMenu(m_hWnd, bar);
}

void Frame::fill_tree() {
  const auto insert = [this](const char* text, HTREEITEM parent, const PageEntry* entry) {
    TVINSERTSTRUCT item{};
    item.hParent = parent;
    item.hInsertAfter = TVI_LAST;
    item.item.mask = TVIF_TEXT | TVIF_PARAM;
    item.item.pszText = const_cast<char*>(text);
    item.item.lParam = reinterpret_cast<LPARAM>(entry);
    return reinterpret_cast<HTREEITEM>(tree_.SendMessage(TVM_INSERTITEM, 0, reinterpret_cast<LPARAM>(&item)));
  };
  HTREEITEM family = nullptr;
  std::string name;
  for (const PageEntry& entry : pages()) {
    if (name != entry.family) {
      name = entry.family;
      family = insert(caption(entry.family), TVI_ROOT, nullptr);
    }
    insert(entry.title, family, &entry);
    tree_.SendMessage(TVM_EXPAND, TVE_EXPAND, reinterpret_cast<LPARAM>(family));
  }
}

LRESULT Frame::OnSize(UINT, WPARAM, LPARAM size, BOOL&) {
  if (!client_) return 0;
  status_.SendMessage(WM_SIZE);
  RECT status;
  status_.GetWindowRect(&status);
  const int height = HIWORD(size) - (status.bottom - status.top), width = LOWORD(size);
  tree_.SetWindowPos(nullptr, 0, 0, tree_width, height, SWP_NOZORDER);
  ::SetWindowPos(client_, nullptr, tree_width, 0, std::max(0, width - tree_width), height, SWP_NOZORDER);
  return 0;  // handled: the default procedure would resize the MDI client to the whole client area
}

LRESULT Frame::OnDestroy(UINT, WPARAM, LPARAM, BOOL&) {
  for (const auto& page : open_pages_)
    if (page->m_hWnd) ::SendMessage(client_, WM_MDIDESTROY, reinterpret_cast<WPARAM>(page->m_hWnd), 0);
  open_pages_.clear();
  ::PostQuitMessage(0);
  return 0;
}

// ---- pages ----------------------------------------------------------------------------------------------------------

PageFrame* Frame::active_page() const {
  const HWND view = kexHWNDTable::singleton().get_handle(view_name);
  const auto found =
      std::find_if(open_pages_.begin(), open_pages_.end(), [view](const auto& page) { return page->page() == view; });
  return view && found != open_pages_.end() ? found->get() : nullptr;
}

LRESULT Frame::OnActivePage(UINT, WPARAM, LPARAM, BOOL&) {
  return reinterpret_cast<LRESULT>(kexHWNDTable::singleton().get_handle(view_name));
}

LRESULT Frame::OnPaintNow(UINT, WPARAM window, LPARAM, BOOL&) {
  return ::RedrawWindow(reinterpret_cast<HWND>(window), nullptr, nullptr, RDW_UPDATENOW | RDW_ALLCHILDREN);
}

LRESULT Frame::OnOpenPage(int, LPNMHDR, BOOL&) {
  TVITEM item{};
  item.mask = TVIF_PARAM;
  item.hItem = reinterpret_cast<HTREEITEM>(tree_.SendMessage(TVM_GETNEXTITEM, TVGN_CARET));
  if (item.hItem && tree_.SendMessage(TVM_GETITEM, 0, reinterpret_cast<LPARAM>(&item)) && item.lParam)
    open_page(*reinterpret_cast<const PageEntry*>(item.lParam));
  return TRUE;
}

// A page that is already open is brought to the front.
void Frame::open_page(const PageEntry& entry) {
  std::erase_if(open_pages_, [](const auto& page) { return !page->m_hWnd; });
  for (const auto& page : open_pages_)
    if (&page->entry() == &entry) {
      ::SendMessage(client_, WM_MDIACTIVATE, reinterpret_cast<WPARAM>(page->m_hWnd), 0);
      return;
    }
  auto page = std::make_unique<PageFrame>(entry);
  if (page->open(client_)) open_pages_.push_back(std::move(page));
}

LRESULT Frame::OnClosePage(WORD, WORD, HWND, BOOL&) {
  if (const PageFrame* page = active_page())
    ::SendMessage(client_, WM_MDIDESTROY, reinterpret_cast<WPARAM>(page->m_hWnd), 0);
  return 0;
}

LRESULT Frame::OnCascade(WORD, WORD, HWND, BOOL&) { return ::SendMessage(client_, WM_MDICASCADE, 0, 0); }

LRESULT Frame::OnTile(WORD, WORD, HWND, BOOL&) { return ::SendMessage(client_, WM_MDITILE, MDITILE_VERTICAL, 0); }

LRESULT Frame::OnExit(WORD, WORD, HWND, BOOL&) {
  PostMessage(WM_CLOSE);
  return 0;
}

// ---- recording ------------------------------------------------------------------------------------------------------

LRESULT Frame::OnProfile(WORD, WORD, HWND, BOOL&) {
  profiling_ = !profiling_;
  if (profiling_)
    kex_start_profiling();
  else
    kex_stop_profiling("profiler.js");
  ::CheckMenuItem(::GetMenu(m_hWnd), id_profile, profiling_ ? MF_CHECKED : MF_UNCHECKED);
  return 0;
}

LRESULT Frame::OnTrace(WORD, WORD, HWND, BOOL&) {
  const bool on = CTraceToFile::GetTraceMode() == CTraceToFile::TraceOff;
  CTraceToFile::SetTraceMode(on ? CTraceToFile::TraceToFile : CTraceToFile::TraceOff);
  ::CheckMenuItem(::GetMenu(m_hWnd), id_trace, on ? MF_CHECKED : MF_UNCHECKED);
  return 0;
}

// ---- the message loop -----------------------------------------------------------------------------------------------

// Tab and the arrow keys move between controls; the MDI windows have their own accelerators.
BOOL Frame::PreTranslateMessage(MSG* message) {
  if (::TranslateMDISysAccel(client_, message)) return TRUE;
  const PageFrame* page = active_page();
  return page && ::IsChild(page->page(), message->hwnd) && ::IsDialogMessage(page->page(), message);
}

BOOL Frame::OnIdle() {
  const PageFrame* page = active_page();
  const CString wanted = page ? CString(page->entry().words) : caption("{2}Choose a page at the left.");
  if (text_of(status_) != wanted) status_.SetWindowText(wanted);
  return FALSE;
}

}  // namespace gallery
