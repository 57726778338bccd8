// ActiveX controls in the place of a dialog's placeholder.
#include <gtest/gtest.h>

#include <kexlib/com/activex.h>

#include <afx.h>

#include <com/faulting_server.h>
#include <com/resources.h>
#include <support/child_process.h>
#include <support/import_override.h>
#include <support/message_pump.h>
#include <support/picture.h>
#include <support/resource_counts.h>
#include <support/test_control.h>

#include <string>

namespace {

constexpr SIZEL natural{5080, 2540};  // two inches by one
const char* const in_braces = "{9F4F3A70-6B1D-4C5E-8A11-520E773C0102}";

RECT place_in(HWND dialog, HWND window) {
  RECT place = {};
  GetWindowRect(window, &place);
  MapWindowPoints(nullptr, dialog, reinterpret_cast<POINT*>(&place), 2);
  return place;
}

void expect_rect(const RECT& actual, LONG left, LONG top, LONG width, LONG height) {
  EXPECT_EQ(actual.left, left);
  EXPECT_EQ(actual.top, top);
  EXPECT_EQ(actual.right - actual.left, width);
  EXPECT_EQ(actual.bottom - actual.top, height);
}

class ActiveX : public testing::Test {
 protected:
  ActiveX() {
    class_.prepare = [](TestControl* made) { made->natural_size = &natural; };
    dialog_ = CreateDialogParamA(nullptr, MAKEINTRESOURCEA(IDD_HOST), nullptr, nullptr, 0);
    placeholder_ = GetDlgItem(dialog_, IDC_PLACEHOLDER);
    place_ = place_in(dialog_, placeholder_);
  }
  ~ActiveX() override {
    if (dialog_) DestroyWindow(dialog_);
    EXPECT_EQ(RecordingDispatch::alive, 0);
  }

