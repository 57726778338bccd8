// Owners of COM values.
#include <gtest/gtest.h>

#include <afxdisp.h>
#include <atlcomcli.h>
#include <shlobj.h>

#include <support/failing_record.h>

#include <string>
#include <type_traits>

// An object that counts its references. Not in an anonymous namespace: otherwise the compiler devirtualises its calls.
struct CountedObject : IDispatch {
  ULONG references = 0;

  HRESULT STDMETHODCALLTYPE QueryInterface(REFIID id, void** target) override {
    if (id != IID_IUnknown && id != IID_IDispatch) {
      *target = nullptr;
      return E_NOINTERFACE;
    }
    *target = static_cast<IDispatch*>(this);
    AddRef();
    return S_OK;
  }
  ULONG STDMETHODCALLTYPE AddRef() override { return ++references; }
  ULONG STDMETHODCALLTYPE Release() override { return --references; }
  HRESULT STDMETHODCALLTYPE GetTypeInfoCount(UINT*) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE GetTypeInfo(UINT, LCID, ITypeInfo**) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE GetIDsOfNames(REFIID, LPOLESTR*, UINT, LCID, DISPID*) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE Invoke(DISPID, REFIID, LCID, WORD, DISPPARAMS*, VARIANT*, EXCEPINFO*, UINT*) override {
    return E_NOTIMPL;
  }
};

namespace {

TEST(ComPtr, HoldsOneReferenceForAsLongAsItLives) {
  CountedObject object;
  {
    CComPtr<IDispatch> first(&object);
    EXPECT_EQ(object.references, 1U);
    CComPtr<IDispatch> second(first);
    EXPECT_EQ(object.references, 2U);
    CComPtr<IDispatch> third;
    third = second;
    EXPECT_EQ(object.references, 3U);
    third = nullptr;
    EXPECT_EQ(object.references, 2U);
    CComPtr<IDispatch> fourth(std::move(second));
    EXPECT_EQ(object.references, 2U);
    EXPECT_FALSE(second);  // NOLINT(bugprone-use-after-move): what is left behind is the point
    first.Release();
    EXPECT_EQ(object.references, 1U);
    first.Release();
    EXPECT_EQ(object.references, 1U);
  }
  EXPECT_EQ(object.references, 0U);
}

TEST(ComPtr, AssignedToItselfKeepsItsObject) {
  CountedObject object;
  CComPtr<IDispatch> pointer(&object);
  CComPtr<IDispatch>& same = pointer;
  pointer = same;
  pointer = pointer.p;
  EXPECT_EQ(object.references, 1U);
}

TEST(ComPtr, AttachesAndDetachesWithoutCounting) {
  CountedObject object;
  object.references = 1;
  CComPtr<IDispatch> pointer;
  pointer.Attach(&object);
  EXPECT_EQ(object.references, 1U);
  EXPECT_EQ(pointer.Detach(), &object);
  EXPECT_EQ(object.references, 1U);
  EXPECT_FALSE(pointer);
}

TEST(ComPtr, CopiesToAnOutPointerWithAReference) {
  CountedObject object;
  CComPtr<IDispatch> pointer(&object);
  IDispatch* target = nullptr;
  EXPECT_EQ(pointer.CopyTo(&target), S_OK);
  EXPECT_EQ(target, &object);
  EXPECT_EQ(object.references, 2U);
  target->Release();
}

// AddRef and Release are the pointer's own affair; a number must say by its type which VARTYPE it is.
template <typename T>
concept Counted = requires(T pointer) {
  pointer->AddRef();
};
static_assert(!Counted<CComPtr<IDispatch>> && Counted<IDispatch*>);
static_assert(std::is_constructible_v<CComVariant, int> && !std::is_constructible_v<CComVariant, float> &&
              !std::is_constructible_v<CComVariant, unsigned> && !std::is_constructible_v<CComVariant, char>);

TEST(ComPtr, CreatesObjectsAndAsksThem) {
  CountedObject object;
  CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED);
  {
    CComPtr<IShellLinkA> link;
    ASSERT_EQ(link.CoCreateInstance(CLSID_ShellLink, nullptr, CLSCTX_INPROC_SERVER), S_OK);
    CComPtr<IPersistFile> file;
    EXPECT_EQ(link.QueryInterface(&file), S_OK);
    CComPtr<IDispatch> none;
    IUnknown* uninitialised = &object;  // by design a pointer of the caller need not be null
    ASSERT_EQ(link.QueryInterface(&uninitialised), S_OK);
    uninitialised->Release();
    EXPECT_EQ(link.QueryInterface(&none), E_NOINTERFACE);
    EXPECT_FALSE(none);
  }
  CoUninitialize();
}

