// CSimpleArray.
#include <gtest/gtest.h>

#include <atlsimpcoll.h>

#include <string>

namespace {

TEST(SimpleArray, KeepsItsElementsInOrder) {
  CSimpleArray<std::string> texts;
  EXPECT_EQ(texts.GetSize(), 0);
  EXPECT_TRUE(texts.Add("first"));
  EXPECT_TRUE(texts.Add("second"));
  EXPECT_EQ(texts.GetSize(), 2);
  texts[1] += "!";
  const CSimpleArray<std::string>& same = texts;
  EXPECT_EQ(same[0], "first");
  EXPECT_EQ(same[1], "second!");
  EXPECT_EQ(texts.GetData(), &texts[0]);
  texts.RemoveAll();
  EXPECT_EQ(texts.GetSize(), 0);
}

}  // namespace
