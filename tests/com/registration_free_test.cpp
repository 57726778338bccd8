// Objects of classes that the registry does not know: made through the manifest of a server that is never registered,
// and found by its type library.
#include <gtest/gtest.h>

#include <kexlib/com/registration_free.h>

#include <kexlib/text/apply_to_files.h>

#include <support/child_process.h>
#include <support/files.h>
#include <support/import_override.h>
#include <support/resource_counts.h>
#include <support/type_library.h>

#include <afx.h>
#include <atlbase.h>
#include <ocidl.h>
#include <shapes.h>

#include <cstring>
#include <filesystem>
#include <functional>
#include <string>
#include <thread>
#include <vector>

namespace {

namespace fs = std::filesystem;

const CLSID unknown_class = {0x12345678, 0x94C3, 0x4E17, {0x8A, 0x55, 0, 0, 0, 0, 0, 1}};

std::string components() { return (program_folder() / "components").string(); }

std::string manifest() { return reg_free_manifest_path(components().c_str(), "com_server.dll"); }

class Com {
 public:
  explicit Com(DWORD model = COINIT_APARTMENTTHREADED) { EXPECT_EQ(CoInitializeEx(nullptr, model), S_OK); }
  Com(const Com&) = delete;
  Com& operator=(const Com&) = delete;
  ~Com() { CoUninitialize(); }
};

HANDLE active_context() {
  HANDLE context = nullptr;
  EXPECT_TRUE(GetCurrentActCtx(&context));
  return context;  // its reference is not given back: a comparison is all that it is for
}

std::string text_of(const GUID& id) {
  wchar_t text[39];
  StringFromGUID2(id, text, 39);
  return std::string(CStringA(text));
}

std::vector<std::string> texts_of(const std::set<GUID, kexLessGUID>& ids) {
  std::vector<std::string> texts;
  for (const GUID& id : ids) texts.push_back(text_of(id));
  return texts;
}

// manifest path

TEST(ManifestPath, HasTheComponentsNameAndItsOwnExtension) {
  EXPECT_EQ(reg_free_manifest_path("C:\\m", "C:\\bin\\part.dll"), "C:\\m\\part.manifest");
  EXPECT_EQ(reg_free_manifest_path("C:\\m\\", "C:\\bin\\part.dll"), "C:\\m\\part.manifest");
  EXPECT_EQ(reg_free_manifest_path("C:\\m", "C:\\bin\\part"), "C:\\m\\part.manifest");
  EXPECT_EQ(reg_free_manifest_path("C:\\m", "part.dll"), "C:\\m\\part.manifest");
  EXPECT_EQ(reg_free_manifest_path("C:\\m.x", "C:\\b.in\\part"), "C:\\m.x\\part.manifest");
}

// The system adds no extension to a name that has one: that is meant.
TEST(ManifestPath, LeavesAFurtherExtensionAsItIs) {
  EXPECT_EQ(reg_free_manifest_path("C:\\m", "C:\\bin\\part.2.dll"), "C:\\m\\part.2");
}

TEST(ManifestPath, IsEmptyWithoutAComponent) {
  EXPECT_EQ(reg_free_manifest_path("C:\\m", ""), "");
  EXPECT_EQ(reg_free_manifest_path("C:\\m", nullptr), "");
  EXPECT_EQ(reg_free_manifest_path(nullptr, ""), "");
  EXPECT_EQ(reg_free_manifest_path(nullptr, "part.dll"), "");
}

TEST(ManifestPath, IsEmptyWhereItWouldBeTooLong) {
  const std::string folder = "C:\\" + std::string(230, 'd');                       // 233 characters
  const std::string longest = folder + "\\" + std::string(16, 'n') + ".manifest";  // 259 characters
  ASSERT_EQ(longest.size(), 259u);
  EXPECT_EQ(reg_free_manifest_path(folder.c_str(), (std::string(16, 'n') + ".dll").c_str()), longest);
  EXPECT_EQ(reg_free_manifest_path(folder.c_str(), (std::string(17, 'n') + ".dll").c_str()), "");
  EXPECT_EQ(reg_free_manifest_path(folder.c_str(), (std::string(30, 'n') + ".dll").c_str()), "");
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

TEST(RegistrationFree, MakesObjectsInTheMultithreadedApartmentToo) {
  std::thread([] {
    const Com com(COINIT_MULTITHREADED);
    CComPtr<IUnknown> object;
    EXPECT_EQ(
        reg_free_co_create(__uuidof(Square), components().c_str(), manifest().c_str(), CLSCTX_INPROC_SERVER, &object),
        S_OK);
  }).join();
}

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

// A class of the registry, here the system's own, needs no manifest.
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
    // ... and a class of the registry comes from there.
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

// The system ends a program whose contexts are not left in their order: nobody hides that.
TEST(RegistrationFreeInChildProcess, EndsWhereAServerLeavesAContextActive) {
  EXPECT_EQ(run_program("kexlib_host.exe", "careless_server \"" + manifest() + "\""), 10u);
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

// That is meant: one context is lost for each activation that fails.
TEST_F(RegistrationFreeContext, IsLostWhereItCannotBeActivated) {
  const ImportOverride activates("kexlib.dll", "KERNEL32.dll", "ActivateActCtx", refuse_to_activate);
  EXPECT_EQ(create(manifest()), REGDB_E_CLASSNOTREG);
  EXPECT_EQ(made, 1);
  EXPECT_EQ(activated, 1);
  EXPECT_EQ(released, 0);
}

// type libraries

TEST(ListClasses, FindsThoseThatImplementAnInterface) {
  const Com com;
  EXPECT_EQ(texts_of(reg_free_list_classes(__uuidof(IArea), components().c_str(), "com_server.dll")),
            (std::vector{text_of(__uuidof(Square)), text_of(__uuidof(Circle)), text_of(__uuidof(Spiral))}));
}

TEST(ListClasses, FindsThoseThatImplementADispatchInterface) {
  const Com com;
  EXPECT_EQ(texts_of(reg_free_list_classes(__uuidof(DTurnable), components().c_str(), "*.dll")),
            (std::vector{text_of(__uuidof(Spiral))}));
}

TEST(ListClasses, FindsThoseThatImplementAnInterfaceOfAnotherLibrary) {
  const Com com;
  TemporaryFolder folder;
  const GUID automation = {0x00020430, 0, 0, {0xC0, 0, 0, 0, 0, 0, 0, 0x46}};  // the system's own, "stdole"
  CComPtr<ITypeLib> library;
  ASSERT_EQ(LoadRegTypeLib(automation, 2, 0, 0, &library), S_OK);
  CComPtr<ITypeInfo> font;
  ASSERT_EQ(library->GetTypeInfoOfGuid(IID_IFont, &font), S_OK);
  ASSERT_TRUE(make_type_library(folder.path() / "fonts.tlb", unknown_class, font));
  EXPECT_EQ(texts_of(reg_free_list_classes(IID_IFont, folder.path().string().c_str(), "*.tlb")),
            (std::vector{text_of(unknown_class)}));
}

TEST(ListClasses, PassesOverAnInterfaceOfALibraryThatIsNotThere) {
  const Com com;
  TemporaryFolder folder;
  const GUID other_class = {0x12345679, 0, 0, {1}};
  ASSERT_TRUE(make_type_library(folder.path() / "other.tlb", other_class, __uuidof(INamed)));
  {
    CComPtr<ITypeLib> other;
    ASSERT_EQ(LoadTypeLibEx((folder.path() / "other.tlb").c_str(), REGKIND_NONE, &other), S_OK);
    CComPtr<ITypeInfo> named;
    ASSERT_EQ(other->GetTypeInfoOfGuid(__uuidof(INamed), &named), S_OK);
    ASSERT_TRUE(make_type_library(folder.path() / "refers.tlb", unknown_class, named));
  }
  fs::remove("other.tlb");
  const std::string root = folder.path().string();
  EXPECT_EQ(texts_of(reg_free_list_classes(__uuidof(INamed), root.c_str(), "*.tlb")), std::vector<std::string>());
  EXPECT_EQ(reg_free_find_tlb(unknown_class, root.c_str(), "*.tlb"), root + "\\refers.tlb");
}

TEST(ListClasses, OrdersByBytesAmongManyLibrariesAndWhatIsNone) {
  const Com com;
  TemporaryFolder folder;
  const GUID iid = {0x7E57AB1E, 1, 2, {3, 4, 5, 6, 7, 8, 9, 10}};
  std::set<GUID, kexLessGUID> expected;
  for (unsigned i = 0; i < 60; ++i) {
    const GUID clsid = {(i * 0x9E3779B9u) ^ i, 0, 0, {1}};
    const fs::path sub = folder.path() / ("deep" + std::to_string(i % 7)) / std::to_string(i % 3);
    fs::create_directories(sub);
    const bool other = i % 10 == 9;
    ASSERT_TRUE(make_type_library(sub / (std::to_string(i) + ".tlb"), clsid, other ? unknown_class : iid));
    if (!other) expected.insert(clsid);
    write_file(sub / (std::to_string(i) + "text.tlb"), "no library");
    write_file(sub / (std::to_string(i) + "empty.tlb"), "");
    write_file(sub / (std::to_string(i) + "cut.tlb"), read_file(sub / (std::to_string(i) + ".tlb")).substr(0, 100));
  }
  fs::copy_file(program_folder() / "kexframework.dll", folder.path() / "plain.dll");  // a DLL that has no library
  ASSERT_EQ(expected.size(), 54u);
  const std::set<GUID, kexLessGUID> found = reg_free_list_classes(iid, folder.path().string().c_str(), "*.tlb;*.dll");
  EXPECT_EQ(texts_of(found), texts_of(expected));
  // As memcmp orders them.
  std::vector<GUID> ids(found.begin(), found.end());
  for (size_t i = 1; i < ids.size(); ++i) EXPECT_LT(std::memcmp(&ids[i - 1], &ids[i], sizeof(GUID)), 0);
}

TEST(ListClasses, NamesAClassOnceHoweverManyFilesDescribeIt) {
  const Com com;
  TemporaryFolder folder;
  const fs::path server = program_folder() / "components" / "com_server.dll";
  fs::create_directories("second");
  fs::copy_file(server, "a.dll");
  fs::copy_file(server, fs::path("second") / "b.dll");
  EXPECT_EQ(reg_free_list_classes(__uuidof(IArea), folder.path().string().c_str(), "*.dll").size(), 3u);
}

TEST(ListClasses, TakesNamesOutsideAscii) {
  const Com com;
  TemporaryFolder folder;
  const fs::path name = L"\u00FCber.tlb";
  ASSERT_TRUE(make_type_library(folder.path() / name, unknown_class, __uuidof(INamed)));
  EXPECT_EQ(reg_free_list_classes(__uuidof(INamed), folder.path().string().c_str(), "*.tlb").size(), 1u);
}

TEST(FindTypeLibrary, GivesTheFileThatDescribesTheClass) {
  const Com com;
  EXPECT_EQ(reg_free_find_tlb(__uuidof(Frame), components().c_str(), "*.dll"), components() + "\\com_server.dll");
  EXPECT_EQ(reg_free_find_tlb(unknown_class, components().c_str(), "*.dll"), "");
  // An interface is no class.
  EXPECT_EQ(reg_free_find_tlb(__uuidof(IArea), components().c_str(), "*.dll"), "");
}

class Order final : public kexApplyToFiles {
 public:
  std::vector<std::string> files;
  void apply_to_file(char* path) override { files.emplace_back(path); }
};

// The walk goes on after a match: that is meant.
TEST(FindTypeLibrary, GivesTheLastOfSeveralInTheOrderOfTheWalk) {
  const Com com;
  TemporaryFolder folder;
  const std::string root = folder.path().string();
  const fs::path server = program_folder() / "components" / "com_server.dll";
  for (const char* name : {"one.dll", "two.dll", "three.dll"}) fs::copy_file(server, name);
  Order order;
  ASSERT_EQ(order.Apply(root.c_str(), "*.dll", 0), S_OK);
  ASSERT_EQ(order.files.size(), 3u);
  EXPECT_EQ(reg_free_find_tlb(__uuidof(Circle), root.c_str(), "*.dll"), order.files.back());
  fs::remove(order.files.back());
  EXPECT_EQ(reg_free_find_tlb(__uuidof(Circle), root.c_str(), "*.dll"), order.files[1]);
}

HANDLE WINAPI deny(const char*, WIN32_FIND_DATAA*) {
  SetLastError(ERROR_ACCESS_DENIED);
  return INVALID_HANDLE_VALUE;
}

TEST(TypeLibraryScan, FindsNothingInFoldersThatCannotBeRead) {
  const Com com;
  const std::string missing = components() + "\\missing", file = components() + "\\com_server.dll";
  for (const char* folder : {missing.c_str(), file.c_str(), "", static_cast<const char*>(nullptr)}) {
    EXPECT_TRUE(reg_free_list_classes(__uuidof(IArea), folder, "*.dll").empty());
    EXPECT_EQ(reg_free_find_tlb(__uuidof(Circle), folder, "*.dll"), "");
  }
  EXPECT_TRUE(reg_free_list_classes(__uuidof(IArea), components().c_str(), nullptr).empty());
  EXPECT_EQ(reg_free_find_tlb(__uuidof(Circle), components().c_str(), nullptr), "");

  const ImportOverride closed("kexframework.dll", "KERNEL32.dll", "FindFirstFileA", deny);
  ASSERT_TRUE(closed.made());
  EXPECT_TRUE(reg_free_list_classes(__uuidof(IArea), components().c_str(), "*.dll").empty());
  EXPECT_EQ(reg_free_find_tlb(__uuidof(Circle), components().c_str(), "*.dll"), "");
}

BSTR WINAPI no_text(const OLECHAR*, UINT) { return nullptr; }

TEST(TypeLibraryScan, ThrowsWhereAPathCannotBeWidened) {
  const Com com;
  const ImportOverride full("kexlib.dll", "OLEAUT32.dll", "SysAllocStringLen", no_text);
  ASSERT_TRUE(full.made());
  EXPECT_THROW(reg_free_list_classes(__uuidof(IArea), components().c_str(), "*.dll"), CMemoryException*);
  EXPECT_THROW(reg_free_find_tlb(__uuidof(Circle), components().c_str(), "*.dll"), CMemoryException*);
}

// The attributes of each type that is looked at are not given back: that is meant, and nothing else may be lost.
TEST(TypeLibraryScan, LosesOneBlockForEachTypeItLooksAtAndNothingElse) {
  const Com com;
  TemporaryFolder folder;
  const std::string root = folder.path().string();
  const GUID other_class = {0x12345679, 0, 0, {1}};
  for (const char* name : {"a.tlb", "b.tlb", "c.tlb"})
    ASSERT_TRUE(make_type_library(folder.path() / name, other_class, __uuidof(INamed)));
  const auto blocks_lost_by = [](const std::function<void()>& scan) {
    for (int i = 0; i < 3; ++i) scan();
    const int before = count_heap_blocks();
    for (int i = 0; i < 10; ++i) scan();
    return (count_heap_blocks() - before) / 10;  // a block or two may be the system's own
  };
  EXPECT_EQ(blocks_lost_by([&] { reg_free_list_classes(unknown_class, root.c_str(), "*.dll"); }), 0);
  EXPECT_EQ(blocks_lost_by([&] { reg_free_find_tlb(other_class, root.c_str(), "*.tlb"); }), 3);
  // A class and its interface in each.
  EXPECT_EQ(blocks_lost_by([&] { reg_free_list_classes(unknown_class, root.c_str(), "*.tlb"); }), 6);
}

TEST(TypeLibraryScan, AndCreationLeaveNoHandlesBehind) {
  const Com com;
  const std::string folder = components(), path = manifest();
  const auto round = [&] {
    CComPtr<IUnknown> object;
    reg_free_co_create(__uuidof(Circle), folder.c_str(), path.c_str(), CLSCTX_INPROC_SERVER, &object);
    reg_free_co_create(unknown_class, folder.c_str(), path.c_str(), CLSCTX_INPROC_SERVER, &object);
    reg_free_list_classes(__uuidof(IArea), folder.c_str(), "*.dll");
  };
  for (int i = 0; i < 3; ++i) round();
  const ResourceCounts before;
  for (int i = 0; i < 50; ++i) round();
  EXPECT_EQ(ResourceCounts(), before);
}

}  // namespace
