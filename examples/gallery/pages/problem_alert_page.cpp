// The problem alert: a warning that any thread can raise without waiting for the user.
#include <kexlib/diagnostics.h>

#include <gallery/page.h>
#include <gallery/tour.h>

#include <thread>

namespace {

enum { id_raise = 100, id_raise_often, id_runs, id_result };

class ProblemAlertPage : public gallery::Page {
 public:
  BEGIN_MSG_MAP(ProblemAlertPage)
    COMMAND_ID_HANDLER(id_raise, OnRaise)
    COMMAND_ID_HANDLER(id_raise_often, OnRaiseOften)
    COMMAND_ID_HANDLER(id_runs, OnRuns)
  END_MSG_MAP()

 private:
  void add_controls() override {
    add(WC_BUTTON, "R&aise a problem", WS_TABSTOP, id_raise, 200);
    new_line();
    add(WC_BUTTON, "Raise ten &on another thread", WS_TABSTOP, id_raise_often, 200);
    new_line(16);
    add(WC_BUTTON, "The alert's &thread runs (a box that is open has to be closed before it ends)",
        WS_TABSTOP | BS_AUTOCHECKBOX, id_runs, 500);
    new_line(16);
    add(WC_STATIC, "", 0, id_result, 500);
    check(id_runs, alert_.StartThread() != 0);
  }

  LRESULT OnRaise(WORD, WORD, HWND, BOOL&) {
    alert_.RaiseProblemMessage();
    set_text(id_result, "A problem was raised, and this thread went on.");
    return 0;
  }

  LRESULT OnRaiseOften(WORD, WORD, HWND, BOOL&) {
    std::thread([this] {
      for (int i = 0; i < 10; ++i) alert_.RaiseProblemMessage();
    }).join();
    set_text(id_result, "Ten problems were raised: one box tells of all of them.");
    return 0;
  }

  LRESULT OnRuns(WORD, WORD, HWND, BOOL&) {
    if (is_checked(id_runs)) {
      check(id_runs, alert_.StartThread() != 0);
      set_text(id_result, "The thread runs.");
    } else {
      alert_.EndThread();
      set_text(id_result, "The thread has ended: what is raised now is not shown.");
    }
    return 0;
  }

  CProblemAlert alert_{0};
};

void tour(gallery::Tour& user) {
  constexpr char caption[] = "Error";  // the system's default caption
  user.click(id_raise);
  user.check_text(id_result, "A problem was raised, and this thread went on.");
  const HWND box = user.wait_for_window(caption);
  user.check("the box has its text", [&] {
    return user.text_of(FindWindowExA(box, nullptr, "Static", "The problem has occurred")) ==
           "The problem has occurred";
  });
  user.take_picture("problem_alert_box", box);
  // The window stays responsive while the box is open. A problem raised now is added to the open box.
  user.click(id_raise_often);
  user.check_text(id_result, "Ten problems were raised: one box tells of all of them.");
  user.click(GetDlgItem(box, IDOK));
  user.wait_for_end_of(box);

  // The thread could not end while a second box is open.
  user.click(id_runs);
  user.check_text(id_result, "The thread has ended: what is raised now is not shown.");
  user.click(id_raise);
  user.check("no box is open", [&] { return !FindWindowA(nullptr, caption); });
  user.take_picture("problem_alert");
  user.click(id_runs);
  user.check_text(id_result, "The thread runs.");
}

const gallery::Registration problem_alert{
    "diagnostics", "Problem alert",
    "Any thread says that there is a problem and goes on; a thread of the alert's own shows it to the user.",
    gallery::make<ProblemAlertPage>, tour};

}  // namespace
