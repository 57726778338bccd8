// The digit control's members: each goes to the control with its identifier and its automation type.
#include <gtest/gtest.h>

#include <kexlib/com/activex.h>
#include <kexlib/com/digit_control.h>
#include <kexlib/com/registration_free.h>

#include <support/expect_flat.h>
#include <support/files.h>
#include <support/message_pump.h>
#include <support/picture.h>
#include <support/test_control.h>

#include <afx.h>
#include <digits.h>

#include <cmath>
#include <functional>
#include <limits>
#include <memory>
#include <string>
#include <type_traits>
#include <vector>

#include "resources.h"

namespace {

constexpr CLSID digit_class = {0x107BD0EE, 0x6861, 0x11CF, {0xB2, 0x8B, 0x00, 0x00, 0xC0, 0xC1, 0x4E, 0xA0}};
constexpr DWORD style = WS_CHILD | WS_VISIBLE;
constexpr RECT place{10, 20, 130, 100};

CY money(LONGLONG ten_thousandths) {
  CY value;
  value.int64 = ten_thousandths;
  return value;
}
const CY some_money = money(123456);

// What a member gave, as a variant of the type that it has in C++.
template <class Value>
CComVariant as_variant(Value value) {
  CComVariant result;
  if constexpr (std::is_same_v<Value, CStringA>) {
    result.bstrVal = CComBSTR(value).Detach();
    result.vt = VT_BSTR;
  } else if constexpr (std::is_same_v<Value, CY>) {
    result.vt = VT_CY;
    result.cyVal = value;
  } else if constexpr (std::is_same_v<Value, short>) {
    result.vt = VT_I2;
    result.iVal = value;
  } else if constexpr (std::is_same_v<Value, double>) {
    result.vt = VT_R8;
    result.dblVal = value;
  } else {
    static_assert(sizeof(Value) == 4);
    result.vt = VT_I4;
    result.lVal = static_cast<long>(value);
  }
  return result;
}

CComVariant variant(VARTYPE type, const char* text) {
  CComVariant value;
  value.bstrVal = CComBSTR(text).Detach();
  value.vt = VT_BSTR;
  EXPECT_EQ(value.ChangeType(type), S_OK);
  return value;
}

std::string text_of(const CComVariant& value) {
  CComVariant text;
  EXPECT_EQ(text.ChangeType(VT_BSTR, &value), S_OK);
  return std::string(CStringA(text.bstrVal));
}

template <class Object>
struct Property {
  const char* name;
  DISPID id;
  VARTYPE type;
  CComVariant (*get)(Object&);
  void (*set)(Object&);
};

const Property<kexDigitOCX> control_properties[] = {
    {"Appearance", DISPID_APPEARANCE, VT_I2, [](kexDigitOCX& c) { return as_variant(c.GetAppearance()); },
     [](kexDigitOCX& c) { c.SetAppearance(-7); }},
    {"BackColor", DISPID_BACKCOLOR, VT_I4, [](kexDigitOCX& c) { return as_variant(c.GetBackColor()); },
     [](kexDigitOCX& c) { c.SetBackColor(0x80FF0001); }},
    {"BorderStyle", DISPID_BORDERSTYLE, VT_I2, [](kexDigitOCX& c) { return as_variant(c.GetBorderStyle()); },
     [](kexDigitOCX& c) { c.SetBorderStyle(-7); }},
    {"DimAuto", 9, VT_BOOL, [](kexDigitOCX& c) { return as_variant(c.GetDimAuto()); },
     [](kexDigitOCX& c) { c.SetDimAuto(5); }},
    {"Display", 10, VT_BOOL, [](kexDigitOCX& c) { return as_variant(c.GetDisplay()); },
     [](kexDigitOCX& c) { c.SetDisplay(5); }},
    {"DisplayMask", 2, VT_BOOL, [](kexDigitOCX& c) { return as_variant(c.GetDisplayMask()); },
     [](kexDigitOCX& c) { c.SetDisplayMask(5); }},
    {"DisplayTitles", 30, VT_BOOL, [](kexDigitOCX& c) { return as_variant(c.GetDisplayTitles()); },
     [](kexDigitOCX& c) { c.SetDisplayTitles(5); }},
    {"Enabled", DISPID_ENABLED, VT_BOOL, [](kexDigitOCX& c) { return as_variant(c.GetEnabled()); },
     [](kexDigitOCX& c) { c.SetEnabled(5); }},
    {"ForeColor", DISPID_FORECOLOR, VT_I4, [](kexDigitOCX& c) { return as_variant(c.GetForeColor()); },
     [](kexDigitOCX& c) { c.SetForeColor(0x80FF0001); }},
    {"Gap", 7, VT_I2, [](kexDigitOCX& c) { return as_variant(c.GetGap()); }, [](kexDigitOCX& c) { c.SetGap(-7); }},
    {"Interligne", 8, VT_I2, [](kexDigitOCX& c) { return as_variant(c.GetInterligne()); },
     [](kexDigitOCX& c) { c.SetInterligne(-7); }},
    {"InternalBorder", 31, VT_BOOL, [](kexDigitOCX& c) { return as_variant(c.GetInternalBorder()); },
     [](kexDigitOCX& c) { c.SetInternalBorder(5); }},
    {"MaskColor", 3, VT_I4, [](kexDigitOCX& c) { return as_variant(c.GetMaskColor()); },
     [](kexDigitOCX& c) { c.SetMaskColor(0x80FF0001); }},
    {"NbDigits", 13, VT_I2, [](kexDigitOCX& c) { return as_variant(c.GetNbDigits()); },
     [](kexDigitOCX& c) { c.SetNbDigits(-7); }},
    {"NbLines", 11, VT_I2, [](kexDigitOCX& c) { return as_variant(c.GetNbLines()); },
     [](kexDigitOCX& c) { c.SetNbLines(-7); }},
    {"OverflowColor", 4, VT_I4, [](kexDigitOCX& c) { return as_variant(c.GetOverflowColor()); },
     [](kexDigitOCX& c) { c.SetOverflowColor(0x80FF0001); }},
    {"Precision", 12, VT_I2, [](kexDigitOCX& c) { return as_variant(c.GetPrecision()); },
     [](kexDigitOCX& c) { c.SetPrecision(-7); }},
    {"Type", 14, VT_I2, [](kexDigitOCX& c) { return as_variant(c.GetType()); }, [](kexDigitOCX& c) { c.SetType(-7); }},
    {"UnderflowColor", 5, VT_I4, [](kexDigitOCX& c) { return as_variant(c.GetUnderflowColor()); },
     [](kexDigitOCX& c) { c.SetUnderflowColor(0x80FF0001); }},
    {"UpperBound", 6, VT_R8, [](kexDigitOCX& c) { return as_variant(c.GetUpperBound()); },
     [](kexDigitOCX& c) { c.SetUpperBound(2.5); }},
    {"Text", DISPID_TEXT, VT_BSTR, [](kexDigitOCX& c) { return as_variant(c.GetText()); },
     [](kexDigitOCX& c) { c.SetText("text"); }},
};

const Property<kexOleFont> font_properties[] = {
    {"Name", 0, VT_BSTR, [](kexOleFont& f) { return as_variant(f.GetName()); },
     [](kexOleFont& f) { f.SetName("text"); }},
    {"Size", 2, VT_CY, [](kexOleFont& f) { return as_variant(f.GetSize()); },
     [](kexOleFont& f) { f.SetSize(some_money); }},
    {"Bold", 3, VT_BOOL, [](kexOleFont& f) { return as_variant(f.GetBold()); }, [](kexOleFont& f) { f.SetBold(5); }},
    {"Italic", 4, VT_BOOL, [](kexOleFont& f) { return as_variant(f.GetItalic()); },
     [](kexOleFont& f) { f.SetItalic(5); }},
    {"Underline", 5, VT_BOOL, [](kexOleFont& f) { return as_variant(f.GetUnderline()); },
     [](kexOleFont& f) { f.SetUnderline(5); }},
    {"Strikethrough", 6, VT_BOOL, [](kexOleFont& f) { return as_variant(f.GetStrikethrough()); },
     [](kexOleFont& f) { f.SetStrikethrough(5); }},
    {"Weight", 7, VT_I2, [](kexOleFont& f) { return as_variant(f.GetWeight()); },
     [](kexOleFont& f) { f.SetWeight(-7); }},
    {"Charset", 8, VT_I2, [](kexOleFont& f) { return as_variant(f.GetCharset()); },
     [](kexOleFont& f) { f.SetCharset(-7); }},
};

// What the control answers, what the member makes of it, and what it sends.
struct Values {
  VARTYPE type;
  const char* answer;
  const char* read;
  const char* sent;
};
const Values values[] = {
    {VT_I2, "-123", "-123", "-7"},    {VT_I4, "-16777215", "-16777215", "-2130771967"},  // 0x80FF0001
    {VT_BOOL, "True", "1", "-1"},     {VT_R8, "1.25", "1.25", "2.5"},
    {VT_CY, "7.5", "7.5", "12.3456"}, {VT_BSTR, "some", "some", "text"},
};

template <class Object>
void expect_property(const Property<Object>& property, Object& object, RecordingDispatch* recording) {
  SCOPED_TRACE(property.name);
  const Values* expected = values;
  while (expected->type != property.type) ++expected;
  recording->calls.clear();
  recording->answer = variant(property.type, expected->answer);
  EXPECT_EQ(text_of(property.get(object)), expected->read);
  property.set(object);
  ASSERT_EQ(recording->calls.size(), 2u);

  const DispatchCall& got = recording->calls[0];
  EXPECT_EQ(got.id, property.id);
  EXPECT_EQ(got.flags, DISPATCH_PROPERTYGET);
  EXPECT_TRUE(got.arguments.empty());
  EXPECT_TRUE(got.wants_result);

  const DispatchCall& put = recording->calls[1];
  EXPECT_EQ(put.id, property.id);
  EXPECT_EQ(put.flags, DISPATCH_PROPERTYPUT);
  EXPECT_EQ(put.named, std::vector<DISPID>{DISPID_PROPERTYPUT});
  ASSERT_EQ(put.arguments.size(), 1u);
  EXPECT_EQ(put.arguments[0].vt, property.type);
  EXPECT_EQ(text_of(put.arguments[0]), expected->sent);
}

class DigitControl : public testing::Test {
 protected:
  DigitControl() {
    frame_.Attach(
        CreateWindowA("STATIC", "frame", WS_OVERLAPPEDWINDOW, 0, 0, 400, 300, nullptr, nullptr, nullptr, nullptr));
    EXPECT_TRUE(digits_.Create(nullptr, style, place, &frame_, 7, nullptr, 0, nullptr));
  }
  ~DigitControl() override {
    digits_.DestroyWindow();
    frame_.DestroyWindow();
    EXPECT_EQ(RecordingDispatch::alive, 0);
  }

