#include <afxwin.h>

#include <framework/current_thread.h>

CWinApp::CWinApp(LPCTSTR appName)
    : m_pszAppName(appName), m_hInstance(AfxGetInstanceHandle()), m_state(AfxGetModuleState()) {
  m_bAutoDelete = FALSE;
  m_hThread = GetCurrentThread();
  m_nThreadID = GetCurrentThreadId();
  m_state->m_pCurrentWinApp = this;
  framework::set_current_thread(this);
}

CWinApp::~CWinApp() {
  m_hThread = nullptr;  // a pseudo-handle, which is not to be closed
  if (m_state->m_pCurrentWinApp == this) m_state->m_pCurrentWinApp = nullptr;
}

BOOL CWinApp::InitInstance() { return TRUE; }

int CWinApp::Run() {
  if (!m_pMainWnd) PostQuitMessage(0);
  return CWinThread::Run();
}

void CWinApp::WinHelp(DWORD_PTR data, UINT command) {
  if (!m_pszHelpFilePath || !m_pMainWnd) return;
  ::WinHelpA(m_pMainWnd->GetSafeHwnd(), m_pszHelpFilePath, command, data);
}

void CWinApp::WinHelpInternal(DWORD_PTR data, UINT command) { WinHelp(data, command); }

BOOL AfxWinInit(HINSTANCE instance, HINSTANCE, LPTSTR commandLine, int showCommand) {
  AFX_MODULE_STATE* state = AfxGetModuleState();
  state->m_hCurrentInstanceHandle = instance;
  state->m_hCurrentResourceHandle = instance;
  if (CWinApp* app = AfxGetApp()) {
    app->m_hInstance = instance;
    app->m_lpCmdLine = commandLine;
    app->m_nCmdShow = showCommand;
  }
  return TRUE;
}
