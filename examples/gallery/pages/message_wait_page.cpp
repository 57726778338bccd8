// A wait for a worker thread. Meanwhile the window processes messages: it shows the progress and handles Cancel.
#include <kexlib/messageloop.h>

#include <gallery/page.h>
#include <gallery/tour.h>

#include <thread>
#include <utility>

namespace {

enum { id_start = 100, id_cancel, id_much, id_progress, id_result };
constexpr UINT message_progress = WM_APP;

class MessageWaitPage : public gallery::Page {
 public:
  BEGIN_MSG_MAP(MessageWaitPage)
    MESSAGE_HANDLER(WM_DESTROY, OnDestroy)
    COMMAND_ID_HANDLER(id_start, OnStart)
    COMMAND_ID_HANDLER(id_cancel, OnCancel)
    MESSAGE_HANDLER(message_progress, OnProgress)
  END_MSG_MAP()

 private:
  static constexpr int steps = 50;

  void add_controls() override {
    add(WC_BUTTON, "&Work", WS_TABSTOP, id_start, 100);
    add(WC_BUTTON, "&Cancel", WS_TABSTOP | WS_DISABLED, id_cancel, 100);
    add(WC_BUTTON, "&Five seconds of work", WS_TABSTOP | BS_AUTOCHECKBOX, id_much, 160);
    new_line();
    add(PROGRESS_CLASS, "", 0, id_progress, 400).SendMessage(PBM_SETRANGE, 0, MAKELPARAM(0, steps));
    new_line();
    add(WC_STATIC, "", 0, id_result, 400);
  }

  LRESULT OnStart(WORD, WORD, HWND, BOOL&) {
    const HANDLE finished = CreateEvent(nullptr, TRUE, FALSE, nullptr);
    cancelled_ = CreateEvent(nullptr, TRUE, FALSE, nullptr);
    // The window may be destroyed while the worker runs: the worker knows its handle and asks the page nothing.
    const DWORD milliseconds_of_a_step = is_checked(id_much) ? 100 : 20;
    std::thread worker([finished, milliseconds_of_a_step, cancelled = cancelled_, window = m_hWnd] {
      for (int step = 1; step <= steps; ++step) {
        if (WaitForSingleObject(cancelled, milliseconds_of_a_step) == WAIT_OBJECT_0) return;
        ::PostMessage(window, message_progress, static_cast<WPARAM>(step), 0);
      }
      SetEvent(finished);
    });

    GetDlgItem(id_start).EnableWindow(FALSE);
    GetDlgItem(id_cancel).EnableWindow(TRUE);
    set_text(id_result, "The window waits, and is alive: click on Cancel.");
    MSG quit{};
    const HANDLE handles[] = {finished, cancelled_};
    const DWORD outcome = SafeWaitWithMessageLoop(2, handles, INFINITE, FALSE, &quit);
    SetEvent(cancelled_);
    worker.join();
    CloseHandle(std::exchange(cancelled_, nullptr));
    CloseHandle(finished);

    if (outcome == WAIT_OBJECT_0 + 2) {  // WM_QUIT arrived during the wait, and this window is destroyed
      PostQuitMessage(static_cast<int>(quit.wParam));
      return 0;
    }
    if (!IsWindow()) return 0;  // the page was closed during the wait
    set_text(id_result, outcome == WAIT_OBJECT_0 ? "The worker is done." : "The worker was cancelled.");
    GetDlgItem(id_cancel).EnableWindow(FALSE);
    GetDlgItem(id_start).EnableWindow(TRUE);
    return 0;
  }

  LRESULT OnDestroy(UINT, WPARAM, LPARAM, BOOL& handled) {
    handled = FALSE;
    if (cancelled_) SetEvent(cancelled_);
    return 0;
  }

  LRESULT OnCancel(WORD, WORD, HWND, BOOL&) {
    SetEvent(cancelled_);
    return 0;
  }

  LRESULT OnProgress(UINT, WPARAM step, LPARAM, BOOL&) {
    GetDlgItem(id_progress).SendMessage(PBM_SETPOS, step);
    return 0;
  }

  HANDLE cancelled_ = nullptr;
};

void tour(gallery::Tour& user) {
  const auto progress = [&] { return SendMessageA(user.control(id_progress), PBM_GETPOS, 0, 0); };
  user.click(id_much);
  user.click(id_start);
  user.wait_until("some of the work", [&] { return progress() >= 15; });
  user.take_picture("message_wait");
  user.click(id_cancel);
  user.check_text(id_result, "The worker was cancelled.");
  user.check("the work stopped before its end", [&] { return progress() < 50; });
  user.click(id_much);
  user.click(id_start);
  user.check_text(id_result, "The worker is done.");
  user.check("the progress bar is full", [&] { return progress() == 50; });
  const HWND page = user.page();
  user.click(id_much);
  user.click(id_start);
  user.wait_until("some work", [&] { return progress() < 50; });
  PostMessageA(GetParent(page), WM_SYSCOMMAND, SC_CLOSE, 0);  // as a click on its close box
  user.check("the page closes while it waits", [page] { return !IsWindow(page); });
}

const gallery::Registration message_wait{
    "messageloop", "Message-pumping waits",
    "A thread that owns windows waits for kernel objects, and its windows stay alive meanwhile.",
    gallery::make<MessageWaitPage>, tour};

}  // namespace
