// Narrow text widened into a BSTR, in the code page of the thread.
#include <gtest/gtest.h>

#include <afx.h>
#include <atlbase.h>
#include <module/widened.h>

#include <string>

namespace {

CComBSTR wide(const char* text) {
  CComBSTR result;
  result.Attach(kexlib::module::widened(text));
  return result;
}

TEST(Widened, IsTheTextInABstrOfItsLength) {
  EXPECT_STREQ(wide("abc"), L"abc");
  EXPECT_EQ(wide("abc").Length(), 3u);
}

TEST(Widened, IsNullForNullOnly) {
  EXPECT_EQ(kexlib::module::widened(nullptr), nullptr);
  EXPECT_FALSE(!wide(""));
  EXPECT_EQ(wide("").Length(), 0u);
}

TEST(Widened, IsReadInTheCodePageOfTheThread) {
  const LCID before = GetThreadLocale();
  SetThreadLocale(0x0409);
  const CComBSTR western = wide("\xe4");
  SetThreadLocale(0x0419);
  const CComBSTR russian = wide("\xe4");
  SetThreadLocale(0x0411);
  const CComBSTR japanese = wide("\x83\x5c");  // its second byte is a backslash elsewhere
  SetThreadLocale(before);
  EXPECT_STREQ(western, L"\u00e4");
  EXPECT_STREQ(russian, L"\u0434");
  EXPECT_STREQ(japanese, L"\u30bd");
  EXPECT_EQ(japanese.Length(), 1u);
}

TEST(Widened, TakesLongTexts) {
  const std::string text(100000, 'x');
  EXPECT_EQ(wide(text.c_str()).Length(), 100000u);
}

}  // namespace