TEST(ComQIPtr, AsksForItsInterfaceAndIsEmptyWithoutIt) {
  CountedObject object;
  {
    CComQIPtr<IDispatch> dispatch(static_cast<IUnknown*>(&object));
    EXPECT_EQ(dispatch, &object);
    EXPECT_EQ(object.references, 1U);
    CComQIPtr<IPersistFile> file(static_cast<IUnknown*>(&object));
    EXPECT_FALSE(file);
    dispatch = static_cast<IUnknown*>(nullptr);
    EXPECT_FALSE(dispatch);
    dispatch = static_cast<IUnknown*>(&object);
    EXPECT_EQ(object.references, 1U);
  }
  EXPECT_EQ(object.references, 0U);
}

TEST(ComQIPtr, OfItsOwnInterfaceCountsOnce) {
  CountedObject object;
  {
    CComQIPtr<IDispatch> dispatch(static_cast<IDispatch*>(&object));
    EXPECT_EQ(object.references, 1U);
    dispatch = static_cast<IDispatch*>(&object);
    EXPECT_EQ(object.references, 1U);
  }
  EXPECT_EQ(object.references, 0U);
}

TEST(ComBSTR, CopiesItsTextWhole) {
  CComBSTR text(3, L"a\0b");
  EXPECT_EQ(text.Length(), 3U);
  CComBSTR copy(text);
  EXPECT_NE(copy.m_str, text.m_str);
  EXPECT_EQ(std::wstring(copy, copy.Length()), std::wstring(L"a\0b", 3));
  copy = CComBSTR(L"other");
  EXPECT_STREQ(copy, L"other");
  copy = copy.m_str;
  EXPECT_STREQ(copy, L"other");
}

TEST(ComBSTR, WidensNarrowText) {
  EXPECT_STREQ(CComBSTR("narrow"), L"narrow");
  EXPECT_FALSE(CComBSTR(static_cast<LPCSTR>(nullptr)).m_str);
}

TEST(ComBSTR, TellsNoTextFromAnEmptyOne) {
  CComBSTR none, empty(L"");
  EXPECT_TRUE(!none);
  EXPECT_FALSE(!empty);
  EXPECT_EQ(none.Length(), 0U);
  EXPECT_EQ(none.Copy(), nullptr);
  EXPECT_FALSE(CComBSTR(none).m_str);
  EXPECT_FALSE(CComBSTR(0, L"text").m_str);
  EXPECT_TRUE(none == empty);  // both are empty text
}

TEST(ComBSTR, ComparesWithLetterCase) {
  EXPECT_TRUE(CComBSTR(L"text") == CComBSTR(L"text"));
  EXPECT_FALSE(CComBSTR(L"text") == CComBSTR(L"Text"));
}

TEST(ComBSTR, TakesOverAndHandsOut) {
  BSTR raw = SysAllocString(L"raw");
  CComBSTR text;
  text.Attach(raw);
  EXPECT_EQ(text.m_str, raw);
  EXPECT_EQ(text.Detach(), raw);
  EXPECT_FALSE(text.m_str);
  *&text = raw;
  EXPECT_STREQ(text, L"raw");
}

