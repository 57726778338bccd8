// Narrow text widened into a BSTR, in the code page of the thread.
#include <gtest/gtest.h>

#include <afx.h>
#include <atlbase.h>

#include <support/widened.h>

#include <string>

namespace {

using kexlib::widened;

TEST(Widened, IsTheTextInABstrOfItsLength) {
  EXPECT_STREQ(widened("abc"), L"abc");
  EXPECT_EQ(widened("abc").Length(), 3u);
}

TEST(Widened, IsNullForNullOnly) {
  EXPECT_TRUE(!widened(nullptr));
  EXPECT_FALSE(!widened(""));
  EXPECT_EQ(widened("").Length(), 0u);
}

TEST(Widened, IsReadInTheCodePageOfTheThread) {
  const LCID before = GetThreadLocale();
  SetThreadLocale(0x0409);
  const CComBSTR western = widened("\xe4");
  SetThreadLocale(0x0419);
  const CComBSTR russian = widened("\xe4");
  SetThreadLocale(0x0411);
  const CComBSTR japanese = widened("\x83\x5c");  // its second byte is a backslash elsewhere
  SetThreadLocale(before);
  EXPECT_STREQ(western, L"\u00e4");
  EXPECT_STREQ(russian, L"\u0434");
  EXPECT_STREQ(japanese, L"\u30bd");
  EXPECT_EQ(japanese.Length(), 1u);
}

TEST(Widened, TakesLongTexts) {
  const std::string text(100000, 'x');
  EXPECT_EQ(widened(text.c_str()).Length(), 100000u);
}

}  // namespace
