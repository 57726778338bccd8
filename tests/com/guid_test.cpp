// GUIDs: generated at the first read access, parsed from text and formatted as text, and ordered by their bytes.
#include <gtest/gtest.h>

#include <kexlib/com/guid.h>

#include <afx.h>

#include <support/import_override.h>
#include <support/resource_counts.h>

#include <algorithm>
#include <cctype>
#include <cstring>
#include <random>
#include <set>
#include <string>
#include <type_traits>
#include <vector>

namespace {

constexpr GUID sample = {0x6B29FC40, 0xCA47, 0x1067, {0xB3, 0x1D, 0x00, 0xAA, 0x00, 0xC7, 0xA1, 0xE8}};
constexpr char sample_text[] = "6B29FC40-CA47-1067-B31D-00AA00C7A1E8";
constexpr char sample_braced[] = "{6B29FC40-CA47-1067-B31D-00AA00C7A1E8}";
constexpr wchar_t sample_wide[] = L"6B29FC40-CA47-1067-B31D-00AA00C7A1E8";

std::string text_of(const kexGUID& id) { return id.get_str().GetString(); }

kexGUID from_wide(std::wstring text) { return kexGUID(text.data()); }

std::string hex(const GUID& guid) {
  std::string text;
  for (unsigned i = 0; i < sizeof guid; ++i) {
    char digits[3];
    std::snprintf(digits, sizeof digits, "%02x", reinterpret_cast<const unsigned char*>(&guid)[i]);
    text += digits;
  }
  return text;
}

TEST(Guid, IsAssignedWhenItIsFirstRead) {
  const kexGUID id;
  EXPECT_TRUE(id.is_null());
  const std::string text = text_of(id);
  EXPECT_FALSE(id.is_null());
  EXPECT_EQ(text_of(id), text);
  EXPECT_TRUE(id.get_GUID() == kexGUID(CString(text.c_str())).get_GUID());
}

TEST(Guid, IsAssignedByEveryWayOfReadingIt) {
  const kexGUID first, second, third;
  first.get_GUID();
  EXPECT_FALSE(first.is_null());
  second.get_BSTR();
  EXPECT_FALSE(second.is_null());
  CComBSTR text;
  third.get_BSTR(&text);
  EXPECT_FALSE(third.is_null());
}

TEST(Guid, IsNotAssignedByComparisonsAndCopies) {
  const kexGUID first, second;
  EXPECT_TRUE(first == second);
  EXPECT_FALSE(first != second);
  EXPECT_FALSE(first < second);
  kexGUID copy(first);
  copy = second;
  EXPECT_TRUE(first.is_null() && second.is_null() && copy.is_null());
}

TEST(Guid, DiffersFromAnotherOneOnceEitherIsRead) {
  const kexGUID first, second;
  EXPECT_TRUE(first == second);
  first.get_str();
  EXPECT_TRUE(first != second);
  EXPECT_FALSE(first == second);
}

TEST(Guid, HasBracesOnlyWhereTheyAreAskedFor) {
  const kexGUID braced(kexWithBraces);
  const std::string text = text_of(braced);
  EXPECT_EQ(text.size(), 38u);
  EXPECT_EQ(text.front(), '{');
  EXPECT_EQ(text.back(), '}');
  EXPECT_EQ(text_of(kexGUID()).size(), 36u);
  EXPECT_EQ(text_of(kexGUID(static_cast<kexGUIDBraced>(42))).size(), 38u);
}

TEST(Guid, CopiesItsFormToo) {
  kexGUID braced(kexWithBraces);
  braced.set_GUID(sample);
  kexGUID plain;
  plain = braced;
  EXPECT_EQ(text_of(plain), sample_braced);
  EXPECT_EQ(text_of(kexGUID(braced)), sample_braced);
  braced = kexGUID(sample);
  EXPECT_EQ(text_of(braced), sample_text);
}

TEST(Guid, ComparesValuesNotForms) {
  kexGUID braced(kexWithBraces);
  braced.set_GUID(sample);
  EXPECT_TRUE(braced == kexGUID(sample));
  EXPECT_FALSE(braced != kexGUID(sample));
}

TEST(Guid, IsReadInEitherCaseAndForm) {
  for (const char* text : {"6b29fc40-ca47-1067-b31d-00aa00c7a1e8", "{6b29fc40-ca47-1067-b31d-00aa00c7a1e8}",
                           "6B29FC40-CA47-1067-B31D-00AA00C7A1E8", "{6B29fC40-CA47-1067-b31D-00AA00C7A1E8}"}) {
    EXPECT_EQ(text_of(kexGUID(CString(text))), sample_text) << text;
    EXPECT_EQ(text_of(from_wide(std::wstring(text, text + std::strlen(text)))), sample_text) << text;
  }
}

TEST(Guid, KeepsItsFormWhenItIsSet) {
  kexGUID id(kexWithBraces);
  id.set_str(sample_text);
  EXPECT_EQ(text_of(id), sample_braced);
  id.reset();
  EXPECT_TRUE(id.is_null());
  EXPECT_EQ(text_of(id).size(), 38u);
  id.set_GUID(sample);
  EXPECT_EQ(text_of(id), sample_braced);
  std::wstring wide = L"00000001-0002-0003-0405-060708090A0B";
  id.set_BSTR(wide.data());
  EXPECT_EQ(text_of(id), "{00000001-0002-0003-0405-060708090A0B}");
}

TEST(Guid, IsGivenAsABstrToo) {
  const kexGUID id(sample);
  EXPECT_STREQ(id.get_BSTR(), sample_wide);
  CComBSTR text;
  id.get_BSTR(&text);
  EXPECT_STREQ(text, sample_wide);
  EXPECT_EQ(text.Length(), 36u);
}

// By design no error is reported: callers keep the value that IIDFromString stores.
TEST(Guid, KeepsWhatTheSystemLeavesOfTextThatIsNoGuid) {
  for (const char* text :
       {"", "{", "}", "no guid", "{6B29FC40-CA47-1067-B31D-00AA00C7A1E8", "6B29FC40-CA47-1067-B31D-00AA00C7A1E8}",
        "6B29FC40-CA47-1067-B31D-00AA00C7A1EX", "6B29FC40xCA47-1067-B31D-00AA00C7A1E8", "6B29FC40-CA47-1067-B31D",
        "{6B29FC40-CA47-1067-B31D-00AA00C7A1E8}}", " 6B29FC40-CA47-1067-B31D-00AA00C7A1E8"}) {
    const std::string wrapped = text[0] == '{' ? text : "{" + std::string(text) + "}";
    GUID left = {1, 2, 3, {4, 5, 6, 7, 8, 9, 10, 11}};
    kexGUID narrow(left), wide(left);
    const HRESULT result = IIDFromString(std::wstring(wrapped.begin(), wrapped.end()).c_str(), &left);
    EXPECT_TRUE(FAILED(result)) << text;
    narrow.set_str(text);
    std::wstring widened(text, text + std::strlen(text));
    wide.set_BSTR(widened.data());
    EXPECT_TRUE(narrow.get_GUID() == left) << text;
    EXPECT_TRUE(wide.get_GUID() == left) << text;
  }
}

// By design no closing brace is added to a text with an opening one: IIDFromString receives the text unchanged.
TEST(Guid, DoesNotCompleteAnOpeningBrace) {
  kexGUID id(sample);
  id.set_str("{00000001-0002-0003-0405-060708090A0B");
  EXPECT_EQ(text_of(id), sample_text);
}

TEST(Guid, GeneratesDistinctRandomValuesThatSurviveEveryForm) {
  std::set<std::string> texts;
  for (int i = 0; i < 1000; ++i) {
    const kexGUID id;
    const GUID value = id.get_GUID();
    EXPECT_EQ(value.Data3 >> 12, 4) << "version 4";
    EXPECT_EQ(value.Data4[0] & 0xC0, 0x80) << "the variant of version 4";
    const std::string text = text_of(id);
    texts.insert(text);

    EXPECT_TRUE(kexGUID(value) == id);
    EXPECT_TRUE(kexGUID(CString(text.c_str())) == id);
    EXPECT_TRUE(kexGUID(CString(("{" + text + "}").c_str())) == id);
    EXPECT_TRUE(kexGUID(static_cast<wchar_t*>(id.get_BSTR())) == id);
    kexGUID braced(kexWithBraces);
    braced.set_GUID(value);
    EXPECT_TRUE(kexGUID(braced.get_str()) == id);
    EXPECT_TRUE(kexGUID(static_cast<wchar_t*>(braced.get_BSTR())) == id);
  }
  EXPECT_EQ(texts.size(), 1000u);
}

TEST(Guid, MakesNewTexts) {
  std::set<std::string> texts;
  for (int i = 0; i < 1000; ++i) {
    const std::string text = kexGUID::make_new().GetString();
    EXPECT_EQ(text.size(), 36u);
    EXPECT_TRUE(std::none_of(text.begin(), text.end(), [](char c) { return std::islower(c); }));
    texts.insert(text);
  }
  EXPECT_EQ(texts.size(), 1000u);
}

HRESULT WINAPI no_guid(GUID*) { return E_FAIL; }

TEST(Guid, StaysNullWhereNoneCanBeMade) {
  ImportOverride none("kexlib.dll", "ole32.dll", "CoCreateGuid", no_guid);
  ASSERT_TRUE(none.made());
  const kexGUID id;
  EXPECT_EQ(text_of(id), "00000000-0000-0000-0000-000000000000");
  EXPECT_TRUE(id.is_null());
}

BSTR WINAPI no_string(const OLECHAR*, UINT) { return nullptr; }

TEST(Guid, ThrowsWhereThereIsNoMemoryForAText) {
  const kexGUID id(sample);
  ImportOverride none("kexlib.dll", "oleaut32.dll", "SysAllocStringLen", no_string);
  ASSERT_TRUE(none.made());
  BSTR text = nullptr;
  EXPECT_THROW(id.get_BSTR(&text), CMemoryException*);
  EXPECT_EQ(text, nullptr);
  EXPECT_THROW(id.get_BSTR(), CMemoryException*);
  kexGUID other;
  EXPECT_THROW(other.set_str(sample_text), CMemoryException*);
  EXPECT_TRUE(other.is_null());
}

TEST(Guid, IsTheValueAndAFlag) {
  EXPECT_EQ(sizeof(kexGUID), sizeof(GUID) + 4);
  EXPECT_FALSE(std::is_polymorphic_v<kexGUID>);
}

TEST(LessGuid, OrdersByBytesNotByText) {
  const kexGUID one(CString("00000001-0000-0000-0000-000000000000"));
  const kexGUID many(CString("00000100-0000-0000-0000-000000000000"));
  EXPECT_TRUE(many < one);
  EXPECT_FALSE(one < many);
  EXPECT_TRUE(kexLessGUID()(many.get_GUID(), one.get_GUID()));
  EXPECT_FALSE(kexLessGUID()(one.get_GUID(), one.get_GUID()));
}

TEST(LessGuid, SortsAsMemcmpDoes) {
  std::mt19937_64 random(1);
  std::vector<GUID> ids(5000);
  for (GUID& id : ids) {
    const std::uint64_t halves[2] = {random(), random()};
    std::memcpy(&id, halves, sizeof id);
  }
  // GUIDs that differ in one byte only.
  for (unsigned i = 0; i < 16; ++i) {
    GUID id = ids[0];
    ++reinterpret_cast<unsigned char*>(&id)[i];
    ids.push_back(id);
  }
  std::vector<GUID> expected = ids;
  std::sort(expected.begin(), expected.end(),
            [](const GUID& a, const GUID& b) { return std::memcmp(&a, &b, sizeof a) < 0; });
  std::sort(ids.begin(), ids.end(), kexLessGUID());
  for (std::size_t i = 0; i < ids.size(); ++i) ASSERT_EQ(hex(ids[i]), hex(expected[i]));

  const std::set<GUID, kexLessGUID> classes(ids.begin(), ids.end());
  EXPECT_TRUE(std::equal(classes.begin(), classes.end(), expected.begin(),
                         [](const GUID& a, const GUID& b) { return IsEqualGUID(a, b) != FALSE; }));
}

}  // namespace
