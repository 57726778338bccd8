// Text helpers: file names, the bitness of a product, texts in the user's language.
#include <gtest/gtest.h>

#include <kexlib/text/text_helpers.h>

#include <afx.h>
#include <atlbase.h>
#include <mbctype.h>

#include <support/failing_record.h>
#include <support/import_override.h>
#include <support/string_table.h>

#include <climits>
#include <random>
#include <string>

namespace {

std::string plain(const std::string& text, char replacement = '_') {
  CString copy(text.data(), static_cast<int>(text.size()));
  kex_replace_forbidden_symbols(copy, replacement);
  return {copy.GetString(), static_cast<std::size_t>(copy.GetLength())};
}

std::string strict(const std::string& text, char replacement = '_') {
  CString copy(text.data(), static_cast<int>(text.size()));
  kex_replace_forbidden_symbols_strict(copy, replacement);
  return {copy.GetString(), static_cast<std::size_t>(copy.GetLength())};
}

// Replaces one character after the other, in a fixed order.
std::string one_by_one(std::string text, const std::string& forbidden, char replacement) {
  for (const char each : forbidden)
    for (char& character : text)
      if (character == each) character = replacement;
  return text;
}

TEST(ForbiddenSymbols, LeaveTheEmptyTextAlone) {
  EXPECT_EQ(plain(""), "");
  EXPECT_EQ(strict(""), "");
}

TEST(ForbiddenSymbols, KeepPathsPathsUnlessTheyAreNames) {
  EXPECT_EQ(plain("a:b\\c*d"), "a:b\\c_d");
  EXPECT_EQ(strict("a:b\\c*d"), "a_b_c_d");
  EXPECT_EQ(plain("*?\"<>|/\\:"), "______/\\:");
  EXPECT_EQ(strict("*?\"<>|/\\:"), "_________");
}

// By design these are not replaced: the file system rejects some of them, but callers expect them unchanged.
TEST(ForbiddenSymbols, AreNeitherControlCharactersNorDotsAndBlanksAtTheEnd) {
  EXPECT_EQ(strict("a\x01\t\n. ."), "a\x01\t\n. .");
  EXPECT_EQ(strict(std::string("a\0*b", 4)), std::string("a\0_b", 4));
}

TEST(ForbiddenSymbols, ChangeNothingElse) {
  std::mt19937 random(1);
  for (int i = 0; i < 3000; ++i) {
    std::string text(random() % 70, '\0');
    for (char& character : text) character = static_cast<char>(random());
    for (const char replacement : {'_', ' ', '*', '|', ':', '\\', '\0', '\xe4'}) {
      ASSERT_EQ(plain(text, replacement), one_by_one(text, "*?\"<>|", replacement));
      ASSERT_EQ(strict(text, replacement), one_by_one(text, "*?\"<>|/\\:", replacement));
    }
  }
}

TEST(ForbiddenSymbols, LeaveCopiesOfTheTextAlone) {
  CString text("a*b");
  const CString copy(text);
  kex_replace_forbidden_symbols(text, '_');
  EXPECT_STREQ(text, "a_b");
  EXPECT_STREQ(copy, "a*b");
  const CString clean("ab");
  CString shared(clean);
  kex_replace_forbidden_symbols(shared, '_');
  EXPECT_EQ(shared.GetString(), clean.GetString()) << "nothing was written, so nothing is copied";
}

TEST(ForbiddenSymbols, AreNotSecondBytesOfDoubleByteCharacters) {
  ASSERT_EQ(_setmbcp(932), 0);
  const std::string text = strict("\x83\x5c\x5c\x83\x7c|\x83");
  _setmbcp(_MB_CP_ANSI);
  EXPECT_EQ(text, "\x83\x5c_\x83\x7c_\x83");
}

// The terminator and the bytes after it are not a trail byte.
TEST(ForbiddenSymbols, DoNotContinueADoubleByteCharacterThatIsCutAtTheEnd) {
  ASSERT_EQ(_setmbcp(932), 0);
  CString text("*a\x83*|");
  char* const buffer = text.GetBuffer();
  text.ReleaseBufferSetLength(3);
  buffer[4] = '|';
  kex_replace_forbidden_symbols_strict(text, '_');
  CString alone("\x83");
  kex_replace_forbidden_symbols(alone, '_');
  _setmbcp(_MB_CP_ANSI);
  EXPECT_EQ(text, "_a\x83");
  EXPECT_EQ(text.GetLength(), 3);
  EXPECT_EQ(buffer[3], '\0');
  EXPECT_EQ(buffer[4], '|');
  EXPECT_EQ(alone, "\x83");
}

TEST(ProductBitness, IsAppendedEachTime) {
  bzString name("Gauge");
  kex_append_product_bitness(nullptr, name);
  EXPECT_STREQ(name.c_str(), "Gauge (64-bit)");
  kex_append_product_bitness(&name, name);
  EXPECT_STREQ(name.c_str(), "Gauge (64-bit) (64-bit)");
  bzString empty;
  kex_append_product_bitness(nullptr, empty);
  EXPECT_STREQ(empty.c_str(), " (64-bit)");
}

class LocalizedString : public testing::Test {
 protected:
  LocalizedString() : strings_(LoadLibraryA("string_table.dll")) {}
  ~LocalizedString() override { FreeLibrary(strings_); }

