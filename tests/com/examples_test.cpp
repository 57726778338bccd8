// The examples of the guide's page.
#include <gtest/gtest.h>

#include <kexlib/com/variant_safe_array.h>
#include <kexlib/testing.h>

#include <com/digit_control_fixture.h>
#include <com/registration_free_fixture.h>
#include <support/test_control.h>

#include <string>
#include <vector>

HRESULT begin_com();
bool show_chart(HWND owner, const char* control);
bool show_readings(kexDigitOCX& digits, CWnd* window, double first, double second);
CString file_of(const kexGUID& part);
bool read_identity(const CString& text, kexGUID& id);
CComPtr<IUnknown> create_plug_in(const GUID& interface_id, const char* folder);
VARIANT list_of(const std::vector<std::wstring>& texts);
double sum_of(const VARIANT& value);

namespace {

TEST(ComExamples, BeginCom) {
  EXPECT_EQ(begin_com(), S_OK);
  CoUninitialize();
}

TEST(ComExamples, ShowAControlInADialog) {
  TestControlClass control;
  bool shown = false;
  kexlib::testing::DialogDriver user;
  user.add("look and close", [&](HWND dialog) {
    shown =
        control.made && IsWindowVisible(control.made->window) && !IsWindowVisible(GetDlgItem(dialog, IDC_PLACEHOLDER));
    return PostMessageA(dialog, WM_COMMAND, IDCANCEL, 0) != 0;
  });
  EXPECT_TRUE(show_chart(nullptr, "{9F4F3A70-6B1D-4C5E-8A11-520E773C0102}"));
  EXPECT_EQ(user.problem(), "");
  EXPECT_TRUE(shown);
  EXPECT_EQ(RecordingDispatch::alive, 0);
}

TEST(ComExamples, EndTheDialogWithoutTheControl) {
  const registration_free::Com com;
  EXPECT_FALSE(show_chart(nullptr, "Maker.Chart.1"));
}

TEST(ComExamples, ShowReadings) {
  ASSERT_EQ(OleInitialize(nullptr), S_OK);
  CWnd dialog;
  dialog.Attach(CreateDialogParamA(nullptr, MAKEINTRESOURCEA(IDD_HOST), nullptr, nullptr, 0));
  {
    kexDigitOCX digits;
    EXPECT_FALSE(show_readings(digits, &dialog, 12.5, -3)) << "the control is not registered";
    const digit_control::Manifest known;
    ASSERT_TRUE(show_readings(digits, &dialog, 12.5, -3));
    EXPECT_EQ(digits.GetValue(0), 12.5);
    EXPECT_EQ(digits.GetValue(1), -3);
    kexOleFont font = digits.GetFont();
    EXPECT_EQ(font.GetName(), "Tahoma");
    EXPECT_EQ(font.GetItalic(), 1);
  }
  dialog.DestroyWindow();
  OleUninitialize();
}

TEST(ComExamples, NameAFileByAGuid) {
  const kexGUID part;
  const CString file = file_of(part);
  EXPECT_EQ(file.GetLength(), 41);
  EXPECT_EQ(file_of(part), file);
}

TEST(ComExamples, ReadAGuid) {
  kexGUID id;
  const CString text = "6b29fc40-ca47-1067-b31d-00aa00c7a1e8";
  EXPECT_TRUE(read_identity(text, id));
  EXPECT_EQ(id.get_str(), "6B29FC40-CA47-1067-B31D-00AA00C7A1E8");
  EXPECT_FALSE(read_identity("no GUID", id));
  EXPECT_FALSE(read_identity("6B29FC40-CA47-1067-B31D-00AA00C7A1EX", id));
}

TEST(ComExamples, CreateAPlugIn) {
  const registration_free::Com com;
  const CComPtr<IUnknown> object = create_plug_in(__uuidof(IArea), registration_free::components().c_str());
  ASSERT_NE(object.p, nullptr);
  CComPtr<IArea> area;
  EXPECT_EQ(object.p->QueryInterface(__uuidof(IArea), reinterpret_cast<void**>(&area)), S_OK);
  EXPECT_EQ(create_plug_in(registration_free::unknown_class, registration_free::components().c_str()).p, nullptr);
}

TEST(ComExamples, MakeAList) {
  VARIANT list = list_of({L"first", L"second"});
  ASSERT_EQ(list.vt, VT_ARRAY | VT_VARIANT);
  QuickVariantSafeArray view(list.parray);
  ASSERT_EQ(view.GetSize(), 2);
  EXPECT_STREQ(view[0].bstrVal, L"first");
  EXPECT_STREQ(view[1].bstrVal, L"second");
  EXPECT_EQ(VariantClear(&list), S_OK);
}

TEST(ComExamples, AddTheNumbersOfAList) {
  QuickVariantSafeArray list(3);
  CComVariant whole(2.0), half(0.5), text(L"7");
  list.PutAt(0, whole);
  list.PutAt(1, text);
  list.PutAt(2, half);
  EXPECT_EQ(sum_of(list), 2.5);
  EXPECT_EQ(sum_of(CComVariant(7)), 0);
  CComVariant of_two_dimensions;
  SAFEARRAYBOUND bounds[] = {{1, 0}, {1, 0}};
  of_two_dimensions.parray = SafeArrayCreate(VT_VARIANT, 2, bounds);
  of_two_dimensions.vt = VT_ARRAY | VT_VARIANT;
  EXPECT_EQ(sum_of(of_two_dimensions), 0);
}

}  // namespace
