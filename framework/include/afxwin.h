// MFC's application, module states, resources, windows, threads and dialog data exchange.
#ifndef FRAMEWORK_AFXWIN_H
#define FRAMEWORK_AFXWIN_H

#include <afx.h>
#include <atltypes.h>

class CWinApp;
class CWnd;
struct CCreateContext;  // not used by this subset

// The system is out of windows, kernel objects or resources.
class KEXFRAMEWORK_API CResourceException : public CException {
 public:
  using CException::CException;
  BOOL GetErrorMessage(LPTSTR message, UINT room, UINT* helpContext = nullptr) const override;
};

[[noreturn]] KEXFRAMEWORK_API void AfxThrowResourceException();

// Modules ------------------------------------------------------------------------------------------------------------

// The state of a module: its application object, its instance, and the module that contains its resources.
class KEXFRAMEWORK_API AFX_MODULE_STATE : public CObject {
 public:
  // The values of the program, without an application object.
  AFX_MODULE_STATE();

  CWinApp* m_pCurrentWinApp = nullptr;
  HINSTANCE m_hCurrentInstanceHandle;
  HINSTANCE m_hCurrentResourceHandle;
  bool hosts_controls = false;  // AfxEnableControlContainer was called
};

// The state of the program.
KEXFRAMEWORK_API AFX_MODULE_STATE* AfxGetAppModuleState();
// The current state of the calling thread. By default that of the program.
KEXFRAMEWORK_API AFX_MODULE_STATE* AfxGetModuleState();
// Sets the current state of the calling thread and returns the previous one. Null selects that of the program.
KEXFRAMEWORK_API AFX_MODULE_STATE* AfxSetModuleState(AFX_MODULE_STATE* state);

// Makes a state current on this thread until the object is destroyed.
class AFX_MAINTAIN_STATE2 {
 public:
  explicit AFX_MAINTAIN_STATE2(AFX_MODULE_STATE* state) : m_previous(AfxSetModuleState(state)) {}
  AFX_MAINTAIN_STATE2(const AFX_MAINTAIN_STATE2&) = delete;
  AFX_MAINTAIN_STATE2& operator=(const AFX_MAINTAIN_STATE2&) = delete;
  ~AFX_MAINTAIN_STATE2() { AfxSetModuleState(m_previous); }

 private:
  AFX_MODULE_STATE* m_previous;
};

// Makes a state current on this thread until the end of the block.
#define AFX_MANAGE_STATE(state) AFX_MAINTAIN_STATE2 _ctlState(state)

// These belong to the module whose state is current on this thread.
inline HINSTANCE AfxGetInstanceHandle() { return AfxGetModuleState()->m_hCurrentInstanceHandle; }
inline HINSTANCE AfxGetResourceHandle() { return AfxGetModuleState()->m_hCurrentResourceHandle; }
inline void AfxSetResourceHandle(HINSTANCE instance) { AfxGetModuleState()->m_hCurrentResourceHandle = instance; }
// Null if there is none.
inline CWinApp* AfxGetApp() { return AfxGetModuleState()->m_pCurrentWinApp; }

// An extension DLL: one that is built with _AFXEXT, has no application object and uses that of the program. Its DllMain
// calls the functions below (afxdllx.h).
struct AFX_EXTENSION_MODULE {
  BOOL bInitialized;
  HMODULE hModule;
  HMODULE hResource;
};

// Returns FALSE on failure: the DLL must refuse to load then.
KEXFRAMEWORK_API BOOL AfxInitExtensionModule(AFX_EXTENSION_MODULE& state, HMODULE module);
// Deletes the objects that were made with new CDynLinkLibrary for this module, or with `all` for every module.
KEXFRAMEWORK_API void AfxTermExtensionModule(AFX_EXTENSION_MODULE& state, BOOL all = FALSE);

// A module whose resources are available to the whole program. It is searched after the module whose state is current;
// the newest one is searched first. The destructor removes it.
class KEXFRAMEWORK_API CDynLinkLibrary : public CObject {
 public:
  explicit CDynLinkLibrary(AFX_EXTENSION_MODULE& state);
  CDynLinkLibrary(HINSTANCE module, HINSTANCE resources);
  ~CDynLinkLibrary() override;

