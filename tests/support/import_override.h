// What a module imports, replaced for a while: to count calls into the system, and to make them fail.
#ifndef TESTS_SUPPORT_IMPORT_OVERRIDE_H
#define TESTS_SUPPORT_IMPORT_OVERRIDE_H

#include <windows.h>

// While it lives, the calls of one module to a function that it imports from another go to the replacement.
class ImportOverride {
 public:
  // importer: the DLL that calls, null for the program; library: as the importer names it, such as "gdiplus.dll".
  // Where the importer imports no such function, made() is false.
  template <typename Function>
  ImportOverride(const char* importer, const char* library, const char* function, Function* replacement)
      : ImportOverride(importer, library, function, reinterpret_cast<ULONG_PTR>(replacement)) {}
  ImportOverride(const ImportOverride&) = delete;
  ImportOverride& operator=(const ImportOverride&) = delete;
  ~ImportOverride();

  bool made() const { return slot_ != nullptr; }

 private:
  ImportOverride(const char* importer, const char* library, const char* function, ULONG_PTR replacement);

  ULONG_PTR* slot_ = nullptr;
  ULONG_PTR original_ = 0;
};

#endif
