// Classes that the type libraries of files below a folder describe.
#include <gtest/gtest.h>

#include <kexlib/com/registration_free.h>
#include <kexlib/text/apply_to_files.h>

#include <afx.h>
#include <atlbase.h>
#include <ocidl.h>
#include <shapes.h>

#include <com/registration_free_fixture.h>
#include <support/files.h>
#include <support/import_override.h>
#include <support/resource_counts.h>
#include <support/shortcut.h>
#include <support/type_library.h>

#include <cstring>
#include <filesystem>
#include <functional>
#include <string>
#include <vector>

namespace {

namespace fs = std::filesystem;
using namespace registration_free;

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
  const GUID automation = {0x00020430, 0, 0, {0xC0, 0, 0, 0, 0, 0, 0, 0x46}};  // the system's type library "stdole"
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
  fs::copy_file(program_folder() / "kexframework.dll", folder.path() / "plain.dll");  // a DLL without a type library
  ASSERT_EQ(expected.size(), 54u);
  const std::set<GUID, kexLessGUID> found = reg_free_list_classes(iid, folder.path().string().c_str(), "*.tlb;*.dll");
  EXPECT_EQ(texts_of(found), texts_of(expected));
  // In the order of memcmp.
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
  // An interface is not a class.
  EXPECT_EQ(reg_free_find_tlb(__uuidof(IArea), components().c_str(), "*.dll"), "");
}

class Order final : public kexApplyToFiles {
 public:
  std::vector<std::string> files;
  void apply_to_file(char* path) override { files.emplace_back(path); }
};

// By design the scan continues after a match: callers get the last file.
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

// Kept for compatibility: the attributes of each scanned type leak. Nothing else leaks.
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
    return (count_heap_blocks() - before) / 10;  // the system may allocate one or two blocks
  };
  EXPECT_EQ(blocks_lost_by([&] { reg_free_list_classes(unknown_class, root.c_str(), "*.dll"); }), 0);
  EXPECT_EQ(blocks_lost_by([&] { reg_free_find_tlb(other_class, root.c_str(), "*.tlb"); }), 3);
  // Each library contains a class and its interface.
  EXPECT_EQ(blocks_lost_by([&] { reg_free_list_classes(unknown_class, root.c_str(), "*.tlb"); }), 6);
}

TEST(TypeLibraryScan, DoesNotFollowShortcuts) {
  const Com com;
  TemporaryFolder folder;
  const std::string root = folder.path().string();
  make_shortcut(folder.path() / "server.lnk", program_folder() / "components" / "com_server.dll");
  ASSERT_TRUE(fs::exists("server.lnk"));
  Order order;
  ASSERT_EQ(order.Apply(root.c_str(), "*.dll", 1), S_OK);
  ASSERT_EQ(order.files.size(), 1u);  // it could be followed
  EXPECT_EQ(texts_of(reg_free_list_classes(__uuidof(IArea), root.c_str(), "*.dll")), std::vector<std::string>());
  EXPECT_EQ(reg_free_find_tlb(__uuidof(Circle), root.c_str(), "*.dll"), "");
}

TEST(TypeLibraryScan, AndCreationLeaveNoHandlesBehind) {
  const Com com;
  const std::string folder = components(), path = manifest();
  const auto round = [&] {
    CComPtr<IUnknown> object, none;
    reg_free_co_create(__uuidof(Circle), folder.c_str(), path.c_str(), CLSCTX_INPROC_SERVER, &object);
    reg_free_co_create(unknown_class, folder.c_str(), path.c_str(), CLSCTX_INPROC_SERVER, &none);
    reg_free_list_classes(__uuidof(IArea), folder.c_str(), "*.dll");
  };
  for (int i = 0; i < 3; ++i) round();
  const ResourceCounts before;
  for (int i = 0; i < 50; ++i) round();
  EXPECT_EQ(ResourceCounts(), before);
}

}  // namespace
