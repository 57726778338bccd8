// The gallery's main window: a tree of the pages at the left, and the open pages as MDI windows beside it.
#ifndef GALLERY_FRAME_H
#define GALLERY_FRAME_H

#include <gallery/page.h>

#include <memory>
#include <vector>

namespace gallery {

// The window of one open page.
class PageFrame : public ATL::CWindowImpl<PageFrame> {
 public:
  DECLARE_WND_CLASS_EX("kexlib_gallery_page_frame", 0, COLOR_BTNFACE)

  explicit PageFrame(const PageEntry& entry) : entry_(entry) {}

  // A child of the MDI client.
  bool open(HWND client);
  const PageEntry& entry() const { return entry_; }
  HWND page() const { return page_ ? page_->m_hWnd : nullptr; }

  BEGIN_MSG_MAP(PageFrame)
    MESSAGE_HANDLER(WM_SIZE, OnSize)
    MESSAGE_HANDLER(WM_SETFOCUS, OnSetFocus)
    MESSAGE_RANGE_HANDLER(1, WM_NCDESTROY - 1, OnOther)  // except WM_NCDESTROY, after which the object is deleted
    MESSAGE_RANGE_HANDLER(WM_NCDESTROY + 1, 0xFFFF, OnOther)
  END_MSG_MAP()

 private:
  LRESULT OnSize(UINT, WPARAM, LPARAM, BOOL& handled);
  LRESULT OnSetFocus(UINT, WPARAM, LPARAM, BOOL&);
  LRESULT OnOther(UINT message, WPARAM wide, LPARAM longer, BOOL&) {
    return ::DefMDIChildProc(m_hWnd, message, wide, longer);
  }

  const PageEntry& entry_;
  std::unique_ptr<Page> page_;
};

class Frame : public ATL::CWindowImpl<Frame>, public WTL::CMessageFilter, public WTL::CIdleHandler {
 public:
  DECLARE_WND_CLASS_EX("kexlib_gallery", 0, COLOR_APPWORKSPACE)

  enum { id_tree = 1, id_status, id_client, first_page_frame = 1000 };
  // Returns the view of the active page.
  static constexpr UINT message_active_page = WM_APP + 1;
  // Paints a window of this thread and its child windows; the first parameter is the handle.
  static constexpr UINT message_paint = WM_APP + 2;

  // `texts` is the module with the gallery's texts. Returns false if the window cannot be created, for
  // instance without a display.
  bool open(HINSTANCE texts);

  BOOL PreTranslateMessage(MSG* message) override;
  BOOL OnIdle() override;

  BEGIN_MSG_MAP(Frame)
    MESSAGE_HANDLER(WM_CREATE, OnCreate)
    MESSAGE_HANDLER(WM_SIZE, OnSize)
    MESSAGE_HANDLER(WM_DESTROY, OnDestroy)
    MESSAGE_HANDLER(message_active_page, OnActivePage)
    MESSAGE_HANDLER(message_paint, OnPaintNow)
    NOTIFY_HANDLER(id_tree, NM_DBLCLK, OnOpenPage)
    NOTIFY_CODE_HANDLER(NM_RETURN, OnOpenPage)
    COMMAND_ID_HANDLER(id_exit, OnExit)
    COMMAND_ID_HANDLER(id_profile, OnProfile)
    COMMAND_ID_HANDLER(id_trace, OnTrace)
    COMMAND_ID_HANDLER(id_cascade, OnCascade)
    COMMAND_ID_HANDLER(id_tile, OnTile)
    COMMAND_ID_HANDLER(id_close, OnClosePage)
    MESSAGE_RANGE_HANDLER(1, WM_NCDESTROY - 1, OnOther)  // except WM_NCDESTROY, after which the object is deleted
    MESSAGE_RANGE_HANDLER(WM_NCDESTROY + 1, 0xFFFF, OnOther)
  END_MSG_MAP()

 private:
  enum { id_exit = 100, id_profile, id_trace, id_cascade, id_tile, id_close };

  LRESULT OnCreate(UINT, WPARAM, LPARAM, BOOL&);
  LRESULT OnSize(UINT, WPARAM, LPARAM, BOOL&);
  LRESULT OnDestroy(UINT, WPARAM, LPARAM, BOOL&);
  LRESULT OnActivePage(UINT, WPARAM, LPARAM, BOOL&);
  LRESULT OnPaintNow(UINT, WPARAM, LPARAM, BOOL&);
  LRESULT OnOpenPage(int, LPNMHDR, BOOL&);
  LRESULT OnExit(WORD, WORD, HWND, BOOL&);
  LRESULT OnProfile(WORD, WORD, HWND, BOOL&);
  LRESULT OnTrace(WORD, WORD, HWND, BOOL&);
  LRESULT OnCascade(WORD, WORD, HWND, BOOL&);
  LRESULT OnTile(WORD, WORD, HWND, BOOL&);
  LRESULT OnClosePage(WORD, WORD, HWND, BOOL&);
  LRESULT OnOther(UINT message, WPARAM wide, LPARAM longer, BOOL&) {
    return ::DefFrameProc(m_hWnd, client_, message, wide, longer);
  }

  void make_menu();
  void fill_tree();
  void open_page(const PageEntry& entry);
  PageFrame* active_page() const;
  CString caption(const char* text) const;

  HINSTANCE texts_ = nullptr;
  HWND client_ = nullptr;
  HMENU window_menu_ = nullptr;
  bool profiling_ = false;
  WTL::CTreeViewCtrl tree_;
  ATL::CWindow status_;
  std::vector<std::unique_ptr<PageFrame>> open_pages_;
};

}  // namespace gallery

#endif