  // What reached the control since it was asked last: exactly one call.
  DispatchCall sent() {
    EXPECT_EQ(class_.made->calls.size(), 1u);
    const DispatchCall call = class_.made->calls.empty() ? DispatchCall{} : class_.made->calls[0];
    class_.made->calls.clear();
    return call;
  }
  void expect_sent(DISPID id, WORD flags, bool wants_result,
                   const std::vector<std::pair<VARTYPE, std::string>>& arguments) {
    const DispatchCall call = sent();
    EXPECT_EQ(call.id, id);
    EXPECT_EQ(call.flags, flags);
    EXPECT_EQ(call.wants_result, wants_result);
    ASSERT_EQ(call.arguments.size(), arguments.size());
    for (size_t i = 0; i < arguments.size(); ++i) {
      EXPECT_EQ(call.arguments[i].vt, arguments[i].first) << i;
      EXPECT_EQ(text_of(call.arguments[i]), arguments[i].second) << i;
    }
  }

  TestControlClass class_{digit_class};
  CWnd frame_;
  kexDigitOCX digits_;
};

TEST_F(DigitControl, SendsEachPropertyWithItsIdentifierAndType) {
  EXPECT_EQ(std::size(control_properties), 21u);
  for (const Property<kexDigitOCX>& property : control_properties) expect_property(property, digits_, class_.made);
}

TEST_F(DigitControl, SendsTheValuesAndTitlesOfLines) {
  class_.made->answer = variant(VT_R8, "1.25");
  EXPECT_EQ(digits_.GetValue(3), 1.25);
  expect_sent(21, DISPATCH_PROPERTYGET, true, {{VT_I2, "3"}});
  digits_.SetValue(-1, 2.5);
  expect_sent(21, DISPATCH_PROPERTYPUT, false, {{VT_I2, "-1"}, {VT_R8, "2.5"}});
  class_.made->answer = variant(VT_BSTR, "title");
  EXPECT_EQ(digits_.GetTitle(2), "title");
  expect_sent(22, DISPATCH_PROPERTYGET, true, {{VT_I2, "2"}});
  digits_.SetTitle(4, "other");
  expect_sent(22, DISPATCH_PROPERTYPUT, false, {{VT_I2, "4"}, {VT_BSTR, "other"}});
  digits_.SetTitle(4, nullptr);
  expect_sent(22, DISPATCH_PROPERTYPUT, false, {{VT_I2, "4"}, {VT_BSTR, ""}});
}

TEST_F(DigitControl, CallsEachMethodWithItsArguments) {
  digits_.AboutBox();
  expect_sent(-552, DISPATCH_METHOD, false, {});
  digits_.SetBounds(1.5, -2.5);
  expect_sent(15, DISPATCH_METHOD, false, {{VT_R8, "1.5"}, {VT_R8, "-2.5"}});
  digits_.SetDelta(1, 2, 3, 4.5);
  expect_sent(16, DISPATCH_METHOD, false, {{VT_R8, "1"}, {VT_R8, "2"}, {VT_R8, "3"}, {VT_R8, "4.5"}});
  digits_.SetPoint(1, 2, 3.5);
  expect_sent(17, DISPATCH_METHOD, false, {{VT_R8, "1"}, {VT_R8, "2"}, {VT_R8, "3.5"}});
  digits_.CalculateOptimizeSize();
  expect_sent(18, DISPATCH_METHOD, false, {});
  digits_.SetFlashing(2);
  expect_sent(19, DISPATCH_METHOD, false, {{VT_BOOL, "-1"}});
  digits_.SetFlashing(0);
  expect_sent(19, DISPATCH_METHOD, false, {{VT_BOOL, "0"}});
  digits_.CalculateFontSizeToFit();
  expect_sent(20, DISPATCH_METHOD, false, {});
  class_.made->answer = variant(VT_I2, "321");
  EXPECT_EQ(digits_.GetOptimalWidth(70000), 321);
  expect_sent(23, DISPATCH_METHOD, true, {{VT_I4, "70000"}});
  class_.made->answer = variant(VT_CY, "8.25");
  EXPECT_EQ(digits_.GetOptimalFontSize(70000).int64, 82500);
  expect_sent(24, DISPATCH_METHOD, true, {{VT_I4, "70000"}});
}

// The height goes as a 16-bit number: that is meant.
TEST_F(DigitControl, SendsTheLowBitsOfTheHeightOnlyForTheSecondOptimalWidth) {
  class_.made->answer = variant(VT_I2, "321");
  EXPECT_EQ(digits_.GetOptimalWidth2(70000, some_money), 321);
  expect_sent(25, DISPATCH_METHOD, true, {{VT_I2, "4464"}, {VT_CY, "12.3456"}});
  digits_.GetOptimalWidth2(-1, some_money);
  expect_sent(25, DISPATCH_METHOD, true, {{VT_I2, "-1"}, {VT_CY, "12.3456"}});
}

void raise_full(EXCEPINFO* information) {
  information->wCode = 1003;
  information->bstrDescription = SysAllocString(L"no more digits");
  information->bstrSource = SysAllocString(L"digits");
}

TEST_F(DigitControl, ThrowsWhatTheControlRaises) {
  class_.made->returned = DISP_E_EXCEPTION;
  class_.made->raise = raise_full;
  try {
    digits_.SetGap(3);
    FAIL() << "nothing was thrown";
  } catch (COleDispatchException* exception) {
    EXPECT_EQ(exception->m_wCode, 1003);
    EXPECT_EQ(exception->m_strDescription, "no more digits");
    EXPECT_EQ(exception->m_strSource, "digits");
    exception->Delete();
  }
  class_.made->raise = nullptr;
  class_.made->returned = DISP_E_MEMBERNOTFOUND;
  const std::function<void()> members[] = {[&] { digits_.GetGap(); }, [&] { digits_.GetValue(1); },
                                           [&] { digits_.AboutBox(); }, [&] { digits_.GetFont(); },
                                           [&] { digits_.initialise(); }};
  for (const auto& member : members) {
    try {
      member();
      FAIL() << "nothing was thrown";
    } catch (COleException* exception) {
      EXPECT_EQ(exception->m_sc, DISP_E_MEMBERNOTFOUND);
      exception->Delete();
    }
  }
}

TEST_F(DigitControl, ThrowsWhereAResultIsOfAnotherKind) {
  class_.made->answer = variant(VT_BSTR, "no number");
  EXPECT_THROW(digits_.GetUpperBound(), COleException*);
}

// Out of line: the compiler takes a first release for the last one otherwise.
[[gnu::noinline]] void release(IUnknown* object) { object->Release(); }

TEST_F(DigitControl, GivesItsFontWithOneReferenceThatGoesWithTheResult) {
  auto* font = new RecordingDispatch;
  class_.made->answer = static_cast<IDispatch*>(font);
  EXPECT_EQ(font->references(), 2u);  // the test's, and the answer's
  {
    kexOleFont got = digits_.GetFont();
    EXPECT_EQ(static_cast<IDispatch*>(got), font);
    EXPECT_EQ(font->references(), 3u);
    {
      kexOleFont copy(got);
      EXPECT_EQ(font->references(), 4u);
      kexOleFont assigned;
      assigned = copy;
      EXPECT_EQ(font->references(), 5u);
    }
    EXPECT_EQ(font->references(), 3u);
  }
  EXPECT_EQ(font->references(), 2u);
  expect_sent(DISPID_FONT, DISPATCH_PROPERTYGET, true, {});

  digits_.SetFont(font);
  {
    const DispatchCall call = sent();
    EXPECT_EQ(call.id, DISPID_FONT);
    EXPECT_EQ(call.flags, DISPATCH_PROPERTYPUTREF);
    ASSERT_EQ(call.arguments.size(), 1u);
    EXPECT_EQ(call.arguments[0].vt, VT_DISPATCH);
    EXPECT_EQ(call.arguments[0].pdispVal, font);
  }
  EXPECT_EQ(font->references(), 2u);
  class_.made->answer.Clear();
  EXPECT_EQ(font->references(), 1u);
  release(font);
}

TEST_F(DigitControl, GetsTahomaThatIsNotBold) {
  FONTDESC wanted = {sizeof(FONTDESC), const_cast<wchar_t*>(L"Arial"), money(120000), FW_BOLD, 0, FALSE, FALSE, FALSE};
  CComPtr<IFontDisp> font;
  ASSERT_EQ(OleCreateFontIndirect(&wanted, IID_IFontDisp, reinterpret_cast<void**>(&font)), S_OK);
  class_.made->answer = static_cast<IDispatch*>(font);
  kexOleFont read = digits_.GetFont();
  EXPECT_NE(read.GetName(), "Tahoma");
  EXPECT_EQ(read.GetBold(), 1);
  digits_.initialise();
  EXPECT_EQ(read.GetName(), "Tahoma");
  EXPECT_EQ(read.GetBold(), 0);
  EXPECT_EQ(read.GetSize().int64, 120000);
  class_.made->answer.Clear();
  read.ReleaseDispatch();
  IFontDisp* const last = font.Detach();
  EXPECT_EQ(last->Release(), 0u);
}

TEST_F(DigitControl, IsWhereItWasPutOnce) {
  RECT rect;
  GetWindowRect(digits_.m_hWnd, &rect);
  MapWindowPoints(nullptr, frame_.m_hWnd, reinterpret_cast<POINT*>(&rect), 2);
  EXPECT_TRUE(EqualRect(&rect, &place));
  EXPECT_EQ(GetDlgItem(frame_.m_hWnd, 7), digits_.m_hWnd);
  EXPECT_FALSE(digits_.Create(nullptr, style, place, &frame_, 8, nullptr, 0, nullptr));
}

TEST_F(DigitControl, IsMadeThroughCWndToo) {
  kexDigitOCX other;
  CWnd* const window = &other;
  EXPECT_TRUE(window->Create("no class", "named", style, place, &frame_, 9, nullptr));
  ASSERT_EQ(class_.made->calls.size(), 1u);
  EXPECT_EQ(class_.made->calls[0].id, DISPID_CAPTION);
  EXPECT_EQ(text_of(class_.made->calls[0].arguments[0]), "named");
  EXPECT_EQ(GetDlgItem(frame_.m_hWnd, 9), other.m_hWnd);
}

TEST_F(DigitControl, IsMadeWithAStateAndAKey) {
  class_.license = L"key";
  BYTE bytes[] = {'a', 'b', 'c'};
  CMemFile file;
  file.Write(bytes, 3);
  file.SeekToBegin();
  kexDigitOCX other;
  EXPECT_FALSE(other.Create(nullptr, style, place, &frame_, 9, &file, FALSE, nullptr));
  EXPECT_TRUE(other.Create(nullptr, style, place, &frame_, 9, &file, FALSE, CComBSTR(L"key")));
  EXPECT_EQ(class_.made->state, "abc");
}

TEST(DigitControlClass, IsMadeByItsName) {
  CRuntimeClass* const type = RUNTIME_CLASS(kexDigitOCX);
  EXPECT_STREQ(type->m_lpszClassName, "kexDigitOCX");
  EXPECT_EQ(type->m_wSchema, 0xFFFFu);
  EXPECT_EQ(type->m_nObjectSize, static_cast<int>(sizeof(CWnd)));
  const std::unique_ptr<CObject> made(type->CreateObject());
  auto* const digits = dynamic_cast<kexDigitOCX*>(made.get());
  ASSERT_NE(digits, nullptr);
  EXPECT_EQ(digits->GetRuntimeClass(), type);
  EXPECT_TRUE(digits->GetClsid() == digit_class);
  EXPECT_EQ(digits->m_hWnd, nullptr);
}

TEST(DigitControlClass, IsNotThereWhereItIsNotInstalled) {
  ASSERT_EQ(OleInitialize(nullptr), S_OK);
  {
    CWnd frame;
    frame.Attach(CreateWindowA("STATIC", "", WS_OVERLAPPEDWINDOW, 0, 0, 99, 99, nullptr, nullptr, nullptr, nullptr));
    kexDigitOCX digits;
    EXPECT_FALSE(digits.Create(nullptr, style, place, &frame, 7, nullptr, 0, nullptr));
    EXPECT_FALSE(static_cast<CWnd&>(digits).Create("", "", style, place, &frame, 7, nullptr));
    // Nothing is called, and everything is 0 or empty.
    EXPECT_EQ(digits.GetGap(), 0);
    EXPECT_EQ(digits.GetText(), "");
    EXPECT_EQ(digits.GetValue(1), 0.0);
    EXPECT_EQ(static_cast<IDispatch*>(digits.GetFont()), nullptr);
    digits.initialise();
  }
  OleUninitialize();
}

TEST(OleFont, SendsEachPropertyWithItsIdentifierAndType) {
  auto* recording = new RecordingDispatch;
  {
    kexOleFont font(recording);
    EXPECT_EQ(recording->references(), 1u);
    for (const Property<kexOleFont>& property : font_properties) expect_property(property, font, recording);
  }
  EXPECT_EQ(RecordingDispatch::alive, 0);
  EXPECT_EQ(sizeof(kexOleFont), sizeof(COleDispatchDriver));
}

// A control that draws: examples/components/digit_control, which is never registered.

std::string components() { return (program_folder() / "components").string(); }
std::string drawing_manifest() { return components() + "\\digit_control.manifest"; }

// While it lives, the manifest is in force on this thread.
class Manifest {
 public:
  Manifest() {
    const std::string path = drawing_manifest();
    ACTCTXA wanted = {};
    wanted.cbSize = sizeof wanted;
    wanted.dwFlags = ACTCTX_FLAG_ASSEMBLY_DIRECTORY_VALID;
    wanted.lpSource = path.c_str();
    const std::string folder = components();
    wanted.lpAssemblyDirectory = folder.c_str();
    context_ = CreateActCtxA(&wanted);
    EXPECT_NE(context_, INVALID_HANDLE_VALUE);
    EXPECT_TRUE(ActivateActCtx(context_, &cookie_));
  }
  Manifest(const Manifest&) = delete;
  Manifest& operator=(const Manifest&) = delete;
  ~Manifest() {
    DeactivateActCtx(0, cookie_);
    ReleaseActCtx(context_);
  }

