// Walks through real folders: files, cyclic links, paths that are too long, folders that are deleted meanwhile.
#include <gtest/gtest.h>

#include <kexlib/text/apply_to_files.h>

#include <atlbase.h>
#include <shlobj.h>
#include <shlwapi.h>

#include <support/files.h>
#include <support/import_override.h>
#include <support/resource_counts.h>
#include <text/apply_to_files_fixture.h>

#include <algorithm>
#include <filesystem>
#include <functional>
#include <stdexcept>
#include <string>
#include <vector>

namespace {

namespace fs = std::filesystem;
using namespace apply_to_files;

TEST_F(ApplyToFiles, FindsAllFilesThatMatch) {
  for (const char* file : {"a.txt", "b.TXT", "c.dat", "no_dot", "deep\\er\\d.txt", "deep\\e.text", "x.y\\f.txt"})
    make(file);
  fs::create_directory("empty.txt");
  EXPECT_EQ(apply("*.txt"), S_OK);
  EXPECT_EQ(found(), (Paths{"a.txt", "b.TXT", "deep\\er\\d.txt", "x.y\\f.txt"}));
}

TEST_F(ApplyToFiles, MatchesAsTheShellDoes) {
  for (const char* file : {"a.cpp", "b.h", "cc.h", "no_dot"}) make(file);
  const std::pair<const char*, Paths> expected[] = {{"*.*", {"a.cpp", "b.h", "cc.h", "no_dot"}},
                                                    {"*", {"a.cpp", "b.h", "cc.h", "no_dot"}},
                                                    {"*.cpp;*.h", {"a.cpp", "b.h", "cc.h"}},
                                                    {"*.CPP; *.H", {"a.cpp", "b.h", "cc.h"}},
                                                    {"?.h", {"b.h"}},
                                                    {"A.CPP", {"a.cpp"}},
                                                    {"", {}}};
  for (const auto& [pattern, names] : expected) {
    walk_.files.clear();
    EXPECT_EQ(apply(pattern), S_OK);
    EXPECT_EQ(found(), names) << pattern;
  }
  walk_.files.clear();
  EXPECT_EQ(apply(nullptr), E_INVALIDARG);
  EXPECT_EQ(found(), Paths{});
}

// The system's matcher calls itself for each asterisk.
TEST_F(ApplyToFiles, TakesPatternsOfAnyLength) {
  for (const char* file : {"a.cpp", "aa.h", "no_dot"}) make(file);
  const std::string many(100000, '*');
  std::string alternating;
  for (int i = 0; i < 50000; ++i) alternating += "*?";
  const std::pair<std::string, Paths> expected[] = {
      {many, {"a.cpp", "aa.h", "no_dot"}},   {many + ".cpp", {"a.cpp"}}, {"a" + many + "." + many + "h", {"aa.h"}},
      {many + "x;" + many + ".h", {"aa.h"}}, {alternating, {}},          {"?" + many, {"a.cpp", "aa.h", "no_dot"}}};
  for (const auto& [pattern, names] : expected) {
    walk_.files.clear();
    EXPECT_EQ(apply(pattern.c_str()), S_OK);
    EXPECT_EQ(found(), names) << pattern.substr(0, 5) << "..." << pattern.substr(pattern.size() - 5);
  }
}

TEST_F(ApplyToFiles, TakesTwoAsterisksAsTheShellDoes) {
  for (const char* file : {"a.cpp", "no_dot"}) make(file);
  for (const char* pattern : {"**.*", "***.*", "**", "***", "a***", "*.**", "*.***"}) {
    Paths names;
    for (const char* file : {"a.cpp", "no_dot"})
      if (PathMatchSpecA(file, pattern)) names.emplace_back(file);
    walk_.files.clear();
    EXPECT_EQ(apply(pattern), S_OK);
    EXPECT_EQ(found(), names) << pattern;
  }
}

TEST_F(ApplyToFiles, GivesFullPathsWhateverTheRootLooksLike) {
  make("in\\a.txt");
  for (const char* start : {".", "in", ".\\in", "in\\"}) {
    walk_.files.clear();
    EXPECT_EQ(walk_.Apply(start, "*.txt", 0), S_OK);
    EXPECT_EQ(found(), Paths{"in\\a.txt"}) << start;
  }
}

TEST_F(ApplyToFiles, FindsHiddenFilesToo) {
  make("hidden.txt");
  make("system.txt");
  fs::create_directory("hidden");
  make("hidden\\in.txt");
  SetFileAttributesA("hidden.txt", FILE_ATTRIBUTE_HIDDEN);
  SetFileAttributesA("system.txt", FILE_ATTRIBUTE_SYSTEM | FILE_ATTRIBUTE_READONLY);
  SetFileAttributesA("hidden", FILE_ATTRIBUTE_HIDDEN);
  EXPECT_EQ(apply(), S_OK);
  EXPECT_EQ(found(), (Paths{"hidden.txt", "hidden\\in.txt", "system.txt"}));
  SetFileAttributesA("system.txt", FILE_ATTRIBUTE_NORMAL);
}

TEST_F(ApplyToFiles, RefusesARootThatIsNoFolder) {
  make("file");
  for (const char* start : {"file", "missing", "missing\\below", "", "*", "file\\"})
    EXPECT_EQ(walk_.Apply(start, "*.*", 0), E_INVALIDARG) << start;
  EXPECT_EQ(walk_.Apply(nullptr, "*.*", 0), E_INVALIDARG);
  EXPECT_TRUE(walk_.files.empty());
  EXPECT_TRUE(walk_.folders.empty());
}

TEST_F(ApplyToFiles, FindsNothingInAnEmptyFolder) {
  EXPECT_EQ(apply(), S_OK);
  EXPECT_TRUE(walk_.files.empty());
}

TEST_F(ApplyToFiles, WalksAFolderWhenItIsMet) {
  for (const char* file : {"a", "b\\c", "b\\d\\e", "b\\f", "g"}) make(file);
  EXPECT_EQ(apply(), S_OK);
  // The files in b are consecutive, whatever the order of the file system.
  const auto first = std::find_if(walk_.files.begin(), walk_.files.end(),
                                  [](const std::string& path) { return path.find("\\b\\") != path.npos; });
  ASSERT_GE(walk_.files.end() - first, 3);
  for (auto file = first; file < first + 3; ++file) EXPECT_NE(file->find("\\b\\"), std::string::npos) << *file;
  EXPECT_EQ(walk_.folders.size(), 2u);
}

TEST_F(ApplyToFiles, StopsAfterTheFileThatSaysSo) {
  for (const char* file : {"a", "b", "c", "d"}) make(file);
  walk_.on_file = [](Walk& walk) {
    if (walk.files.size() == 2) walk.end();
  };
  EXPECT_EQ(apply(), S_OK);
  EXPECT_EQ(walk_.files.size(), 2u);
}

TEST_F(ApplyToFiles, StopsFromDeepInside) {
  for (const char* file : {"1", "2\\1", "2\\2\\1", "2\\2\\2", "2\\3", "3", "4\\1"}) make(file);
  walk_.on_file = [](Walk& walk) {
    if (walk.files.back().ends_with("2\\2\\1")) walk.end();
  };
  EXPECT_EQ(apply(), S_OK);
  EXPECT_TRUE(walk_.files.back().ends_with("2\\2\\1"));
  EXPECT_LT(walk_.files.size(), 7u);
}

TEST_F(ApplyToFiles, WalksAgainAfterItWasStopped) {
  make("a");
  make("b");
  walk_.on_file = [](Walk& walk) { walk.end(); };
  EXPECT_EQ(apply(), S_OK);
  EXPECT_NE(walk_.stopped(), 0);
  walk_.on_file = [](Walk&) {};
  EXPECT_EQ(apply(), S_OK);
  EXPECT_EQ(walk_.files.size(), 3u);
}

TEST_F(ApplyToFiles, StaysOutOfFoldersThatAreVetoed) {
  for (const char* file : {"a", "in\\b", "out\\c", "out\\deep\\d", "in\\out\\e"}) make(file);
  walk_.veto = [](Walk& walk) { return walk.folders.back().ends_with("\\out") ? -7 : 0; };
  EXPECT_EQ(apply(), S_OK);
  EXPECT_EQ(found(), (Paths{"a", "in\\b"}));
  EXPECT_EQ(walk_.folders.size(), 3u);
}

// By design each folder resets the flag: only apply_to_file can stop the walk.
TEST_F(ApplyToFiles, ForgetsAStopThatIsSetBeforeAFolderIsEntered) {
  make("in\\a");
  make("in\\b");
  walk_.veto = [](Walk& walk) {
    walk.end();
    return 0;
  };
  EXPECT_EQ(apply(), S_OK);
  EXPECT_EQ(walk_.files.size(), 2u);
}

TEST_F(ApplyToFiles, EndsWithTheErrorOfAFolderThatVanished) {
  for (const char* file : {"a", "b\\c", "d"}) make(file);
  walk_.veto = [](Walk& walk) {
    fs::remove_all(walk.folders.back());
    return 0;
  };
  EXPECT_EQ(apply(), E_INVALIDARG);
  EXPECT_EQ(found(), Paths{"a"});
}

TEST_F(ApplyToFiles, SurvivesThatTheFolderUnderItIsEmptied) {
  for (int i = 0; i < 200; ++i) make("in\\" + std::to_string(i));
  walk_.on_file = [this](Walk& walk) {
    std::error_code ignored;
    if (walk.files.size() == 1) fs::remove_all(root() / "in", ignored);
  };
  EXPECT_EQ(apply(), S_OK);
  EXPECT_GE(walk_.files.size(), 1u);
}

TEST_F(ApplyToFiles, TakesNamesOf255Characters) {
  const std::string name = std::string(251, 'n') + ".txt";
  write_file("\\\\?\\" + (root() / name).string(), "");
  EXPECT_EQ(apply("*.txt"), S_OK);
  EXPECT_EQ(found(), Paths{name});
  fs::remove("\\\\?\\" + (root() / name).string());
}

// The mask is limited to 260 characters: the folder, "\*.*" and the terminator.
TEST_F(ApplyToFiles, WalksFoldersOf255CharactersAndEndsAtLongerOnes) {
  const std::size_t left = 255 - root().string().size() - 1;
  const std::string fitting = "a" + std::string(left - 1, 'd');
  fs::create_directory("\\\\?\\" + (root() / fitting).string());
  write_file("\\\\?\\" + (root() / fitting / "a").string(), "");
  EXPECT_EQ(apply(), S_OK);
  EXPECT_EQ(found(), Paths{fitting + "\\a"});

  const std::string longer = "b" + std::string(left, 'd');
  fs::create_directory("\\\\?\\" + (root() / longer).string());
  walk_.files.clear();
  EXPECT_EQ(apply(), E_INVALIDARG);
  EXPECT_EQ(found(), Paths{fitting + "\\a"});
  EXPECT_EQ(walk_.Apply((root() / longer).string().c_str(), "*.*", 0), E_INVALIDARG);
  EXPECT_EQ(walk_.Apply(std::string(5000, 'x').c_str(), "*.*", 0), E_INVALIDARG);
  fs::remove("\\\\?\\" + (root() / longer).string());
  fs::remove_all("\\\\?\\" + (root() / fitting).string());
}

// A folder that is a link to its parent. Under Wine, which creates no junctions, a program of the host creates it.
class LinkUpwards {
 public:
  explicit LinkUpwards(const fs::path& link) : link_(link) {
    run("ln -s .. " + name(), "mklink /J " + name() + " ..");
    wait_until([this] { return is_there(); });
  }
  LinkUpwards(const LinkUpwards&) = delete;
  LinkUpwards& operator=(const LinkUpwards&) = delete;
  // Removes the link immediately: deleting the folder recursively would not terminate.
  ~LinkUpwards() {
    run("rm " + name(), "rmdir " + name());
    wait_until([this] { return !is_there(); });
  }

