#include <module/process_end.h>
#include <support/common_controls.h>

#include <atomic>

namespace kexlib {
namespace {

// The activation context of the library's own manifest (version.rc). Created at first use: the search for the files of
// the assembly takes a tenth of the time needed to show a dialog.
class OwnManifest {
 public:
  constexpr OwnManifest() = default;
  OwnManifest(const OwnManifest&) = delete;
  OwnManifest& operator=(const OwnManifest&) = delete;
  ~OwnManifest() {
    if (context_ && !process_is_ending()) ReleaseActCtx(context_);
  }

  // Null if it cannot be created.
  HANDLE context();

 private:
  std::atomic<HANDLE> context_{nullptr};
};

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
  ReleaseActCtx(made);  // another thread has stored its context
  return known;
}

constinit OwnManifest own_manifest;

}  // namespace

// If it cannot be created or activated, the program's own manifest stays active, which may name version 6 too.
CommonControls6::CommonControls6() {
  const HANDLE context = own_manifest.context();
  if (context && !ActivateActCtx(context, &cookie_)) cookie_ = 0;
}

// With the flag: an action of the dialog may have left another context active.
CommonControls6::~CommonControls6() {
  if (cookie_) DeactivateActCtx(DEACTIVATE_ACTCTX_FLAG_FORCE_EARLY_DEACTIVATION, cookie_);
}

// The library stays loaded, since windows of its classes may be left. The active context redirects the name to version
// 6; without one it is searched for in the system folder only, never in the program's folder or the current directory.
FARPROC CommonControls6::find(const char* function) const {
  const HMODULE library = LoadLibraryExW(L"comctl32.dll", nullptr, LOAD_LIBRARY_SEARCH_SYSTEM32);
  return library ? GetProcAddress(library, function) : nullptr;
}

}  // namespace kexlib
