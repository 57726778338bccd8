// Objects of unregistered classes, created through the manifest of their server.
#include <gtest/gtest.h>

#include <kexlib/com/registration_free.h>

#include <afx.h>
#include <atlbase.h>
#include <shapes.h>

#include <com/registration_free_fixture.h>
#include <support/child_process.h>
#include <support/files.h>
#include <support/import_override.h>

#include <cstring>
#include <string>
#include <thread>

namespace {

using namespace registration_free;

HANDLE active_context() {
  HANDLE context = nullptr;
  EXPECT_TRUE(GetCurrentActCtx(&context));
  return context;  // the reference is not released: the handle is only compared
}

// manifest path

TEST(ManifestPath, HasTheComponentsNameAndItsOwnExtension) {
  EXPECT_EQ(reg_free_manifest_path("C:\\m", "C:\\bin\\part.dll"), "C:\\m\\part.manifest");
  EXPECT_EQ(reg_free_manifest_path("C:\\m\\", "C:\\bin\\part.dll"), "C:\\m\\part.manifest");
  EXPECT_EQ(reg_free_manifest_path("C:\\m", "C:\\bin\\part"), "C:\\m\\part.manifest");
  EXPECT_EQ(reg_free_manifest_path("C:\\m", "part.dll"), "C:\\m\\part.manifest");
  EXPECT_EQ(reg_free_manifest_path("C:\\m.x", "C:\\b.in\\part"), "C:\\m.x\\part.manifest");
}

// PathAddExtension adds no extension to a name that has one: callers depend on the resulting manifest names.
TEST(ManifestPath, LeavesAFurtherExtensionAsItIs) {
  EXPECT_EQ(reg_free_manifest_path("C:\\m", "C:\\bin\\part.2.dll"), "C:\\m\\part.2");
}

TEST(ManifestPath, IsEmptyWithoutAComponent) {
  EXPECT_EQ(reg_free_manifest_path("C:\\m", ""), "");
  EXPECT_EQ(reg_free_manifest_path("C:\\m", nullptr), "");
  EXPECT_EQ(reg_free_manifest_path(nullptr, ""), "");
  EXPECT_EQ(reg_free_manifest_path(nullptr, "part.dll"), "");
}

TEST(ManifestPath, HasNoExtensionWhereThereIsNoRoomForIt) {
  const std::string folder = "C:\\" + std::string(230, 'd');  // 233 characters
  const auto path_of = [&](size_t length) {
    return reg_free_manifest_path(folder.c_str(), (std::string(length, 'n') + ".dll").c_str());
  };
  const std::string longest = folder + "\\" + std::string(16, 'n') + ".manifest";
  ASSERT_EQ(longest.size(), 259u);
  EXPECT_EQ(path_of(16), longest);
  EXPECT_EQ(path_of(17), folder + "\\" + std::string(17, 'n'));
  EXPECT_EQ(path_of(25), folder + "\\" + std::string(25, 'n'));  // 259 characters
}

TEST(ManifestPath, IsEmptyWhereItWouldBeTooLong) {
  const std::string folder = "C:\\" + std::string(230, 'd');  // 233 characters
  EXPECT_EQ(reg_free_manifest_path(folder.c_str(), (std::string(26, 'n') + ".dll").c_str()), "");
  EXPECT_EQ(reg_free_manifest_path("C:\\m", std::string(1000, 'n').c_str()), "");
  EXPECT_EQ(reg_free_manifest_path(std::string(259, 'd').c_str(), "n.dll"), "");
  EXPECT_EQ(reg_free_manifest_path(std::string(1000, 'd').c_str(), "n.dll"), "");
}

// creation

TEST(RegistrationFree, MakesObjectsThroughTheManifestAndOnlyThroughIt) {
  const Com com;
  CComPtr<IUnknown> object;
  EXPECT_EQ(reg_free_co_create(__uuidof(Circle), components().c_str(), "", CLSCTX_INPROC_SERVER, &object),
            REGDB_E_CLASSNOTREG);
  EXPECT_EQ(object.p, nullptr);
  ASSERT_EQ(
      reg_free_co_create(__uuidof(Circle), components().c_str(), manifest().c_str(), CLSCTX_INPROC_SERVER, &object),
      S_OK);
  CComPtr<IArea> area;
  ASSERT_EQ(object.p->QueryInterface(__uuidof(IArea), reinterpret_cast<void**>(&area)), S_OK);
  double value = 0;
  EXPECT_EQ(area->get_Area(&value), S_OK);
  EXPECT_EQ(value, 3.25);
  // Afterwards it is as unknown as before.
  CComPtr<IUnknown> another;
  EXPECT_EQ(CoCreateInstance(__uuidof(Circle), nullptr, CLSCTX_INPROC_SERVER, IID_IUnknown,
                             reinterpret_cast<void**>(&another)),
            REGDB_E_CLASSNOTREG);
}

TEST(RegistrationFree, MakesObjectsThatAutomationCanUse) {
  const Com com;
  CComPtr<IUnknown> object;
  ASSERT_EQ(
      reg_free_co_create(__uuidof(Square), components().c_str(), manifest().c_str(), CLSCTX_INPROC_SERVER, &object),
      S_OK);
  CComPtr<IDispatch> dispatch;
  ASSERT_EQ(object.QueryInterface(&dispatch), S_OK);
  wchar_t name[] = L"Area";
  LPOLESTR names[] = {name};
  DISPID id = 0;
  ASSERT_EQ(dispatch->GetIDsOfNames(IID_NULL, names, 1, 0, &id), S_OK);
  DISPPARAMS none = {};
  CComVariant area;
  EXPECT_EQ(dispatch->Invoke(id, IID_NULL, 0, DISPATCH_PROPERTYGET, &none, &area, nullptr, nullptr), S_OK);
  EXPECT_EQ(area.vt, VT_R8);
  EXPECT_EQ(area.dblVal, 4.0);
}

TEST(RegistrationFree, GivesOneReferenceToTheCaller) {
  const Com com;
  IUnknown* object = nullptr;
  ASSERT_EQ(
      reg_free_co_create(__uuidof(Frame), components().c_str(), manifest().c_str(), CLSCTX_INPROC_SERVER, &object),
      S_OK);
  EXPECT_EQ(object->Release(), 0u);
}

void make_on_a_multithreaded_thread(const GUID& clsid) {
  std::thread([&] {
    const Com com(COINIT_MULTITHREADED);
    CComPtr<IUnknown> object;
    EXPECT_EQ(reg_free_co_create(clsid, components().c_str(), manifest().c_str(), CLSCTX_INPROC_SERVER, &object), S_OK);
  }).join();
}

TEST(RegistrationFree, MakesObjectsInTheMultithreadedApartmentToo) { make_on_a_multithreaded_thread(__uuidof(Square)); }

// The system finds the class on this thread, and the object is created on the thread of its apartment.
TEST(RegistrationFree, MakesObjectsOfAnotherApartmentToo) { make_on_a_multithreaded_thread(__uuidof(Circle)); }

TEST(RegistrationFree, RefusesANullOutPointer) {
  EXPECT_EQ(
      reg_free_co_create(__uuidof(Circle), components().c_str(), manifest().c_str(), CLSCTX_INPROC_SERVER, nullptr),
      E_POINTER);
}

TEST(RegistrationFree, LeavesTheResultAloneOnFailure) {
  const Com com;
  auto* const before = reinterpret_cast<IUnknown*>(1);
  IUnknown* object = before;
  EXPECT_EQ(reg_free_co_create(unknown_class, components().c_str(), manifest().c_str(), CLSCTX_INPROC_SERVER, &object),
            REGDB_E_CLASSNOTREG);
  EXPECT_EQ(object, before);
}

TEST(RegistrationFree, PassesOnWhatTheServerSays) {
  const Com com;
  CComPtr<IUnknown> object;
  EXPECT_EQ(
      reg_free_co_create(__uuidof(Spiral), components().c_str(), manifest().c_str(), CLSCTX_INPROC_SERVER, &object),
      CLASS_E_CLASSNOTAVAILABLE);
}

// A registered class, in this case one of the system, needs no manifest.
TEST(RegistrationFree, WithoutAManifestIsAPlainCreation) {
  const Com com;
  for (const char* none : {"", static_cast<const char*>(nullptr)}) {
    CComPtr<IUnknown> object;
    EXPECT_EQ(reg_free_co_create(CLSID_StdGlobalInterfaceTable, "", none, CLSCTX_INPROC_SERVER, &object), S_OK);
    EXPECT_NE(object.p, nullptr);
  }
}

TEST(RegistrationFree, TriesWithoutAManifestThatIsNone) {
  const Com com;
  TemporaryFolder folder;
  const std::string root = folder.path().string();
  write_file("malformed.manifest", "<assembly><file");
  write_file("empty.manifest", "");
  write_file("foreign.manifest", "<?xml version=\"1.0\"?><other/>");
  std::string other = read_file(manifest());
  other.replace(other.find("com_server.dll"), 14, "elsewhere.dll");
  for (const char* name : {"missing", "malformed", "empty", "foreign"}) {
    const std::string path = root + "\\" + name + ".manifest";
    CComPtr<IUnknown> object;
    EXPECT_EQ(reg_free_co_create(__uuidof(Circle), components().c_str(), path.c_str(), CLSCTX_INPROC_SERVER, &object),
              REGDB_E_CLASSNOTREG)
        << name;
    // ... and a registered class is created from the registry.
    EXPECT_EQ(reg_free_co_create(CLSID_StdGlobalInterfaceTable, components().c_str(), path.c_str(),
                                 CLSCTX_INPROC_SERVER, &object),
              S_OK)
        << name;
  }
  write_file("wrong.manifest", other);
  CComPtr<IUnknown> object;
  EXPECT_LT(reg_free_co_create(__uuidof(Circle), root.c_str(), (root + "\\wrong.manifest").c_str(),
                               CLSCTX_INPROC_SERVER, &object),
            0);
  EXPECT_EQ(object.p, nullptr);
}

TEST(RegistrationFree, FailsWhereTheServerIsForAnotherProcessor) {
  const Com com;
  TemporaryFolder folder;
  const std::string root = folder.path().string();
  std::string server = read_file(components() + "\\com_server.dll");
  IMAGE_DOS_HEADER header;
  std::memcpy(&header, server.data(), sizeof header);
  const WORD x86 = IMAGE_FILE_MACHINE_I386;
  std::memcpy(&server[static_cast<std::size_t>(header.e_lfanew) + sizeof(DWORD)], &x86, sizeof x86);
  write_file("com_server.dll", server);
  write_file("com_server.manifest", read_file(manifest()));
  CComPtr<IUnknown> object;
  EXPECT_LT(reg_free_co_create(__uuidof(Circle), root.c_str(), (root + "\\com_server.manifest").c_str(),
                               CLSCTX_INPROC_SERVER, &object),
            0);
  EXPECT_EQ(object.p, nullptr);
}

TEST(RegistrationFree, LeavesTheThreadsContextAsItWas) {
  const Com com;
  const HANDLE before = active_context();
  const std::string none = components() + "\\none.manifest";
  for (const std::string& path : {manifest(), std::string(), none})
    for (const CLSID& id : {__uuidof(Circle), __uuidof(Spiral), unknown_class}) {
      CComPtr<IUnknown> object;
      reg_free_co_create(id, components().c_str(), path.c_str(), CLSCTX_INPROC_SERVER, &object);
      EXPECT_EQ(active_context(), before) << path;
    }
}

// The system raises an exception if contexts are not deactivated in order. The exception is not handled.
TEST(RegistrationFreeInChildProcess, EndsWhereAServerLeavesAContextActive) {
  EXPECT_EQ(run_program("careless_server.exe", "\"" + manifest() + "\""), 10u);
}

// activation contexts, call by call

ACTCTXA asked;
std::string asked_source, asked_folder;
int made, activated, released;

HANDLE WINAPI make_context(const ACTCTXA* wanted) {
  asked = *wanted;
  asked_source = wanted->lpSource;
  asked_folder = wanted->lpAssemblyDirectory;
  ++made;
  return CreateActCtxA(wanted);
}
BOOL WINAPI activate(HANDLE context, ULONG_PTR* cookie) {
  ++activated;
  return ActivateActCtx(context, cookie);
}
BOOL WINAPI refuse_to_activate(HANDLE, ULONG_PTR*) {
  ++activated;
  SetLastError(ERROR_NOT_ENOUGH_MEMORY);
  return FALSE;
}
void WINAPI release_context(HANDLE context) {
  ++released;
  ReleaseActCtx(context);
}

class RegistrationFreeContext : public testing::Test {
 protected:
  void SetUp() override {
    made = activated = released = 0;
    ASSERT_TRUE(makes_.made() && releases_.made());
  }

