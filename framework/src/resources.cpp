#include <afxwin.h>

#include <algorithm>
#include <iterator>
#include <mutex>
#include <vector>

namespace {

// The modules whose resources are available to the program, the newest last.
struct Libraries {
  std::mutex lock;
  std::vector<CDynLinkLibrary*> list;
};

Libraries& libraries() {
  static Libraries all;
  return all;
}

// Returns the first module for which `holds` is true, in the order of the search; null if there is none.
template <typename Holds>
HINSTANCE first_module(Holds holds) {
  if (holds(AfxGetResourceHandle())) return AfxGetResourceHandle();
  std::lock_guard guard(libraries().lock);
  const std::vector<CDynLinkLibrary*>& list = libraries().list;
  auto found =
      std::find_if(list.rbegin(), list.rend(), [&](CDynLinkLibrary* each) { return holds(each->m_hResource); });
  return found == list.rend() ? nullptr : (*found)->m_hResource;
}

}  // namespace

BOOL AfxInitExtensionModule(AFX_EXTENSION_MODULE& state, HMODULE module) {
  state = {TRUE, module, module};
  return TRUE;
}

void AfxTermExtensionModule(AFX_EXTENSION_MODULE& state, BOOL all) {
  std::vector<CDynLinkLibrary*> of_the_module;
  {
    std::lock_guard guard(libraries().lock);
    std::copy_if(libraries().list.begin(), libraries().list.end(), std::back_inserter(of_the_module),
                 [&](CDynLinkLibrary* each) { return all || each->m_hModule == state.hModule; });
  }
  for (CDynLinkLibrary* each : of_the_module) delete each;
  state.bInitialized = FALSE;
}

CDynLinkLibrary::CDynLinkLibrary(AFX_EXTENSION_MODULE& state) : CDynLinkLibrary(state.hModule, state.hResource) {}

CDynLinkLibrary::CDynLinkLibrary(HINSTANCE module, HINSTANCE resources) : m_hModule(module), m_hResource(resources) {
  std::lock_guard guard(libraries().lock);
  libraries().list.push_back(this);
}

CDynLinkLibrary::~CDynLinkLibrary() {
  std::lock_guard guard(libraries().lock);
  std::erase(libraries().list, this);
}

HINSTANCE AfxFindResourceHandle(LPCSTR name, LPCSTR type) {
  return first_module([&](HINSTANCE module) { return FindResourceA(module, name, type) != nullptr; });
}

HINSTANCE AfxFindStringResourceHandle(UINT id) {
  // Not FindResource: strings are stored in blocks of sixteen, and a block may lack this string.
  const wchar_t* text = nullptr;
  return first_module(
      [&](HINSTANCE module) { return LoadStringW(module, id, reinterpret_cast<LPWSTR>(&text), 0) > 0; });
}
