// The tour: a simulated user who operates the gallery with the mouse and the keyboard and checks the screen.
//
// It runs on a separate thread, so that dialogs, menus and busy pages do not block it. It operates windows by input
// only, and reads texts and colours. If an expected event does not happen in time, the tour ends.
#ifndef GALLERY_TOUR_H
#define GALLERY_TOUR_H

#include <kexlib/framework.h>

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

  // Runs the tours of the pages whose titles contain this text, of one family or of all, and prints a line for each
  // step. Returns true if all checks passed.
  bool run(const std::string& part_of_title, const std::string& family = "");

  // Opens a page, or brings it to the front.
  void open(const PageEntry& entry);

  // Closes all pages, one after the other. Returns false if one stays open.
  bool close_pages();

  // ---- for the tour of a page ---------------------------------------------------------------------------------------

  HWND frame() const { return frame_; }
  // The page's view.
  HWND page() const { return page_; }
  // A control of the page.
  HWND control(int id) const;

  // Clicks with the left button in the middle of a control of the page or of a window, or at a point in its client
  // area.
  void click(int id) { click(control(id)); }
  void click(HWND window);
  void click(HWND window, int x, int y);
  // Moves the mouse to the middle of a window.
  void point_at(HWND window);
  // Presses or releases the left button at the position of the mouse.
  void press_mouse();
  void release_mouse();

  // Sends keys to the window with the focus: a text of printable characters, or a key by its virtual code, with
  // Control or Alt held down.
  void type(const std::string& text);
  void press(WORD key);
  void press_with(WORD held, WORD key);
  // Replaces the text of an edit control of one line.
  void write(int id, const std::string& text);
  // Chooses a menu item with the keyboard: Alt and the letter of the menu, then the letter of the item.
  void choose_from_menu(char menu, char item);

  // Waits for an event. If it does not happen within 20 seconds, the tour ends.
  void wait_until(const std::string& what, const std::function<bool()>& happened);
  // Waits for a window of the gallery with this title, for instance a dialog.
  HWND wait_for_window(const std::string& title);
  // Waits for an open menu.
  HWND wait_for_menu();
  void wait_for_end_of(HWND window);

  // The text of a window; empty if there is none.
  static std::string text_of(HWND window);
  std::string text(int id) const { return text_of(control(id)); }
  // Whether a check box or a radio button is checked.
  bool is_checked(int id) const;
  // The colour of the screen at a point in the client area of a window.
  static COLORREF color_at(HWND window, int x, int y);

  // Waits for a documented effect, such as "the number is shown in millimetres". If it does not occur, the check fails
  // and the tour continues.
  void check(const std::string& promise, const std::function<bool()>& holds);
  void check_text(int id, const std::string& expected);

  // Writes a picture of a window on the screen to NAME.png in the current folder; without a window, of the page's
  // frame.
  void take_picture(const std::string& name, HWND window = nullptr);
  // Adds a file that the page has written to the list at the end.
  void tell_of_file(const std::string& path) { files_.push_back(path); }

 private:
  void go_through(const PageEntry& entry);

  HWND frame_;
  HWND page_ = nullptr;
  POINT mouse_{};
  int checks_ = 0;
  std::vector<std::string> failures_;
  std::vector<std::string> files_;
};

}  // namespace gallery

#endif
