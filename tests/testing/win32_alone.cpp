// Helpers of kexlib/testing.h in a program without MFC and without kexlib.dll. The exit code is 0, or the number of the
// check that failed.
#ifdef WINDOWS_FIRST  // MFC is on the include path; otherwise it is not
#include <windows.h>
#endif

#include <kexlib/testing.h>

#ifdef _AFX
#error "the helpers brought MFC"
#endif

using namespace kexlib::testing;

int main() {
  const FaultObserver faults;
  const Watchdog watchdog("the program");
  CountingObject<> object;
  const ResourceBalance balance{&object};
  TaskDialogDriver user;
  user.press(L"OK");
  if (MessageBoxW(nullptr, L"Text", L"Title", MB_OK) != IDOK) return 1;
  if (!user.problem().empty()) return 2;
  object.AddRef();
  if (balance.problem().find("1 more reference to the object") == std::string::npos) return 3;
  object.Release();
  if (!pump_until([] { return true; })) return 4;
  if (!faults.problem().empty() || !watchdog.problem().empty()) return 5;
  if (GetModuleHandleA("kexlib.dll") || GetModuleHandleA("kexframework.dll")) return 6;
  return 0;
}
