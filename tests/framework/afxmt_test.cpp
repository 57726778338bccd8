// CEvent.
#include <gtest/gtest.h>

#include <afxmt.h>
#include <afxwin.h>

#include <support/resource_counts.h>

#include <string>
#include <thread>

namespace {

TEST(Event, AnAutoResetOneLetsOneWaitThrough) {
  CEvent event;
  EXPECT_FALSE(event.Lock(0));
  EXPECT_TRUE(event.SetEvent());
  EXPECT_TRUE(event.Lock(0));
  EXPECT_FALSE(event.Lock(0));
}

TEST(Event, AManualResetOneStaysUntilItIsReset) {
  CEvent event(TRUE, TRUE);
  EXPECT_TRUE(event.Lock(0));
  EXPECT_TRUE(event.Lock(0));
  EXPECT_TRUE(event.ResetEvent());
  EXPECT_FALSE(event.Lock(0));
}

TEST(Event, WakesAThreadThatWaits) {
  CEvent request, answer;
  std::thread other([&] {
    if (request.Lock()) answer.SetEvent();
  });
  request.SetEvent();
  EXPECT_TRUE(answer.Lock(10000));
  other.join();
}

TEST(Event, IsAHandleThatEndsWithIt) {
  std::string name = "kexlib event " + std::to_string(GetCurrentProcessId());
  {
    CEvent event(FALSE, FALSE, name.c_str());
    EXPECT_EQ(static_cast<HANDLE>(event), event.m_hObject);
    event.SetEvent();
    EXPECT_EQ(WaitForSingleObject(event, 0), WAIT_OBJECT_0);
    HANDLE same = OpenEventA(SYNCHRONIZE, FALSE, name.c_str());
    EXPECT_NE(same, nullptr);
    CloseHandle(same);
  }
  EXPECT_EQ(OpenEventA(SYNCHRONIZE, FALSE, name.c_str()), nullptr);
}

TEST(Event, OneOfTheNameThatIsThereIsOpenedAsItIs) {
  std::string name = "kexlib event " + std::to_string(GetCurrentProcessId());
  CEvent first(FALSE, TRUE, name.c_str());
  CEvent second(TRUE, FALSE, name.c_str());
  EXPECT_FALSE(second.Lock(0));
  first.SetEvent();
  EXPECT_TRUE(second.Lock(0));
  EXPECT_TRUE(second.Lock(0));
}

TEST(Event, ANameThatBelongsToSomethingElseIsAResourceException) {
  std::string name = "kexlib mutex " + std::to_string(GetCurrentProcessId());
  HANDLE mutex = CreateMutexA(nullptr, FALSE, name.c_str());
  bool caught = false;
  try {
    CEvent event(FALSE, FALSE, name.c_str());
  } catch (CResourceException* exception) {
    caught = true;
    exception->Delete();
  }
  EXPECT_TRUE(caught);
  CloseHandle(mutex);
}

TEST(Event, AThousandLeaveNothingBehind) {
  const ResourceCounts before;
  for (int round = 0; round < 1000; ++round) CEvent().SetEvent();
  EXPECT_EQ(ResourceCounts(), before);
}

}  // namespace