  struct Answer {
    long status;
    std::wstring text;
    bool operator==(const Answer&) const = default;
    friend std::ostream& operator<<(std::ostream& out, const Answer& answer) {
      return out << answer.status << ' ' << testing::PrintToString(answer.text);
    }
  };

  Answer localized(const VARIANT& value, UINT base = IDS_BASE) {
    CComBSTR text;
    const long status = kexLocalizeString(strings_, base, value, &text);
    return {status, !text ? L"(null)" : std::wstring(text, text.Length())};
  }
  Answer localized(const wchar_t* text, UINT base = IDS_BASE) { return localized(CComVariant(text), base); }

  HINSTANCE strings_;
};

TEST_F(LocalizedString, IsTheResourceThatTheTextRefersTo) {
  ASSERT_NE(strings_, nullptr);
  EXPECT_EQ(localized(L"{0}x"), (Answer{S_OK, L"the first"}));
  EXPECT_EQ(localized(L"{5}"), (Answer{S_OK, L"the fifth"}));
  EXPECT_EQ(localized(L"{ 5}x"), (Answer{S_OK, L"the fifth"}));
  EXPECT_EQ(localized(L"{+5 and more}x"), (Answer{S_OK, L"the fifth"}));
  EXPECT_EQ(localized(L"{100}x").text.size(), 250u);
  EXPECT_EQ(localized(L"{6}x", 999), (Answer{S_OK, L"the fifth"}));
  EXPECT_EQ(localized(L"{1006}x", UINT_MAX), (Answer{S_OK, L"the fifth"}));  // the sum wraps around
}

TEST_F(LocalizedString, IsTheTextsOwnWordingWhereThereIsNoResource) {
  EXPECT_EQ(localized(L"{6}Open file"), (Answer{S_FALSE, L"Open file"}));
  EXPECT_EQ(localized(L"{6}"), (Answer{S_FALSE, L""}));
  EXPECT_EQ(localized(L"{6}a}b{c}"), (Answer{S_FALSE, L"a}b{c}"}));
  EXPECT_EQ(localized(L"{2147483647}Text"), (Answer{S_FALSE, L"Text"}));
  EXPECT_EQ(localized(L"{99999999999999999999}Text"), (Answer{S_FALSE, L"Text"}));
}

TEST_F(LocalizedString, IsTheWholeTextWhereThereIsNoReference) {
  for (const wchar_t* text : {L"Open file", L"", L"{}", L"{x", L"{5", L"5}x", L" {5}x", L"}{5"})
    EXPECT_EQ(localized(text), (Answer{S_FALSE, text})) << text;
}

TEST_F(LocalizedString, IsWhatFollowsAReferenceWithoutANumber) {
  EXPECT_EQ(localized(L"{x}Text"), (Answer{S_FALSE, L"Text"}));
  EXPECT_EQ(localized(L"{}Text"), (Answer{S_FALSE, L"Text"}));
  EXPECT_EQ(localized(L"{-}Text"), (Answer{S_FALSE, L"Text"}));
}

TEST_F(LocalizedString, LoadsNothingForNegativeNumbers) {
  EXPECT_EQ(localized(L"{-1}Text", IDS_FIRST + 1), (Answer{S_FALSE, L"Text"}));
  EXPECT_EQ(localized(L"{-99999999999999999999}Text"), (Answer{S_FALSE, L"Text"}));
}

TEST_F(LocalizedString, IsAnErrorWhereTheValueIsNoText) {
  const Answer error{S_FALSE, L"** Error **"};
  EXPECT_EQ(localized(CComVariant(5)), error);
  EXPECT_EQ(localized(CComVariant()), error);
  EXPECT_EQ(localized(CComVariant(2.5)), error);

  // By design only VT_BSTR is accepted as a text: callers see the error for references.
  CComBSTR text(L"{5}");
  VARIANT by_reference = {};
  by_reference.vt = VT_BYREF | VT_BSTR;
  by_reference.pbstrVal = &text.m_str;
  EXPECT_EQ(localized(by_reference), error);
}

TEST_F(LocalizedString, TakesANullTextAsEmpty) {
  VARIANT null_text = {};
  null_text.vt = VT_BSTR;
  EXPECT_EQ(localized(null_text), (Answer{S_FALSE, L""}));
}

TEST_F(LocalizedString, LooksThroughAReferenceToAVariant) {
  CComVariant text(L"{5}x");
  VARIANT by_reference = {};
  by_reference.vt = VT_BYREF | VT_VARIANT;
  by_reference.pvarVal = &text;
  EXPECT_EQ(localized(by_reference), (Answer{S_OK, L"the fifth"}));
  EXPECT_STREQ(text.bstrVal, L"{5}x");

  CComVariant number(5);
  by_reference.pvarVal = &number;
  EXPECT_EQ(localized(by_reference), (Answer{S_FALSE, L"** Error **"}));
}

TEST_F(LocalizedString, TakesOtherTypesWithTheSameBitsAsNoText) {
  DECIMAL decimal = {};
  VARIANT by_reference = {};
  by_reference.vt = VT_BYREF | VT_DECIMAL;
  by_reference.pdecVal = &decimal;
  EXPECT_EQ(localized(by_reference), (Answer{S_FALSE, L"** Error **"}));
}

TEST_F(LocalizedString, ReturnsTheFailureOfACopy) {
  VARIANT bad = {};
  bad.vt = VT_BYREF | VT_VARIANT;
  VARIANT inner = {};
  inner.vt = 0x7F;
  bad.pvarVal = &inner;
  wchar_t marker[] = L"untouched";
  wchar_t* result = marker;
  VARIANT copy = {};
  const HRESULT expected = VariantCopyInd(&copy, &bad);
  ASSERT_TRUE(FAILED(expected));
  EXPECT_EQ(kexLocalizeString(strings_, IDS_BASE, bad, &result), expected);
  EXPECT_EQ(result, marker);
}

TEST_F(LocalizedString, LeavesARecordAloneThatCannotBeCopied) {
  FailingRecord record;
  VARIANT value = record.value(), reference = {};
  reference.vt = VT_BYREF | VT_VARIANT;
  reference.pvarVal = &value;
  wchar_t* result = nullptr;
  EXPECT_EQ(kexLocalizeString(strings_, IDS_BASE, reference, &result), FailingRecord::failure);
  EXPECT_EQ(result, nullptr);
  EXPECT_EQ(record.references(), 1u);
  EXPECT_EQ(record.clears(), 0);
}

// The bits of VT_BYREF | VT_VARIANT are tested, not the type: callers see the failure of VariantCopyInd.
TEST_F(LocalizedString, ReturnsTheFailureOfACopyOfATypeWithTheSameBits) {
  VARIANT bad = {};
  bad.vt = 0x400F;
  VARIANT copy = {};
  const HRESULT expected = VariantCopyInd(&copy, &bad);
  ASSERT_TRUE(FAILED(expected));
  wchar_t* result = nullptr;
  EXPECT_EQ(kexLocalizeString(strings_, IDS_BASE, bad, &result), expected);
  EXPECT_EQ(result, nullptr);
}

TEST_F(LocalizedString, NeedsAPlaceForTheResult) {
  EXPECT_EQ(kexLocalizeString(strings_, IDS_BASE, CComVariant(L"x"), nullptr), E_POINTER);
}

TEST_F(LocalizedString, IsInTheCodePageOfTheThread) {
  const LCID before = GetThreadLocale();
  SetThreadLocale(0x0409);
  const Answer western = localized(L"{12}");
  SetThreadLocale(0x0419);
  const Answer russian = localized(L"{6}\u0434\u044f");
  SetThreadLocale(0x0411);
  const Answer japanese = localized(L"{6}\u30bd\u8868");
  SetThreadLocale(before);
  EXPECT_EQ(western, (Answer{S_OK, L"Gr\u00f6\u00dfe"}));
  EXPECT_EQ(russian, (Answer{S_FALSE, L"\u0434\u044f"}));
  EXPECT_EQ(japanese, (Answer{S_FALSE, L"\u30bd\u8868"}));
}

BSTR WINAPI no_string(const OLECHAR*, UINT) { return nullptr; }

TEST_F(LocalizedString, ThrowsWhereThereIsNoMemory) {
  const CComVariant text(L"text");
  ImportOverride none("kexlib.dll", "oleaut32.dll", "SysAllocStringLen", no_string);
  ASSERT_TRUE(none.made());
  wchar_t* result = nullptr;
  EXPECT_THROW(kexLocalizeString(strings_, IDS_BASE, text, &result), CMemoryException*);
  EXPECT_EQ(result, nullptr);
}

}  // namespace
