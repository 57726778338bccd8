// The owner of a thread, and PNG files encoded on a thread: another decoder than the encoder's reads them back.
#include <gtest/gtest.h>

#include <kexlib/imaging/png_thread.h>

#include <support/decoded_image.h>
#include <support/files.h>
#include <support/import_override.h>
#include <support/memory_shortage.h>
#include <support/resource_counts.h>

#include <climits>
#include <cstdint>
#include <memory>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

namespace {

using Thread = CThreadT<true>;

std::unique_ptr<hnDuctImage> make_image(int width = 7, int height = 5) {
  auto image = std::make_unique<hnDuctImage>(width, height, true);
  for (int y = 0; y < height; ++y)
    for (int x = 0; x < width; ++x)
      image->row(y)[x] = static_cast<std::uint32_t>(0x40000000 + x * 0x1F0000 + y * 0x2100 + x * y);
  return image;
}

std::vector<std::uint32_t> pixels_of(const hnDuctImage& image) {
  return {image.row(0), image.row(0) + image.width() * image.height()};
}

// The bytes of a closed buffer.
std::string contents(const kexBuffer& buffer) {
  buffer.write_to_file("contents");
  return read_file("contents");
}

unsigned long WINAPI add_one(void* number) { return *static_cast<unsigned long*>(number) + 1; }

class PngThread : public testing::Test {
 protected:
  TemporaryFolder folder_;
};

TEST_F(PngThread, WithoutAThreadTheOwnerGivesTheSystemsFailures) {
  Thread thread;
  EXPECT_EQ(thread.GetHandle(), nullptr);
  EXPECT_EQ(thread.GetId(), 0u);
  EXPECT_EQ(thread.GetExitCode(), 0xFFFFFFFFu);
  EXPECT_EQ(thread.Join(0), WAIT_FAILED);
  EXPECT_EQ(thread.Resume(), 0xFFFFFFFFu);
  EXPECT_EQ(thread.Suspend(), 0xFFFFFFFFu);
  EXPECT_EQ(thread.IsIOPending(), 0);
  EXPECT_EQ(thread.Terminate(1), 0);
  EXPECT_EQ(thread.GetPriority(), THREAD_PRIORITY_ERROR_RETURN);
  EXPECT_EQ(thread.SetPriority(0), 0);
  FILETIME times[4];
  EXPECT_EQ(thread.GetThreadTimes(times, times + 1, times + 2, times + 3), 0);
  Thread copy(thread);
  EXPECT_EQ(copy.GetHandle(), nullptr);
}

TEST_F(PngThread, AThreadIsStartedAndItsExitCodeTold) {
  unsigned long number = 41;
  Thread thread = Thread::Create(add_one, &number, CREATE_SUSPENDED, nullptr, 0);
  ASSERT_NE(thread.GetHandle(), nullptr);
  EXPECT_EQ(thread.GetId(), GetThreadId(thread.GetHandle()));
  EXPECT_EQ(thread.Join(0), DWORD{WAIT_TIMEOUT});
  EXPECT_EQ(thread.GetExitCode(), DWORD{STILL_ACTIVE});
  EXPECT_EQ(thread.SetPriority(THREAD_PRIORITY_BELOW_NORMAL), 1);
  EXPECT_EQ(thread.GetPriority(), THREAD_PRIORITY_BELOW_NORMAL);
  EXPECT_EQ(thread.Suspend(), 1u);
  EXPECT_EQ(thread.Resume(), 2u);
  EXPECT_EQ(thread.Resume(), 1u);
  EXPECT_EQ(thread.Join(INFINITE), DWORD{WAIT_OBJECT_0});
  EXPECT_EQ(thread.GetExitCode(), 42u);
  FILETIME creation{}, exit{}, kernel{}, user{};
  EXPECT_EQ(thread.GetThreadTimes(&creation, &exit, &kernel, &user), 1);
  EXPECT_GE(CompareFileTime(&exit, &creation), 0);
}

TEST_F(PngThread, AThreadEndsItselfOrIsEnded) {
  Thread itself = Thread::Create(
      [](void* owner) -> unsigned long {
        static_cast<Thread*>(owner)->Exit(7);
        return 8;
      },
      &itself, 0, nullptr, 0);
  EXPECT_EQ(itself.Join(INFINITE), DWORD{WAIT_OBJECT_0});
  EXPECT_EQ(itself.GetExitCode(), 7u);

  unsigned long number = 0;
  Thread ended = Thread::Create(add_one, &number, CREATE_SUSPENDED, nullptr, 0);
  EXPECT_EQ(ended.Terminate(9), 1);
  EXPECT_EQ(ended.Join(INFINITE), DWORD{WAIT_OBJECT_0});
  EXPECT_EQ(ended.GetExitCode(), 9u);
}

TEST_F(PngThread, ARunningThreadIsOpenedByItsIdentifier) {
  Thread self = Thread::Open(GetCurrentThreadId(), THREAD_QUERY_INFORMATION, FALSE);
  EXPECT_NE(self.GetHandle(), nullptr);
  EXPECT_EQ(self.GetId(), GetCurrentThreadId());
  EXPECT_EQ(GetThreadId(self.GetHandle()), GetCurrentThreadId());
  EXPECT_EQ(Thread::Open(0xFFFFFFF0, THREAD_QUERY_INFORMATION, FALSE).GetHandle(), nullptr);
}

TEST_F(PngThread, AHandleTellsItsIdentifierItself) {
  HANDLE handle = OpenThread(THREAD_QUERY_INFORMATION, FALSE, GetCurrentThreadId());
  EXPECT_EQ(Thread(handle, 0).GetId(), GetCurrentThreadId());
}

TEST_F(PngThread, ACopyHasItsOwnHandleAndAnAssignedOneTheSame) {
  Thread thread = Thread::Open(GetCurrentThreadId(), THREAD_ALL_ACCESS, FALSE);
  Thread copy(thread);
  EXPECT_NE(copy.GetHandle(), nullptr);
  EXPECT_NE(copy.GetHandle(), thread.GetHandle());
  EXPECT_EQ(copy.GetId(), thread.GetId());
  EXPECT_EQ(GetThreadId(copy.GetHandle()), GetCurrentThreadId());

  alignas(Thread) unsigned char memory[sizeof(Thread)];  // never destroyed: the handle would be closed twice
  auto* assigned = new (memory) Thread;
  *assigned = thread;
  EXPECT_EQ(assigned->GetHandle(), thread.GetHandle());
  EXPECT_EQ(assigned->GetId(), thread.GetId());
}

TEST_F(PngThread, ACopysHandleHasTheSameAccessAndIsNotInheritable) {
  const Thread thread = Thread::Open(GetCurrentThreadId(), THREAD_QUERY_INFORMATION, TRUE);
  const Thread copy(thread);
  DWORD flags = 0;
  ASSERT_TRUE(GetHandleInformation(thread.GetHandle(), &flags));
  EXPECT_EQ(flags, DWORD{HANDLE_FLAG_INHERIT});
  ASSERT_TRUE(GetHandleInformation(copy.GetHandle(), &flags));
  EXPECT_EQ(flags, 0u);
  EXPECT_NE(copy.GetPriority(), THREAD_PRIORITY_ERROR_RETURN);
  EXPECT_EQ(Thread(copy).Suspend(), 0xFFFFFFFFu);  // needs THREAD_SUSPEND_RESUME
}

TEST_F(PngThread, AnAssignmentDoesNotCloseWhatWasThere) {
  HANDLE lost;
  {
    Thread thread = Thread::Open(GetCurrentThreadId(), THREAD_ALL_ACCESS, FALSE);
    lost = thread.GetHandle();
    thread = Thread();
  }
  DWORD flags;
  EXPECT_TRUE(GetHandleInformation(lost, &flags));
  CloseHandle(lost);
}

TEST_F(PngThread, TheJobRunsWhenItIsResumedAndItsBufferAndFileAreTheSame) {
  auto buffer = kexBuffer_create();
  auto image = make_image();
  const auto expected = pixels_of(*image);
  kexPNGGenerationThread job(std::move(image), "picture.png", buffer);
  EXPECT_EQ(job.Join(0), DWORD{WAIT_TIMEOUT});
  EXPECT_FALSE(buffer->is_closed());
  EXPECT_NE(job.GetId(), 0u);
  EXPECT_EQ(job.Resume(), 1u);
  EXPECT_EQ(job.Join(INFINITE), DWORD{WAIT_OBJECT_0});
  EXPECT_EQ(job.GetExitCode(), 0u);
  EXPECT_TRUE(buffer->is_closed());
  EXPECT_FALSE(buffer->fail());

  const DecodedImage decoded = decode_image("picture.png");
  EXPECT_EQ(decoded.width, 7);
  EXPECT_EQ(decoded.height, 5);
  EXPECT_TRUE(decoded.has_alpha);
  EXPECT_EQ(decoded.pixels, expected);
  EXPECT_EQ(contents(*buffer), read_file("picture.png"));
}

TEST_F(PngThread, WithoutABufferOnlyTheFileIsWritten) {
  auto image = make_image();
  const auto expected = pixels_of(*image);
  kexPNGGenerationThread job(std::move(image), "pict\xfcre.png", nullptr);
  job.Resume();
  EXPECT_EQ(job.Join(INFINITE), DWORD{WAIT_OBJECT_0});
  EXPECT_EQ(job.GetExitCode(), 0u);
  EXPECT_EQ(decode_image("pict\xfcre.png").pixels, expected);
}

TEST_F(PngThread, PicturesOfOddSizesAreWritten) {
  for (const auto& [width, height] : {std::pair{1, 1}, {1, 4097}, {4097, 1}, {65535, 1}, {1, 65535}, {255, 257}}) {
    const auto image = make_image(width, height);
    kexPNGGenerationThread::write_image(image.get(), "odd.png", nullptr);
    const DecodedImage decoded = decode_image("odd.png");
    EXPECT_EQ(decoded.width, width);
    EXPECT_EQ(decoded.height, height);
    EXPECT_EQ(decoded.pixels, pixels_of(*image));
  }
  for (const auto& [width, height] : {std::pair{0, 5}, {5, 0}, {-1, 5}, {5, INT_MIN}}) {
    hnDuctImage empty(width, height, true);
    const auto buffer = kexBuffer_create();
    kexPNGGenerationThread::write_image(&empty, "", buffer);
    EXPECT_TRUE(buffer->is_closed());
    EXPECT_EQ(buffer->size(), 0u) << width << " " << height;
  }
}

TEST_F(PngThread, WithoutAPathTheBufferIsFilledAllTheSame) {
  auto buffer = kexBuffer_create();
  kexPNGGenerationThread::write_image(make_image().get(), "", buffer);
  EXPECT_TRUE(buffer->is_closed());
  EXPECT_TRUE(files_in(folder_.path()).empty());
  write_file("copy.png", contents(*buffer));
  EXPECT_EQ(decode_image("copy.png").width, 7);
}

TEST_F(PngThread, AnImageThatCannotBeEncodedClosesTheBufferEmpty) {
  hnDuctImage nothing(0, 0, false);
  for (hnDuctImage* image : {&nothing, static_cast<hnDuctImage*>(nullptr)}) {
    auto buffer = kexBuffer_create();
    kexPNGGenerationThread::write_image(image, "picture.png", buffer);
    EXPECT_TRUE(buffer->is_closed());
    EXPECT_EQ(buffer->size(), 0u);
    EXPECT_EQ(read_file("picture.png"), "");
  }
}

TEST_F(PngThread, WithoutABufferAnImageThatCannotBeEncodedLeavesTheFileAsItWas) {
  hnDuctImage nothing(0, 0, false);
  write_file("picture.png", "an older picture");
  for (hnDuctImage* image : {&nothing, static_cast<hnDuctImage*>(nullptr)}) {
    kexPNGGenerationThread::write_image(image, "picture.png", nullptr);
    EXPECT_EQ(read_file("picture.png"), "an older picture");
  }
}

// In round n, allocation n of the thread and all later ones fail, until a round needs fewer.
TEST_F(PngThread, MemoryThatRunsOutOnTheThreadEndsItInOrderWithItsBufferClosed) {
  for (bool with_buffer : {true, false}) {
    int successes = 0;
    for (bool has_failed = true; has_failed; ++successes) {
      auto buffer = with_buffer ? kexBuffer_create() : nullptr;
      kexPNGGenerationThread job(make_image(), "a name that is too long to be stored in the string itself.png", buffer);
      const MemoryShortage shortage(job.GetId(), successes);
      ASSERT_TRUE(shortage.made());
      EXPECT_EQ(job.Resume(), 1u);
      ASSERT_EQ(job.Join(INFINITE), DWORD{WAIT_OBJECT_0});
      EXPECT_EQ(job.GetExitCode(), 0u) << successes;
      EXPECT_TRUE(!buffer || buffer->is_closed()) << successes;
      has_failed = shortage.has_begun();
    }
    EXPECT_GT(successes, 2) << with_buffer;
    EXPECT_EQ(decode_image("a name that is too long to be stored in the string itself.png").width, 7);
  }
}

TEST_F(PngThread, ABufferThatFailsEndsTheEncodingAndIsClosedAndWritten) {
  auto buffer = kexBuffer_create();
  buffer->write("", ~0ull);
  ASSERT_TRUE(buffer->fail());
  kexPNGGenerationThread::write_image(make_image(300, 300).get(), "picture.png", buffer);
  EXPECT_TRUE(buffer->is_closed());
  EXPECT_EQ(buffer->size(), 0u);
  EXPECT_EQ(read_file("picture.png"), "");
}

TEST_F(PngThread, AJobThatIsNeverResumedLeavesItsThreadAndNothingElse) {
  auto buffer = kexBuffer_create();
  HANDLE thread;
  {
    kexPNGGenerationThread job(make_image(), "picture.png", buffer);
    DuplicateHandle(GetCurrentProcess(), job.GetHandle(), GetCurrentProcess(), &thread, 0, FALSE,
                    DUPLICATE_SAME_ACCESS);
  }
  EXPECT_EQ(WaitForSingleObject(thread, 0), DWORD{WAIT_TIMEOUT});
  EXPECT_FALSE(buffer->is_closed());
  EXPECT_EQ(buffer.use_count(), 1);
  EXPECT_TRUE(files_in(folder_.path()).empty());
  TerminateThread(thread, 0);
  CloseHandle(thread);
}

HANDLE WINAPI no_thread(SECURITY_ATTRIBUTES*, SIZE_T, LPTHREAD_START_ROUTINE, void*, DWORD, DWORD*) { return nullptr; }

TEST_F(PngThread, AThreadThatCannotBeMadeIsNotTold) {
  ImportOverride refuse("kexlib.dll", "KERNEL32.dll", "CreateThread", no_thread);
  ASSERT_TRUE(refuse.made());
  auto buffer = kexBuffer_create();
  kexPNGGenerationThread job(make_image(), "picture.png", buffer);
  EXPECT_EQ(job.GetHandle(), nullptr);
  EXPECT_EQ(job.Resume(), 0xFFFFFFFFu);
  EXPECT_EQ(job.Join(0), WAIT_FAILED);
}

class Countdown : public CThreadImpl<Countdown, Thread> {
 public:
  unsigned long Run() { return 5; }
};

TEST_F(PngThread, AnyClassWithRunBecomesAThread) {
  Countdown thread;
  Countdown copy(thread);
  EXPECT_NE(copy.GetHandle(), thread.GetHandle());
  EXPECT_EQ(copy.GetId(), thread.GetId());
  EXPECT_EQ(copy.Resume(), 1u);  // the same thread, of the first object
  EXPECT_EQ(thread.Join(INFINITE), DWORD{WAIT_OBJECT_0});
  EXPECT_EQ(thread.GetExitCode(), 5u);
}

TEST_F(PngThread, RoundsLeaveNothingBehind) {
  const auto round = [] {
    kexPNGGenerationThread job(make_image(), "picture.png", kexBuffer_create());
    job.Resume();
    job.Join(INFINITE);
    Thread copy(job);
  };
  for (int i = 0; i < 3; ++i) round();
  const ResourceCounts before;
  for (int i = 0; i < 50; ++i) round();
  EXPECT_EQ(ResourceCounts(), before);
}

}  // namespace
