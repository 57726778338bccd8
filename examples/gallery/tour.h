// The tour: a user who goes through the gallery with the mouse and the keyboard, and looks at what it shows.
//
// It runs on a thread of its own, so that it is not stopped by dialogs, menus and pages that are busy. It touches
// windows only as a person does, but for reading texts and colours. Whatever does not happen in time ends the tour.
#ifndef GALLERY_TOUR_H
#define GALLERY_TOUR_H

#include <windows.h>

#include <functional>
#include <string>
#include <vector>

namespace gallery {

struct PageEntry;

class Tour {
 public:
  // `frame` is the gallery's main window.
  explicit Tour(HWND frame) : frame_(frame) {}
  Tour(const Tour&) = delete;
  Tour& operator=(const Tour&) = delete;

  // Goes through the pages that have this text in their titles, and says line by line what it does. True where
  // everything was as promised.
  bool run(const std::string& part_of_title);

  // Closes all pages, one after the other. False where one stays.
  bool close_pages();

  // ---- what a page's tour does --------------------------------------------------------------------------------------

  HWND frame() const { return frame_; }
  // The page's view.
  HWND page() const { return page_; }
  // A control of the page.
  HWND control(int id) const;

  // With the left button in the middle of a control of the page, of a window, or at a place in its client area.
  void click(int id) { click(control(id)); }
  void click(HWND window);
  void click(HWND window, int x, int y);
  // Moves the mouse to the middle of a window.
  void point_at(HWND window);
  // Presses the left button or lets it go, where the mouse is.
  void press_mouse();
  void release_mouse();

  // Keys, to whatever has the focus: a text of letters, digits and the like; a key by its virtual code, with Control or
  // Alt held down.
  void type(const std::string& text);
  void press(WORD key);
  void press_with(WORD held, WORD key);
  // Replaces what an edit control of one line says.
  void write(int id, const std::string& text);
  // With the keyboard: Alt and the letter of the menu, then the letter of the item.
  void choose_from_menu(char menu, char item);

  // Waits for what is to happen; where it does not within some seconds, the tour ends.
  void wait_until(const std::string& what, const std::function<bool()>& happened);
  // A window of the gallery with this title, which may still have to come: a dialog, say.
  HWND wait_for_window(const std::string& title);
  // The menu that is open; it may still have to come.
  HWND wait_for_menu();
  void wait_for_end_of(HWND window);

  // What a window says; empty where there is none.
  static std::string text_of(HWND window);
  std::string text(int id) const { return text_of(control(id)); }
  // Whether a check box or a radio button is.
  bool is_checked(int id) const;
  // What the screen shows at a place in the client area of a window.
  static COLORREF color_at(HWND window, int x, int y);

  // Something that the page promises, such as "the number is shown in millimetres". It may still have to come: where it
  // does not, it counts as a failure, and the tour goes on.
  void check(const std::string& promise, const std::function<bool()>& holds);
  void check_text(int id, const std::string& expected);

  // Writes what the screen shows of a window to NAME.png in the current folder; without a window, of the page's frame.
  void take_picture(const std::string& name, HWND window = nullptr);
  // Names a file that the page has written, for the list at the end.
  void tell_of_file(const std::string& path) { files_.push_back(path); }

 private:
  void go_through(const PageEntry& entry);
  void open(const PageEntry& entry);

  HWND frame_;
  HWND page_ = nullptr;
  POINT mouse_{};
  int checks_ = 0;
  std::vector<std::string> failures_;
  std::vector<std::string> files_;
};

}  // namespace gallery

#endif
