// MFC's application: its modules and resources, its threads, its windows and the exchange of data with dialogs.
#ifndef FRAMEWORK_AFXWIN_H
#define FRAMEWORK_AFXWIN_H

#include <afx.h>

class CWinApp;
class CWnd;
struct CCreateContext;  // nothing here reads one

// The system ran out of windows, kernel objects, resources.
class KEXFRAMEWORK_API CResourceException : public CException {
 public:
  using CException::CException;
  BOOL GetErrorMessage(LPTSTR message, UINT room, UINT* helpContext = nullptr) const override;
};

[[noreturn]] KEXFRAMEWORK_API void AfxThrowResourceException();

// Modules ------------------------------------------------------------------------------------------------------------

// What the framework knows of a module: its application object, its instance, and where its resources are.
class KEXFRAMEWORK_API AFX_MODULE_STATE : public CObject {
 public:
  // That of the program, without an application object.
  AFX_MODULE_STATE();

  CWinApp* m_pCurrentWinApp = nullptr;
  HINSTANCE m_hCurrentInstanceHandle;
  HINSTANCE m_hCurrentResourceHandle;
};

// The state of the program.
KEXFRAMEWORK_API AFX_MODULE_STATE* AfxGetAppModuleState();
// The state that holds on this thread; that of the program until it is said otherwise.
KEXFRAMEWORK_API AFX_MODULE_STATE* AfxGetModuleState();
// Sets the one that holds on this thread and returns the one that did. Null means that of the program.
KEXFRAMEWORK_API AFX_MODULE_STATE* AfxSetModuleState(AFX_MODULE_STATE* state);

// Lets a state hold on this thread for as long as it lives.
class AFX_MAINTAIN_STATE2 {
 public:
  explicit AFX_MAINTAIN_STATE2(AFX_MODULE_STATE* state) : m_previous(AfxSetModuleState(state)) {}
  AFX_MAINTAIN_STATE2(const AFX_MAINTAIN_STATE2&) = delete;
  AFX_MAINTAIN_STATE2& operator=(const AFX_MAINTAIN_STATE2&) = delete;
  ~AFX_MAINTAIN_STATE2() { AfxSetModuleState(m_previous); }

 private:
  AFX_MODULE_STATE* m_previous;
};

// Lets a state hold on this thread until the block ends, by an exception too.
#define AFX_MANAGE_STATE(state) AFX_MANAGE_STATE_NAMED(state, __LINE__)
// A name for each line, so that the one in a block within hides nothing.
#define AFX_MANAGE_STATE_NAMED(state, line) AFX_MANAGE_STATE_JOINED(state, line)
#define AFX_MANAGE_STATE_JOINED(state, line) AFX_MAINTAIN_STATE2 _ctlState##line(state)

// Of the module whose state holds on this thread.
inline HINSTANCE AfxGetInstanceHandle() { return AfxGetModuleState()->m_hCurrentInstanceHandle; }
inline HINSTANCE AfxGetResourceHandle() { return AfxGetModuleState()->m_hCurrentResourceHandle; }
inline void AfxSetResourceHandle(HINSTANCE instance) { AfxGetModuleState()->m_hCurrentResourceHandle = instance; }
// Null where there is none.
inline CWinApp* AfxGetApp() { return AfxGetModuleState()->m_pCurrentWinApp; }

// A module with resources for the whole program, behind those of the module whose state holds; the newest is looked at
// first. It belongs to no list when it is destroyed.
class KEXFRAMEWORK_API CDynLinkLibrary : public CObject {
 public:
  CDynLinkLibrary(HINSTANCE module, HINSTANCE resources);
  ~CDynLinkLibrary() override;

  HINSTANCE m_hModule;
  HINSTANCE m_hResource;
};

// The module that holds a resource. Where none does, AfxGetResourceHandle().
KEXFRAMEWORK_API HINSTANCE AfxFindResourceHandle(LPCSTR name, LPCSTR type);

// Windows ------------------------------------------------------------------------------------------------------------

// Owns a window.
class KEXFRAMEWORK_API CWnd : public CObject {
  DECLARE_DYNCREATE(CWnd)

 public:
  CWnd();
  // Destroys the window, one that was attached too: Detach it to keep it.
  ~CWnd() override;

  // Takes the window over. FALSE, and nothing happens, for null or where there is one already.
  BOOL Attach(HWND window);
  HWND Detach();
  HWND GetSafeHwnd() const { return m_hWnd; }

  // Makes a child window of a registered class. FALSE where that fails.
  virtual BOOL Create(LPCTSTR className, LPCTSTR windowName, DWORD style, const RECT& rect, CWnd* parent, UINT id,
                      CCreateContext* context = nullptr);
  // FALSE where there is none.
  virtual BOOL DestroyWindow();

  // ActiveX controls. The window is one that hosts the control, by the system's host library (atl.dll); the control
  // goes with it, by DestroyWindow, this object or the parent. COM has to be initialised on this thread.

  // Makes a control of a class. windowName is set as its Caption, or else its Text, where it has one of the two; null
  // sets neither. The control's state is loaded from what is left of the file `persist`: a stream, or with `storage` a
  // compound file; without a file it begins anew. licenseKey is for a control that is not licensed on this machine.
  // FALSE, and no window, where the class is not installed or the control refuses, where there is no parent, or where
  // this object has a window already. What reading the file throws goes on to the caller.
  BOOL CreateControl(REFCLSID clsid, LPCTSTR windowName, DWORD style, const RECT& rect, CWnd* parent, UINT id,
                     CFile* persist = nullptr, BOOL storage = FALSE, BSTR licenseKey = nullptr);
  // The control, without a reference for the caller. Null where this window hosts none.
  LPUNKNOWN GetControlUnknown();