  TestControlClass class_;
  HWND dialog_, placeholder_;
  RECT place_;
  CAxWindowT<CWindow> host_;
};

TEST_F(ActiveX, TakesThePlaceholdersPlaceInItsNaturalSize) {
  const CComPtr<IUnknown> control = CreateControl(dialog_, &host_, IDC_PLACEHOLDER, in_braces);
  ASSERT_NE(control.p, nullptr);
  expect_rect(place_in(dialog_, host_.m_hWnd), place_.left, place_.top, 192, 96);
  EXPECT_FALSE(GetWindowLongA(placeholder_, GWL_STYLE) & WS_VISIBLE);
  EXPECT_EQ(GetDlgItem(dialog_, IDC_PLACEHOLDER), placeholder_);
  EXPECT_EQ(GetNextDlgTabItem(dialog_, GetDlgItem(dialog_, IDC_BEFORE), FALSE), GetDlgItem(dialog_, IDC_AFTER));
  // The host.
  char name[20];
  GetClassNameA(host_.m_hWnd, name, sizeof name);
  EXPECT_STREQ(name, "AtlAxWin140");
  EXPECT_EQ(GetParent(host_.m_hWnd), dialog_);
  EXPECT_EQ(GetWindowLongA(host_.m_hWnd, GWL_STYLE) & (WS_CHILD | WS_VISIBLE), WS_CHILD | WS_VISIBLE);
  EXPECT_EQ(GetWindowLongA(host_.m_hWnd, GWL_EXSTYLE), 0);
  EXPECT_EQ(GetWindowLongPtrA(host_.m_hWnd, GWLP_HINSTANCE),
            reinterpret_cast<LONG_PTR>(GetModuleHandleA("kexlib.dll")));
  EXPECT_EQ(GetDlgCtrlID(host_.m_hWnd), 0);
  // The control.
  EXPECT_EQ(control.p, static_cast<IOleObject*>(class_.made));
  EXPECT_EQ(GetParent(class_.made->window), host_.m_hWnd);
  EXPECT_TRUE(IsWindowVisible(class_.made->window));
}

int WINAPI dots_at_144_dpi(HDC dc, int index) {
  if (index == LOGPIXELSX) return 144;
  return index == LOGPIXELSY ? 120 : GetDeviceCaps(dc, index);
}

TEST_F(ActiveX, HasItsNaturalSizeByTheScreensDots) {
  const ImportOverride fine("kexlib.dll", "GDI32.dll", "GetDeviceCaps", dots_at_144_dpi);
  ASSERT_TRUE(fine.made());
  ASSERT_NE(CreateControl(dialog_, &host_, IDC_PLACEHOLDER, in_braces).p, nullptr);
  expect_rect(place_in(dialog_, host_.m_hWnd), place_.left, place_.top, 288, 120);
}

TEST_F(ActiveX, KeepsThePlaceholdersSizeWithoutIOleObject) {
  class_.prepare = [](TestControl* made) { made->is_ole_object = false; };
  const CComPtr<IUnknown> control = CreateControl(dialog_, &host_, IDC_PLACEHOLDER, in_braces);
  ASSERT_NE(control.p, nullptr);
  expect_rect(place_in(dialog_, host_.m_hWnd), place_.left, place_.top, place_.right - place_.left,
              place_.bottom - place_.top);
}

TEST_F(ActiveX, GivesOneReferenceToTheCaller) {
  CComPtr<IUnknown> control = CreateControl(dialog_, &host_, IDC_PLACEHOLDER, in_braces);
  ASSERT_NE(control.p, nullptr);
  const ULONG held = class_.made->references();
  control.Release();
  EXPECT_EQ(class_.made->references(), held - 1);
  CComPtr<IUnknown> kept = static_cast<IOleObject*>(class_.made);
  DestroyWindow(dialog_);  // destroys the host, and with it the control
  dialog_ = nullptr;
  EXPECT_TRUE(class_.made->closed);
  EXPECT_EQ(class_.made->references(), 1u);
}

// Registers a ProgID in the tests' Wine prefix while the object exists.
class ProgId {
 public:
  ProgId() {
    const char id[] = "{9F4F3A70-6B1D-4C5E-8A11-520E773C0102}";
    EXPECT_EQ(RegSetKeyValueA(HKEY_CLASSES_ROOT, "KexlibTests.Control\\CLSID", nullptr, REG_SZ, id, sizeof id),
              ERROR_SUCCESS);
  }
  ProgId(const ProgId&) = delete;
  ProgId& operator=(const ProgId&) = delete;
  ~ProgId() { EXPECT_EQ(RegDeleteTreeA(HKEY_CLASSES_ROOT, "KexlibTests.Control"), ERROR_SUCCESS); }
};

TEST_F(ActiveX, IsFoundByItsProgId) {
  EXPECT_EQ(CreateControl(dialog_, &host_, IDC_PLACEHOLDER, "KexlibTests.Control").p, nullptr);
  const ProgId known;
  const CComPtr<IUnknown> control = CreateControl(dialog_, &host_, IDC_PLACEHOLDER, "KexlibTests.Control");
  ASSERT_NE(control.p, nullptr);
  EXPECT_EQ(control.p, static_cast<IOleObject*>(class_.made));
}

TEST_F(ActiveX, IsNotMadeWithoutADialogOrAHost) {
  EXPECT_EQ(CreateControl(nullptr, &host_, IDC_PLACEHOLDER, in_braces).p, nullptr);
  EXPECT_EQ(CreateControl(reinterpret_cast<HWND>(0x12345678), &host_, IDC_PLACEHOLDER, in_braces).p, nullptr);
  EXPECT_EQ(CreateControl(dialog_, nullptr, IDC_PLACEHOLDER, in_braces).p, nullptr);
  EXPECT_EQ(host_.m_hWnd, nullptr);
  EXPECT_TRUE(IsWindowVisible(placeholder_));
  EXPECT_EQ(class_.made, nullptr);
}

TEST_F(ActiveX, IsNullWhereThereIsNoSuchClass) {
  for (const char* name : {"{00000000-0000-0000-0000-00000000ABCD}", "No.Such.Control", "{broken"}) {
    host_ = dialog_;
    EXPECT_EQ(CreateControl(dialog_, &host_, IDC_PLACEHOLDER, name).p, nullptr) << name;
    EXPECT_EQ(host_.m_hWnd, nullptr) << name;  // whatever its previous value
  }
  EXPECT_FALSE(IsWindowVisible(placeholder_));
}

TEST_F(ActiveX, LeavesAHostWithoutAControlInTheDialog) {
  for (const char* name : {"", static_cast<const char*>(nullptr)}) {
    EXPECT_EQ(CreateControl(dialog_, &host_, IDC_PLACEHOLDER, name).p, nullptr);
    ASSERT_TRUE(IsWindow(host_.m_hWnd));
    EXPECT_EQ(GetParent(host_.m_hWnd), dialog_);
    expect_rect(place_in(dialog_, host_.m_hWnd), place_.left, place_.top, place_.right - place_.left,
                place_.bottom - place_.top);
  }
}

TEST_F(ActiveX, StandsAtTheTopLeftWithoutAPlaceholder) {
  ASSERT_NE(CreateControl(dialog_, &host_, 999, in_braces).p, nullptr);
  expect_rect(place_in(dialog_, host_.m_hWnd), 0, 0, 192, 96);
  EXPECT_TRUE(IsWindowVisible(placeholder_));
}

TEST_F(ActiveX, LeavesNothingBehind) {
  const auto round = [&] {
    ASSERT_NE(CreateControl(dialog_, &host_, IDC_PLACEHOLDER, in_braces).p, nullptr);
    host_.DestroyWindow();
    CreateControl(dialog_, &host_, IDC_PLACEHOLDER, "No.Such.Control");
  };
  for (int i = 0; i < 3; ++i) round();
  const ResourceCounts before;
  for (int i = 0; i < 30; ++i) round();
  EXPECT_EQ(ResourceCounts(), before);
}

// COM's exception handling. The calls that would change it are recorded, not executed.

struct Security {
  int calls;
  HRESULT returned;
} security;

HRESULT WINAPI initialise_security(PSECURITY_DESCRIPTOR descriptor, LONG count, SOLE_AUTHENTICATION_SERVICE* services,
                                   void* reserved1, DWORD authentication, DWORD impersonation, void* list,
                                   DWORD capabilities, void* reserved3) {
  ++security.calls;
  EXPECT_EQ(descriptor, nullptr);
  EXPECT_EQ(count, -1);
  EXPECT_EQ(services, nullptr);
  EXPECT_EQ(reserved1, nullptr);
  EXPECT_EQ(authentication, 0u);
  EXPECT_EQ(impersonation, 0u);
  EXPECT_EQ(list, nullptr);
  EXPECT_EQ(capabilities, 8u);
  EXPECT_EQ(reserved3, nullptr);
  return security.returned;
}

class Options final : public IGlobalOptions {
 public:
  virtual ~Options() = default;
  int sets = 0;
  GLOBALOPT_PROPERTIES property = {};
  ULONG_PTR value = 0;
  HRESULT returned = S_OK;
  STDMETHODIMP QueryInterface(REFIID, void**) override { return E_NOINTERFACE; }
  STDMETHODIMP_(ULONG) AddRef() override { return 2; }
  STDMETHODIMP_(ULONG) Release() override { return 1; }
  STDMETHODIMP Set(GLOBALOPT_PROPERTIES which, ULONG_PTR to) override {
    ++sets;
    property = which;
    value = to;
    return returned;
  }
  STDMETHODIMP Query(GLOBALOPT_PROPERTIES, ULONG_PTR*) override { return E_NOTIMPL; }
};

struct Creation {
  int calls;
  CLSID clsid;
  DWORD context;
  IID iid;
  HRESULT returned;
  Options* options;
} creation;

HRESULT WINAPI create(REFCLSID clsid, IUnknown* outer, DWORD context, REFIID iid, void** object) {
  EXPECT_EQ(outer, nullptr);
  ++creation.calls;
  creation.clsid = clsid;
  creation.context = context;
  creation.iid = iid;
  *object = SUCCEEDED(creation.returned) ? creation.options : nullptr;
  return creation.returned;
}

class ComExceptionHandler : public testing::Test {
 protected:
  ComExceptionHandler() {
    security = {};
    creation = {};
    creation.options = &options_;
    EXPECT_TRUE(secures_.made() && creates_.made());
  }