  bool is_there() const { return GetFileAttributesA(link_.string().c_str()) != INVALID_FILE_ATTRIBUTES; }

 private:
  std::string name() const { return link_.filename().string(); }

  void run(std::string host_command, const std::string& command) const {
    const bool wine = GetProcAddress(GetModuleHandleA("ntdll.dll"), "wine_get_version") != nullptr;
    const std::string program = "Z:\\bin\\" + host_command.substr(0, 2);
    std::string line = wine ? host_command : "cmd /c " + command;
    STARTUPINFOA startup = {};
    startup.cb = sizeof startup;
    PROCESS_INFORMATION process;
    ASSERT_TRUE(CreateProcessA(wine ? program.c_str() : nullptr, line.data(), nullptr, nullptr, FALSE, 0, nullptr,
                               link_.parent_path().string().c_str(), &startup, &process));
    WaitForSingleObject(process.hProcess, 10000);
    CloseHandle(process.hThread);
    CloseHandle(process.hProcess);
  }

  // The host's program may still run after the Windows process that represents it has ended.
  template <class Condition>
  static void wait_until(Condition holds) {
    for (const ULONGLONG end = GetTickCount64() + 10000; !holds() && GetTickCount64() < end;) SwitchToThread();
  }

  fs::path link_;
};

TEST_F(ApplyToFiles, WalksALinkThatLeadsUpUntilThePathIsTooLong) {
  make("in\\a.txt");
  const LinkUpwards link(root() / "in" / "up");
  ASSERT_TRUE(link.is_there());
  EXPECT_EQ(apply("*.txt"), E_INVALIDARG);
  EXPECT_GT(walk_.files.size(), 10u);
  EXPECT_NE(walk_.folders.back().find("in\\up\\in\\up"), std::string::npos);

  walk_.files.clear();
  walk_.veto = [](Walk& walk) {
    return (GetFileAttributesA(walk.folders.back().c_str()) & FILE_ATTRIBUTE_REPARSE_POINT) != 0;
  };
  EXPECT_EQ(apply("*.txt"), S_OK);
  EXPECT_EQ(found(), Paths{"in\\a.txt"});
}

TEST_F(ApplyToFiles, ClosesItsSearchesWhenAnOperationThrows) {
  for (int i = 0; i < 5; ++i) make("in\\deep\\" + std::to_string(i));
  walk_.on_file = [](Walk&) { throw std::runtime_error("no"); };
  EXPECT_THROW(apply(), std::runtime_error);
  static_cast<void>(ResourceCounts());  // the first object loads the libraries that it queries
  const ResourceCounts counts;
  for (int i = 0; i < 20; ++i) EXPECT_THROW(apply(), std::runtime_error);
  EXPECT_EQ(ResourceCounts(), counts);
}

TEST_F(ApplyToFiles, LeavesNothingOpen) {
  for (const char* file : {"a", "b\\c", "b\\d\\e"}) make(file);
  apply();
  static_cast<void>(ResourceCounts());
  const ResourceCounts counts;
  for (int i = 0; i < 20; ++i) apply();
  EXPECT_EQ(ResourceCounts(), counts);
}

TEST_F(ApplyToFiles, CopiesTheFlagOnly) {
  make("a");
  walk_.on_file = [](Walk& walk) { walk.end(); };
  EXPECT_EQ(Walk().stopped(), 0);
  apply();
  const Walk copy(walk_);
  EXPECT_EQ(copy.stopped(), 1);
  Walk other;
  other = copy;
  EXPECT_EQ(other.stopped(), 1);
}

int searches = 0;

HANDLE WINAPI counted_first(LPCSTR name, WIN32_FIND_DATAA* data) {
  ++searches;
  return FindFirstFileA(name, data);
}

DWORD next_error = 0;

BOOL WINAPI failing_next(HANDLE, WIN32_FIND_DATAA*) {
  SetLastError(next_error);
  return FALSE;
}

HANDLE WINAPI failing_first(LPCSTR, WIN32_FIND_DATAA*) {
  SetLastError(next_error);
  return INVALID_HANDLE_VALUE;
}

TEST_F(ApplyToFiles, SearchesEachFolderOnce) {
  for (int i = 0; i < 10; ++i)
    for (int j = 0; j < 20; ++j) make(std::to_string(i) + "\\" + std::to_string(j) + ".txt");
  ImportOverride counting("kexframework.dll", "kernel32.dll", "FindFirstFileA", counted_first);
  ASSERT_TRUE(counting.made());
  searches = 0;
  EXPECT_EQ(apply("*.txt"), S_OK);
  EXPECT_EQ(searches, 11);
  EXPECT_EQ(walk_.files.size(), 200u);
}

TEST_F(ApplyToFiles, ReturnsTheErrorOfASearchThatFails) {
  make("a");
  ImportOverride failing("kexframework.dll", "kernel32.dll", "FindFirstFileA", failing_first);
  ASSERT_TRUE(failing.made());
  next_error = ERROR_ACCESS_DENIED;
  EXPECT_EQ(apply(), E_ACCESSDENIED);
  next_error = ERROR_SUCCESS;
  EXPECT_EQ(apply(), S_OK);  // no error occurred
  EXPECT_TRUE(walk_.files.empty());
}

TEST_F(ApplyToFiles, ReturnsTheErrorOfASearchThatBreaksOff) {
  make("in\\a");
  make("in\\b");
  ImportOverride failing("kexframework.dll", "kernel32.dll", "FindNextFileA", failing_next);
  ASSERT_TRUE(failing.made());
  next_error = ERROR_NETNAME_DELETED;
  EXPECT_EQ(apply(), HRESULT_FROM_WIN32(ERROR_NETNAME_DELETED));
  EXPECT_TRUE(walk_.files.empty());
}

TEST_F(ApplyToFiles, FindsTenThousandFiles) {
  for (int i = 0; i < 100; ++i) {
    fs::create_directory(std::to_string(i));
    for (int j = 0; j < 100; ++j) {
      const std::string path = std::to_string(i) + "\\" + std::to_string(j) + ".txt";
      CloseHandle(CreateFileA(path.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_NEW, 0, nullptr));
    }
  }
  EXPECT_EQ(apply("*.txt"), S_OK);
  const Paths names = found();
  EXPECT_EQ(names.size(), 10000u);
  EXPECT_EQ(std::adjacent_find(names.begin(), names.end()), names.end()) << "one came twice";
}

}  // namespace
