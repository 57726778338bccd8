// A program that creates an object whose server activates an activation context and does not deactivate it. The
// argument is the path of a manifest. The exit code is 10 if the system then raised STATUS_SXS_EARLY_DEACTIVATION.
#include <kexlib/com/registration_free.h>

#include <windows.h>
#include <in_process_server.h>

#include <support/crash_report.h>

#include <string>

namespace {

constexpr int early_deactivation = 10;

constexpr GUID careless_class = {0x5D0E8A60, 0x3C1B, 0x4B7A, {0x9E, 0x52, 0x6A, 0x1F, 0x0C, 0x7D, 0x2B, 0x10}};

class CarelessFactory : public in_process::Counted<IClassFactory> {
 public:
  explicit CarelessFactory(HANDLE context) : context_(context) {}
  STDMETHODIMP QueryInterface(REFIID, void** object) override {
    *object = static_cast<IClassFactory*>(this);
    AddRef();
    return S_OK;
  }
  STDMETHODIMP CreateInstance(IUnknown*, REFIID, void** object) override {
    *object = nullptr;
    ULONG_PTR cookie;
    ActivateActCtx(context_, &cookie);
    return E_FAIL;
  }
  STDMETHODIMP LockServer(BOOL) override { return S_OK; }

 private:
  HANDLE context_;
};

LONG WINAPI end_at_early_deactivation(EXCEPTION_POINTERS* exception) {
  constexpr DWORD status = 0xC015000F;  // STATUS_SXS_EARLY_DEACTIVATION
  if (exception->ExceptionRecord->ExceptionCode == status) TerminateProcess(GetCurrentProcess(), early_deactivation);
  return EXCEPTION_CONTINUE_SEARCH;
}

// Creates an object of that class while this manifest is active.
void make_carelessly(const std::string& manifest) {
  const std::string folder = manifest.substr(0, manifest.rfind('\\'));
  ACTCTXA wanted = {};
  wanted.cbSize = sizeof wanted;
  wanted.lpSource = manifest.c_str();
  AddVectoredExceptionHandler(TRUE, end_at_early_deactivation);
  CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED);
  DWORD registered = 0;
  CoRegisterClassObject(careless_class, new CarelessFactory(CreateActCtxA(&wanted)), CLSCTX_INPROC_SERVER,
                        REGCLS_MULTIPLEUSE, &registered);
  IUnknown* object = nullptr;
  reg_free_co_create(careless_class, folder.c_str(), manifest.c_str(), CLSCTX_INPROC_SERVER, &object);
}

}  // namespace

int main(int, char** arguments) {
  report_crashes();
  make_carelessly(arguments[1]);
  return 0;
}
