#include <atlbase.h>
#include <module/common_controls.h>
#include <module/process_state.h>

namespace kexlib::module {

OwnManifest::~OwnManifest() {
  if (context_ && !process_is_ending()) ReleaseActCtx(context_);
}

HANDLE OwnManifest::context() {
  HANDLE known = context_;
  if (known) return known;
  ACTCTXW wanted{};
  wanted.cbSize = sizeof wanted;
  wanted.dwFlags = ACTCTX_FLAG_HMODULE_VALID | ACTCTX_FLAG_RESOURCE_NAME_VALID;
  wanted.hModule = ATL::_AtlBaseModule.GetModuleInstance();
  wanted.lpResourceName = MAKEINTRESOURCEW(3);  // ISOLATIONAWARE_NOSTATICIMPORT_MANIFEST_RESOURCE_ID
  const HANDLE made = CreateActCtxW(&wanted);
  if (made == INVALID_HANDLE_VALUE) return nullptr;
  if (context_.compare_exchange_strong(known, made)) return made;
  ReleaseActCtx(made);  // another thread was quicker
  return known;
}

// Where it cannot be made or activated the program's own holds on, which may well do.
CommonControls6::CommonControls6() {
  const HANDLE context = own_manifest.context();
  if (context && !ActivateActCtx(context, &cookie_)) cookie_ = 0;
}

// Early, since an action may have left one of its own active.
CommonControls6::~CommonControls6() {
  if (cookie_) DeactivateActCtx(DEACTIVATE_ACTCTX_FLAG_FORCE_EARLY_DEACTIVATION, cookie_);
}

// The library stays loaded, on purpose: windows of its classes may be left.
FARPROC CommonControls6::find(const char* function) const {
  const HMODULE library = LoadLibraryW(L"comctl32.dll");
  return library ? GetProcAddress(library, function) : nullptr;
}

}  // namespace kexlib::module