  Options options_;

 private:
  ImportOverride secures_{"kexlib.dll", "ole32.dll", "CoInitializeSecurity", initialise_security};
  ImportOverride creates_{"kexlib.dll", "ole32.dll", "CoCreateInstance", create};
};

TEST_F(ComExceptionHandler, IsSwitchedOffAfterSecurityIsInitialised) {
  EXPECT_EQ(kexDisableComExceptionHandler(), S_OK);
  EXPECT_EQ(security.calls, 1);
  EXPECT_EQ(creation.calls, 1);
  const CLSID global_options = {0x0000034B, 0, 0, {0xC0, 0, 0, 0, 0, 0, 0, 0x46}};
  EXPECT_TRUE(creation.clsid == global_options);
  EXPECT_EQ(creation.context, 0x17u);
  EXPECT_TRUE(creation.iid == IID_IGlobalOptions);
  EXPECT_EQ(options_.sets, 1);
  EXPECT_EQ(options_.property, 1);
  EXPECT_EQ(options_.value, 1u);
}

TEST_F(ComExceptionHandler, IsSwitchedOffAgainWhereSecurityIsInitialisedAlready) {
  EXPECT_EQ(kexDisableComExceptionHandler(), S_OK);
  security.returned = RPC_E_TOO_LATE;
  EXPECT_EQ(kexDisableComExceptionHandler(), S_OK);
  EXPECT_EQ(options_.sets, 2);
  options_.returned = E_ACCESSDENIED;
  EXPECT_EQ(kexDisableComExceptionHandler(), E_ACCESSDENIED);
  EXPECT_EQ(options_.sets, 3);
}

TEST_F(ComExceptionHandler, StaysWhereACallFails) {
  security.returned = E_ACCESSDENIED;
  EXPECT_EQ(kexDisableComExceptionHandler(), E_ACCESSDENIED);
  EXPECT_EQ(creation.calls, 0);
  security.returned = S_OK;
  creation.returned = REGDB_E_CLASSNOTREG;
  EXPECT_EQ(kexDisableComExceptionHandler(), REGDB_E_CLASSNOTREG);
  EXPECT_EQ(options_.sets, 0);
}

TEST(ComExceptionHandlerOfTheSystem, IsSwitchedOffTwice) {
  ASSERT_EQ(CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED), S_OK);
  EXPECT_EQ(kexDisableComExceptionHandler(), S_OK);
  EXPECT_EQ(kexDisableComExceptionHandler(), S_OK);
  CoUninitialize();
}

