// A program that calls a COM server whose method fails with an exception, after kexDisableComExceptionHandler.
//
// Arguments: "direct" calls within the apartment, "marshalled" calls the object in another apartment; "violation" is an
// access violation, "exception" a C++ exception. The exit code identifies where the exception arrived.
#include <kexlib/com/activex.h>

#include <windows.h>
#include <in_process_server.h>
#include <oaidl.h>
#include <objbase.h>

#include <com/faulting_server.h>

#include <cstdio>
#include <cstring>
#include <exception>
#include <thread>

namespace {

enum class Fault { access_violation, cpp_exception };

class FaultingServer : public in_process::Counted<IDispatch> {
 public:
  explicit FaultingServer(Fault fault) : fault_(fault) {}
  STDMETHODIMP QueryInterface(REFIID id, void** object) override {
    *object = id == IID_IUnknown || id == IID_IDispatch ? static_cast<IDispatch*>(this) : nullptr;
    if (!*object) return E_NOINTERFACE;
    AddRef();
    return S_OK;
  }
  STDMETHODIMP GetTypeInfoCount(UINT* count) override {
    if (fault_ == Fault::cpp_exception) throw 5;
    *count = *static_cast<volatile UINT*>(nullptr);
    return S_OK;
  }
  STDMETHODIMP GetTypeInfo(UINT, LCID, ITypeInfo**) override { return E_NOTIMPL; }
  STDMETHODIMP GetIDsOfNames(REFIID, LPOLESTR*, UINT, LCID, DISPID*) override { return E_NOTIMPL; }
  STDMETHODIMP Invoke(DISPID, REFIID, LCID, WORD, DISPPARAMS*, VARIANT*, EXCEPINFO*, UINT*) override {
    return E_NOTIMPL;
  }

 private:
  Fault fault_;
};

[[noreturn]] void end(unsigned code) {
  TerminateProcess(GetCurrentProcess(), code);
  for (;;) Sleep(INFINITE);
}

LONG WINAPI end_unhandled(EXCEPTION_POINTERS* exception) {
  const bool violation = exception->ExceptionRecord->ExceptionCode == EXCEPTION_ACCESS_VIOLATION;
  end(violation ? unhandled_violation : unhandled_exception);
}

int call(IDispatch* server) {
  UINT count = 0;
  try {
    const HRESULT result = server->GetTypeInfoCount(&count);
    std::printf("0x%08X\n", static_cast<unsigned>(result));
    return static_cast<int>(FAILED(result) ? became_a_failure : no_fault);
  } catch (int) {
    return static_cast<int>(reached_the_caller);
  }
}

int call_marshalled(Fault fault) {
  IStream* stream = nullptr;
  const HANDLE ready = CreateEventA(nullptr, TRUE, FALSE, nullptr);
  std::thread([&stream, ready, fault] {
    CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED);
    CoMarshalInterThreadInterfaceInStream(IID_IDispatch, new FaultingServer(fault), &stream);
    SetEvent(ready);
    MSG message;
    while (GetMessageA(&message, nullptr, 0, 0) > 0) DispatchMessageA(&message);
  }).detach();
  WaitForSingleObject(ready, INFINITE);
  IDispatch* server = nullptr;
  if (FAILED(CoGetInterfaceAndReleaseStream(stream, IID_IDispatch, reinterpret_cast<void**>(&server)))) return no_fault;
  return call(server);
}

}  // namespace

int main(int, char** arguments) {
  SetErrorMode(SEM_FAILCRITICALERRORS | SEM_NOGPFAULTERRORBOX);
  SetUnhandledExceptionFilter(end_unhandled);
  std::set_terminate([] { end(unhandled_exception); });
  CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED);
  if (std::strcmp(arguments[3], "default") != 0 && FAILED(kexDisableComExceptionHandler())) return 1;
  const Fault fault = std::strcmp(arguments[2], "violation") == 0 ? Fault::access_violation : Fault::cpp_exception;
  const bool marshalled = std::strcmp(arguments[1], "marshalled") == 0;
  end(static_cast<unsigned>(marshalled ? call_marshalled(fault) : call(new FaultingServer(fault))));
}
