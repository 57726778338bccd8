// Loads kexlib.dll, an extension DLL of MFC, and frees it or ends with it. The argument names the ending. The exit code
// is 0, 7 at the end of the process, or identifies the failure.
#include <afxwin.h>

#include <support/crash_report.h>

#include <cstring>

namespace {

int deleted = 0;

// An entry for kexlib.dll in the framework's list of extension DLLs, which the DLL takes from the list when it is
// freed.
struct Entry : CDynLinkLibrary {
  explicit Entry(HMODULE library) : CDynLinkLibrary(library, library) {}
  ~Entry() override {
    if (ends) TerminateProcess(GetCurrentProcess(), 8);
    ++deleted;
  }
  static inline bool ends = false;
};

bool is_searched(HMODULE library) { return AfxFindResourceHandle(MAKEINTRESOURCE(1), RT_VERSION) == library; }

}  // namespace

int main(int, char** arguments) {
  report_crashes();
  const HMODULE library = LoadLibraryA("kexlib.dll");
  if (!library) return 1;
  if (is_searched(library)) return 2;  // it has no resources for the program
  new Entry(library);
  if (!is_searched(library)) return 3;
  if (std::strcmp(arguments[1], "end") == 0) {
    Entry::ends = true;
    return 7;
  }
  if (!FreeLibrary(library)) return 4;
  if (GetModuleHandleA("kexlib.dll")) return 5;
  return deleted == 1 ? 0 : 6;
}