// The effect of a fault in a server, with COM's exception handling at its default and disabled.

unsigned result_of(const std::string& call, const std::string& fault, const std::string& handling) {
  return run_program("faulting_server.exe", call + " " + fault + " " + handling);
}

// COM is not involved in a call within the apartment.
TEST(FaultingServerInChildProcess, IsNotContainedWithinTheApartment) {
  for (const char* handling : {"default", "disabled"}) {
    EXPECT_EQ(result_of("direct", "violation", handling), unhandled_violation) << handling;
    EXPECT_EQ(result_of("direct", "exception", handling), reached_the_caller) << handling;
  }
}

bool in_wine() { return GetProcAddress(GetModuleHandleA("ntdll.dll"), "wine_get_version") != nullptr; }

// Wine's stubs contain a C++ exception, but not one of Visual C++'s kind (the code 0xE06D7363): their handlers pass it
// on.
unsigned marshalled_exception() {
#ifdef _MSC_VER
  if (in_wine()) return unhandled_exception;
#endif
  return became_a_failure;
}

TEST(FaultingServerInChildProcess, FailsTheCallFromAnotherApartmentByDefault) {
  EXPECT_EQ(result_of("marshalled", "violation", "default"), became_a_failure);
  EXPECT_EQ(result_of("marshalled", "exception", "default"), marshalled_exception());
}

// Wine accepts the option and ignores it. Windows may end the process without asking its filter.
TEST(FaultingServerInChildProcess, EndsTheProcessByAFatalExceptionOnlyOnceHandlingIsDisabled) {
  const unsigned violation = result_of("marshalled", "violation", "disabled");
  if (in_wine())
    EXPECT_EQ(violation, became_a_failure);
  else
    EXPECT_TRUE(violation == unhandled_violation || violation == EXCEPTION_ACCESS_VIOLATION) << violation;
  EXPECT_EQ(result_of("marshalled", "exception", "disabled"), marshalled_exception());
}

}  // namespace