  HRESULT create(const std::string& path) {
    object_.Release();
    return reg_free_co_create(__uuidof(Circle), components().c_str(), path.c_str(), CLSCTX_INPROC_SERVER, &object_);
  }

 private:
  Com com_;
  CComPtr<IUnknown> object_;
  ImportOverride makes_{"kexlib.dll", "KERNEL32.dll", "CreateActCtxA", make_context};
  ImportOverride releases_{"kexlib.dll", "KERNEL32.dll", "ReleaseActCtx", release_context};
};

TEST_F(RegistrationFreeContext, IsMadeOfTheManifestAndTheFolder) {
  const ImportOverride activates("kexlib.dll", "KERNEL32.dll", "ActivateActCtx", activate);
  const std::string path = manifest();
  ASSERT_EQ(create(path), S_OK);
  EXPECT_EQ(made, 1);
  EXPECT_EQ(activated, 1);
  EXPECT_EQ(released, 1);
  EXPECT_EQ(asked.cbSize, 56u);
  EXPECT_EQ(asked.dwFlags, 4u);
  EXPECT_EQ(asked_source, path);
  EXPECT_EQ(asked_folder, components());
  EXPECT_EQ(asked.wProcessorArchitecture, 0);
  EXPECT_EQ(asked.wLangId, 0);
  EXPECT_EQ(asked.lpResourceName, nullptr);
  EXPECT_EQ(asked.lpApplicationName, nullptr);
  EXPECT_EQ(asked.hModule, nullptr);
}

TEST_F(RegistrationFreeContext, IsNotMadeWithoutAManifest) {
  EXPECT_EQ(create(""), REGDB_E_CLASSNOTREG);
  EXPECT_EQ(made, 0);
  EXPECT_EQ(create(components() + "\\none.manifest"), REGDB_E_CLASSNOTREG);
  EXPECT_EQ(made, 1);
  EXPECT_EQ(released, 0);
}

// Kept for compatibility: each failed activation leaks a context.
TEST_F(RegistrationFreeContext, IsLostWhereItCannotBeActivated) {
  const ImportOverride activates("kexlib.dll", "KERNEL32.dll", "ActivateActCtx", refuse_to_activate);
  EXPECT_EQ(create(manifest()), REGDB_E_CLASSNOTREG);
  EXPECT_EQ(made, 1);
  EXPECT_EQ(activated, 1);
  EXPECT_EQ(released, 0);
}

}  // namespace
