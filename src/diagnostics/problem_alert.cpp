#include <kexlib/diagnostics/problem_alert.h>

CProblemAlert::CProblemAlert(int startNow) {
  if (startNow) StartThread();
}

CProblemAlert::~CProblemAlert() { EndThread(); }

int CProblemAlert::StartThread() {
  if (thread_) return 1;
  stop_event_.ResetEvent();
  problem_event_.ResetEvent();
  try {
    // Suspended: the thread must not end and delete its object before the auto-delete flag is off.
    thread_ = AfxBeginThread(ThreadEntry, this, THREAD_PRIORITY_NORMAL, 0, CREATE_SUSPENDED, nullptr);
  } catch (CMemoryException* exception) {  // MFC's `new` throws this; the framework here returns null
    exception->Delete();
  }
  if (!thread_) return 0;
  thread_->m_bAutoDelete = FALSE;
  thread_->ResumeThread();
  return 1;
}

void CProblemAlert::EndThread() {
  if (!thread_) return;
  stop_event_.SetEvent();
  WaitForSingleObject(thread_->m_hThread, INFINITE);
  delete thread_;
  thread_ = nullptr;
}

void CProblemAlert::RaiseProblemMessage() { problem_event_.SetEvent(); }

unsigned CProblemAlert::ThreadEntry(void* param) {
  static_cast<CProblemAlert*>(param)->ThreadLoop();
  return 0;
}

void CProblemAlert::ThreadLoop() {
  const HANDLE events[] = {stop_event_, problem_event_};
  while (WaitForMultipleObjects(2, events, FALSE, INFINITE) == WAIT_OBJECT_0 + 1) {
    MessageBoxA(nullptr, "The problem has occurred", nullptr, MB_OK | MB_ICONEXCLAMATION | MB_SYSTEMMODAL);
    problem_event_.ResetEvent();  // raises while the box was shown are discarded
  }
}
