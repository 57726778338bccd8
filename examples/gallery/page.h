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
//     void tour_guid(gallery::Tour& user) { ... }      // what a user does there, and sees
//
//     const gallery::Registration guid{"com", "GUIDs", "Made when they are first read ...", gallery::make<GuidPage>,
//                                      tour_guid};
#ifndef GALLERY_PAGE_H
#define GALLERY_PAGE_H

#include <atlstr.h>

#include <atlbase.h>

#include <atlapp.h>
#include <atlctrls.h>
#include <atlwin.h>

#include <memory>
#include <string>
#include <vector>

namespace gallery {

class Tour;

// What a window of this thread says.
CString text_of(HWND window);
// What is in a file, its first 64 kilobytes; empty where there is none.
CString text_of_file(const CString& path);

// The view of a page: a heading, a few words, and below them the controls that the page's class adds, from left to
// right and line by line.
class Page : public ATL::CWindowImpl<Page> {
 public:
  DECLARE_WND_CLASS_EX("kexlib_gallery_page", 0, COLOR_BTNFACE)

  Page() = default;
  Page(const Page&) = delete;
  Page& operator=(const Page&) = delete;
  ~Page() override;

  // Makes the window with all its controls, as large as its parent; false where the system refuses.
  bool open(HWND parent, const char* title, const char* words);

  BOOL ProcessWindowMessage(HWND, UINT, WPARAM, LPARAM, LRESULT&, DWORD) override { return FALSE; }

 protected:
  static constexpr int margin = 16, gap = 8, line_height = 23;

  virtual void add_controls() = 0;

  // Adds a control at the end of the line; WS_CHILD and WS_VISIBLE are added to its style.
  ATL::CWindow add(const char* window_class, const char* text, DWORD style, int id, int width,
                   int height = line_height);
  // A text in front of a control.
  void add_label(const char* text, int width);
  // The next control begins a line, below the highest one of the line before.
  void new_line(int space = gap);
  // The place of the next control, for those that make their windows themselves; it is taken then.
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
  const char* family;  // "controls", say: the name of the family's folders
  const char* title;
  const char* words;  // what the unit is for, in a sentence or two
  std::unique_ptr<Page> (*make)();
  void (*tour)(Tour& user);
};

template <class T>
std::unique_ptr<Page> make() {
  // The windows go before what the page has: the objects of its controls leave their windows alone.
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

// All pages, family by family, by title.
const std::vector<PageEntry>& pages();

// An object of this type in the page's file adds the page.
class Registration {
 public:
  Registration(const char* family, const char* title, const char* words, std::unique_ptr<Page> (*make)(),
               void (*tour)(Tour& user));
};

}  // namespace gallery

#endif
