#include <afxwin.h>

#include <framework/current_thread.h>

#include <process.h>

#include <memory>

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
  // Suspended at first: the object has to be complete, and may be gone as soon as the thread runs.
  unsigned id = 0;
  uintptr_t handle = _beginthreadex(security, stackSize, &Entry, this, createFlags | CREATE_SUSPENDED, &id);
  if (!handle) return FALSE;
  m_hThread = reinterpret_cast<HANDLE>(handle);
  m_nThreadID = id;
  if (!(createFlags & CREATE_SUSPENDED)) ResumeThread();
  return TRUE;
}

// noexcept: there is nobody whom an exception out of a thread could reach.
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
  // -1 is a failure, which a second call would not mend.
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
  auto thread = std::make_unique<CWinThread>(procedure, parameter);
  if (!thread->CreateThread(createFlags | CREATE_SUSPENDED, stackSize, security)) return nullptr;
  thread->SetThreadPriority(priority);
  // From here on the thread deletes the object, or whoever says so.
  CWinThread* started = thread.release();
  if (!(createFlags & CREATE_SUSPENDED)) started->ResumeThread();
  return started;
}
