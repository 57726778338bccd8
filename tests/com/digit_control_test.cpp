// The digit control's members: each calls the control with its identifier and its automation type.
#include <gtest/gtest.h>

#include <kexlib/com/digit_control.h>

#include <afx.h>

#include <com/digit_control_fixture.h>
#include <support/test_control.h>

#include <functional>
#include <memory>
#include <string>
#include <type_traits>
#include <vector>

namespace {

using namespace digit_control;

// The result of a member, as a variant of its C++ type.
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

// The control's answer, the member's result, and the value that is sent.
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

  // The call that reached the control since the previous query: exactly one.
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

// By design the height is passed as a 16-bit integer: the control declares the parameter so.
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

// Not inlined: otherwise the compiler mistakes a first release for the last one.
[[gnu::noinline]] void release(IUnknown* object) { object->Release(); }

TEST_F(DigitControl, GivesItsFontWithOneReferenceThatGoesWithTheResult) {
  auto* font = new RecordingDispatch;
  class_.made->answer = static_cast<IDispatch*>(font);
  EXPECT_EQ(font->references(), 2u);  // of the test and of the answer
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

TEST_F(DigitControl, IsMadeWhereTheProgramHasNotEnabledControls) {
  {
    AFX_MODULE_STATE fresh;
    AFX_MANAGE_STATE(&fresh);
    CWnd any;
    ASSERT_FALSE(any.CreateControl(digit_class, nullptr, style, place, &frame_, 8)) << "controls are not enabled";
    kexDigitOCX digits;
    EXPECT_TRUE(digits.Create(nullptr, style, place, &frame_, 8, nullptr, 0, nullptr));
  }
  {
    AFX_MODULE_STATE fresh;
    AFX_MANAGE_STATE(&fresh);
    kexDigitOCX digits;
    EXPECT_TRUE(static_cast<CWnd&>(digits).Create("", "", style, place, &frame_, 9, nullptr));
  }
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

}  // namespace
