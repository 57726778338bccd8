// A library of the system without an import library; its functions are found at run time.
#ifndef FRAMEWORK_SYSTEM_LIBRARY_H
#define FRAMEWORK_SYSTEM_LIBRARY_H

#include <windows.h>

namespace framework {

// The library stays loaded. Create the object at first use, never while this module is being loaded.
class SystemLibrary {
 public:
  explicit SystemLibrary(const char* name) : library_(LoadLibraryExA(name, nullptr, LOAD_LIBRARY_SEARCH_SYSTEM32)) {}

  // Returns false, and sets a null pointer, if the function does not exist.
  template <typename Function>
  bool find(Function& function, const char* name) const {
    // The cast goes through void* because the compiler warns about unrelated function types.
    auto address = library_ ? reinterpret_cast<void*>(GetProcAddress(library_, name)) : nullptr;
    function = reinterpret_cast<Function>(address);
    return function != nullptr;
  }

 private:
  HMODULE library_;
};

}  // namespace framework

#endif