  HINSTANCE m_hModule;
  HINSTANCE m_hResource;
};

// Returns the module that contains a resource; null if none does.
KEXFRAMEWORK_API HINSTANCE AfxFindResourceHandle(LPCSTR name, LPCSTR type);

// Windows ------------------------------------------------------------------------------------------------------------

// Owns a window.
class KEXFRAMEWORK_API CWnd : public CObject {
  DECLARE_DYNCREATE(CWnd)

 public:
  CWnd();
  // Destroys the window, including one that was attached. Call Detach to keep it.
  ~CWnd() override;

  // Takes ownership of the window. Returns FALSE, and does nothing, if the window is null or this object has one.
  BOOL Attach(HWND window);
  HWND Detach();
  HWND GetSafeHwnd() const { return m_hWnd; }

  // Creates a child window of a registered class. Returns FALSE on failure.
  virtual BOOL Create(LPCTSTR className, LPCTSTR windowName, DWORD style, const RECT& rect, CWnd* parent, UINT id,
                      CCreateContext* context = nullptr);
  // Returns FALSE if there is no window.
  virtual BOOL DestroyWindow();

  // ActiveX controls. The window hosts the control through the system's library (atl.dll). The control is released when
  // the window is destroyed: by DestroyWindow, this object or the parent. COM must be initialised on this thread, and
  // the program must have called AfxEnableControlContainer (afxdisp.h).

  // Creates a control of a class, which a text names by its ProgID or by its identifier in braces. windowName is set as
  // its Caption, or else as its Text, if it has one of these properties; null sets neither. The state of the control is
  // loaded from the rest of the file `persist`: a stream, or with `storage` a compound file. Without a file the control
  // starts with its defaults. licenseKey is for a control that is not licensed on this machine. Returns FALSE, without
  // a window, if controls are not enabled, the class is not registered, the control fails, there is no parent, or this
  // object has a window. Exceptions from reading the file are passed to the caller.
  BOOL CreateControl(LPCTSTR className, LPCTSTR windowName, DWORD style, const RECT& rect, CWnd* parent, UINT id,
                     CFile* persist = nullptr, BOOL storage = FALSE, BSTR licenseKey = nullptr);
  BOOL CreateControl(REFCLSID clsid, LPCTSTR windowName, DWORD style, const RECT& rect, CWnd* parent, UINT id,
                     CFile* persist = nullptr, BOOL storage = FALSE, BSTR licenseKey = nullptr);
  BOOL CreateControl(REFCLSID clsid, LPCTSTR windowName, DWORD style, const POINT* place, const SIZE* size,
                     CWnd* parent, UINT id, CFile* persist = nullptr, BOOL storage = FALSE, BSTR licenseKey = nullptr);
  // Returns the control without adding a reference; null if this window hosts none.
  LPUNKNOWN GetControlUnknown();

  // Calls through the control's IDispatch. COleDispatchDriver (afxdisp.h) documents types and exceptions. A control
  // without IDispatch throws COleException. Without a control nothing is called, and the result is 0 or empty.
  void InvokeHelper(DISPID id, WORD flags, VARTYPE resultType, void* result, const BYTE* parameters, ...);
  void SetProperty(DISPID id, VARTYPE type, ...);
  void GetProperty(DISPID id, VARTYPE type, void* value) const;

  HWND m_hWnd = nullptr;  // null again after the window is destroyed by anybody

 private:
  static LRESULT CALLBACK watch(HWND window, UINT message, WPARAM wParam, LPARAM lParam, UINT_PTR object, DWORD_PTR);
};

// Threads ------------------------------------------------------------------------------------------------------------

using AFX_THREADPROC = UINT (*)(LPVOID parameter);

// A thread. The object is deleted when the thread ends, unless m_bAutoDelete is set to FALSE before. Then the owner
// deletes it after the thread has ended; the destructor closes the handle.
class KEXFRAMEWORK_API CWinThread : public CObject {
 public:
  CWinThread();
  CWinThread(AFX_THREADPROC procedure, LPVOID parameter);
  ~CWinThread() override;

  // Starts the thread, once. Returns FALSE if that fails, or if there is no function to run.
  BOOL CreateThread(DWORD createFlags = 0, UINT stackSize = 0, LPSECURITY_ATTRIBUTES security = nullptr);

