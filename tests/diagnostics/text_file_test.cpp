#include <gtest/gtest.h>

#include <windows.h>

#include <diagnostics/text_file.h>
#include <support/files.h>
#include <support/import_override.h>

#include <algorithm>
#include <fstream>
#include <random>
#include <string>

using namespace kexlib;

namespace {

// The system's answers for a file far down in a share, and for one whose path it does not tell.
DWORD WINAPI path_on_a_share(HANDLE, char* path, DWORD size, DWORD) {
  const std::string text = R"(\\?\UNC\server\)" + std::string(300, 'a');
  if (size <= text.size()) return static_cast<DWORD>(text.size() + 1);
  text.copy(path, text.size());
  return static_cast<DWORD>(text.size());
}

unsigned long long bytes_written;

BOOL WINAPI count_written(HANDLE, const void*, DWORD size, DWORD* written, OVERLAPPED*) {
  *written = size;
  bytes_written += size;
  return TRUE;
}

DWORD WINAPI no_path(HANDLE, char*, DWORD, DWORD) { return 0; }

class TextFile : public testing::Test {
 protected:
  static std::string written(const std::string& text) {
    const text_file::Handle file = text_file::open("ours.txt", text_file::Start::Truncated);
    text_file::write(file, text);
    text_file::close(file);
    return read_file("ours.txt");
  }

  TemporaryFolder folder_;
};

TEST_F(TextFile, TurnsLineFeedsIntoLineEnds) {
  EXPECT_EQ(written(""), "");
  EXPECT_EQ(written("\n"), "\r\n");
  EXPECT_EQ(written("a\nb\r\n\n\rc\x1A"), "a\r\nb\r\r\n\r\n\rc\x1A");
}

TEST_F(TextFile, WritesWhatAStreamInTextModeWrites) {
  std::mt19937 random(1);
  for (const std::size_t size : {1u, 100u, 16383u, 16384u, 16385u, 32768u, 1000000u})
    for (const unsigned line : {1u, 2u, 3u, 15u, 16u, 17u, 80u, 16383u, 16384u, 16385u, 2000000u}) {
      std::string text(size, 'x');
      for (std::size_t at = line - 1; at < size; at += line) text[at] = '\n';
      if (line == 3) std::generate(text.begin(), text.end(), [&] { return "\n\rx"[random() % 3]; });
      std::ofstream("stream.txt") << text;
      ASSERT_EQ(written(text), read_file("stream.txt")) << size << " " << line;
    }
}

// A call of the system takes less.
TEST_F(TextFile, WritesMoreThanFourGigabytesAtOnce) {
  const ImportOverride counting(nullptr, "KERNEL32.dll", "WriteFile", &count_written);
  ASSERT_TRUE(counting.made());
  const std::size_t size = (std::size_t{4} << 30) + 5;
  const auto zeros = static_cast<const char*>(VirtualAlloc(nullptr, size, MEM_RESERVE | MEM_COMMIT, PAGE_READONLY));
  ASSERT_NE(zeros, nullptr);
  bytes_written = 0;
  text_file::write(nullptr, {zeros, size});
  EXPECT_EQ(bytes_written, size);
  VirtualFree(const_cast<char*>(zeros), 0, MEM_RELEASE);
}

TEST_F(TextFile, StartsAnewOrGoesOnAtTheEnd) {
  write_file("ours.txt", "before\n");
  const text_file::Handle file = text_file::open("ours.txt", text_file::Start::AtEnd);
  text_file::write(file, "after");
  text_file::close(file);
  EXPECT_EQ(read_file("ours.txt"), "before\nafter");
  EXPECT_EQ(written("anew"), "anew");
}

TEST_F(TextFile, TellsItsPathAsUsersWriteIt) {
  const text_file::Handle file = text_file::open("ours.txt", text_file::Start::Truncated);
  EXPECT_EQ(text_file::path_of(file), (folder_.path() / "ours.txt").string());
  {
    const ImportOverride shared(nullptr, "KERNEL32.dll", "GetFinalPathNameByHandleA", &path_on_a_share);
    ASSERT_TRUE(shared.made());
    EXPECT_EQ(text_file::path_of(file), R"(\\server\)" + std::string(300, 'a'));
  }
  {
    const ImportOverride unknown(nullptr, "KERNEL32.dll", "GetFinalPathNameByHandleA", &no_path);
    EXPECT_EQ(text_file::path_of(file), "");
  }
  text_file::close(file);
}

TEST_F(TextFile, LetsOthersReadAndWriteMeanwhile) {
  const text_file::Handle file = text_file::open("ours.txt", text_file::Start::Truncated);
  text_file::write(file, "line\n");
  EXPECT_EQ(read_file("ours.txt"), "line\r\n");
  const text_file::Handle second = text_file::open("ours.txt", text_file::Start::AtEnd);
  EXPECT_NE(second, nullptr);
  text_file::close(second);
  text_file::close(file);
}

TEST_F(TextFile, IsNullWhenItCannotBeOpened) {
  EXPECT_EQ(text_file::open("no such folder\\ours.txt", text_file::Start::Truncated), nullptr);
  EXPECT_EQ(text_file::open("", text_file::Start::AtEnd), nullptr);
}

}  // namespace
