#include <atlwin.h>

#include <framework/system_library.h>

#include <new>

struct AtlThunkData_t;

namespace ATL {

// A thunk of the system. A freed thunk is reused by the next object, because the system may not free its memory. The
// list needs no lock and no allocation, so that a thunk can be freed at any time, also when the process ends.
struct alignas(MEMORY_ALLOCATION_ALIGNMENT) CStdThunk {
  SLIST_ENTRY link;
  AtlThunkData_t* data;
};

namespace {

struct Thunks {
  AtlThunkData_t* (*allocate)();
  void (*init)(AtlThunkData_t*, void* function, size_t firstParameter);
  WNDPROC (*code)(AtlThunkData_t*);
  bool there;
  SLIST_HEADER given_back;

  Thunks() {
    framework::SystemLibrary library("atlthunk.dll");
    there = library.find(allocate, "AtlThunk_AllocateData") && library.find(init, "AtlThunk_InitData") &&
            library.find(code, "AtlThunk_DataToCode");
    InitializeSListHead(&given_back);
  }

  // Null if no memory is left.
  CStdThunk* take() {
    if (auto* waiting = InterlockedPopEntrySList(&given_back)) return CONTAINING_RECORD(waiting, CStdThunk, link);
    AtlThunkData_t* data = allocate();
    return data ? new (std::nothrow) CStdThunk{{}, data} : nullptr;
  }
};

Thunks& thunks() {
  static Thunks found;
  return found;
}

}  // namespace

CWndProcThunk::~CWndProcThunk() {
  if (m_thunk) InterlockedPushEntrySList(&thunks().given_back, &m_thunk->link);
}

BOOL CWndProcThunk::Init(void* function, void* object) noexcept {
  if (!thunks().there) return FALSE;
  if (!m_thunk && !(m_thunk = thunks().take())) return FALSE;
  thunks().init(m_thunk->data, function, reinterpret_cast<size_t>(object));
  return TRUE;
}

void* CWndProcThunk::GetCodeAddress() noexcept {
  return m_thunk ? reinterpret_cast<void*>(thunks().code(m_thunk->data)) : nullptr;
}

}  // namespace ATL