TEST(ComVariant, TakesEachTypeWithItsTag) {
  EXPECT_EQ(CComVariant().vt, VT_EMPTY);
  EXPECT_EQ(CComVariant(short{-3}).iVal, -3);
  EXPECT_EQ(CComVariant(short{-3}).vt, VT_I2);
  EXPECT_EQ(CComVariant(70000).vt, VT_I4);
  EXPECT_EQ(CComVariant(70000L).lVal, 70000);
  EXPECT_EQ(CComVariant(1.5).vt, VT_R8);
  EXPECT_EQ(CComVariant(true).vt, VT_BOOL);
  EXPECT_EQ(CComVariant(true).boolVal, VARIANT_TRUE);
  EXPECT_EQ(CComVariant(false).boolVal, VARIANT_FALSE);
  EXPECT_STREQ(CComVariant(L"wide").bstrVal, L"wide");
  EXPECT_STREQ(CComVariant("narrow").bstrVal, L"narrow");
}

TEST(ComVariant, CountsTheObjectsItHolds) {
  CountedObject object;
  {
    CComVariant first(static_cast<IDispatch*>(&object));
    EXPECT_EQ(object.references, 1U);
    CComVariant second(first), third;
    third = second;
    EXPECT_EQ(object.references, 3U);
    third.Clear();
    EXPECT_EQ(third.vt, VT_EMPTY);
    EXPECT_EQ(object.references, 2U);
    CComVariant unknown(static_cast<IUnknown*>(&object));
    EXPECT_EQ(unknown.vt, VT_UNKNOWN);
  }
  EXPECT_EQ(object.references, 0U);
}

TEST(ComVariant, AssignedToItselfKeepsItsValue) {
  CComVariant value(L"text");
  BSTR text = value.bstrVal;
  CComVariant& same = value;
  value = same;
  EXPECT_EQ(value.bstrVal, text);
}

TEST(ComVariant, ChangesTypesAsTheSystemDoes) {
  CComVariant value(L" 12 ");
  EXPECT_EQ(value.ChangeType(VT_I4), S_OK);
  EXPECT_EQ(value.lVal, 12);
  CComVariant target, source(L"abc");
  EXPECT_EQ(target.ChangeType(VT_I4, &source), DISP_E_TYPEMISMATCH);
}

TEST(ComVariant, ACopyThatFailsIsThrownAndLeavesTheErrorBehind) {
  VARIANT bad = {};
  bad.vt = static_cast<VARTYPE>(0x7F);  // not a valid type
  CComVariant value(5);
  HRESULT thrown = S_OK;
  try {
    value = bad;
  } catch (COleException* exception) {
    thrown = exception->m_sc;
    exception->Delete();
  }
  EXPECT_EQ(thrown, DISP_E_BADVARTYPE);
  EXPECT_EQ(value.vt, VT_ERROR);
  EXPECT_EQ(value.scode, thrown);
}

TEST(ComVariant, ACopyThatFailsLetsGoOfTheOldValue) {
  CountedObject object;
  CComVariant value(static_cast<IDispatch*>(&object));
  VARIANT bad = {};
  bad.vt = static_cast<VARTYPE>(0x7F);
  try {
    value = bad;
  } catch (COleException* exception) {
    exception->Delete();
  }
  EXPECT_EQ(object.references, 0U);
}

TEST(ComVariant, LeavesARecordAloneThatCannotBeCopied) {
  FailingRecord record;
  {
    CComVariant source, target(5);
    static_cast<VARIANT&>(source) = record.value();
    EXPECT_EQ(target.Copy(&source), FailingRecord::failure);
    EXPECT_EQ(target.vt, VT_EMPTY);
    for (const bool assigned : {true, false}) {
      HRESULT thrown = S_OK;
      try {
        if (assigned)
          target = source;
        else
          CComVariant{source};
      } catch (COleException* exception) {
        thrown = exception->m_sc;
        exception->Delete();
      }
      EXPECT_EQ(thrown, FailingRecord::failure);
    }
    EXPECT_EQ(target.vt, VT_ERROR);
    EXPECT_EQ(target.scode, FailingRecord::failure);
    EXPECT_EQ(source.Copy(&source), S_OK);
    EXPECT_EQ(record.references(), 1U);
    EXPECT_EQ(record.clears(), 0);
  }
  EXPECT_EQ(record.references(), 0U);
}

}  // namespace
