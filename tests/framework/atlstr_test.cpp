// CString: text that is shared between copies until one of them is modified.
#include <gtest/gtest.h>

#include <afxdisp.h>
#include <atlstr.h>
#include <mbctype.h>

#include <framework/resources.h>
#include <support/c_library.h>
#include <support/expect_flat.h>

#include <cmath>
#include <limits>
#include <string>

namespace {

// The code that a call throws through AtlThrow.
template <typename Call>
HRESULT thrown_by(Call call) {
  try {
    call();
  } catch (COleException* exception) {
    HRESULT code = exception->m_sc;
    exception->Delete();
    return code;
  }
  return S_OK;
}

TEST(String, ACopySharesTheBufferUntilOneOfThemIsWritten) {
  CStringA first("abc");
  CStringA second(first);
  EXPECT_EQ(first.GetString(), second.GetString());

  second.GetBuffer()[0] = 'X';
  second.ReleaseBuffer();
  EXPECT_NE(first.GetString(), second.GetString());
  EXPECT_STREQ(first, "abc");
  EXPECT_STREQ(second, "Xbc");
}

TEST(String, AssignmentSharesTheBufferToo) {
  CStringA first("abc"), second("other");
  second = first;
  EXPECT_EQ(first.GetString(), second.GetString());
  first += "def";
  EXPECT_STREQ(first, "abcdef");
  EXPECT_STREQ(second, "abc");
}

TEST(String, ASecondOwnerIsLeftAloneByGetBuffer) {
  CStringA first("abc");
  const char* before = first.GetString();
  CStringA second(first);
  char* buffer = first.GetBuffer(260);
  EXPECT_NE(buffer, before);
  EXPECT_EQ(second.GetString(), before);
  strcpy(buffer, "written");
  first.ReleaseBuffer();
  EXPECT_STREQ(first, "written");
  EXPECT_STREQ(second, "abc");
}

TEST(String, ACopyMadeAfterGetBufferSharesWhatIsStillWrittenThroughThePointer) {
  // By design the pointer belongs to the buffer, which the copy shares.
  CStringA first("abc");
  char* buffer = first.GetBuffer();
  CStringA second(first);
  buffer[0] = 'X';
  EXPECT_STREQ(second, "Xbc");
  // The next GetBuffer makes the buffer unshared.
  first.GetBuffer()[0] = 'Y';
  EXPECT_STREQ(first, "Ybc");
  EXPECT_STREQ(second, "Xbc");
}

TEST(String, AnOnlyOwnerWritesInPlace) {
  CStringA text("abc");
  const char* before = text.GetString();
  EXPECT_EQ(text.GetBuffer(), before);
  text.SetString("xy");
  EXPECT_EQ(text.GetString(), before);
  EXPECT_STREQ(text, "xy");
}

TEST(String, GetBufferKeepsTheTextAndGivesTheRoomAskedFor) {
  CStringA text("abc");
  char* buffer = text.GetBuffer(1000);
  EXPECT_STREQ(buffer, "abc");
  memset(buffer, 'z', 1000);
  text.ReleaseBuffer(1000);
  EXPECT_EQ(text.GetLength(), 1000);
  EXPECT_EQ(text, CStringA('z', 1000));
}

TEST(String, PartedFromItsCopyKeepsTheTextWhateverTheRoomAskedFor) {
  CStringA first("abcdef"), second(first);
  second.GetBuffer(2);
  second.ReleaseBuffer(6);
  EXPECT_STREQ(second, "abcdef");
}

TEST(String, AThousandLeaveNothingBehind) {
  expect_flat(1000, [] {
    CStringA first('x', 10000), second(first);
    second += "y";
    first = second;
  });
}

TEST(String, ReleaseBufferEndsAtTheTerminatorOrWhereTheRoomEnds) {
  CStringA text;
  char* buffer = text.GetBufferSetLength(10);
  strcpy(buffer, "four");
  EXPECT_EQ(text.GetLength(), 10);
  text.ReleaseBuffer();
  EXPECT_EQ(text.GetLength(), 4);

  CStringA full;
  memset(full.GetBuffer(5), 'x', 6);  // no terminator inside the buffer
  full.ReleaseBuffer();
  EXPECT_STREQ(full, "xxxxx");
}

TEST(String, LengthsAndIndicesOutsideTheTextThrowInvalidArgument) {
  CStringA text("abc");
  EXPECT_EQ(thrown_by([&] { text.ReleaseBuffer(100); }), E_INVALIDARG);
  EXPECT_EQ(thrown_by([&] { text.GetBuffer(-1); }), E_INVALIDARG);
  EXPECT_EQ(thrown_by([&] { text.GetBuffer(INT_MAX); }), E_INVALIDARG);
  EXPECT_EQ(thrown_by([&] { static_cast<void>(text[4]); }), E_INVALIDARG);
  EXPECT_EQ(thrown_by([&] { static_cast<void>(text.GetAt(-1)); }), E_INVALIDARG);
  EXPECT_EQ(thrown_by([&] { text.SetString(nullptr, 3); }), E_INVALIDARG);
  EXPECT_EQ(thrown_by([&] { CStringA('x', -1); }), E_INVALIDARG);
  EXPECT_EQ(thrown_by([&] { text.Append("x", INT_MAX); }), E_INVALIDARG);
  EXPECT_STREQ(text, "abc");
}

TEST(String, TextToConvertWithANegativeLengthThrowsInvalidArgument) {
  EXPECT_EQ(thrown_by([] { CStringA(L"abc", -1); }), E_INVALIDARG);
  EXPECT_EQ(thrown_by([] { CStringW("abc", -1); }), E_INVALIDARG);
  EXPECT_STREQ(CStringA(L"abc", 2), "ab");
}

TEST(String, ComparedWithANullPointerThrowsInvalidArgument) {
  CStringA text("abc");
  const char* null = nullptr;
  EXPECT_EQ(thrown_by([&] { text.Compare(null); }), E_INVALIDARG);
  EXPECT_EQ(thrown_by([&] { text.CompareNoCase(null); }), E_INVALIDARG);
  EXPECT_EQ(thrown_by([&] { static_cast<void>(text == null); }), E_INVALIDARG);
}

TEST(String, TheIndexOfTheEndReadsTheTerminator) {
  EXPECT_EQ(CStringA("abc")[3], '\0');
  EXPECT_EQ(CStringA().GetAt(0), '\0');
}

TEST(String, TextWithZerosInsideIsKeptWhole) {
  CStringA text("a\0b", 3);
  CStringA copy = text + "c";
  EXPECT_EQ(copy.GetLength(), 4);
  EXPECT_EQ(std::string(copy.GetString(), 4), std::string("a\0bc", 4));
}

TEST(String, ANullPointerIsTheEmptyText) {
  CStringA text("abc");
  text = static_cast<const char*>(nullptr);
  EXPECT_TRUE(text.IsEmpty());
  text += static_cast<const char*>(nullptr);
  EXPECT_STREQ(text, "");
  EXPECT_STREQ(CStringA(static_cast<const wchar_t*>(nullptr)), "");
  for (const wchar_t* none : {L"", static_cast<const wchar_t*>(nullptr)}) {
    text = "abc";
    text = none;
    EXPECT_STREQ(text, "");
  }
}

TEST(String, EmptyTextsShareOneBuffer) {
  CStringA text("abc");
  text.Empty();
  EXPECT_EQ(text.GetString(), CStringA().GetString());
  EXPECT_EQ(CStringA("").GetString(), CStringA().GetString());
}

TEST(String, MaySetAndAppendAPartOfItself) {
  CStringA text("abcdef");
  text = text.GetString() + 2;
  EXPECT_STREQ(text, "cdef");
  text += text.GetString() + 1;
  EXPECT_STREQ(text, "cdefdef");
  text += text;
  EXPECT_STREQ(text, "cdefdefcdefdef");
}

TEST(String, MovedFromIsEmptyOrSwapped) {
  CStringA first("abc");
  const char* buffer = first.GetString();
  CStringA second(std::move(first));
  EXPECT_EQ(second.GetString(), buffer);
  EXPECT_STREQ(first, "");  // NOLINT(bugprone-use-after-move): what is left behind is the point
}

TEST(String, ConcatenatesInEveryOrder) {
  CStringA text("b");
  EXPECT_STREQ(text + "c", "bc");
  EXPECT_STREQ("a" + text, "ab");
  EXPECT_STREQ(text + text, "bb");
  EXPECT_STREQ(text + 'c', "bc");
  EXPECT_STREQ('a' + text, "ab");
  EXPECT_STREQ(text, "b");
}

TEST(String, ComparesByCharacterCode) {
  CStringA text("abc");
  EXPECT_TRUE(text == "abc");
  EXPECT_TRUE("abc" == text);
  EXPECT_TRUE(text != "abC");
  EXPECT_TRUE(text < CStringA("abd"));
  EXPECT_TRUE(text > "abC");
  EXPECT_EQ(text.Compare("abc"), 0);
  EXPECT_LT(text.Compare("b"), 0);
  EXPECT_GT(text.Compare("B"), 0);
  EXPECT_EQ(text.CompareNoCase("ABC"), 0);
  EXPECT_LT(CStringA("a").Compare("\xE4"), 0);  // bytes are unsigned
}

TEST(String, FindsTextsAndCharactersFromAPlaceOn) {
  CStringA text("abcabc");
  EXPECT_EQ(text.Find("bc"), 1);
  EXPECT_EQ(text.Find("bc", 2), 4);
  EXPECT_EQ(text.Find('c', 3), 5);
  EXPECT_EQ(text.Find("x"), -1);
  EXPECT_EQ(text.Find("a", 7), -1);
  EXPECT_EQ(text.Find("a", -1), -1);
  EXPECT_EQ(text.Find("", 6), c_library::finds_nothing_at_the_end() ? 6 : -1);
  EXPECT_EQ(text.Find("", -1), -1);
  EXPECT_EQ(text.Find(static_cast<const char*>(nullptr)), -1);
}

TEST(String, FindsWholeCharactersOfADoubleByteCodePage) {
  int before = _getmbcp();
  _setmbcp(932);
  // The second byte of the first character equals a backslash.
  CStringA text("\x83\\.\\");
  EXPECT_EQ(text.Find('\\'), 3);
  EXPECT_EQ(text.Find("\\"), 3);
  EXPECT_EQ(text.Find("\\."), -1);
  _setmbcp(before);
  EXPECT_EQ(text.Find('\\'), 1);
}

TEST(String, PartsAreCutToWhatIsThere) {
  CStringA text("abcdef");
  EXPECT_STREQ(text.Left(2), "ab");
  EXPECT_STREQ(text.Mid(2), "cdef");
  EXPECT_STREQ(text.Mid(2, 2), "cd");
  EXPECT_STREQ(text.Mid(4, 100), "ef");
  EXPECT_STREQ(text.Mid(100, 1), "");
  EXPECT_STREQ(text.Mid(-5, 2), "ab");
  EXPECT_STREQ(text.Left(-1), "");
  EXPECT_EQ(text.Left(6).GetString(), text.GetString());
}

TEST(String, IsTrimmedOfWhiteSpaceAtBothEnds) {
  CStringA text = " \t\r\na b\v\f ";
  EXPECT_STREQ(text.Trim(), "a b");
  EXPECT_STREQ(text, "a b");
  const CStringA copy = text;
  EXPECT_EQ(text.Trim().GetString(), copy.GetString()) << "nothing to trim: the buffer stays shared";
  EXPECT_STREQ(CStringA(" \n ").Trim(), "");
  EXPECT_STREQ(CStringA().Trim(), "");
  EXPECT_STREQ(CStringW(L"\u00e9 ").Trim(), L"\u00e9");
  if (c_library::knows_wide_blanks()) {
    EXPECT_STREQ(CStringW(L"\x3000\u00e9 ").Trim(), L"\u00e9");
  }
}

TEST(String, ReplacesEveryOccurrenceAndCountsThem) {
  CStringA text("one, two, three");
  EXPECT_EQ(text.Replace(", ", ";"), 2);
  EXPECT_STREQ(text, "one;two;three");
  EXPECT_EQ(text.Replace(";", " and "), 2);
  EXPECT_STREQ(text, "one and two and three");
  EXPECT_EQ(text.Replace(" and ", nullptr), 2);
  EXPECT_STREQ(text, "onetwothree");
  EXPECT_EQ(text.Replace("x", "y"), 0);
}

TEST(String, ReplaceDoesNotLookAtWhatItPutIn) {
  CStringA text("aaa");
  EXPECT_EQ(text.Replace("a", "aa"), 3);
  EXPECT_STREQ(text, "aaaaaa");
}

TEST(String, ReplaceWithAnEmptyOldTextChangesNothing) {
  CStringA text("abc");
  EXPECT_EQ(text.Replace("", "x"), 0);
  EXPECT_EQ(text.Replace(static_cast<const char*>(nullptr), "x"), 0);
  EXPECT_STREQ(text, "abc");
}

TEST(String, ReplacesCharactersAndPartsFromTheCopyOnlyWhereOneOccurs) {
  CStringA text("a.b.c");
  CStringA copy(text);
  EXPECT_EQ(copy.Replace('x', 'y'), 0);
  EXPECT_EQ(copy.Replace('.', '.'), 0);
  EXPECT_EQ(copy.GetString(), text.GetString());
  EXPECT_EQ(copy.Replace('.', ','), 2);
  EXPECT_STREQ(copy, "a,b,c");
  EXPECT_STREQ(text, "a.b.c");
}

TEST(String, ReplacesNoTerminator) {
  CStringA text("abc");
  EXPECT_EQ(text.Replace('\0', 'x'), 0);
  EXPECT_STREQ(text, "abc");
}

TEST(String, FormatsAsPrintfDoes) {
  CStringA text;
  text.Format("%d %s %.2f %c %lld %u%%", -7, "text", 1.005, 'x', 1LL << 40, 7U);
  EXPECT_STREQ(text, "-7 text 1.00 x 1099511627776 7%");
}

TEST(String, FormatsExactDigitsWithTiesToEvenAndNamesInfinity) {
  // The exact binary value is printed. The run-time library of old compilers differs (rounding, 1.#INF).
  CStringA text;
  text.Format("%.2f %.0f %.0f", 0.125, 2.5, 3.5);
  EXPECT_STREQ(text, c_library::rounds_ties_to_even() ? "0.12 2 4" : "0.13 3 4");
  text.Format("%f %f", HUGE_VAL, std::numeric_limits<double>::quiet_NaN());
  EXPECT_STREQ(text, "inf nan");
}

TEST(String, AFormatThatCannotBeIsThrownAndLeavesTheText) {
  CStringA text("kept");
  EXPECT_EQ(thrown_by([&] { text.Format(nullptr); }), E_INVALIDARG);
  EXPECT_STREQ(text, "kept");
}

TEST(String, FormatsTextOfAnyLengthAndItself) {
  std::string big(100000, 'x');
  CStringA text;
  text.Format("%s", big.c_str());
  EXPECT_EQ(text.GetLength(), 100000);
  text.Format("<%.3s>", text.GetString());
  EXPECT_STREQ(text, "<xxx>");
}

TEST(String, FormatsANullTextInWords) {
  CStringA text;
  text.Format("[%s]", static_cast<const char*>(nullptr));
  EXPECT_STREQ(text, "[(null)]");
}

TEST(String, WideFormatTakesWideTexts) {
  CStringW text;
  text.Format(L"%s=%d", L"wide", 5);
  EXPECT_STREQ(text.GetString(), L"wide=5");
}

TEST(String, LoadsStringResources) {
  HINSTANCE module = GetModuleHandleA(nullptr);
  CStringA text;
  EXPECT_TRUE(text.LoadString(module, IDS_FIRST));
  EXPECT_STREQ(text, "first");
  EXPECT_TRUE(text.LoadString(IDS_LONG));
  EXPECT_EQ(text.GetLength(), 160);
  CStringW wide;
  EXPECT_TRUE(wide.LoadString(module, IDS_ACCENTS));
  EXPECT_STREQ(wide.GetString(), L"Gr\x00F6\x00DF\x0065");
}

TEST(String, KeepsItsTextWhereThereIsNoResource) {
  CStringA text("kept");
  EXPECT_FALSE(text.LoadString(GetModuleHandleA(nullptr), IDS_MISSING));
  EXPECT_FALSE(text.LoadString(GetModuleHandleA(nullptr), IDS_FAR));
  EXPECT_FALSE(text.LoadString(GetModuleHandleA("kernel32.dll"), IDS_FIRST));
  EXPECT_STREQ(text, "kept");
}

class CodePage : public testing::Test {
 protected:
  void TearDown() override { SetThreadLocale(LOCALE_USER_DEFAULT); }
};

TEST_F(CodePage, ConvertsInTheCodePageOfTheThread) {
  SetThreadLocale(MAKELCID(MAKELANGID(LANG_RUSSIAN, SUBLANG_DEFAULT), SORT_DEFAULT));
  EXPECT_STREQ(CStringA(L"\x0416"), "\xC6");  // windows-1251
  EXPECT_STREQ(CStringW("\xC6").GetString(), L"\x0416");
  EXPECT_STREQ(CA2W("\xC6"), L"\x0416");
  EXPECT_STREQ(CW2A(L"\x0416"), "\xC6");

  SetThreadLocale(MAKELCID(MAKELANGID(LANG_GERMAN, SUBLANG_DEFAULT), SORT_DEFAULT));
  EXPECT_STREQ(CStringW("\xC6").GetString(), L"\x00C6");  // windows-1252
}

TEST(Conversion, UsesItsOwnBufferUpToTheTerminatorsPlaceAndTheHeapBeyond) {
  for (size_t length : {0U, 1U, 126U, 127U, 128U, 5000U}) {
    std::string narrow(length, 'n');
    CA2W wide(narrow.c_str());
    EXPECT_EQ(std::wstring(wide), std::wstring(length, L'n'));
    EXPECT_EQ(wide.m_psz == wide.m_szBuffer, length <= 127) << length;
    CW2A back(wide);
    EXPECT_EQ(std::string(back), narrow);
    EXPECT_EQ(back.m_psz == back.m_szBuffer, length <= 127) << length;
  }
}

TEST(Conversion, OfANullPointerIsANullPointer) {
  EXPECT_EQ(static_cast<LPWSTR>(CA2W(nullptr)), nullptr);
  EXPECT_EQ(static_cast<LPSTR>(CW2A(nullptr)), nullptr);
}

}  // namespace
