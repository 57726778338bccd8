// kexBuffer: its two states, its readers on other threads, and its form in archives and files.
#include <gtest/gtest.h>

#include <kexlib/imaging/buffer.h>

#include <support/files.h>
#include <support/import_override.h>
#include <support/memory_shortage.h>
#include <support/resource_counts.h>

#include <atomic>
#include <filesystem>
#include <fstream>
#include <string>
#include <thread>
#include <vector>

namespace {

std::shared_ptr<kexBuffer> buffer_with(const std::string& bytes) {
  auto buffer = kexBuffer_create();
  buffer->write(bytes.data(), bytes.size());
  buffer->close();
  return buffer;
}

std::string stored(kexBuffer& buffer) {
  CMemFile file;
  CArchive archive(&file, CArchive::store);
  buffer.serialize(archive);
  archive.Close();
  std::string bytes(static_cast<size_t>(file.GetLength()), '\0');
  file.SeekToBegin();
  file.Read(bytes.data(), static_cast<UINT>(bytes.size()));
  return bytes;
}

std::shared_ptr<kexBuffer> loaded(const std::string& bytes) {
  CMemFile file;
  file.Write(bytes.data(), static_cast<UINT>(bytes.size()));
  file.SeekToBegin();
  CArchive archive(&file, CArchive::load);
  return kexBuffer::create_from_archive(archive);
}

// The bytes after the length.
std::string contents(kexBuffer& buffer) { return stored(buffer).substr(4); }

// Each test has its own folder.
class Buffer : public testing::Test {
 protected:
  TemporaryFolder folder_;
};

TEST_F(Buffer, BeginsEmptyAndOpen) {
  auto buffer = kexBuffer_create();
  EXPECT_FALSE(buffer->is_closed());
  EXPECT_FALSE(buffer->fail());
  EXPECT_EQ(buffer->size(), 0u);
  EXPECT_EQ(buffer.use_count(), 1);
}

TEST_F(Buffer, TellsItsSizeOnlyWhenItIsClosed) {
  auto buffer = kexBuffer_create();
  buffer->write("abc", 3);
  EXPECT_EQ(buffer->size(), 0u);
  buffer->close();
  EXPECT_EQ(buffer->size(), 3u);
  EXPECT_TRUE(buffer->is_closed());
  buffer->close();
  EXPECT_TRUE(buffer->is_closed());
}

TEST_F(Buffer, CanBeWrittenAfterItWasClosed) {
  auto buffer = buffer_with("abc");
  buffer->write("de", 2);
  EXPECT_EQ(contents(*buffer), "abcde");
}

TEST_F(Buffer, NothingIsWrittenForASizeOfZero) {
  auto buffer = kexBuffer_create();
  buffer->write(nullptr, 0);
  EXPECT_FALSE(buffer->fail());
  buffer->close();
  EXPECT_EQ(buffer->size(), 0u);
}

TEST_F(Buffer, ASizeThatNoMemoryHoldsMakesItFail) {
  auto buffer = buffer_with("abc");
  buffer->write("", ~0ull);
  EXPECT_TRUE(buffer->fail());
  EXPECT_EQ(buffer->size(), 3u);
}

TEST_F(Buffer, IsStoredAsItsLengthAndItsBytes) {
  EXPECT_EQ(stored(*buffer_with(std::string("a\0\r\n\xff", 5))), std::string("\5\0\0\0a\0\r\n\xff", 9));
  EXPECT_EQ(stored(*buffer_with("")), std::string(4, '\0'));
}

TEST_F(Buffer, IsLoadedClosed) {
  auto buffer = loaded(std::string("\3\0\0\0abcdef", 10));
  EXPECT_TRUE(buffer->is_closed());
  EXPECT_EQ(contents(*buffer), "abc");
  auto empty = loaded(std::string(4, '\0'));
  EXPECT_TRUE(empty->is_closed());
  EXPECT_EQ(empty->size(), 0u);
}

TEST_F(Buffer, LoadingAppends) {
  auto buffer = kexBuffer_create();
  buffer->write("abc", 3);
  CMemFile file;
  file.Write("\2\0\0\0de", 6);
  file.SeekToBegin();
  CArchive archive(&file, CArchive::load);
  buffer->serialize(archive);
  EXPECT_TRUE(buffer->is_closed());
  EXPECT_EQ(contents(*buffer), "abcde");
}

TEST_F(Buffer, SeveralBuffersFollowEachOtherInAnArchive) {
  const std::string bytes = stored(*buffer_with("first")) + stored(*buffer_with("")) + stored(*buffer_with("third"));
  CMemFile file;
  file.Write(bytes.data(), static_cast<UINT>(bytes.size()));
  file.SeekToBegin();
  CArchive archive(&file, CArchive::load);
  EXPECT_EQ(contents(*kexBuffer::create_from_archive(archive)), "first");
  EXPECT_EQ(contents(*kexBuffer::create_from_archive(archive)), "");
  EXPECT_EQ(contents(*kexBuffer::create_from_archive(archive)), "third");
}

TEST_F(Buffer, AnArchiveThatEndsWithinTheBytesGivesZerosForTheRest) {
  EXPECT_EQ(contents(*loaded(std::string("\5\0\0\0ab", 6))), std::string("ab\0\0\0", 5));
}

TEST_F(Buffer, ZerosForTheRestAreWrittenToAFile) {
  loaded(std::string("\5\0\0\0ab", 6))->write_to_file("rest.bin");
  EXPECT_EQ(read_file("rest.bin"), std::string("ab\0\0\0", 5));
}

TEST_F(Buffer, ZerosForTheRestStandBeforeWhatIsWrittenLater) {
  auto buffer = loaded(std::string("\5\0\0\0ab", 6));
  buffer->write("", 0);
  EXPECT_EQ(buffer->size(), 5u);
  buffer->write("c", 1);
  EXPECT_EQ(buffer->size(), 6u);
  EXPECT_EQ(contents(*buffer), std::string("ab\0\0\0c", 6));
}

TEST_F(Buffer, MoreZerosThanOnePieceOfThem) {
  constexpr size_t length = 0x12345;
  auto buffer = loaded(std::string("\x45\x23\1\0ab", 6));
  std::string expected(length, '\0');
  expected.replace(0, 2, "ab");
  EXPECT_TRUE(contents(*buffer) == expected);
  buffer->write("c", 1);
  EXPECT_TRUE(contents(*buffer) == expected + "c");
}

// Four bytes promise 4 GiB: neither are they allocated, nor are they written as zeros.
TEST_F(Buffer, AnArchiveThatPromisesMoreThanItDeliversCostsWhatItDelivers) {
  const size_t before = most_memory();
  auto buffer =
      loaded(std::string("\xFF\xFF\xFF\xFF"
                         "ab",
                         6));
  EXPECT_LT(most_memory(), before + (size_t{64} << 20));
  EXPECT_TRUE(buffer->is_closed());
  EXPECT_FALSE(buffer->fail());
  EXPECT_EQ(buffer->size(), 0xFFFFFFFFu);
}

TEST_F(Buffer, LoadsAsManyBytesAsThePiecesThatItReads) {
  for (const size_t length : {0x10000u, 0x10001u, 0x20000u, 0x20001u, 0x50000u}) {
    std::string bytes(length, '\0');
    for (size_t i = 0; i < length; ++i) bytes[i] = static_cast<char>(i * 7 / 3);
    const auto buffer = loaded(stored(*buffer_with(bytes)));
    EXPECT_EQ(buffer->size(), length);
    EXPECT_TRUE(contents(*buffer) == bytes) << length;
  }
}

TEST_F(Buffer, AnArchiveThatEndsWithinTheLengthThrowsAndLeavesTheBufferOpen) {
  CMemFile file;
  file.Write("\5\0\0", 3);
  file.SeekToBegin();
  CArchive archive(&file, CArchive::load);
  auto buffer = kexBuffer_create();
  try {
    buffer->serialize(archive);
    FAIL() << "nothing was thrown";
  } catch (CArchiveException* error) {
    EXPECT_EQ(error->m_cause, CArchiveException::endOfFile);
    error->Delete();
  }
  EXPECT_FALSE(buffer->is_closed());
}

// The bytes are read first, then appended: memory may run out in both steps.
TEST_F(Buffer, MemoryThatRunsOutWhileLoadingThrowsBeforeItAppendsAndFailsAfterwards) {
  const std::string bytes = std::string("\x40\0\0\0", 4) + std::string(64, 'x');
  int thrown = 0, failed = 0;
  for (bool has_begun = true; has_begun;) {
    CMemFile file;
    file.Write(bytes.data(), static_cast<UINT>(bytes.size()));
    file.SeekToBegin();
    CArchive archive(&file, CArchive::load);
    auto buffer = kexBuffer_create();
    bool has_thrown = false;
    {
      const MemoryShortage shortage(GetCurrentThreadId(), thrown + failed);
      ASSERT_TRUE(shortage.made());
      try {
        buffer->serialize(archive);
      } catch (const std::bad_alloc&) {
        has_thrown = true;
      }
      has_begun = shortage.has_begun();
    }
    EXPECT_EQ(buffer->is_closed(), !has_thrown);
    EXPECT_EQ(buffer->fail(), has_begun && !has_thrown);
    buffer->close();
    EXPECT_EQ(buffer->size() == 64, !has_begun);
    if (has_begun) ++(has_thrown ? thrown : failed);
  }
  EXPECT_GT(thrown, 0);
  EXPECT_GT(failed, 0);
}

TEST_F(Buffer, AnArchiveOfTheWrongDirectionThrows) {
  CMemFile file;
  CArchive loading(&file, CArchive::load), storing(&file, CArchive::store);
  try {
    loading.Write("", 1);
    FAIL();
  } catch (CArchiveException* error) {
    EXPECT_EQ(error->m_cause, 2);  // readOnly
    error->Delete();
  }
  try {
    kexBuffer::create_from_archive(loading);  // it is empty
    FAIL();
  } catch (CArchiveException* error) {
    EXPECT_EQ(error->m_cause, CArchiveException::endOfFile);
    error->Delete();
  }
  char byte;
  try {
    storing.Read(&byte, 1);
    FAIL();
  } catch (CArchiveException* error) {
    EXPECT_EQ(error->m_cause, 4);  // writeOnly
    error->Delete();
  }
}

TEST_F(Buffer, ReplacesTheFileByItsBytesAsTheyAre) {
  write_file("picture.bin", "much longer than what comes");
  const std::string bytes("a\n\r\n\0\x1a z", 8);
  buffer_with(bytes)->write_to_file("picture.bin");
  EXPECT_EQ(read_file("picture.bin"), bytes);
  buffer_with("")->write_to_file("picture.bin");
  EXPECT_EQ(read_file("picture.bin"), "");
}

TEST_F(Buffer, TheFilesNameIsInTheAnsiCodePage) {
  buffer_with("abc")->write_to_file("pict\xfcre.bin");
  EXPECT_EQ(read_file(folder_.path() / L"pict\u00fcre.bin"), "abc");
}

TEST_F(Buffer, AFileThatCannotBeWrittenIsNotTold) {
  buffer_with("abc")->write_to_file("");
  buffer_with("abc")->write_to_file("no such folder\\file");
  buffer_with("abc")->write_to_file(".");
  EXPECT_TRUE(files_in(folder_.path()).empty());
}

TEST_F(Buffer, MemoryThatRunsOutWhileTheFileIsWrittenIsNotReported) {
  const auto buffer = buffer_with("abc");
  const CString path("shortage.bin");
  int successes = 0;
  for (bool has_begun = true; has_begun; ++successes) {
    bool has_thrown = false;
    {
      const MemoryShortage shortage(GetCurrentThreadId(), successes);
      ASSERT_TRUE(shortage.made());
      try {
        buffer->write_to_file(path);
      } catch (...) {
        has_thrown = true;
      }
      has_begun = shortage.has_begun();
    }
    EXPECT_FALSE(has_thrown) << successes;
  }
  EXPECT_GT(successes, 1) << "nothing was allocated";
  EXPECT_EQ(read_file("shortage.bin"), "abc");
}

TEST_F(Buffer, OthersMayReadAndWriteTheFileMeanwhile) {
  std::ofstream other("shared.bin");
  buffer_with("abc")->write_to_file("shared.bin");
  EXPECT_EQ(read_file("shared.bin"), "abc");
}

std::atomic<int> naps{0};
std::atomic<DWORD> longest_nap{0};
void WINAPI count_nap(DWORD milliseconds) {
  ++naps;
  longest_nap = milliseconds;
  Sleep(milliseconds);
}

TEST_F(Buffer, EightReadersWaitForOneWriter) {
  naps = 0;
  ImportOverride nap("kexlib.dll", "KERNEL32.dll", "Sleep", count_nap);
  ASSERT_TRUE(nap.made());
  auto buffer = kexBuffer_create();
  std::atomic<int> done{0};
  std::vector<std::string> results(8);
  std::vector<std::thread> readers;
  for (size_t i = 0; i < results.size(); ++i)
    readers.emplace_back([&, i] {
      if (i % 2) {
        results[i] = contents(*buffer);
      } else {
        const std::string name = "reader" + std::to_string(i);
        buffer->write_to_file(name.c_str());
        results[i] = read_file(name);
      }
      ++done;
    });
  std::string expected;
  for (int i = 0; i < 1000; ++i) {
    const std::string piece = std::to_string(i) + ";";
    buffer->write(piece.data(), piece.size());
    expected += piece;
  }
  while (naps < 40) std::this_thread::yield();  // all readers are waiting
  EXPECT_EQ(done, 0);
  buffer->close();
  for (std::thread& reader : readers) reader.join();
  for (const std::string& result : results) EXPECT_EQ(result, expected);
  EXPECT_EQ(longest_nap, 10u);
}

TEST_F(Buffer, AHundredMegabytesAreWrittenAndStoredWithoutACopy) {
  constexpr size_t piece = 1 << 20, pieces = 100;
  auto buffer = kexBuffer_create();
  std::string bytes(piece, '\0');
  for (size_t i = 0; i < pieces; ++i) {
    bytes.assign(piece, static_cast<char>(i));
    buffer->write(bytes.data(), bytes.size());
  }
  buffer->close();
  EXPECT_EQ(buffer->size(), piece * pieces);

  const size_t before = count_memory();
  buffer->write_to_file("large.bin");
  CFile file("large.archive", CFile::modeCreate | CFile::modeReadWrite);
  CArchive archive(&file, CArchive::store);
  buffer->serialize(archive);
  archive.Close();
  EXPECT_LT(count_memory(), before + 10 * piece);

  EXPECT_EQ(std::filesystem::file_size("large.bin"), piece * pieces);
  file.SeekToBegin();
  CArchive back(&file, CArchive::load);
  auto copy = kexBuffer::create_from_archive(back);
  EXPECT_EQ(copy->size(), piece * pieces);
  copy->write_to_file("copy.bin");
  EXPECT_TRUE(read_file("copy.bin") == read_file("large.bin"));
}

}  // namespace
