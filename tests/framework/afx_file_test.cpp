// CFile and CMemFile: data and errors.
#include <gtest/gtest.h>

#include <afx.h>

#include <support/files.h>

#include <climits>
#include <string>
#include <vector>

namespace {

// The cause of the file exception that a call throws; -1: none.
template <typename Call>
int cause_of(Call call) {
  try {
    call();
  } catch (CFileException* exception) {
    int cause = exception->m_cause;
    exception->Delete();
    return cause;
  }
  return -1;
}

std::string rest_of(CFile& file) {
  char bytes[64];
  return {bytes, file.Read(bytes, sizeof bytes)};
}

TEST(File, WritesBytesAsTheyAreAndReadsThemBack) {
  TemporaryFolder folder;
  CFile file("a.bin", CFile::modeCreate | CFile::modeReadWrite | CFile::typeBinary);
  file.Write("a\r\n\0b\n", 6);
  EXPECT_EQ(file.GetPosition(), 6u);
  EXPECT_EQ(file.GetLength(), 6u);
  file.SeekToBegin();
  EXPECT_EQ(rest_of(file), std::string("a\r\n\0b\n", 6));
  EXPECT_EQ(rest_of(file), "");
  file.Close();
  EXPECT_EQ(read_file("a.bin"), std::string("a\r\n\0b\n", 6));
}

TEST(File, SeeksFromTheBeginningFromHereAndFromTheEnd) {
  TemporaryFolder folder;
  write_file("a.txt", "0123456789");
  CFile file("a.txt", CFile::modeRead);
  EXPECT_EQ(file.Seek(4, CFile::begin), 4u);
  EXPECT_EQ(file.Seek(-1, CFile::current), 3u);
  EXPECT_EQ(rest_of(file), "3456789");
  EXPECT_EQ(file.Seek(-2, CFile::end), 8u);
  EXPECT_EQ(rest_of(file), "89");
  EXPECT_EQ(file.Seek(5, CFile::end), 15u);
  EXPECT_EQ(rest_of(file), "");
  EXPECT_EQ(cause_of([&] { file.Seek(-1, CFile::begin); }), CFileException::badSeek);
  EXPECT_EQ(file.GetPosition(), 15u);
}

TEST(File, CreateEmptiesAnOldFileUnlessItIsNotToBeTruncated) {
  TemporaryFolder folder;
  write_file("kept.txt", "old");
  write_file("emptied.txt", "old");
  CFile("kept.txt", CFile::modeCreate | CFile::modeNoTruncate | CFile::modeWrite).Write("n", 1);
  CFile("emptied.txt", CFile::modeCreate | CFile::modeWrite).Write("n", 1);
  CFile("new.txt", CFile::modeCreate | CFile::modeNoTruncate | CFile::modeWrite).Write("n", 1);
  EXPECT_EQ(read_file("kept.txt"), "nld");
  EXPECT_EQ(read_file("emptied.txt"), "n");
  EXPECT_EQ(read_file("new.txt"), "n");
}

TEST(File, SaysTheFullPathWhileItIsOpen) {
  TemporaryFolder folder;
  write_file("a.txt", "");
  CFile file;
  EXPECT_STREQ(file.GetFilePath(), "");
  ASSERT_TRUE(file.Open("a.txt", CFile::modeRead));
  EXPECT_EQ(std::string(file.GetFilePath()), (folder.path() / "a.txt").string());
  file.Close();
  EXPECT_STREQ(file.GetFilePath(), "");
  EXPECT_EQ(file.m_hFile, INVALID_HANDLE_VALUE);
  file.Close();
}

TEST(File, OpenSaysWhyItFailedOnlyToTheExceptionObjectThatItIsGiven) {
  TemporaryFolder folder;
  CFile file;
  EXPECT_FALSE(file.Open("none.txt", CFile::modeRead));

  CFileException why;
  EXPECT_FALSE(file.Open("none.txt", CFile::modeRead, &why));
  EXPECT_EQ(why.m_cause, CFileException::fileNotFound);
  EXPECT_EQ(why.m_lOsError, ERROR_FILE_NOT_FOUND);
  EXPECT_STREQ(why.m_strFileName, "none.txt");

  EXPECT_FALSE(file.Open("none\\a.txt", CFile::modeCreate | CFile::modeWrite, &why));
  EXPECT_EQ(why.m_cause, CFileException::badPath);
  EXPECT_FALSE(file.Open(nullptr, CFile::modeRead, &why));
  EXPECT_EQ(why.m_cause, CFileException::badPath);
  EXPECT_FALSE(file.Open(folder.path().string().c_str(), CFile::modeRead, &why));
  EXPECT_EQ(why.m_cause, CFileException::accessDenied);
}

TEST(File, TheConstructorThrowsWhatOpenSays) {
  TemporaryFolder folder;
  try {
    CFile file("none.txt", CFile::modeRead);
    FAIL();
  } catch (CFileException* exception) {
    EXPECT_EQ(exception->m_cause, CFileException::fileNotFound);
    EXPECT_EQ(exception->m_lOsError, ERROR_FILE_NOT_FOUND);
    EXPECT_STREQ(exception->m_strFileName, "none.txt");
    exception->Delete();
  }
}

TEST(File, SharesAsItIsTold) {
  TemporaryFolder folder;
  write_file("a.txt", "");
  CFile second;
  CFileException why;
  auto also = [&](UINT flags) {
    bool opened = second.Open("a.txt", flags, &why);
    EXPECT_TRUE(opened || why.m_cause == CFileException::sharingViolation) << why.m_cause;
    if (opened) second.Close();
    return opened;
  };
  const UINT reader = CFile::modeRead | CFile::shareDenyNone;
  const UINT writer = CFile::modeWrite | CFile::shareDenyNone;
  {
    CFile first("a.txt", CFile::modeRead | CFile::shareDenyNone);
    EXPECT_TRUE(also(reader) && also(writer));
  }
  {
    CFile first("a.txt", CFile::modeRead | CFile::shareDenyWrite);
    EXPECT_TRUE(also(reader) && !also(writer));
  }
  {
    CFile first("a.txt", CFile::modeRead | CFile::shareDenyRead);
    EXPECT_TRUE(!also(reader) && also(writer));
  }
  for (UINT exclusive : {CFile::shareExclusive, CFile::shareCompat}) {
    CFile first("a.txt", CFile::modeRead | exclusive);
    EXPECT_TRUE(!also(reader) && !also(writer));
  }
}

TEST(File, TheHandleIsInheritedUnlessItIsNotToBe) {
  TemporaryFolder folder;
  auto inherited = [](UINT flags) {
    CFile file("a.txt", CFile::modeCreate | CFile::modeWrite | flags);
    DWORD information = 0;
    GetHandleInformation(file.m_hFile, &information);
    return (information & HANDLE_FLAG_INHERIT) != 0;
  };
  EXPECT_TRUE(inherited(0));
  EXPECT_FALSE(inherited(CFile::modeNoInherit));
}

TEST(File, OpeningAnotherClosesTheFirst) {
  TemporaryFolder folder;
  CFile file("a.txt", CFile::modeCreate | CFile::modeWrite);
  ASSERT_TRUE(file.Open("b.txt", CFile::modeCreate | CFile::modeWrite));
  EXPECT_TRUE(DeleteFileA("a.txt"));
  EXPECT_FALSE(DeleteFileA("b.txt"));
}

TEST(File, TheEndOfTheObjectClosesIt) {
  TemporaryFolder folder;
  { CFile file("a.txt", CFile::modeCreate | CFile::modeWrite); }
  EXPECT_TRUE(DeleteFileA("a.txt"));
}

TEST(File, WhatIsNotOpenIsAnInvalidFile) {
  CFile file;
  char byte = 0;
  EXPECT_EQ(cause_of([&] { file.Read(&byte, 1); }), CFileException::invalidFile);
  EXPECT_EQ(cause_of([&] { file.Write(&byte, 1); }), CFileException::invalidFile);
  EXPECT_EQ(cause_of([&] { file.Seek(0, CFile::begin); }), CFileException::invalidFile);
  EXPECT_EQ(cause_of([&] { file.GetLength(); }), CFileException::invalidFile);
  EXPECT_EQ(cause_of([&] { file.GetPosition(); }), CFileException::invalidFile);
}

TEST(File, WritingToAFileThatIsBeingReadIsDenied) {
  TemporaryFolder folder;
  write_file("a.txt", "abc");
  CFile reader("a.txt", CFile::modeRead);
  EXPECT_EQ(cause_of([&] { reader.Write("x", 1); }), CFileException::accessDenied);
  CFile writer("b.txt", CFile::modeCreate | CFile::modeWrite);
  char byte;
  EXPECT_EQ(cause_of([&] { writer.Read(&byte, 1); }), CFileException::accessDenied);
}

TEST(File, AHandleThatIsGoneIsReportedByClose) {
  TemporaryFolder folder;
  CFile file("a.txt", CFile::modeCreate | CFile::modeWrite);
  CloseHandle(file.m_hFile);
  EXPECT_EQ(cause_of([&] { file.Close(); }), CFileException::invalidFile);
  EXPECT_EQ(cause_of([&] { file.Close(); }), -1);
}

TEST(FileException, KnowsTheCauseOfTheSystemsErrors) {
  EXPECT_EQ(CFileException::OsErrorToException(ERROR_SUCCESS), CFileException::none);
  EXPECT_EQ(CFileException::OsErrorToException(ERROR_TOO_MANY_OPEN_FILES), CFileException::tooManyOpenFiles);
  EXPECT_EQ(CFileException::OsErrorToException(ERROR_DISK_FULL), CFileException::diskFull);
  EXPECT_EQ(CFileException::OsErrorToException(ERROR_LOCK_VIOLATION), CFileException::lockViolation);
  EXPECT_EQ(CFileException::OsErrorToException(ERROR_CRC), CFileException::hardIO);
  EXPECT_EQ(CFileException::OsErrorToException(ERROR_CURRENT_DIRECTORY), CFileException::removeCurrentDir);
  EXPECT_EQ(CFileException::OsErrorToException(ERROR_CANNOT_MAKE), CFileException::directoryFull);
  EXPECT_EQ(CFileException::OsErrorToException(ERROR_HANDLE_EOF), CFileException::endOfFile);
  EXPECT_EQ(CFileException::OsErrorToException(12345), CFileException::genericException);
}

TEST(FileException, NamesTheFileInItsText) {
  char text[80];
  UINT help = 7;
  CFileException with_name(CFileException::fileNotFound, ERROR_FILE_NOT_FOUND, "a.txt");
  EXPECT_TRUE(with_name.GetErrorMessage(text, sizeof text, &help));
  EXPECT_STREQ(text, "There is no file a.txt.");
  EXPECT_EQ(help, 0u);
  EXPECT_TRUE(with_name.GetErrorMessage(text, 10));
  EXPECT_STREQ(text, "There is ");

  EXPECT_TRUE(CFileException(CFileException::diskFull).GetErrorMessage(text, sizeof text));
  EXPECT_STREQ(text, "The disk has no room for an unnamed file.");
  EXPECT_TRUE(CFileException(99, -1, "100%s.txt").GetErrorMessage(text, sizeof text));
  EXPECT_STREQ(text, "Something went wrong with 100%s.txt.");
}

TEST(MemoryFile, GrowsAndIsReadLikeAFile) {
  CMemFile memory;
  CFile& file = memory;
  EXPECT_EQ(file.GetLength(), 0u);
  file.Write("0123456789", 10);
  EXPECT_EQ(file.GetPosition(), 10u);
  EXPECT_EQ(file.Seek(-3, CFile::end), 7u);
  file.Write("xyz!", 4);
  EXPECT_EQ(file.GetLength(), 11u);
  file.SeekToBegin();
  EXPECT_EQ(rest_of(file), "0123456xyz!");
  EXPECT_EQ(rest_of(file), "");
  EXPECT_STREQ(file.GetFilePath(), "");
  file.Write(nullptr, 0);
  EXPECT_EQ(file.Read(nullptr, 0), 0u);
}

TEST(MemoryFile, WritingBehindTheEndFillsTheGapWithZeros) {
  CMemFile file;
  EXPECT_EQ(file.Seek(2, CFile::begin), 2u);
  EXPECT_EQ(file.GetLength(), 0u);
  EXPECT_EQ(rest_of(file), "");
  file.Write("a", 1);
  file.SeekToBegin();
  EXPECT_EQ(rest_of(file), std::string("\0\0a", 3));
}

TEST(MemoryFile, CannotSeekBeforeItsBeginningOrOutOfTheWorld) {
  CMemFile file;
  file.Write("abc", 3);
  EXPECT_EQ(cause_of([&] { file.Seek(-4, CFile::current); }), CFileException::badSeek);
  EXPECT_EQ(cause_of([&] { file.Seek(LLONG_MIN, CFile::begin); }), CFileException::badSeek);
  EXPECT_EQ(cause_of([&] { file.Seek(LLONG_MAX, CFile::end); }), CFileException::badSeek);
  EXPECT_EQ(file.GetPosition(), 3u);
}

TEST(MemoryFile, AWriteThatMemoryCannotHoldThrowsAndLeavesTheFileAsItWas) {
  CMemFile file;
  file.Write("abc", 3);
  file.Seek(LLONG_MAX - 10, CFile::begin);
  // The second one exceeds the size of any vector.
  for (UINT count : {1u, 100u}) {
    const std::vector<char> bytes(count);
    bool caught = false;
    try {
      file.Write(bytes.data(), count);
    } catch (CMemoryException* exception) {
      caught = true;
      exception->Delete();
    }
    EXPECT_TRUE(caught) << count;
  }
  EXPECT_EQ(file.GetLength(), 3u);
}

TEST(MemoryFile, CloseLetsGoOfTheBytesAndOpenOpensNothing) {
  TemporaryFolder folder;
  CMemFile file;
  file.Write("abc", 3);
  file.Close();
  EXPECT_EQ(file.GetLength(), 0u);
  EXPECT_FALSE(file.Open("a.txt", CFile::modeCreate | CFile::modeWrite));
  EXPECT_TRUE(files_in(folder.path()).empty());
  file.Write("x", 1);
  EXPECT_EQ(file.GetLength(), 1u);
}

}  // namespace
