// The pages of the gallery: one class and one file for each unit of the library.
//
//     class GuidPage : public gallery::Page {
//      public:
//       BEGIN_MSG_MAP(GuidPage)
//         COMMAND_ID_HANDLER(IDC_GENERATE, OnGenerate)
//       END_MSG_MAP()
//
//      private:
//       enum { IDC_GENERATE = 100, IDC_RESULT };
//       void add_controls() override {
//         add(WC_BUTTON, "&Generate", WS_TABSTOP, IDC_GENERATE, 90);
//         add(WC_EDIT, "", WS_TABSTOP | WS_BORDER | ES_READONLY, IDC_RESULT, 300);
//       }
//       ...
//     };
//
//     void tour_guid(gallery::Tour& user) { ... }      // what a user does and sees on the page
//
//     const gallery::Registration guid{"com", "GUIDs", "Made when they are first read ...", gallery::make<GuidPage>,
//                                      tour_guid};
#ifndef GALLERY_PAGE_H
#define GALLERY_PAGE_H

#include <kexlib/framework.h>

#include <atlwin.h>
#include <atlapp.h>
#include <atlctrls.h>

#include <memory>
#include <string>
#include <vector>

namespace gallery {

class Tour;

// The text of a window of this thread.
CString text_of(HWND window);
// The first 64 kilobytes of a file; empty if the file does not exist.
CString text_of_file(const CString& path);

// The view of a page: a heading, a description, and below them the controls that the page's class adds, in lines from
// left to right.
class Page : public ATL::CWindowImpl<Page> {
 public:
  DECLARE_WND_CLASS_EX("kexlib_gallery_page", 0, COLOR_BTNFACE)

  Page() = default;
  Page(const Page&) = delete;
  Page& operator=(const Page&) = delete;
  ~Page() override;

  // Creates the window with all its controls, as large as its parent. Returns false on failure.
  bool open(HWND parent, const char* title, const char* words);

  BOOL ProcessWindowMessage(HWND, UINT, WPARAM, LPARAM, LRESULT&, DWORD) override { return FALSE; }

 protected:
  static constexpr int margin = 16, gap = 8, line_height = 23;

  virtual void add_controls() = 0;

  // Adds a control at the end of the line; WS_CHILD and WS_VISIBLE are added to its style.
  ATL::CWindow add(const char* window_class, const char* text, DWORD style, int id, int width,
                   int height = line_height);
  // Adds a label for the next control.
  void add_label(const char* text, int width);
  // Starts a new line, below the tallest control of the previous line.
  void new_line(int space = gap);
  // Reserves the place of the next control, for controls that create their windows themselves.
  RECT take_place(int width, int height = line_height);

  void set_text(int id, const CString& text) { ::SetDlgItemText(m_hWnd, id, text); }
  CString text_of(int id) const;
  bool is_checked(int id) const { return ::IsDlgButtonChecked(m_hWnd, id) == BST_CHECKED; }
  void check(int id, bool on) { ::CheckDlgButton(m_hWnd, id, on ? BST_CHECKED : BST_UNCHECKED); }

 private:
  POINT next_{margin, margin};
  int line_bottom_ = margin;
  HFONT heading_font_ = nullptr;
};

struct PageEntry {
  const char* family;  // the name of the family's folders, such as "controls"
  const char* title;
  const char* words;  // the purpose of the unit, in one or two sentences
  std::unique_ptr<Page> (*make)();
  void (*tour)(Tour& user);
};

template <class T>
std::unique_ptr<Page> make() {
  // Destroys the windows before the page's members: the control objects do not destroy their windows.
  class Whole : public T {
   public:
    Whole() = default;
    Whole(const Whole&) = delete;
    Whole& operator=(const Whole&) = delete;
    ~Whole() override {
      if (this->m_hWnd) this->DestroyWindow();
    }
  };
  return std::make_unique<Whole>();
}

// All pages, sorted by family and title.
const std::vector<PageEntry>& pages();

// An object of this type in the page's source adds the page.
class Registration {
 public:
  Registration(const char* family, const char* title, const char* words, std::unique_ptr<Page> (*make)(),
               void (*tour)(Tour& user));
};

}  // namespace gallery

#endif