 private:
  HANDLE context_;
  ULONG_PTR cookie_ = 0;
};

constexpr COLORREF back = RGB(250, 250, 240), fore = RGB(0, 128, 0), mask = RGB(220, 220, 220),
                   overflow = RGB(200, 0, 0), underflow = RGB(0, 0, 200);

class DrawnDigitsOnScreen : public testing::Test {
 protected:
  DrawnDigitsOnScreen() {
    EXPECT_EQ(OleInitialize(nullptr), S_OK);
    dialog_.Attach(CreateDialogParamA(nullptr, MAKEINTRESOURCEA(IDD_HOST), nullptr, nullptr, 0));
    GetWindowRect(GetDlgItem(dialog_.m_hWnd, IDC_PLACEHOLDER), &place_);
    MapWindowPoints(nullptr, dialog_.m_hWnd, reinterpret_cast<POINT*>(&place_), 2);
    place_.right = place_.left + 280;
    place_.bottom = place_.top + 90;
    EXPECT_TRUE(create(digits_, place_));
    colour(digits_);
  }
  ~DrawnDigitsOnScreen() override {
    digits_.DestroyWindow();
    dialog_.DestroyWindow();
    OleUninitialize();
  }

  BOOL create(kexDigitOCX& control, const RECT& where, CFile* state = nullptr) {
    const Manifest known;
    return control.Create(nullptr, style, where, &dialog_, 0, state, FALSE, nullptr);
  }
  static void colour(kexDigitOCX& control) {
    control.SetBackColor(back);
    control.SetForeColor(fore);
    control.SetMaskColor(mask);
    control.SetOverflowColor(overflow);
    control.SetUnderflowColor(underflow);
  }
  static HWND window_of(kexDigitOCX& control) { return ::GetWindow(control.m_hWnd, GW_CHILD); }
  static Picture shown(kexDigitOCX& control) {
    UpdateWindow(window_of(control));
    return Picture(window_of(control));
  }
  // How many pixels of a picture of the control are of a colour.
  static int count(kexDigitOCX& control, COLORREF color) {
    RECT size;
    GetClientRect(window_of(control), &size);
    const Picture picture = shown(control);
    int found = 0;
    for (int y = 0; y < size.bottom; ++y)
      for (int x = 0; x < size.right; ++x) found += picture.at(x, y) == color;
    return found;
  }
  SIZEL extent() {
    SIZEL size = {};
    CComQIPtr<IOleObject> object(digits_.GetControlUnknown());
    EXPECT_EQ(object->GetExtent(DVASPECT_CONTENT, &size), S_OK);
    return size;
  }
  static void set_font_size(kexDigitOCX& control, LONGLONG points) {
    kexOleFont font = control.GetFont();
    font.SetSize(money(points * 10000));
  }

