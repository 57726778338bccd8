// A library of the system whose functions are looked up at run time, since there is no import library for them.
#ifndef FRAMEWORK_SYSTEM_LIBRARY_H
#define FRAMEWORK_SYSTEM_LIBRARY_H

#include <windows.h>

namespace framework {

// Stays loaded. It must not be made while this library itself is loaded: make it at first use.
class SystemLibrary {
 public:
  explicit SystemLibrary(const char* name) : library_(LoadLibraryExA(name, nullptr, LOAD_LIBRARY_SEARCH_SYSTEM32)) {}

  // False, and a null function, where the system has none.
  template <typename Function>
  bool find(Function& function, const char* name) const {
    // The way over void* keeps the compiler from asking whether the types fit: nobody can tell it.
    auto address = library_ ? reinterpret_cast<void*>(GetProcAddress(library_, name)) : nullptr;
    function = reinterpret_cast<Function>(address);
    return function != nullptr;
  }

 private:
  HMODULE library_;
};

}  // namespace framework

#endif
