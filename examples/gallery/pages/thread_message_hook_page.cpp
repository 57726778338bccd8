// The thread message hook: receives messages without a window, whichever loop removes them from the queue.
#include <kexlib/messageloop.h>

#include <gallery/page.h>
#include <gallery/tour.h>

#include <atomic>
#include <thread>

namespace {

enum { id_hooked = 100, id_start, id_progress, id_result };
constexpr UINT message_worker_done = WM_APP;
constexpr char box_title[] = "A loop of its own";
constexpr int steps = 20, milliseconds_of_a_step = 20;

// Shows the progress that a worker posts to the thread.
class ProgressHook : public CThreadMessageHook {
 public:
  explicit ProgressHook(HWND bar) : bar_(bar) {}

  const UINT* GetHookedMessages() override { return messages_; }
  void OnHookedMessage(MSG* message) override { ::SendMessage(bar_, PBM_SETPOS, message->wParam, 0); }
  UINT message() const { return messages_[0]; }

 private:
  const UINT messages_[2] = {::RegisterWindowMessage("kexlib_gallery_progress"), 0};
  HWND bar_;
};

class ThreadMessageHookPage : public gallery::Page {
 public:
  BEGIN_MSG_MAP(ThreadMessageHookPage)
    COMMAND_ID_HANDLER(id_start, OnStart)
    MESSAGE_HANDLER(message_worker_done, OnWorkerDone)
  END_MSG_MAP()

 private:
  void add_controls() override {
    add(WC_STATIC,
        "A worker posts its progress to this thread, and to no window. Meanwhile a message box is open, whose loop "
        "throws such messages away; the hook sees them all the same.",
        0, -1, 600, 2 * 16);
    new_line();
    add(WC_BUTTON, "With the &hook", WS_TABSTOP | BS_AUTOCHECKBOX, id_hooked, 120);
    add(WC_BUTTON, "&Start", WS_TABSTOP, id_start, 100);
    new_line();
    add(PROGRESS_CLASS, "", 0, id_progress, 400).SendMessage(PBM_SETRANGE, 0, MAKELPARAM(0, steps));
    new_line();
    add(WC_STATIC, "", 0, id_result, 400);
    check(id_hooked, true);
  }

  LRESULT OnStart(WORD, WORD, HWND, BOOL&) {
    GetDlgItem(id_progress).SendMessage(PBM_SETPOS, 0);
    set_text(id_result, "");
    ProgressHook hook(GetDlgItem(id_progress));
    const bool hooked = is_checked(id_hooked) && hook.SetHook() == S_OK;
    std::atomic<bool> cancelled = false;
    std::thread worker([&, window = m_hWnd, thread = ::GetCurrentThreadId()] {
      for (int step = 1; step <= steps && !cancelled; ++step) {
        ::Sleep(milliseconds_of_a_step);  // the work
        const auto progress = static_cast<WPARAM>(step);
        if (hooked)
          hook.PostHookMessage(hook.message(), progress, 0);
        else
          ::PostThreadMessage(thread, hook.message(), progress, 0);
      }
      ::PostMessage(window, message_worker_done, 0, 0);
    });
    ::MessageBox(m_hWnd, "The worker posts while this box is open.", box_title, MB_OK);
    cancelled = true;
    worker.join();
    return 0;
  }

  // A message for a window: every loop dispatches it.
  LRESULT OnWorkerDone(UINT, WPARAM, LPARAM, BOOL&) {
    set_text(id_result, "The worker is done.");
    return 0;
  }
};

void tour(gallery::Tour& user) {
  const auto progress = [&] { return SendMessageA(user.control(id_progress), PBM_GETPOS, 0, 0); };
  const auto see_what_comes = [&](LRESULT expected, const char* promise, const char* picture) {
    user.click(id_start);
    const HWND box = user.wait_for_window(box_title);
    user.check_text(id_result, "The worker is done.");
    user.check(promise, [&] { return progress() == expected; });
    if (picture) user.take_picture(picture);
    user.press(VK_RETURN);
    user.wait_for_end_of(box);
  };
  see_what_comes(steps, "with the hook the progress is seen, though the box takes the messages", "thread_message_hook");
  user.click(id_hooked);
  see_what_comes(0, "without the hook nothing is seen", nullptr);
  user.click(id_hooked);
  user.check("the hook is wanted again", [&] { return user.is_checked(id_hooked); });
}

const gallery::Registration thread_message_hook{
    "messageloop", "Thread message hook",
    "Catches messages that are posted to a thread, whichever loop takes them from its queue.",
    gallery::make<ThreadMessageHookPage>, tour};

}  // namespace