  CWnd dialog_;
  RECT place_;
  kexDigitOCX digits_;
};

TEST_F(DrawnDigitsOnScreen, AreMadeThroughTheManifestOnly) {
  CComPtr<IUnknown> control;
  EXPECT_EQ(reg_free_co_create(digit_class, components().c_str(), "", CLSCTX_INPROC_SERVER, &control),
            REGDB_E_CLASSNOTREG);
  ASSERT_EQ(
      reg_free_co_create(digit_class, components().c_str(), drawing_manifest().c_str(), CLSCTX_INPROC_SERVER, &control),
      S_OK);
  CComQIPtr<IDigits> digits(control);
  ASSERT_NE(digits.p, nullptr);
  short lines = 0;
  EXPECT_EQ(digits->get_NbLines(&lines), S_OK);
  EXPECT_EQ(lines, 1);
  digits.Release();
  EXPECT_EQ(control.Detach()->Release(), 0u);
}

TEST_F(DrawnDigitsOnScreen, TakeThePlaceholdersPlaceInTheirOwnSize) {
  const Manifest known;
  CAxWindowT<CWindow> host;
  const CComPtr<IUnknown> control =
      CreateControl(dialog_.m_hWnd, &host, IDC_PLACEHOLDER, "{107BD0EE-6861-11CF-B28B-0000C0C14EA0}");
  ASSERT_NE(control.p, nullptr);
  // Six digits of 32 by 17 pixels with gaps of 4, the point of 6 and its gap, and margins of 8.
  RECT size;
  GetClientRect(host.m_hWnd, &size);
  EXPECT_EQ(size.right, 6 * 17 + 5 * 4 + 6 + 4 + 2 * 8);
  EXPECT_EQ(size.bottom, 32 + 2 * 8);
  RECT inside;
  GetClientRect(::GetWindow(host.m_hWnd, GW_CHILD), &inside);
  EXPECT_TRUE(EqualRect(&inside, &size));
  host.DestroyWindow();
}

TEST_F(DrawnDigitsOnScreen, AreMadeOfTheBarsOfTheirFigures) {
  // One digit of 80 pixels in height and 44 in width, in the middle.
  digits_.SetNbDigits(1);
  digits_.SetPrecision(0);
  set_font_size(digits_, 60);
  RECT size;
  GetClientRect(window_of(digits_), &size);
  const int x = (size.right - (44 + 40)) / 2 + 20, y = (size.bottom - (80 + 40)) / 2 + 20;
  const POINT bars[] = {{x + 22, y + 4}, {x + 40, y + 22}, {x + 40, y + 58}, {x + 22, y + 76},
                        {x + 4, y + 58}, {x + 4, y + 22},  {x + 22, y + 40}};
  const char* const lit[] = {"1111110", "0110000", "1101101", "1111001", "0110011",
                             "1011011", "1011111", "1110000", "1111111", "1111011"};
  for (int figure = 0; figure < 10; ++figure) {
    digits_.SetValue(0, figure);
    const Picture picture = shown(digits_);
    for (int bar = 0; bar < 7; ++bar)
      EXPECT_EQ(picture.at(bars[bar].x, bars[bar].y), lit[figure][bar] == '1' ? fore : mask) << figure << ' ' << bar;
    EXPECT_EQ(picture.at(x + 22, y + 22), back);  // within the upper ring
    EXPECT_EQ(picture.at(x - 8, y + 40), back);
  }
}

TEST_F(DrawnDigitsOnScreen, HaveAColourForValuesBeyondTheirBounds) {
  digits_.SetBounds(-10, 10);
  EXPECT_EQ(digits_.GetUpperBound(), 10.0);
  struct {
    double value;
    COLORREF color;
  } const cases[] = {{-10, fore}, {10, fore}, {10.5, overflow}, {-10.5, underflow}};
  for (const auto& each : cases) {
    digits_.SetValue(0, each.value);
    for (const COLORREF color : {fore, overflow, underflow})
      EXPECT_EQ(count(digits_, color) > 100, color == each.color) << each.value << ' ' << color;
  }
}

TEST_F(DrawnDigitsOnScreen, AreDashesWhereANumberHasNoRoom) {
  digits_.SetNbDigits(3);
  digits_.SetPrecision(0);
  digits_.SetDisplayMask(0);
  digits_.SetValue(0, 1000);
  const Picture dashes = shown(digits_);
  const int dash_pixels = count(digits_, fore);
  EXPECT_GT(dash_pixels, 0);
  for (const double other : {-100.0, 1e300, std::numeric_limits<double>::quiet_NaN(), HUGE_VAL}) {
    digits_.SetValue(0, other);
    if (other != HUGE_VAL) {  // beyond the bounds
      EXPECT_TRUE(shown(digits_) == dashes) << other;
    } else {
      EXPECT_EQ(count(digits_, overflow), dash_pixels);
    }
  }
  digits_.SetValue(0, 999);
  EXPECT_FALSE(shown(digits_) == dashes);
}

TEST_F(DrawnDigitsOnScreen, ShowWhatTheirSwitchesSay) {
  digits_.SetValue(0, 8.88);
  EXPECT_GT(count(digits_, fore), 100);
  EXPECT_GT(count(digits_, mask), 100);
  digits_.SetDisplayMask(0);
  EXPECT_EQ(count(digits_, mask), 0);
  digits_.SetDisplay(0);
  EXPECT_EQ(count(digits_, fore), 0);
  digits_.SetDisplay(1);
  digits_.SetEnabled(0);
  EXPECT_EQ(count(digits_, fore), 0);
  EXPECT_GT(count(digits_, RGB(125, 189, 120)), 100);  // half way to the background
  EXPECT_FALSE(IsWindowEnabled(window_of(digits_)));
}

TEST_F(DrawnDigitsOnScreen, FlashUntilToldToStop) {
  digits_.SetValue(0, 8.88);
  digits_.SetFlashing(1);
  EXPECT_TRUE(pump_until([&] { return count(digits_, fore) == 0; }));
  EXPECT_TRUE(pump_until([&] { return count(digits_, fore) > 0; }));
  EXPECT_TRUE(pump_until([&] { return count(digits_, fore) == 0; }));
  digits_.SetFlashing(0);
  EXPECT_GT(count(digits_, fore), 0);
}

TEST_F(DrawnDigitsOnScreen, FollowTheirFontWhoeverChangesIt) {
  const SIZEL before = extent();
  kexOleFont font = digits_.GetFont();
  EXPECT_EQ(font.GetSize().int64, 240000);
  font.SetSize(money(480000));
  const SIZEL larger = extent();
  EXPECT_GT(larger.cx, before.cx);
  EXPECT_GT(larger.cy, before.cy);
  font.SetName("Arial");
  font.SetBold(1);
  digits_.initialise();
  EXPECT_EQ(font.GetName(), "Tahoma");
  EXPECT_EQ(font.GetBold(), 0);
  EXPECT_EQ(font.GetSize().int64, 480000);

  // One of the caller's, which stays the caller's too.
  FONTDESC wanted = {
      sizeof(FONTDESC), const_cast<wchar_t*>(L"Arial"), money(240000), FW_NORMAL, 0, FALSE, FALSE, FALSE};
  CComPtr<IFontDisp> own;
  ASSERT_EQ(OleCreateFontIndirect(&wanted, IID_IFontDisp, reinterpret_cast<void**>(&own)), S_OK);
  digits_.SetFont(own);
  EXPECT_EQ(extent().cy, before.cy);
  kexOleFont shared = digits_.GetFont();
  shared.SetSize(money(360000));
  CComQIPtr<IFont> same(own);
  CY size = {};
  EXPECT_EQ(same->get_Size(&size), S_OK);
  EXPECT_EQ(size.int64, 360000);
  EXPECT_GT(extent().cy, before.cy);
}

void expect_refused(const std::function<void()>& member, HRESULT reason, const char* text) {
  try {
    member();
    FAIL() << "nothing was thrown";
  } catch (COleDispatchException* exception) {
    EXPECT_EQ(exception->m_scError, reason);
    EXPECT_EQ(exception->m_strDescription, text);
    exception->Delete();
  }
}

TEST_F(DrawnDigitsOnScreen, RefuseLinesThatThereAreNot) {
  digits_.SetNbLines(2);
  digits_.SetValue(1, 1.5);
  digits_.SetTitle(1, "Second");
  EXPECT_EQ(digits_.GetValue(1), 1.5);
  EXPECT_EQ(digits_.GetTitle(1), "Second");
  for (const short line : std::initializer_list<short>{-32768, -1, 2, 32767}) {
    const char* const no_line = "There is no such line.";
    expect_refused([&] { digits_.GetValue(line); }, DISP_E_BADINDEX, no_line);
    expect_refused([&] { digits_.SetValue(line, 1); }, DISP_E_BADINDEX, no_line);
    expect_refused([&] { digits_.GetTitle(line); }, DISP_E_BADINDEX, no_line);
    expect_refused([&] { digits_.SetTitle(line, "x"); }, DISP_E_BADINDEX, no_line);
  }
  digits_.SetNbLines(1);
  expect_refused([&] { digits_.GetValue(1); }, DISP_E_BADINDEX, "There is no such line.");
}

TEST_F(DrawnDigitsOnScreen, RefuseWhatTheyCannotShowAndStayAsTheyAre) {
  digits_.SetValue(0, 12.5);
  const Picture before = shown(digits_);
  const double none = std::numeric_limits<double>::quiet_NaN();
  const std::function<void()> members[] = {[&] { digits_.SetNbDigits(0); },
                                           [&] { digits_.SetNbDigits(33); },
                                           [&] { digits_.SetNbLines(0); },
                                           [&] { digits_.SetNbLines(65); },
                                           [&] { digits_.SetPrecision(-1); },
                                           [&] { digits_.SetPrecision(16); },
                                           [&] { digits_.SetGap(-1); },
                                           [&] { digits_.SetInterligne(201); },
                                           [&] { digits_.SetType(2); },
                                           [&] { digits_.SetAppearance(2); },
                                           [&] { digits_.SetBorderStyle(-1); },
                                           [&] { digits_.SetUpperBound(none); },
                                           [&] { digits_.SetBounds(2, 1); },
                                           [&] { digits_.SetBounds(none, 1); },
                                           [&] { digits_.SetForeColor(0x40000001); },
                                           [&] { digits_.GetOptimalWidth(0); },
                                           [&] { digits_.GetOptimalWidth(-5); },
                                           [&] { digits_.GetOptimalFontSize(0); },
                                           [&] { digits_.GetOptimalWidth2(-1, some_money); },
                                           [&] { digits_.GetOptimalWidth2(20, money(0)); },
                                           [&] { digits_.SetText(std::string(1001, 't').c_str()); },
                                           [&] { digits_.SetTitle(0, std::string(1001, 't').c_str()); }};
  for (const auto& member : members) expect_refused(member, E_INVALIDARG, "This value cannot be shown.");
  expect_refused([&] { digits_.SetFont(nullptr); }, E_INVALIDARG, "This is no font.");
  EXPECT_TRUE(shown(digits_) == before);
}

TEST_F(DrawnDigitsOnScreen, SetTheValuesOfAsManyLinesAsThereAre) {
  digits_.SetNbLines(3);
  digits_.SetDelta(1, 2, 3, 4);
  EXPECT_EQ(digits_.GetValue(2), 3.0);
  digits_.SetPoint(5, 6, 7);
  for (short line = 0; line < 3; ++line) EXPECT_EQ(digits_.GetValue(line), 5.0 + line);
  digits_.SetNbLines(4);
  EXPECT_EQ(digits_.GetValue(3), 0.0);
  digits_.SetDelta(1, 2, 3, 4);
  EXPECT_EQ(digits_.GetValue(3), 4.0);
}

TEST_F(DrawnDigitsOnScreen, ReckonTheSizesThatSuitThem) {
  // 48 pixels are a margin of 8, a digit of 32 and a margin of 8.
  EXPECT_EQ(digits_.GetOptimalFontSize(48).int64, 240000);
  EXPECT_EQ(digits_.GetOptimalWidth(48), 148);
  EXPECT_EQ(digits_.GetOptimalWidth2(48, money(480000)), 148);
  EXPECT_LT(digits_.GetOptimalWidth2(48, money(120000)), 148);
  // Sixteen bits of the height arrive.
  EXPECT_EQ(digits_.GetOptimalWidth2(70000, money(1000 * 10000)), digits_.GetOptimalWidth2(4464, money(1000 * 10000)));
  digits_.CalculateFontSizeToFit();
  const LONGLONG fitting = digits_.GetFont().GetSize().int64;
  EXPECT_EQ(fitting, 450000);  // 60 pixels: with its margins of 15 that is 90
  digits_.SetNbDigits(12);
  digits_.CalculateFontSizeToFit();
  EXPECT_LT(digits_.GetFont().GetSize().int64, fitting);
}

TEST_F(DrawnDigitsOnScreen, KeepTheHostsSizeOrTheirOwn) {
  CComQIPtr<IOleObject> object(digits_.GetControlUnknown());
  const SIZEL own = extent();
  digits_.SetDimAuto(0);
  SIZEL wanted = {5000, 2500};
  EXPECT_EQ(object->SetExtent(DVASPECT_CONTENT, &wanted), S_OK);
  EXPECT_EQ(extent().cx, 5000);
  EXPECT_EQ(extent().cy, 2500);
  digits_.CalculateOptimizeSize();
  EXPECT_EQ(extent().cx, own.cx);
  EXPECT_EQ(object->SetExtent(DVASPECT_CONTENT, &wanted), S_OK);
  digits_.SetDimAuto(1);
  EXPECT_EQ(extent().cy, own.cy);
  EXPECT_EQ(object->SetExtent(DVASPECT_ICON, &wanted), DV_E_DVASPECT);
  EXPECT_EQ(object->GetExtent(DVASPECT_CONTENT, nullptr), E_POINTER);
}

// The control's state, as a file.
void save(kexDigitOCX& control, CMemFile& file) {
  CComQIPtr<IPersistStreamInit> state(control.GetControlUnknown());
  CComPtr<IStream> stream;
  ASSERT_EQ(CreateStreamOnHGlobal(nullptr, TRUE, &stream), S_OK);
  EXPECT_EQ(state->IsDirty(), S_OK);
  ASSERT_EQ(state->Save(stream, TRUE), S_OK);
  EXPECT_EQ(state->IsDirty(), S_FALSE);
  STATSTG about = {};
  ASSERT_EQ(stream->Stat(&about, STATFLAG_NONAME), S_OK);
  ASSERT_EQ(stream->Seek({}, STREAM_SEEK_SET, nullptr), S_OK);
  std::vector<BYTE> bytes(about.cbSize.LowPart);
  ASSERT_EQ(stream->Read(bytes.data(), about.cbSize.LowPart, nullptr), S_OK);
  file.Write(bytes.data(), static_cast<UINT>(bytes.size()));
  file.SeekToBegin();
}

TEST_F(DrawnDigitsOnScreen, ComeBackFromTheirState) {
  digits_.SetNbLines(2);
  digits_.SetTitle(1, "Depth");
  digits_.SetText("Heading");
  digits_.SetValue(1, -7.25);
  digits_.SetPrecision(1);
  digits_.SetInternalBorder(1);
  digits_.SetBounds(-5, 5);
  set_font_size(digits_, 12);
  digits_.GetFont().SetItalic(1);
  CMemFile file;
  save(digits_, file);
  const Picture before = shown(digits_);
  digits_.DestroyWindow();
  kexDigitOCX other;
  ASSERT_TRUE(create(other, place_, &file));
  EXPECT_EQ(other.GetTitle(1), "Depth");
  EXPECT_EQ(other.GetText(), "Heading");
  EXPECT_EQ(other.GetValue(1), -7.25);
  EXPECT_EQ(other.GetFont().GetItalic(), 1);
  EXPECT_TRUE(shown(other) == before);
  EXPECT_GT(count(other, underflow), 0);
}

TEST_F(DrawnDigitsOnScreen, AreNotMadeOfABrokenState) {
  digits_.SetTitle(0, "Depth");
  CMemFile file;
  save(digits_, file);
  const UINT whole = static_cast<UINT>(file.GetLength());
  std::vector<BYTE> bytes(whole);
  file.Read(bytes.data(), whole);
  const auto is_made_of = [&](const std::vector<BYTE>& state) {
    CMemFile broken;
    broken.Write(state.data(), static_cast<UINT>(state.size()));
    broken.SeekToBegin();
    kexDigitOCX other;
    return create(other, place_, &broken) != FALSE;
  };
  EXPECT_TRUE(is_made_of(bytes));
  for (UINT length = 0; length < whole; ++length)
    EXPECT_FALSE(is_made_of({bytes.begin(), bytes.begin() + length})) << length;
  // Any byte may be anything: what is made of it can be shown.
  for (UINT i = 0; i < whole; ++i)
    for (const int flipped : {0xFF, 0x80}) {
      std::vector<BYTE> other = bytes;
      other[i] = static_cast<BYTE>(other[i] ^ flipped);
      is_made_of(other);
    }
  // A value without a title, after the number of lines and the one with a title.
  const size_t count = whole - (sizeof(double) + 4 + 5 * sizeof(wchar_t)) - 4;
  for (const BYTE lines : std::initializer_list<BYTE>{64, 65}) {
    std::vector<BYTE> many = bytes;
    many[count] = lines;
    many.resize(whole + (lines - 1u) * (sizeof(double) + 4));
    EXPECT_EQ(is_made_of(many), lines == 64);
  }
  bytes[0] ^= 1;
  EXPECT_FALSE(is_made_of(bytes));
}

TEST_F(DrawnDigitsOnScreen, DrawIntoAnyDeviceContext) {
  digits_.SetValue(0, 8.88);
  CComQIPtr<IViewObject2> view(digits_.GetControlUnknown());
  const Picture picture(148, 48, RGB(1, 2, 3));
  const RECTL bounds = {0, 0, 148, 48};
  EXPECT_EQ(view->Draw(DVASPECT_CONTENT, -1, nullptr, nullptr, nullptr, picture.dc(), &bounds, nullptr, nullptr, 0),
            S_OK);
  EXPECT_EQ(picture.at(4, 4), back);
  EXPECT_EQ(picture.at(110, 9), fore);
  EXPECT_EQ(view->Draw(DVASPECT_CONTENT, -1, nullptr, nullptr, nullptr, picture.dc(), nullptr, nullptr, nullptr, 0),
            E_POINTER);
  EXPECT_EQ(view->Draw(DVASPECT_ICON, -1, nullptr, nullptr, nullptr, picture.dc(), &bounds, nullptr, nullptr, 0),
            DV_E_DVASPECT);
}

void CALLBACK close_box(HWND, UINT, UINT_PTR timer, DWORD) {
  const HWND box = FindWindowA("#32770", "Digit control");
  if (!box) return;
  KillTimer(nullptr, timer);
  PostMessageA(box, WM_COMMAND, IDOK, 0);
}

TEST_F(DrawnDigitsOnScreen, TellAboutThemselves) {
  SetTimer(nullptr, 0, 20, close_box);
  digits_.AboutBox();
  EXPECT_EQ(FindWindowA("#32770", "Digit control"), nullptr);
}

TEST_F(DrawnDigitsOnScreen, LookLikeDigits) {
  digits_.SetBackColor(RGB(252, 252, 250));
  digits_.SetForeColor(RGB(24, 40, 72));
  digits_.SetNbLines(3);
  digits_.SetText("Position (mm)");
  const char* const titles[] = {"X", "Y", "Depth"};
  for (short line = 0; line < 3; ++line) digits_.SetTitle(line, titles[line]);
  digits_.SetBounds(-100, 100);
  digits_.SetPoint(12.5, -98.76, 104.3);
  digits_.SetInternalBorder(1);
  MoveWindow(digits_.m_hWnd, 10, 50, 310, 180, TRUE);
  digits_.CalculateFontSizeToFit();
  EXPECT_TRUE(shown(digits_).save("digit_control"));
  digits_.SetType(1);
  digits_.SetDisplayMask(0);
  digits_.SetAppearance(1);
  EXPECT_TRUE(shown(digits_).save("digit_control_glyphs"));
  digits_.SetType(0);
  digits_.SetDisplayMask(1);
  digits_.GetFont().SetItalic(1);
  digits_.SetBackColor(RGB(16, 20, 16));
  digits_.SetForeColor(RGB(90, 255, 130));
  digits_.SetMaskColor(RGB(32, 44, 34));
  digits_.SetOverflowColor(RGB(255, 96, 80));
  digits_.SetInternalBorder(0);
  EXPECT_TRUE(shown(digits_).save("digit_control_dark"));
}

TEST_F(DrawnDigitsOnScreen, LeaveNothingBehind) {
  expect_flat(30, [&] {
    kexDigitOCX other;
    ASSERT_TRUE(create(other, place_));
    other.initialise();
    other.SetTitle(0, "Title");
    other.SetValue(0, 1.5);
    other.SetFlashing(1);
    shown(other);
    try {
      other.SetValue(9, 1);
    } catch (COleDispatchException* exception) {
      exception->Delete();
    }
    CMemFile file;
    save(other, file);
    other.DestroyWindow();
    ASSERT_TRUE(create(other, place_, &file));
  });
}

TEST(DrawnDigits, GoWithTheirComponent) {
  ASSERT_EQ(OleInitialize(nullptr), S_OK);
  for (int round = 0; round < 3; ++round) {
    CWnd frame;
    frame.Attach(CreateWindowA("STATIC", "", WS_POPUP, 0, 0, 200, 100, nullptr, nullptr, nullptr, nullptr));
    kexOleFont font;
    {
      const Manifest known;
      kexDigitOCX digits;
      ASSERT_TRUE(digits.Create(nullptr, style, place, &frame, 7, nullptr, 0, nullptr));
      EXPECT_NE(GetModuleHandleA("digit_control.dll"), nullptr);
      font = digits.GetFont();
    }
    frame.DestroyWindow();
    CoFreeUnusedLibrariesEx(0, 0);
    EXPECT_EQ(GetModuleHandleA("digit_control.dll"), nullptr);
    font.SetBold(1);  // the font is the system's, and tells nobody any more
  }
  OleUninitialize();
}

}  // namespace
