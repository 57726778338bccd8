#include <afxwin.h>

namespace {

// One for the process. Made at first use: a static object in another module may create the application object before
// this module's own are initialised.
AFX_MODULE_STATE& program_state() {
  static AFX_MODULE_STATE state;
  return state;
}

thread_local AFX_MODULE_STATE* current_state = nullptr;

}  // namespace

AFX_MODULE_STATE::AFX_MODULE_STATE()
    : m_hCurrentInstanceHandle(GetModuleHandleA(nullptr)), m_hCurrentResourceHandle(m_hCurrentInstanceHandle) {}

AFX_MODULE_STATE* AfxGetAppModuleState() { return &program_state(); }

AFX_MODULE_STATE* AfxGetModuleState() { return current_state ? current_state : &program_state(); }

AFX_MODULE_STATE* AfxSetModuleState(AFX_MODULE_STATE* state) {
  AFX_MODULE_STATE* previous = AfxGetModuleState();
  current_state = state;
  return previous;
}
