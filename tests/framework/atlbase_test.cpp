// Module information and locks.
#include <gtest/gtest.h>

#include <atlbase.h>

#include <thread>

namespace {

TEST(BaseModule, KnowsTheModuleThatTheCodeIsIn) {
  EXPECT_EQ(_AtlBaseModule.GetModuleInstance(), GetModuleHandleA(nullptr));
}

TEST(BaseModule, HasItsResourcesInItselfUntilToldOtherwise) {
  HINSTANCE own = _AtlBaseModule.GetModuleInstance();
  HINSTANCE other = GetModuleHandleA("user32.dll");
  EXPECT_EQ(_AtlBaseModule.GetResourceInstance(), own);
  EXPECT_EQ(_AtlBaseModule.SetResourceInstance(other), own);
  EXPECT_EQ(_AtlBaseModule.GetResourceInstance(), other);
  EXPECT_EQ(_AtlBaseModule.SetResourceInstance(own), other);
}

TEST(CriticalSection, KeepsOtherThreadsOutWhileItIsHeld) {
  CComAutoCriticalSection section;
  auto enters = [&] { return TryEnterCriticalSection(&section.m_sec) ? section.Unlock() == S_OK : false; };
  bool entered = true;
  {
    CComCritSecLock<CComAutoCriticalSection> lock(section);
    EXPECT_TRUE(enters());  // a thread may enter again
    std::thread([&] { entered = enters(); }).join();
    EXPECT_FALSE(entered);
  }
  std::thread([&] { entered = enters(); }).join();
  EXPECT_TRUE(entered);
}

TEST(CriticalSection, MayBeMadeAndEndedByHand) {
  CComCriticalSection section;
  EXPECT_EQ(section.Init(), S_OK);
  EXPECT_EQ(section.Lock(), S_OK);
  EXPECT_EQ(section.Unlock(), S_OK);
  EXPECT_EQ(section.Term(), S_OK);
}

}  // namespace
