// CFileFind.
#include <gtest/gtest.h>

#include <afx.h>

#include <support/files.h>
#include <support/resource_counts.h>

#include <algorithm>
#include <filesystem>
#include <string>
#include <vector>

namespace {

std::vector<std::string> names_of(const char* pattern) {
  CFileFind find;
  std::vector<std::string> names;
  BOOL more = find.FindFile(pattern);
  while (more) {
    more = find.FindNextFile();
    names.emplace_back(find.GetFileName());
  }
  std::sort(names.begin(), names.end());
  return names;
}

using Names = std::vector<std::string>;

TEST(FileFind, NamesAllEntriesTheLastOneToo) {
  TemporaryFolder folder;
  write_file("b.txt", "");
  write_file("a.dat", "");
  std::filesystem::create_directory("c");
  EXPECT_EQ(names_of("*.*"), (Names{".", "..", "a.dat", "b.txt", "c"}));
  EXPECT_EQ(names_of(nullptr), (Names{".", "..", "a.dat", "b.txt", "c"}));
  EXPECT_EQ(names_of("*.txt"), (Names{"b.txt"}));
  EXPECT_EQ(names_of("a.dat"), (Names{"a.dat"}));
}

TEST(FileFind, AnEmptyFolderHasTheTwoDots) {
  TemporaryFolder folder;
  EXPECT_EQ(names_of("*.*"), (Names{".", ".."}));
}

TEST(FileFind, TheLastEntryIsCurrentAlthoughLookingForTheNextFailed) {
  TemporaryFolder folder;
  write_file("only.txt", "");
  CFileFind find;
  ASSERT_TRUE(find.FindFile("*.txt"));
  SetLastError(ERROR_SUCCESS);
  EXPECT_FALSE(find.FindNextFile());
  EXPECT_EQ(GetLastError(), DWORD{ERROR_NO_MORE_FILES});
  EXPECT_STREQ(find.GetFileName(), "only.txt");

  SetLastError(ERROR_SUCCESS);
  EXPECT_FALSE(find.FindNextFile());
  EXPECT_EQ(GetLastError(), DWORD{ERROR_NO_MORE_FILES});
  EXPECT_STREQ(find.GetFileName(), "only.txt");
}

TEST(FileFind, BeforeTheFirstStepNothingIsCurrent) {
  TemporaryFolder folder;
  CFileFind find;
  SetLastError(ERROR_SUCCESS);
  EXPECT_FALSE(find.FindNextFile());
  EXPECT_EQ(GetLastError(), DWORD{ERROR_INVALID_HANDLE});
  ASSERT_TRUE(find.FindFile("*.*"));
  EXPECT_STREQ(find.GetFileName(), "");
  EXPECT_STREQ(find.GetFilePath(), "");
  EXPECT_FALSE(find.IsDirectory());
  EXPECT_FALSE(find.IsDots());
}

TEST(FileFind, WhatIsNotThereIsSaidByTheLastError) {
  TemporaryFolder folder;
  write_file("a.txt", "");
  CFileFind find;
  EXPECT_FALSE(find.FindFile("*.dat"));
  EXPECT_EQ(GetLastError(), DWORD{ERROR_FILE_NOT_FOUND});
  EXPECT_FALSE(find.FindFile("none\\*.*"));
  EXPECT_EQ(GetLastError(), DWORD{ERROR_PATH_NOT_FOUND});
  EXPECT_FALSE(find.FindFile(""));
  EXPECT_FALSE(find.FindNextFile());
  // Names of any length fail with an error.
  EXPECT_FALSE(find.FindFile((std::string(1000, 'x') + "\\*.*").c_str()));
}

TEST(FileFind, GivesTheFullPathOfARelativeNameToo) {
  TemporaryFolder folder;
  std::filesystem::create_directory("below");
  write_file("below\\a.txt", "");
  for (const char* name : {"below\\*.txt", "below/*.txt", ".\\below\\a.txt"}) {
    CFileFind find;
    ASSERT_TRUE(find.FindFile(name)) << name;
    find.FindNextFile();
    EXPECT_EQ(std::string(find.GetFilePath()), (folder.path() / "below" / "a.txt").string()) << name;
  }
}

TEST(FileFind, ThePathInTheRootOfADriveHasOneSeparator) {
  CFileFind find;
  ASSERT_TRUE(find.FindFile("C:\\windows"));
  find.FindNextFile();
  EXPECT_STREQ(find.GetFilePath(), "C:\\windows");
  EXPECT_TRUE(find.IsDirectory());
}

TEST(FileFind, TellsFoldersAndDotsFromFiles) {
  TemporaryFolder folder;
  std::filesystem::create_directory("folder");
  write_file("..file", "");
  CFileFind find;
  Names folders, dots;
  for (BOOL more = find.FindFile(); more;) {
    more = find.FindNextFile();
    if (find.IsDirectory()) folders.emplace_back(find.GetFileName());
    if (find.IsDots()) dots.emplace_back(find.GetFileName());
  }
  std::sort(folders.begin(), folders.end());
  std::sort(dots.begin(), dots.end());
  EXPECT_EQ(folders, (Names{".", "..", "folder"}));
  EXPECT_EQ(dots, (Names{".", ".."}));
}

TEST(FileFind, CloseEndsTheSearchAndAnotherCanBegin) {
  TemporaryFolder folder;
  std::filesystem::create_directory("below");
  CFileFind find;
  ASSERT_TRUE(find.FindFile("below\\*.*"));
  find.FindNextFile();
  find.Close();
  find.Close();
  EXPECT_STREQ(find.GetFileName(), "");
  EXPECT_STREQ(find.GetFilePath(), "");
  EXPECT_FALSE(find.FindNextFile());
  // An open search would lock the folder.
  EXPECT_TRUE(std::filesystem::remove("below"));

  write_file("a.txt", "");
  ASSERT_TRUE(find.FindFile("a.*"));
  EXPECT_FALSE(find.FindNextFile());
  EXPECT_STREQ(find.GetFileName(), "a.txt");
}

TEST(FileFind, AThousandSearchesLeaveNothingBehind) {
  TemporaryFolder folder;
  names_of("*.*");
  const ResourceCounts before;
  for (int round = 0; round < 1000; ++round) names_of(round % 2 ? "*.*" : "none\\*.*");
  EXPECT_EQ(ResourceCounts(), before);
}

}  // namespace
