#include <afxwin.h>

namespace {

// One for the process. The application object may be made before it otherwise, in another module's static objects.
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
