#include <atlwin.h>

#include <framework/system_library.h>

namespace ATL {

namespace {

// The system's thunks.
struct Thunks {
  AtlThunkData_t* (*allocate)();
  void (*init)(AtlThunkData_t*, void* function, size_t firstParameter);
  WNDPROC (*code)(AtlThunkData_t*);
  void (*free)(AtlThunkData_t*);
  bool there;

  Thunks() {
    framework::SystemLibrary library("atlthunk.dll");
    there = library.find(allocate, "AtlThunk_AllocateData") && library.find(init, "AtlThunk_InitData") &&
            library.find(code, "AtlThunk_DataToCode") && library.find(free, "AtlThunk_FreeData");
  }
};

const Thunks& thunks() {
  static const Thunks found;
  return found;
}

}  // namespace

CWndProcThunk::~CWndProcThunk() {
  if (m_data) thunks().free(m_data);
}

BOOL CWndProcThunk::Init(void* function, void* object) noexcept {
  if (!thunks().there) return FALSE;
  if (!m_data && !(m_data = thunks().allocate())) return FALSE;
  thunks().init(m_data, function, reinterpret_cast<size_t>(object));
  return TRUE;
}

void* CWndProcThunk::GetCodeAddress() noexcept {
  return m_data ? reinterpret_cast<void*>(thunks().code(m_data)) : nullptr;
}

}  // namespace ATL
