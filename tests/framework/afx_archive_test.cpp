// CArchive: numbers and bytes through a buffer, in one direction.
#include <gtest/gtest.h>

#include <afx.h>

#include <support/expect_flat.h>
#include <support/files.h>

#include <numeric>
#include <string>
#include <vector>

namespace {

struct Thrown {
  int cause;
  std::string name;
  bool operator==(const Thrown&) const = default;
};

// The archive exception that a call throws.
template <typename Call>
Thrown thrown_by(Call call) {
  try {
    call();
  } catch (CArchiveException* exception) {
    Thrown thrown{exception->m_cause, exception->m_strFileName.GetString()};
    exception->Delete();
    return thrown;
  }
  return {-1, ""};
}

// A file in memory that counts calls, and fails with a full disk on request.
class WatchedFile : public CMemFile {
 public:
  UINT Read(void* buffer, UINT count) override {
    ++reads;
    return CMemFile::Read(buffer, count);
  }
  void Write(const void* buffer, UINT count) override {
    ++writes;
    if (full) AfxThrowFileException(CFileException::diskFull);
    CMemFile::Write(buffer, count);
  }
  std::string bytes() {
    std::string all(GetLength(), 0);
    SeekToBegin();
    CMemFile::Read(all.data(), static_cast<UINT>(all.size()));
    return all;
  }

