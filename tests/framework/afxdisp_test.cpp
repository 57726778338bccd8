// Calls through IDispatch: arguments, results and exceptions.
#include <gtest/gtest.h>

#include <afxdisp.h>

#include <support/recording_dispatch.h>

#include <string>

namespace {

// A driver on a recording object. The test holds a reference to the object too.
class Dispatch : public testing::Test {
 protected:
  ~Dispatch() override {
    driver_.ReleaseDispatch();
    EXPECT_EQ(object_->references(), 1u);
    object_->Release();
    EXPECT_EQ(RecordingDispatch::alive, 0);
  }

  Dispatch() {
    object_->AddRef();
    driver_.AttachDispatch(object_);
  }

  const DispatchCall& only_call() const {
    EXPECT_EQ(object_->calls.size(), 1u);
    return object_->calls.at(0);
  }

  RecordingDispatch* object_ = new RecordingDispatch;
  COleDispatchDriver driver_;
};

template <typename Call>
SCODE thrown_by(Call call) {
  try {
    call();
  } catch (COleException* exception) {
    SCODE code = exception->m_sc;
    exception->Delete();
    return code;
  }
  return S_OK;
}

TEST_F(Dispatch, ArgumentsArriveInOrderWithTheTypesOfTheirCodes) {
  static const BYTE parameters[] = VTS_I2 VTS_I4 VTS_R8 VTS_CY VTS_BSTR VTS_BOOL VTS_BOOL "\x09";  // VT_DISPATCH
  CY money{};
  money.int64 = 123456;
  driver_.InvokeHelper(16, DISPATCH_METHOD, VT_EMPTY, nullptr, parameters, -2, 70000L, 0.5, &money, "t\xe9xt", 7, FALSE,
                       static_cast<IDispatch*>(object_));

  const DispatchCall& call = only_call();
  EXPECT_EQ(call.id, 16);
  EXPECT_EQ(call.flags, DISPATCH_METHOD);
  EXPECT_TRUE(call.named.empty());
  EXPECT_FALSE(call.wants_result);
  ASSERT_EQ(call.arguments.size(), 8u);
  EXPECT_EQ(call.arguments[0].vt, VT_I2);
  EXPECT_EQ(call.arguments[0].iVal, -2);
  EXPECT_EQ(call.arguments[1].vt, VT_I4);
  EXPECT_EQ(call.arguments[1].lVal, 70000);
  EXPECT_EQ(call.arguments[2].vt, VT_R8);
  EXPECT_EQ(call.arguments[2].dblVal, 0.5);
  EXPECT_EQ(call.arguments[3].vt, VT_CY);
  EXPECT_EQ(call.arguments[3].cyVal.int64, 123456);
  EXPECT_EQ(call.arguments[4].vt, VT_BSTR);
  EXPECT_STREQ(call.arguments[4].bstrVal, CA2W("t\xe9xt"));
  EXPECT_EQ(call.arguments[5].vt, VT_BOOL);
  EXPECT_EQ(call.arguments[5].boolVal, VARIANT_TRUE);
  EXPECT_EQ(call.arguments[6].boolVal, VARIANT_FALSE);
  EXPECT_EQ(call.arguments[7].vt, VT_DISPATCH);
  EXPECT_EQ(call.arguments[7].pdispVal, object_);
  object_->calls.clear();  // the record has a reference
}

TEST_F(Dispatch, ALongSentAsATwoByteIntegerKeepsItsLowSixteenBits) {
  static const BYTE parameters[] = VTS_I2;
  driver_.InvokeHelper(25, DISPATCH_METHOD, VT_EMPTY, nullptr, parameters, 70000L);
  EXPECT_EQ(only_call().arguments.at(0).vt, VT_I2);
  EXPECT_EQ(only_call().arguments.at(0).iVal, 4464);
}

TEST_F(Dispatch, ANullTextIsSentAsAnEmptyOne) {
  static const BYTE parameters[] = VTS_BSTR;
  driver_.InvokeHelper(1, DISPATCH_METHOD, VT_EMPTY, nullptr, parameters, static_cast<const char*>(nullptr));
  ASSERT_NE(only_call().arguments.at(0).bstrVal, nullptr);
  EXPECT_STREQ(only_call().arguments.at(0).bstrVal, L"");
}

TEST_F(Dispatch, TheCodeOfATextIsNotItsTypeInAVariant) {
  static const BYTE parameters[] = {VT_BSTR, 0};
  EXPECT_STREQ(VTS_BSTR, "\x0E");
  EXPECT_EQ(thrown_by([&] { driver_.InvokeHelper(1, DISPATCH_METHOD, VT_EMPTY, nullptr, parameters, "text"); }),
            DISP_E_BADVARTYPE);
  EXPECT_TRUE(object_->calls.empty());
}

TEST_F(Dispatch, APutNamesItsLastArgumentAsTheNewValue) {
  static const BYTE parameters[] = VTS_I2 VTS_R8;
  driver_.InvokeHelper(21, DISPATCH_PROPERTYPUT, VT_EMPTY, nullptr, parameters, 3, 2.5);
  EXPECT_EQ(only_call().flags, DISPATCH_PROPERTYPUT);
  EXPECT_EQ(only_call().named, std::vector<DISPID>{DISPID_PROPERTYPUT});
  ASSERT_EQ(only_call().arguments.size(), 2u);
  EXPECT_EQ(only_call().arguments[0].iVal, 3);
  EXPECT_EQ(only_call().arguments[1].dblVal, 2.5);
}

TEST_F(Dispatch, SettingAPropertySendsItsOneValueByName) {
  driver_.SetProperty(0, VT_BSTR, "Tahoma");
  EXPECT_EQ(only_call().id, 0);
  EXPECT_EQ(only_call().flags, DISPATCH_PROPERTYPUT);
  EXPECT_EQ(only_call().named, std::vector<DISPID>{DISPID_PROPERTYPUT});
  ASSERT_EQ(only_call().arguments.size(), 1u);
  EXPECT_EQ(only_call().arguments[0].vt, VT_BSTR);
  EXPECT_STREQ(only_call().arguments[0].bstrVal, L"Tahoma");
  EXPECT_FALSE(only_call().wants_result);
}

TEST_F(Dispatch, EachPropertyTypeIsSetAsItself) {
  CY size{};
  size.int64 = 82500;
  short number = -7;
  driver_.SetProperty(1, VT_I2, number);
  driver_.SetProperty(2, VT_I4, 0x00C0FFEEUL);
  driver_.SetProperty(3, VT_R8, -0.25);
  driver_.SetProperty(4, VT_CY, &size);
  driver_.SetProperty(5, VT_BOOL, 1);
  ASSERT_EQ(object_->calls.size(), 5u);
  EXPECT_EQ(object_->calls[0].arguments.at(0).iVal, -7);
  EXPECT_EQ(object_->calls[1].arguments.at(0).vt, VT_I4);
  EXPECT_EQ(object_->calls[1].arguments.at(0).lVal, 0x00C0FFEE);
  EXPECT_EQ(object_->calls[2].arguments.at(0).dblVal, -0.25);
  EXPECT_EQ(object_->calls[3].arguments.at(0).cyVal.int64, 82500);
  EXPECT_EQ(object_->calls[4].arguments.at(0).boolVal, VARIANT_TRUE);
}

TEST_F(Dispatch, AnObjectIsSetByReference) {
  RecordingDispatch* font = new RecordingDispatch;
  driver_.SetProperty(DISPID_FONT, VT_DISPATCH, static_cast<IDispatch*>(font));
  EXPECT_EQ(only_call().flags, DISPATCH_PROPERTYPUTREF);
  EXPECT_EQ(only_call().named, std::vector<DISPID>{DISPID_PROPERTYPUT});
  EXPECT_EQ(only_call().arguments.at(0).pdispVal, font);
  object_->calls.clear();
  EXPECT_EQ(font->references(), 1u);
  font->Release();
}

TEST_F(Dispatch, APropertyIsReadIntoWhatItsTypeSays) {
  short number = 0;
  object_->answer = CComVariant(short{-3});
  driver_.GetProperty(14, VT_I2, &number);
  EXPECT_EQ(number, -3);
  EXPECT_EQ(only_call().id, 14);
  EXPECT_EQ(only_call().flags, DISPATCH_PROPERTYGET);
  EXPECT_TRUE(only_call().arguments.empty());
  EXPECT_TRUE(only_call().named.empty());
  EXPECT_TRUE(only_call().wants_result);

  unsigned long colour = 0;
  object_->answer = CComVariant(long{0x00C0FFEE});
  driver_.GetProperty(3, VT_I4, &colour);
  EXPECT_EQ(colour, 0x00C0FFEEu);

  double real = 0;
  object_->answer = CComVariant(0.1);
  driver_.GetProperty(6, VT_R8, &real);
  EXPECT_EQ(real, 0.1);

  CString text("before");
  object_->answer = CComVariant(L"after");
  driver_.GetProperty(DISPID_TEXT, VT_BSTR, &text);
  EXPECT_STREQ(text, "after");
}

TEST_F(Dispatch, ATruthValueIsReadAsOneOrZero) {
  BOOL value = 5;
  object_->answer = CComVariant(true);  // VARIANT_TRUE is -1
  driver_.GetProperty(9, VT_BOOL, &value);
  EXPECT_EQ(value, 1);
  object_->answer = CComVariant(false);
  driver_.GetProperty(9, VT_BOOL, &value);
  EXPECT_EQ(value, 0);
}

TEST_F(Dispatch, ACurrencyIsReadWithItsFourDecimals) {
  CY value{};
  CComVariant answer;
  answer.vt = VT_CY;
  answer.cyVal.int64 = -82501;
  object_->answer = answer;
  driver_.GetProperty(2, VT_CY, &value);
  EXPECT_EQ(value.int64, -82501);
}

TEST_F(Dispatch, AnObjectIsReadWithAReferenceForTheCaller) {
  RecordingDispatch* font = new RecordingDispatch;
  object_->answer = CComVariant(static_cast<IDispatch*>(font));
  EXPECT_EQ(font->references(), 2u);
  IDispatch* read = nullptr;
  driver_.GetProperty(DISPID_FONT, VT_DISPATCH, &read);
  EXPECT_EQ(read, font);
  EXPECT_EQ(font->references(), 3u);
  read->Release();
  object_->answer.Clear();
  EXPECT_EQ(font->references(), 1u);
  font->Release();
}

TEST_F(Dispatch, AResultOfAnotherTypeIsConverted) {
  double real = 0;
  object_->answer = CComVariant(short{12});
  driver_.GetProperty(6, VT_R8, &real);
  EXPECT_EQ(real, 12.0);

  CString text;
  object_->answer = CComVariant(long{-5});
  driver_.GetProperty(10, VT_BSTR, &text);
  EXPECT_STREQ(text, "-5");

  short number = 1;
  object_->answer.Clear();  // the object returns no result
  driver_.GetProperty(6, VT_I2, &number);
  EXPECT_EQ(number, 0);
}

TEST_F(Dispatch, AResultThatCannotBeConvertedIsAnOleException) {
  short number = 77;
  object_->answer = CComVariant(L"no number");
  EXPECT_EQ(thrown_by([&] { driver_.GetProperty(6, VT_I2, &number); }), DISP_E_TYPEMISMATCH);
  object_->answer = CComVariant(long{70000});
  EXPECT_EQ(thrown_by([&] { driver_.GetProperty(6, VT_I2, &number); }), DISP_E_OVERFLOW);
  EXPECT_EQ(number, 77);
}

TEST_F(Dispatch, AFailingCallIsAnOleExceptionWithItsCode) {
  for (HRESULT code : {DISP_E_MEMBERNOTFOUND, DISP_E_BADPARAMCOUNT, E_FAIL, E_OUTOFMEMORY}) {
    object_->returned = code;
    short number = 77;
    EXPECT_EQ(thrown_by([&] { driver_.GetProperty(6, VT_I2, &number); }), code);
    EXPECT_EQ(number, 77);
  }
}

TEST_F(Dispatch, AnOleExceptionOfACallSaysTheSystemsText) {
  object_->returned = E_ACCESSDENIED;
  try {
    driver_.SetProperty(6, VT_I2, 1);
    FAIL() << "nothing was thrown";
  } catch (CException* exception) {
    char message[100];
    EXPECT_TRUE(exception->GetErrorMessage(message, sizeof message));
    EXPECT_NE(std::string(message).find("ccess"), std::string::npos) << message;
    exception->Delete();
  }
}

TEST_F(Dispatch, TypesThatAreNotKnownAreRefusedBeforeTheCall) {
  static const BYTE unknown[] = "\x1f";
  IUnknown* result = nullptr;
  EXPECT_EQ(thrown_by([&] { driver_.GetProperty(1, VT_UNKNOWN, &result); }), DISP_E_BADVARTYPE);
  EXPECT_EQ(thrown_by([&] { driver_.SetProperty(1, VT_BYREF | VT_I2, &result); }), DISP_E_BADVARTYPE);
  EXPECT_EQ(thrown_by([&] { driver_.SetProperty(1, VT_EMPTY); }), DISP_E_BADVARTYPE);
  EXPECT_EQ(thrown_by([&] { driver_.InvokeHelper(1, DISPATCH_METHOD, VT_EMPTY, nullptr, unknown, 1); }),
            DISP_E_BADVARTYPE);
  EXPECT_TRUE(object_->calls.empty());
}

TEST_F(Dispatch, WhatTheObjectRaisesIsADispatchExceptionWithAllThatItSays) {
  object_->returned = DISP_E_EXCEPTION;
  object_->raise = [](EXCEPINFO* information) {
    information->wCode = 1234;
    information->bstrSource = SysAllocString(L"Test.Object");
    information->bstrDescription = SysAllocString(L"There is no such digit.");
    information->bstrHelpFile = SysAllocString(L"C:\\digits.chm");
    information->dwHelpContext = 0x20007;
  };
  try {
    driver_.SetProperty(6, VT_R8, 1.0);
    FAIL() << "nothing was thrown";
  } catch (COleDispatchException* exception) {
    EXPECT_EQ(exception->m_wCode, 1234);
    EXPECT_EQ(exception->m_scError, S_OK);
    EXPECT_STREQ(exception->m_strSource, "Test.Object");
    EXPECT_STREQ(exception->m_strDescription, "There is no such digit.");
    EXPECT_STREQ(exception->m_strHelpFile, "C:\\digits.chm");
    EXPECT_EQ(exception->m_dwHelpContext, 0x20007u);

    char message[12];
    UINT context = 0;
    EXPECT_TRUE(exception->GetErrorMessage(message, sizeof message, &context));
    EXPECT_STREQ(message, "There is no");
    EXPECT_EQ(context, 0x20007u);
    exception->Delete();
  }
}

TEST_F(Dispatch, WhatTheObjectFillsInLaterIsAskedFor) {
  object_->returned = DISP_E_EXCEPTION;
  object_->raise = [](EXCEPINFO* information) {
    information->scode = E_ACCESSDENIED;
    information->pfnDeferredFillIn = [](EXCEPINFO* later) -> HRESULT {
      later->bstrDescription = SysAllocString(L"filled in");
      return S_OK;
    };
  };
  try {
    driver_.SetProperty(6, VT_R8, 1.0);
    FAIL() << "nothing was thrown";
  } catch (COleDispatchException* exception) {
    EXPECT_EQ(exception->m_wCode, 0);
    EXPECT_EQ(exception->m_scError, E_ACCESSDENIED);
    EXPECT_STREQ(exception->m_strDescription, "filled in");
    EXPECT_STREQ(exception->m_strSource, "");
    exception->Delete();
  }
}

TEST_F(Dispatch, AnExceptionThatSaysNothingHasNoText) {
  object_->returned = DISP_E_EXCEPTION;
  try {
    driver_.SetProperty(6, VT_R8, 1.0);
    FAIL() << "nothing was thrown";
  } catch (COleException*) {
    FAIL() << "a dispatch exception is no OLE exception";
  } catch (CException* exception) {
    char message[10] = "before";
    EXPECT_FALSE(exception->GetErrorMessage(message, sizeof message));
    EXPECT_STREQ(message, "");
    exception->Delete();
  }
}

TEST_F(Dispatch, AThousandCallsThatWorkRaiseAndFailLeaveNoReferenceBehind) {
  static const BYTE parameters[] = "\x09" VTS_BSTR;  // VT_DISPATCH first
  object_->answer = CComVariant(static_cast<IDispatch*>(object_));
  for (int round = 0; round < 1000; ++round) {
    IDispatch* result = nullptr;
    auto call = [&] {
      driver_.InvokeHelper(1, DISPATCH_METHOD, VT_DISPATCH, &result, parameters, static_cast<IDispatch*>(object_), "x");
    };
    object_->returned = S_OK;
    call();
    result->Release();
    object_->returned = DISP_E_EXCEPTION;
    EXPECT_THROW(
        try { call(); } catch (COleDispatchException* exception) {
          exception->Delete();
          throw 1;
        },
        int);
    object_->returned = E_FAIL;
    EXPECT_EQ(thrown_by(call), E_FAIL);
    object_->calls.clear();
    ASSERT_EQ(object_->references(), 3u);  // of the test, the driver and the result
  }
  object_->answer.Clear();
}

TEST(DispatchDriver, WithoutAnObjectCallsNothingAndGivesNothing) {
  COleDispatchDriver driver;
  EXPECT_EQ(driver.m_lpDispatch, nullptr);
  EXPECT_TRUE(driver.m_bAutoRelease);
  short number = 5;
  CString text("before");
  IDispatch* object = reinterpret_cast<IDispatch*>(&driver);
  driver.GetProperty(1, VT_I2, &number);
  driver.GetProperty(1, VT_BSTR, &text);
  driver.GetProperty(1, VT_DISPATCH, &object);
  driver.SetProperty(1, VT_BSTR, "x");
  EXPECT_EQ(number, 0);
  EXPECT_STREQ(text, "");
  EXPECT_EQ(object, nullptr);
}

TEST(DispatchDriver, TakesOverTheReferenceThatItIsGiven) {
  auto* object = new RecordingDispatch;
  object->AddRef();
  {
    COleDispatchDriver driver(object);
    EXPECT_EQ(object->references(), 2u);
    EXPECT_EQ(static_cast<LPDISPATCH>(driver), object);
  }
  EXPECT_EQ(object->references(), 1u);
  object->Release();
}

TEST(DispatchDriver, WithoutAutoReleaseLeavesTheReferenceToTheCaller) {
  auto* object = new RecordingDispatch;
  {
    COleDispatchDriver driver(object, FALSE);
    driver.ReleaseDispatch();
    EXPECT_EQ(driver.m_lpDispatch, nullptr);
    driver.AttachDispatch(object, FALSE);
  }
  EXPECT_EQ(object->references(), 1u);
  object->Release();
}

TEST(DispatchDriver, ACopyHasAReferenceOfItsOwn) {
  auto* object = new RecordingDispatch;
  {
    COleDispatchDriver first(object, FALSE);
    {
      COleDispatchDriver second(first);
      EXPECT_EQ(second.m_lpDispatch, object);
      EXPECT_TRUE(second.m_bAutoRelease);
      EXPECT_EQ(object->references(), 2u);
    }
    EXPECT_EQ(object->references(), 1u);
  }
  EXPECT_EQ(object->references(), 1u);
  object->Release();
}

TEST(DispatchDriver, AssignmentReleasesTheOldObjectAndSharesTheNew) {
  auto* old = new RecordingDispatch;
  auto* object = new RecordingDispatch;
  old->AddRef();
  {
    COleDispatchDriver first(object), second(old);
    second = first;
    EXPECT_EQ(old->references(), 1u);
    EXPECT_EQ(object->references(), 2u);
    const COleDispatchDriver& same = second;
    second = same;
    EXPECT_EQ(object->references(), 2u);
    second = COleDispatchDriver();
    EXPECT_EQ(object->references(), 1u);
    EXPECT_EQ(second.m_lpDispatch, nullptr);
  }
  EXPECT_EQ(RecordingDispatch::alive, 1);
  old->Release();
  EXPECT_EQ(RecordingDispatch::alive, 0);
}

TEST(DispatchDriver, AssignedToItselfLeavesTheReferenceToWhoeverHasIt) {
  auto* object = new RecordingDispatch;
  {
    COleDispatchDriver driver(object, FALSE);
    const COleDispatchDriver& same = driver;
    driver = same;
    EXPECT_EQ(object->references(), 1u);
    EXPECT_FALSE(driver.m_bAutoRelease);
  }
  EXPECT_EQ(object->references(), 1u);
  object->Release();
}

TEST(DispatchDriver, AttachingReleasesWhatWasAttached) {
  auto* first = new RecordingDispatch;
  auto* second = new RecordingDispatch;
  COleDispatchDriver driver(first);
  driver.AttachDispatch(second);
  EXPECT_EQ(RecordingDispatch::alive, 1);
  EXPECT_EQ(driver.DetachDispatch(), second);
  EXPECT_EQ(driver.m_lpDispatch, nullptr);
  driver.ReleaseDispatch();
  EXPECT_EQ(second->references(), 1u);
  second->Release();
  EXPECT_EQ(RecordingDispatch::alive, 0);
}

}  // namespace
