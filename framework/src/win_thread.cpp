#include <afxwin.h>
#include <process.h>

#include <framework/current_thread.h>

#include <memory>
#include <new>

namespace {

thread_local CWinThread* current_thread = nullptr;

}  // namespace

namespace framework {

void set_current_thread(CWinThread* thread) { current_thread = thread; }

}  // namespace framework

CWinThread* AfxGetThread() { return current_thread; }

CWinThread::CWinThread() = default;

CWinThread::CWinThread(AFX_THREADPROC procedure, LPVOID parameter) : m_procedure(procedure), m_parameter(parameter) {}

CWinThread::~CWinThread() {
  if (m_hThread) CloseHandle(m_hThread);
  if (current_thread == this) current_thread = nullptr;
}

BOOL CWinThread::CreateThread(DWORD createFlags, UINT stackSize, LPSECURITY_ATTRIBUTES security) {
  if (m_hThread || !m_procedure) return FALSE;
  m_pMainWnd = AfxGetMainWnd();
  // Created suspended: the thread may delete the object as soon as it runs, so the object must be complete before.
  unsigned id = 0;
  uintptr_t handle = _beginthreadex(security, stackSize, &Entry, this, createFlags | CREATE_SUSPENDED, &id);
  if (!handle) return FALSE;
  m_hThread = reinterpret_cast<HANDLE>(handle);
  m_nThreadID = id;
  if (!(createFlags & CREATE_SUSPENDED)) ResumeThread();
  return TRUE;
}

// noexcept: an exception that leaves the function terminates the program.
unsigned CWinThread::Entry(void* object) noexcept {
  auto* thread = static_cast<CWinThread*>(object);
  current_thread = thread;
  unsigned code = thread->m_procedure(thread->m_parameter);
  current_thread = nullptr;
  thread->Delete();
  return code;
}

BOOL CWinThread::InitInstance() { return FALSE; }

int CWinThread::Run() {
  // -1 is an error, which another call would repeat.
  while (GetMessageA(&m_message, nullptr, 0, 0) > 0) {
    TranslateMessage(&m_message);
    DispatchMessageA(&m_message);
  }
  return ExitInstance();
}

int CWinThread::ExitInstance() { return static_cast<int>(m_message.wParam); }

void CWinThread::Delete() {
  if (m_bAutoDelete) delete this;
}

CWinThread* AfxBeginThread(AFX_THREADPROC procedure, LPVOID parameter, int priority, UINT stackSize, DWORD createFlags,
                           LPSECURITY_ATTRIBUTES security) {
  std::unique_ptr<CWinThread> thread(new (std::nothrow) CWinThread(procedure, parameter));
  if (!thread || !thread->CreateThread(createFlags | CREATE_SUSPENDED, stackSize, security)) return nullptr;
  thread->SetThreadPriority(priority);
  // The thread deletes the object from here on, unless m_bAutoDelete is FALSE.
  CWinThread* started = thread.release();
  if (!(createFlags & CREATE_SUSPENDED)) started->ResumeThread();
  return started;
}