  int reads = 0;
  int writes = 0;
  bool full = false;
};

TEST(Archive, NumbersAreLittleEndianWithNothingBetweenThem) {
  WatchedFile file;
  {
    CArchive archive(&file, CArchive::store);
    EXPECT_TRUE(archive.IsStoring());
    EXPECT_FALSE(archive.IsLoading());
    archive << BYTE{0x01} << WORD{0x0203} << DWORD{0x04050607} << ULONGLONG{0x08090A0B0C0D0E0F} << 1.0 << LONG{-2};
    archive.Close();
  }
  EXPECT_EQ(file.bytes(), std::string("\x01"
                                      "\x03\x02"
                                      "\x07\x06\x05\x04"
                                      "\x0F\x0E\x0D\x0C\x0B\x0A\x09\x08"
                                      "\x00\x00\x00\x00\x00\x00\xF0\x3F"
                                      "\xFE\xFF\xFF\xFF",
                                      27));
}

TEST(Archive, MayUseABufferOfTheCaller) {
  WatchedFile file;
  BYTE buffer[4] = {};
  CArchive archive(&file, CArchive::store, sizeof buffer, buffer);
  archive << WORD{0x0201};
  EXPECT_EQ(buffer[1], 2);
  archive << WORD{0x0403};
  EXPECT_EQ(file.writes, 0);
  archive << BYTE{5};
  EXPECT_EQ(file.writes, 1);
  archive.Close();
  EXPECT_EQ(file.bytes(), "\x01\x02\x03\x04\x05");
}

TEST(Archive, WhatWasStoredIsLoadedAgainFromAFile) {
  TemporaryFolder folder;
  {
    CFile file("a.bin", CFile::modeCreate | CFile::modeWrite);
    CArchive archive(&file, CArchive::store);
    archive << BYTE{1} << short{-2} << 3 << 4u << LONGLONG{-5} << ULONGLONG{6} << 7.5f << 8.25 << 'c' << true;
    archive.Write("raw", 3);
  }
  CFile file("a.bin", CFile::modeRead);
  CArchive archive(&file, CArchive::load);
  EXPECT_TRUE(archive.IsLoading());
  EXPECT_FALSE(archive.IsStoring());
  BYTE byte;
  short number;
  int integer;
  unsigned natural;
  LONGLONG large;
  ULONGLONG larger;
  float real;
  double precise;
  char character;
  bool yes;
  char raw[3];
  archive >> byte >> number >> integer >> natural >> large >> larger >> real >> precise >> character >> yes;
  EXPECT_EQ(archive.Read(raw, 3), 3u);
  EXPECT_EQ(byte, 1);
  EXPECT_EQ(number, -2);
  EXPECT_EQ(integer, 3);
  EXPECT_EQ(natural, 4u);
  EXPECT_EQ(large, -5);
  EXPECT_EQ(larger, 6u);
  EXPECT_EQ(real, 7.5f);
  EXPECT_EQ(precise, 8.25);
  EXPECT_EQ(character, 'c');
  EXPECT_TRUE(yes);
  EXPECT_EQ(std::string(raw, 3), "raw");
}

TEST(Archive, WritingIntoALoadingArchiveIsReadOnlyAndNamesTheFile) {
  TemporaryFolder folder;
  write_file("a.bin", "12345678");
  CFile file("a.bin", CFile::modeReadWrite);
  CArchive archive(&file, CArchive::load);
  const Thrown expected{CArchiveException::readOnly, (folder.path() / "a.bin").string()};
  static_assert(CArchiveException::readOnly == 2);
  EXPECT_EQ(thrown_by([&] { archive << DWORD{1}; }), expected);
  EXPECT_EQ(thrown_by([&] { archive.Write("x", 1); }), expected);
  EXPECT_EQ(thrown_by([&] { archive.Write("", 0); }), expected);
  archive.Close();
  file.Close();
  EXPECT_EQ(read_file("a.bin"), "12345678");
}

TEST(Archive, ReadingFromAStoringArchiveIsWriteOnlyAndNamesTheFile) {
  TemporaryFolder folder;
  CFile file("a.bin", CFile::modeCreate | CFile::modeReadWrite);
  CArchive archive(&file, CArchive::store);
  archive << DWORD{1};
  const Thrown expected{CArchiveException::writeOnly, (folder.path() / "a.bin").string()};
  static_assert(CArchiveException::writeOnly == 4);
  DWORD value = 7;
  EXPECT_EQ(thrown_by([&] { archive >> value; }), expected);
  EXPECT_EQ(thrown_by([&] { archive.Read(&value, sizeof value); }), expected);
  EXPECT_EQ(value, 7u);
}

TEST(Archive, AFileThatEndsWithinANumberIsAnEndOfFileAndLeavesTheNumber) {
  CMemFile file;
  file.Write("123", 3);
  file.SeekToBegin();
  CArchive archive(&file, CArchive::load);
  static_assert(CArchiveException::endOfFile == 3);
  DWORD value = 7;
  EXPECT_EQ(thrown_by([&] { archive >> value; }), (Thrown{CArchiveException::endOfFile, ""}));
  EXPECT_EQ(value, 7u);
}

TEST(Archive, ReadGivesWhatThereIsAndIsNoException) {
  CMemFile file;
  file.Write("123", 3);
  file.SeekToBegin();
  CArchive archive(&file, CArchive::load);
  char bytes[8];
  EXPECT_EQ(archive.Read(bytes, 8), 3u);
  EXPECT_EQ(archive.Read(bytes, 8), 0u);
  EXPECT_EQ(archive.Read(nullptr, 0), 0u);
}

TEST(Archive, SmallThingsGoThroughTheBufferAndLargeOnesPastIt) {
  WatchedFile file;
  std::vector<BYTE> large(1000);
  std::iota(large.begin(), large.end(), BYTE{0});
  {
    CArchive archive(&file, CArchive::store, 128);
    for (int i = 0; i < 32; ++i) archive << i;
    EXPECT_EQ(file.writes, 0);
    archive << 32;
    EXPECT_EQ(file.writes, 1);
    archive.Write(large.data(), 1000);
    EXPECT_EQ(file.writes, 3);
    archive << 33;
    archive.Close();
    EXPECT_EQ(file.writes, 4);
  }
  EXPECT_EQ(file.GetLength(), 34u * 4 + 1000);

  file.SeekToBegin();
  CArchive archive(&file, CArchive::load, 128);
  for (int i = 0, value; i < 33; ++i) {
    archive >> value;
    EXPECT_EQ(value, i);
  }
  EXPECT_EQ(file.reads, 2);
  std::vector<BYTE> read(1000);
  EXPECT_EQ(archive.Read(read.data(), 1000), 1000u);
  EXPECT_EQ(read, large);
  int last;
  archive >> last;
  EXPECT_EQ(last, 33);
}

TEST(Archive, ABufferIsNeverSmallerThan128Bytes) {
  for (int size : {-1, 0, 1}) {
    WatchedFile file;
    CArchive archive(&file, CArchive::store, size);
    for (int i = 0; i < 32; ++i) archive << i;
    EXPECT_EQ(file.writes, 0);
    archive << 32;
    EXPECT_EQ(file.writes, 1);
  }
}

TEST(Archive, FlushWritesWhatIsInTheBuffer) {
  WatchedFile file;
  CArchive archive(&file, CArchive::store);
  archive << WORD{0x4142};
  EXPECT_EQ(file.bytes(), "");
  archive.Flush();
  archive.Flush();
  EXPECT_EQ(file.bytes(), "BA");
  EXPECT_EQ(file.writes, 1);
}

TEST(Archive, ClosingALoadingOneLeavesTheFileBehindWhatWasRead) {
  CMemFile file;
  file.Write("0123456789", 10);
  file.SeekToBegin();
  char byte;
  {
    CArchive archive(&file, CArchive::load);
    archive >> byte;
    EXPECT_EQ(file.GetPosition(), 10u);
  }
  EXPECT_EQ(file.GetPosition(), 1u);
  CArchive next(&file, CArchive::load);
  next >> byte;
  EXPECT_EQ(byte, '1');
}

TEST(Archive, TheEndOfOneWritesWhatIsInTheBufferUnlessItIsToldNotTo) {
  WatchedFile written, thrown_away;
  { CArchive(&written, CArchive::store) << BYTE{'a'}; }
  { CArchive(&thrown_away, CArchive::store | CArchive::bNoFlushOnDelete) << BYTE{'a'}; }
  EXPECT_EQ(written.bytes(), "a");
  EXPECT_EQ(thrown_away.bytes(), "");
}

TEST(Archive, AFileThatFailsThrowsFromCloseButNotFromTheEndOfTheArchive) {
  WatchedFile file;
  file.full = true;
  int cause = -1;
  {
    CArchive archive(&file, CArchive::store);
    archive << BYTE{'a'};
    try {
      archive.Close();
    } catch (CFileException* exception) {
      cause = exception->m_cause;
      exception->Delete();
    }
    EXPECT_EQ(cause, CFileException::diskFull);
    EXPECT_EQ(file.writes, 1);
  }
  EXPECT_EQ(file.writes, 2);
}

TEST(Archive, AfterCloseItIsAGenericExceptionToUseIt) {
  CMemFile file;
  CArchive storing(&file, CArchive::store), loading(&file, CArchive::load);
  storing.Close();
  loading.Close();
  storing.Close();
  storing.Flush();
  int value = 0;
  EXPECT_EQ(thrown_by([&] { storing << 1; }).cause, CArchiveException::genericException);
  EXPECT_EQ(thrown_by([&] { loading >> value; }).cause, CArchiveException::genericException);
}

TEST(Archive, NoFileIsAnInvalidArgument) {
  bool caught = false;
  try {
    CArchive archive(nullptr, CArchive::store);
  } catch (CInvalidArgException* exception) {
    caught = true;
    exception->Delete();
  }
  EXPECT_TRUE(caught);
}

TEST(Archive, AThousandRoundsLeaveNothingBehind) {
  TemporaryFolder folder;
  const auto round_trip = [] {
    {
      CFile file("a.bin", CFile::modeCreate | CFile::modeWrite);
      CArchive(&file, CArchive::store) << 7;
    }
    CFile file("a.bin", CFile::modeRead);
    CArchive archive(&file, CArchive::load);
    int value = 0;
    archive >> value;
    EXPECT_EQ(value, 7);
    // The exception's memory counts too.
    EXPECT_EQ(thrown_by([&] { archive >> value; }).cause, CArchiveException::endOfFile);
  };
  expect_flat(1000, round_trip);
}

TEST(ArchiveException, NamesTheFileInItsText) {
  char text[80];
  UINT help = 7;
  EXPECT_TRUE(CArchiveException(CArchiveException::readOnly, "a.bin").GetErrorMessage(text, sizeof text, &help));
  EXPECT_STREQ(text, "a.bin is being read and cannot be written to.");
  EXPECT_EQ(help, 0u);
  EXPECT_TRUE(CArchiveException(CArchiveException::writeOnly, "a.bin").GetErrorMessage(text, sizeof text));
  EXPECT_STREQ(text, "a.bin is being written and cannot be read from.");
  EXPECT_TRUE(CArchiveException(CArchiveException::endOfFile).GetErrorMessage(text, sizeof text));
  EXPECT_STREQ(text, "an unnamed file ended before all of it was read.");
}

}  // namespace
