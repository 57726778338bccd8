// bzbase: the string that kexlib accepts and appends to, and the related small types.
#include <gtest/gtest.h>

#include <bzbase/copy.h>
#include <bzbase/ref.h>
#include <bzbase/singleton.h>
#include <bzbase/string.h>

#include <string>

namespace {

TEST(BzString, IsEmptyUnlessItIsGivenAText) {
  EXPECT_STREQ(bzString().c_str(), "");
  EXPECT_EQ(bzString().length(), 0u);
  EXPECT_STREQ(bzString(nullptr).c_str(), "");
  EXPECT_STREQ(bzString("").c_str(), "");
}

TEST(BzString, KeepsACopyOfTheText) {
  char text[] = "C:\\pict\xfcres";
  bzString path(text);
  text[0] = 'X';
  EXPECT_STREQ(path.c_str(), "C:\\pict\xfcres");
  EXPECT_EQ(path.length(), 11u);
}

TEST(BzString, AppendsTextsOneAfterTheOther) {
  bzString name("Gauge");
  bzString& same = name << " (64-bit)" << bzString() << bzString(" beta");
  EXPECT_EQ(&same, &name);
  EXPECT_STREQ(name.c_str(), "Gauge (64-bit) beta");
  name << nullptr;
  EXPECT_EQ(name.length(), 19u);
}

TEST(BzString, AppendsItself) {
  bzString text("0123456789abcdef");  // the result exceeds a small buffer
  text << text << text;
  EXPECT_EQ(std::string(text.c_str()), "0123456789abcdef0123456789abcdef0123456789abcdef0123456789abcdef");
}

TEST(BzString, CopiesAreIndependent) {
  bzString first("a");
  bzString second(first);
  second << "b";
  EXPECT_STREQ(first.c_str(), "a");
  first = second;
  first << "c";
  EXPECT_STREQ(first.c_str(), "abc");
  EXPECT_STREQ(second.c_str(), "ab");
}

TEST(BzString, GrowsToAnyLength) {
  bzString text;
  for (int i = 0; i < 100000; ++i) text << "0123456789";
  EXPECT_EQ(text.length(), 1000000u);
}

TEST(BzRef, TheLastReferenceDeletesTheObject) {
  struct Counted {
    explicit Counted(int* count) : count_(count) { ++*count_; }
    ~Counted() { --*count_; }
    Counted(const Counted&) = delete;
    Counted& operator=(const Counted&) = delete;
    int* count_;
  };
  int alive = 0;
  bzRef<Counted> first(new Counted(&alive));
  bzRef<Counted> second(first);
  first = nullptr;
  EXPECT_EQ(alive, 1);
  second = nullptr;
  EXPECT_EQ(alive, 0);
}

TEST(BzCopy, TellsACopyThatIsAskedForFromOthers) {
  class Thing {
   public:
    explicit Thing(int number) : number_(number) {}
    Thing(bzCopy, const Thing& other) : number_(other.number_) {}
    Thing(const Thing&) = delete;
    Thing& operator=(const Thing&) = delete;
    int number_;
  };
  Thing original(5);
  EXPECT_EQ(Thing(bz_copy, original).number_, 5);
}

TEST(BzSingletonAccessAction, ZeroGetsAndEveryOtherValueIsOneToo) {
  EXPECT_EQ(static_cast<int>(bz_singleton_get), 0);
  EXPECT_NE(static_cast<int>(bz_singleton_delete), 0);
  EXPECT_EQ(static_cast<int>(static_cast<bzSingletonAccessAction>(-7)), -7);
}

}  // namespace
