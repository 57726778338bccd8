// Replaces an imported function of a module: to count calls into the system, and to make them fail.
#ifndef TESTS_SUPPORT_IMPORT_OVERRIDE_H
#define TESTS_SUPPORT_IMPORT_OVERRIDE_H

#include <windows.h>

// While the object lives, the calls of one module to a function that it imports go to the replacement.
class ImportOverride {
 public:
  // importer: the DLL that calls, null for the program; library: as the importer names it, such as "gdiplus.dll".
  // made() is false if the importer does not import the function.
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