  // Calls through the control's IDispatch; see COleDispatchDriver (afxdisp.h) for the types and what is thrown. A
  // control without one is an OLE exception. Where there is no control nothing is called, and the result is 0 or empty.
  void InvokeHelper(DISPID id, WORD flags, VARTYPE resultType, void* result, const BYTE* parameters, ...);
  void SetProperty(DISPID id, VARTYPE type, ...);
  void GetProperty(DISPID id, VARTYPE type, void* value) const;

  HWND m_hWnd = nullptr;  // null again when the window is gone, whoever destroyed it

 private:
  static LRESULT CALLBACK watch(HWND window, UINT message, WPARAM wParam, LPARAM lParam, UINT_PTR object, DWORD_PTR);
};

// Threads ------------------------------------------------------------------------------------------------------------

using AFX_THREADPROC = UINT (*)(LPVOID parameter);

// A thread that the framework knows. The object is deleted when the thread ends, unless m_bAutoDelete is set to FALSE
// before; whoever does that deletes it himself, after the thread has ended, which closes the handle.
class KEXFRAMEWORK_API CWinThread : public CObject {
 public:
  CWinThread();
  CWinThread(AFX_THREADPROC procedure, LPVOID parameter);
  ~CWinThread() override;

  operator HANDLE() const { return m_hThread; }

  // Starts the thread, once. FALSE where that fails, or where there is no function to run.
  BOOL CreateThread(DWORD createFlags = 0, UINT stackSize = 0, LPSECURITY_ATTRIBUTES security = nullptr);

  // The suspend count before the call; 0xFFFFFFFF where the call failed.
  DWORD ResumeThread() { return ::ResumeThread(m_hThread); }
  DWORD SuspendThread() { return ::SuspendThread(m_hThread); }
  int GetThreadPriority() { return ::GetThreadPriority(m_hThread); }
  BOOL SetThreadPriority(int priority) { return ::SetThreadPriority(m_hThread, priority); }

  virtual BOOL InitInstance();
  // Gets and dispatches messages until WM_QUIT; returns what ExitInstance does.
  virtual int Run();
  // The exit code: that of the WM_QUIT.
  virtual int ExitInstance();
  virtual CWnd* GetMainWnd() { return m_pMainWnd; }
  // Called at the end of the thread.
  virtual void Delete();

  CWnd* m_pMainWnd = nullptr;  // borrowed; a thread begins with that of the thread which started it
  BOOL m_bAutoDelete = TRUE;
  HANDLE m_hThread = nullptr;
  DWORD m_nThreadID = 0;

 private:
  static unsigned __stdcall Entry(void* thread) noexcept;

  AFX_THREADPROC m_procedure = nullptr;
  LPVOID m_parameter = nullptr;
  MSG m_message{};  // the one that Run got last
};

// Starts a thread that runs the function; its result is the exit code. Null where it cannot be started. With
// CREATE_SUSPENDED it waits for ResumeThread; without, the object may be gone before this returns. An exception that
// leaves the function ends the program.
KEXFRAMEWORK_API CWinThread* AfxBeginThread(AFX_THREADPROC procedure, LPVOID parameter,
                                            int priority = THREAD_PRIORITY_NORMAL, UINT stackSize = 0,
                                            DWORD createFlags = 0, LPSECURITY_ATTRIBUTES security = nullptr);

// The object of the thread that this is called on; null where the framework does not know it.
KEXFRAMEWORK_API CWinThread* AfxGetThread();

// The main window of this thread, or null.
inline CWnd* AfxGetMainWnd() {
  CWinThread* thread = AfxGetThread();
  return thread ? thread->GetMainWnd() : nullptr;
}

// The application, and its first thread: the one that makes the object. It belongs to the module whose state holds
// then, and there is one at a time.
class KEXFRAMEWORK_API CWinApp : public CWinThread {
 public:
  explicit CWinApp(LPCTSTR appName = nullptr);
  ~CWinApp() override;

  // TRUE: go on to Run.
  BOOL InitInstance() override;
  // As that of a thread, but an application without a main window ends at once.
  int Run() override;

  // Shows help on a subject (WinHelp on the main window). Nothing happens without a help file or a main window.
  virtual void WinHelp(DWORD_PTR data, UINT command = HELP_CONTEXT);
  // What the framework calls where the user asks for help; calls WinHelp.
  virtual void WinHelpInternal(DWORD_PTR data, UINT command = HELP_CONTEXT);

  LPCTSTR m_pszAppName;
  LPCTSTR m_pszHelpFilePath = nullptr;  // borrowed, as the name above
  HINSTANCE m_hInstance;
  LPTSTR m_lpCmdLine = nullptr;
  int m_nCmdShow = SW_SHOWNORMAL;

 private:
  AFX_MODULE_STATE* m_state;  // that of its module
};

// Gives the application object what the program's entry point was called with; called from there, where that is not
// the framework's. TRUE.
KEXFRAMEWORK_API BOOL AfxWinInit(HINSTANCE instance, HINSTANCE previous, LPTSTR commandLine, int showCommand);

// Dialogs ------------------------------------------------------------------------------------------------------------

// An exchange of data between a dialog's controls and variables.
class KEXFRAMEWORK_API CDataExchange {
 public:
  CDataExchange(CWnd* dialog, BOOL saveAndValidate);

  // The control. Throws CNotSupportedException where the dialog has none of this id.
  HWND PrepareCtrl(int id);

  BOOL m_bSaveAndValidate;  // TRUE: from the controls to the variables
  CWnd* m_pDlgWnd;          // borrowed
};

// Exchanges the state of a check box: 0, 1, or 2 for undetermined. Any other value is shown as 0.
KEXFRAMEWORK_API void DDX_Check(CDataExchange* exchange, int id, int& value);

#endif