  // Returns the previous suspend count; 0xFFFFFFFF on failure.
  DWORD ResumeThread() { return ::ResumeThread(m_hThread); }
  BOOL SetThreadPriority(int priority) { return ::SetThreadPriority(m_hThread, priority); }

  virtual BOOL InitInstance();
  // Gets and dispatches messages until WM_QUIT. Returns the result of ExitInstance.
  virtual int Run();
  // The exit code: that of the WM_QUIT.
  virtual int ExitInstance();
  virtual CWnd* GetMainWnd() { return m_pMainWnd; }
  // Called at the end of the thread.
  virtual void Delete();

  CWnd* m_pMainWnd = nullptr;  // not owned; initially that of the thread which started this one
  BOOL m_bAutoDelete = TRUE;
  HANDLE m_hThread = nullptr;
  DWORD m_nThreadID = 0;

 private:
  static unsigned __stdcall Entry(void* thread) noexcept;

  AFX_THREADPROC m_procedure = nullptr;
  LPVOID m_parameter = nullptr;
  MSG m_message{};  // the last message that Run received
};

// Starts a thread that runs the function. The result of the function is the exit code. Returns null if the thread
// cannot be started or memory is short. With CREATE_SUSPENDED the thread waits for ResumeThread; otherwise the object
// may be deleted before this function returns. An exception that leaves the function terminates the program.
KEXFRAMEWORK_API CWinThread* AfxBeginThread(AFX_THREADPROC procedure, LPVOID parameter,
                                            int priority = THREAD_PRIORITY_NORMAL, UINT stackSize = 0,
                                            DWORD createFlags = 0, LPSECURITY_ATTRIBUTES security = nullptr);

// The object of the calling thread; null if the thread was not started by the framework.
KEXFRAMEWORK_API CWinThread* AfxGetThread();

// The main window of the calling thread, or null.
inline CWnd* AfxGetMainWnd() {
  CWinThread* thread = AfxGetThread();
  return thread ? thread->GetMainWnd() : nullptr;
}

// The application, and its first thread: the one that creates the object. It belongs to the module whose state is
// current at that time. A module has one at a time.
class KEXFRAMEWORK_API CWinApp : public CWinThread {
 public:
  explicit CWinApp(LPCTSTR appName = nullptr);
  ~CWinApp() override;

  // TRUE: continue with Run.
  BOOL InitInstance() override;
  // Like that of a thread, but an application without a main window ends at once.
  int Run() override;

  // Shows help on a topic (WinHelp for the main window). Does nothing without a help file or a main window.
  virtual void WinHelp(DWORD_PTR data, UINT command = HELP_CONTEXT);
  // The framework calls it when the user requests help; calls WinHelp.
  virtual void WinHelpInternal(DWORD_PTR data, UINT command = HELP_CONTEXT);

  LPCTSTR m_pszAppName;
  LPCTSTR m_pszHelpFilePath = nullptr;  // not owned, like the name above
  HINSTANCE m_hInstance;
  LPTSTR m_lpCmdLine = nullptr;
  int m_nCmdShow = SW_SHOWNORMAL;

 private:
  AFX_MODULE_STATE* m_state;  // state of its module
};

// Stores the arguments of the program's entry point in the application object. A program with its own entry point calls
// it there. Returns TRUE.
KEXFRAMEWORK_API BOOL AfxWinInit(HINSTANCE instance, HINSTANCE previous, LPTSTR commandLine, int showCommand);

// Dialogs ------------------------------------------------------------------------------------------------------------

// An exchange of data between the controls of a dialog and variables.
class KEXFRAMEWORK_API CDataExchange {
 public:
  CDataExchange(CWnd* dialog, BOOL saveAndValidate);

  // Returns the control. Throws CNotSupportedException if the dialog has none with this identifier.
  HWND PrepareCtrl(int id);

  BOOL m_bSaveAndValidate;  // TRUE: from the controls to the variables
  CWnd* m_pDlgWnd;          // not owned
};

// Exchanges the state of a check box: 0, 1, or 2 for indeterminate. Any other value is shown as 0.
KEXFRAMEWORK_API void DDX_Check(CDataExchange* exchange, int id, int& value);

#endif
