// Calls that fail while texts are made, for each function of the family.
#include <gtest/gtest.h>

#include <kexlib/framework.h>
#include <kexlib/text/apply_to_files.h>
#include <kexlib/text/test_object_id.h>
#include <kexlib/text/text_helpers.h>
#include <kexlib/text/tip_name.h>

#include <shlobj.h>
#include <shlwapi.h>

#include <support/fault_sweep.h>
#include <support/files.h>
#include <support/shortcut.h>
#include <support/string_table.h>

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <string>
#include <vector>

namespace {

class Walk final : public kexApplyToFiles {
 public:
  std::vector<std::string> files;
  void apply_to_file(char* path) override { files.emplace_back(PathFindFileNameA(path)); }
};

const Call calls[] = {
    memory_call(),
    Call("OLEAUT32.dll", "SysAllocStringLen", &SysAllocStringLen, nullptr),
    Call("OLEAUT32.dll", "VariantCopy", &VariantCopy, E_OUTOFMEMORY),
    Call("OLEAUT32.dll", "VariantCopyInd", &VariantCopyInd, E_OUTOFMEMORY),
    Call("OLEAUT32.dll", "VariantClear", &VariantClear, DISP_E_ARRAYISLOCKED),
    Call("KERNEL32.dll", "MultiByteToWideChar", &MultiByteToWideChar, 0),
    Call("KERNEL32.dll", "WideCharToMultiByte", &WideCharToMultiByte, 0),
    Call("KERNEL32.dll", "FindFirstFileA", &FindFirstFileA, INVALID_HANDLE_VALUE, ERROR_ACCESS_DENIED),
    Call("KERNEL32.dll", "FindNextFileA", &FindNextFileA, FALSE, ERROR_ACCESS_DENIED),
    Call("USER32.dll", "LoadStringW", &LoadStringW, 0),
    Call("SHLWAPI.dll", "PathFileExistsA", &PathFileExistsA, FALSE),
    Call("SHLWAPI.dll", "PathIsDirectoryA", &PathIsDirectoryA, FALSE),
    Call("ole32.dll", "CoCreateInstance", &CoCreateInstance, E_OUTOFMEMORY),
};

// A text for whose change there was no memory is as it was.
void replace_symbols(Attempt& attempt, void (*replace)(CString&, char)) {
  CString text("a*b, a text that others share");
  const CString copy = text;
  const std::string thrown = attempt([&] { replace(text, '_'); });
  EXPECT_EQ(thrown, attempt.failed() ? "CMemoryException" : "");
  EXPECT_STREQ(text, attempt.failed() ? "a*b, a text that others share" : "a_b, a text that others share");
  EXPECT_STREQ(copy, "a*b, a text that others share");
  replace(text, '_');
  EXPECT_STREQ(text, "a_b, a text that others share");
}

void localize(Attempt& attempt, VARIANT value, long expected, const wchar_t* expected_text) {
  const HMODULE strings = LoadLibraryA("string_table.dll");
  wchar_t* text = nullptr;
  long result = -1;
  const std::string thrown = attempt([&] { result = kexLocalizeString(strings, IDS_BASE, value, &text); });
  if (attempt.failed("VariantCopyInd")) {
    EXPECT_EQ(thrown, "");
    EXPECT_EQ(result, E_OUTOFMEMORY);
    EXPECT_EQ(text, nullptr);
  } else if (attempt.failed("LoadStringW")) {
    EXPECT_EQ(thrown, "");
    EXPECT_EQ(result, S_FALSE);
    EXPECT_STREQ(text, L"Otherwise");
  } else if (attempt.failed("WideCharToMultiByte")) {
    EXPECT_EQ(thrown, "");  // a text without a narrow form is empty
    EXPECT_TRUE(std::wstring(text).empty() || std::wstring(text) == expected_text) << text;
  } else if (attempt.failed() && !attempt.failed("VariantClear")) {
    EXPECT_EQ(thrown, "CMemoryException");
    EXPECT_EQ(text, nullptr);
  } else {
    EXPECT_EQ(thrown, "");
    EXPECT_EQ(result, expected);
    EXPECT_STREQ(text, expected_text);
  }
  SysFreeString(text);
  FreeLibrary(strings);
}

// What a walk finds is a part of what there is, in order; what it returns tells whether it is all.
void walk(Attempt& attempt, const char* pattern, int shortcuts, const std::vector<std::string>& all) {
  Walk walk;
  const std::string root = std::filesystem::current_path().string();
  long result = -1;
  const std::string thrown = attempt([&] { result = walk.Apply(root.c_str(), pattern, shortcuts); });
  if (attempt.failed("FindFirstFileA") || attempt.failed("FindNextFileA")) {
    EXPECT_EQ(result, HRESULT_FROM_WIN32(ERROR_ACCESS_DENIED));
  } else if (!attempt.failed()) {
    EXPECT_EQ(walk.files, all);
  }
  if (!thrown.empty()) {
    EXPECT_TRUE(attempt.failed());
    EXPECT_TRUE(thrown == "CMemoryException" || thrown == "std::bad_alloc") << thrown;  // the latter is that of files
  }
  for (const std::string& file : walk.files) EXPECT_GT(std::count(all.begin(), all.end(), file), 0) << file;

  walk.files.clear();
  EXPECT_EQ(walk.Apply(root.c_str(), pattern, shortcuts), S_OK);
  EXPECT_EQ(walk.files, all);
}

const Operation operations[] = {
    {"kex_replace_forbidden_symbols",
     [](Attempt& attempt) { replace_symbols(attempt, kex_replace_forbidden_symbols); }},
    {"kex_replace_forbidden_symbols_strict",
     [](Attempt& attempt) { replace_symbols(attempt, kex_replace_forbidden_symbols_strict); }},
    {"kex_append_product_bitness",
     [](Attempt& attempt) {
       bzString text("A product with a long name");
       const std::string thrown = attempt([&] { kex_append_product_bitness(nullptr, text); });
       EXPECT_EQ(thrown, attempt.failed() ? "std::bad_alloc" : "");
       EXPECT_STREQ(text.c_str(),
                    attempt.failed() ? "A product with a long name" : "A product with a long name (64-bit)");
     }},
    {"kexLocalizeString, a resource",
     [](Attempt& attempt) { localize(attempt, CComVariant(L"{0}Otherwise"), S_OK, L"the first"); }},
    {"kexLocalizeString, by reference",
     [](Attempt& attempt) {
       CComVariant text(L"Its own text");
       VARIANT reference{};
       reference.vt = VT_BYREF | VT_VARIANT;
       reference.pvarVal = &text;
       localize(attempt, reference, S_FALSE, L"Its own text");
     }},
    {"kexTestObjectID",
     [](Attempt& attempt) {
       const std::string thrown = attempt([&] { const kexTestObjectID id("auto"); });
       EXPECT_EQ(thrown, attempt.failed() && !attempt.failed("VariantClear") ? "CMemoryException" : "");
     }},
    {"put_id",
     [](Attempt& attempt) {
       kexTestObjectID id("auto");
       const CComVariant text(L"auto");
       long result = -1;
       const std::string thrown = attempt([&] { result = id.put_id(text); });
       EXPECT_EQ(thrown, attempt.failed("VariantCopy") ? "CMemoryException" : "");
       EXPECT_EQ(id.is_special_value(), !attempt.failed("VariantCopy"));
       EXPECT_EQ(id.put_id(text), S_OK);
       EXPECT_TRUE(id.is_special_value());
     }},
    {"get_id",
     [](Attempt& attempt) {
       kexTestObjectID id;
       id.put_id(CComVariant(L"auto"));
       CComVariant text(L"what was there");
       long result = -1;
       const std::string thrown = attempt([&] { result = id.get_id(&text); });
       EXPECT_EQ(thrown, attempt.failed("VariantCopy") ? "CMemoryException" : "");
       if (attempt.failed("VariantClear") && result != S_OK) {  // of what was there
         EXPECT_EQ(result, DISP_E_ARRAYISLOCKED);
         EXPECT_STREQ(text.bstrVal, L"what was there");
       }
       EXPECT_EQ(id.get_id(&text), S_OK);
       EXPECT_STREQ(text.bstrVal, L"auto");
     }},
    {"Apply",
     [](Attempt& attempt) {
       walk(attempt, "*.txt", 0, {"a file with a long name.txt", "below.txt"});
     }},
    {"Apply, with shortcuts",
     [](Attempt& attempt) {
       walk(attempt, "*.dat", 1, {"target.dat", "target.dat"});
     }},
    {"atl_smart_tip_name_from_parts",
     [](Attempt& attempt) {
       static double fresh = 1000;  // numbers whose texts are not kept yet
       CComBSTR name(L"Gr\u00f6\u00dfe"), sub_name(L"upper"), unit(L"mm");
       const double a = fresh++;
       CStringA text;
       const auto make = [&] {
         text = atl_smart_tip_name_from_parts(name, 3, sub_name, a, 2, unit, 0.5, true, true, true, true);
       };
       const std::string thrown = attempt(make);
       if (!attempt.failed("WideCharToMultiByte")) {  // a text without a narrow form counts as empty
         EXPECT_EQ(thrown.empty(), !attempt.failed());
       }
       if (!thrown.empty()) {
         EXPECT_TRUE(thrown == "CMemoryException" || thrown == "std::bad_alloc") << thrown;
       }
       make();
       char expected[200];
       std::snprintf(expected, sizeof expected, "Gr\xf6\xdf\x65 - upper - 3 [ A=%.1f B=2.0 ] [ D 0.5000 mm ]", a);
       EXPECT_STREQ(text, expected);
     },
     {.blocks = 2}},  // the text of a number is kept, with its entry
};

class TextFaults : public testing::Test {
 protected:
  void SetUp() override {
    ASSERT_EQ(CoInitialize(nullptr), S_OK);
    std::filesystem::create_directory("folder");
    for (const char* file : {"a file with a long name.txt", "folder\\below.txt", "target.dat"}) write_file(file, "");
    make_shortcut(folder_.path() / "shortcut.lnk", folder_.path() / "target.dat");
  }
  void TearDown() override { CoUninitialize(); }

 private:
  TemporaryFolder folder_;
};

TEST_F(TextFaults, NoCallThatFailsDoesHarm) { sweep_faults(calls, operations); }

TEST_F(TextFaults, RoundsWithoutOneLeaveNothingBehind) { repeat_rounds(operations); }

}  // namespace
