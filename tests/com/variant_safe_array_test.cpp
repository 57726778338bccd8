// Lists of VARIANTs: made, looked at, read and written, with references counted to the exact number.
#include <gtest/gtest.h>

#include <kexlib/com/variant_safe_array.h>

#include <afxdisp.h>
#include <atlbase.h>
#include <support/recording_dispatch.h>

#include <climits>
#include <cstring>
#include <memory>
#include <string>
#include <type_traits>
#include <utility>

namespace {

using Array = QuickVariantSafeArray;

// Out of line: the compiler takes a first release for the last one otherwise.
[[gnu::noinline]] void release(IUnknown* object) { object->Release(); }

VARIANT no_such_type() {
  VARIANT value = {};
  value.vt = 0x7F;
  return value;
}

// A safe array of the test's own.
class Owned {
 public:
  Owned(VARTYPE type, LONG lower_bound, ULONG size) {
    SAFEARRAYBOUND bound = {size, lower_bound};
    array_ = SafeArrayCreate(type, 1, &bound);
  }
  Owned(const Owned&) = delete;
  Owned& operator=(const Owned&) = delete;
  ~Owned() { EXPECT_EQ(SafeArrayDestroy(array_), S_OK); }
  operator SAFEARRAY*() const { return array_; }

 private:
  SAFEARRAY* array_;
};

TEST(ComVariant, IsAnEmptyVariantAtFirst) {
  EXPECT_EQ(sizeof(kexComVariant), sizeof(VARIANT));
  const kexComVariant value;
  const VARIANT zeros = {};
  EXPECT_EQ(std::memcmp(&value, &zeros, sizeof zeros), 0);
}

TEST(ComVariant, ClearsItselfAndCopiesDeeply) {
  auto* object = new RecordingDispatch;
  {
    kexComVariant first;
    first.vt = VT_DISPATCH;
    first.pdispVal = object;
    object->AddRef();
    EXPECT_EQ(object->references(), 2u);
    {
      kexComVariant second(first), third;
      EXPECT_EQ(object->references(), 3u);
      third = second;
      third = *&third;
      EXPECT_EQ(object->references(), 4u);
      third = kexComVariant();
      EXPECT_EQ(object->references(), 3u);
    }
    EXPECT_EQ(object->references(), 2u);
  }
  EXPECT_EQ(object->references(), 1u);
  release(object);

  kexComVariant text;
  text.vt = VT_BSTR;
  text.bstrVal = SysAllocString(L"text");
  const kexComVariant copy(text);
  EXPECT_NE(copy.bstrVal, text.bstrVal);
  EXPECT_STREQ(copy.bstrVal, L"text");
}

TEST(ComVariant, ThrowsWhereACopyFails) {
  kexComVariant bad, good;
  bad.vt = no_such_type().vt;
  good.vt = VT_BSTR;
  good.bstrVal = SysAllocString(L"text");
  EXPECT_THROW(good = bad, COleException*);
  EXPECT_EQ(good.vt, VT_EMPTY);
  EXPECT_THROW(kexComVariant{bad}, COleException*);
  bad.vt = VT_EMPTY;
}

TEST(VariantSafeArray, HasNoArrayAtFirst) {
  Array array;
  EXPECT_EQ(static_cast<SAFEARRAY*>(array), nullptr);
  EXPECT_EQ(array.GetAt(0).vt, VT_EMPTY);
  CComVariant value(5);
  EXPECT_EQ(array.PutAt(0, value), E_INVALIDARG);
  EXPECT_EQ(array.AccessData(), nullptr);
  array.UnaccessData();
  EXPECT_EQ(array.Detach(), nullptr);
  const VARIANT variant = array;
  EXPECT_EQ(variant.vt, VT_ARRAY | VT_VARIANT);
  EXPECT_EQ(variant.parray, nullptr);
}

TEST(VariantSafeArray, IsMadeWithEmptyElements) {
  Array array(3);
  EXPECT_EQ(array.GetSize(), 3);
  for (int i = 0; i < 3; ++i) EXPECT_EQ(array[i].vt, VT_EMPTY);
  LONG bound = -1;
  SafeArrayGetLBound(array, 1, &bound);
  EXPECT_EQ(bound, 0);
  EXPECT_EQ(Array(0).GetSize(), 0);
}

TEST(VariantSafeArray, IsNotThereWhereItCannotBeMade) {
  for (const int size : {-1, INT_MIN, INT_MAX}) {
    Array array(size);
    EXPECT_EQ(static_cast<SAFEARRAY*>(array), nullptr) << size;
  }
}

TEST(VariantSafeArray, CountsFromZeroWhateverTheLowerBound) {
  for (const LONG lower_bound : {-3L, 0L, 5L}) {
    const Owned owned(VT_VARIANT, lower_bound, 3);
    Array array(owned);
    for (int i = 0; i < 3; ++i) {
      CComVariant value(100 + i);
      EXPECT_EQ(array.PutAt(i, value), S_OK);
    }
    for (LONG i = 0; i < 3; ++i) {
      LONG place = lower_bound + i;
      CComVariant element;
      ASSERT_EQ(SafeArrayGetElement(owned, &place, &element), S_OK);
      EXPECT_EQ(element.lVal, 100 + i);
      EXPECT_EQ(array.GetAt(static_cast<int>(i)).lVal, 100 + i);
      EXPECT_EQ(array[static_cast<int>(i)].lVal, 100 + i);
    }
  }
}

TEST(VariantSafeArray, HasNothingOutsideItsBounds) {
  const Owned owned(VT_VARIANT, 5, 3);
  Array array(owned);
  CComVariant value(5);
  for (const int index : {-1, 3, INT_MAX, INT_MIN, INT_MAX - 4}) {
    EXPECT_EQ(array.GetAt(index).vt, VT_EMPTY) << index;
    EXPECT_EQ(array.PutAt(index, value), DISP_E_BADINDEX) << index;
  }
}

TEST(VariantSafeArray, RefusesArraysOfOtherTypes) {
  Array array(2);
  SAFEARRAY* const before = array;
  for (const VARTYPE type : {VT_BSTR, VT_I4, VT_R8, VT_DISPATCH, VT_UNKNOWN, VT_UI1}) {
    const Owned other(type, 0, 2);
    EXPECT_EQ(array.Attach(other), E_FAIL) << type;
    EXPECT_EQ(static_cast<SAFEARRAY*>(array), before);
    Array viewer(other);
    EXPECT_EQ(static_cast<SAFEARRAY*>(viewer), nullptr);
  }
  EXPECT_EQ(array.Attach(nullptr), E_FAIL);
  EXPECT_EQ(static_cast<SAFEARRAY*>(array), before);
  EXPECT_EQ(array.GetSize(), 2);
}

TEST(VariantSafeArray, RefusesArraysOfTwoDimensions) {
  SAFEARRAYBOUND bounds[2] = {{2, 0}, {3, 0}};
  SAFEARRAY* const table = SafeArrayCreate(VT_VARIANT, 2, bounds);
  Array array(4);
  SAFEARRAY* const before = array;
  EXPECT_EQ(array.Attach(table), E_FAIL);
  EXPECT_EQ(static_cast<SAFEARRAY*>(array), before);
  EXPECT_EQ(array.GetSize(), 4);
  SafeArrayDestroy(table);
}

// Nothing says that its elements are no VARIANTs, so it is taken; but nothing is read from elements of another size.
TEST(VariantSafeArray, TakesArraysThatDoNotKnowTheirType) {
  SAFEARRAY* nameless = nullptr;
  ASSERT_EQ(SafeArrayAllocDescriptor(1, &nameless), S_OK);
  nameless->cbElements = 4;
  nameless->rgsabound[0] = {3, 0};
  ASSERT_EQ(SafeArrayAllocData(nameless), S_OK);
  VARTYPE type;
  ASSERT_TRUE(FAILED(SafeArrayGetVartype(nameless, &type)));
  Array array;
  EXPECT_EQ(array.Attach(nameless), S_OK);
  EXPECT_EQ(array.GetSize(), 3);
  EXPECT_EQ(array.GetAt(0).vt, VT_EMPTY);
  array.Detach();
  SafeArrayDestroy(nameless);
}

TEST(VariantSafeArray, LeavesAnArrayAloneThatItLooksAt) {
  const Owned owned(VT_VARIANT, 0, 1);
  {
    Array array(owned);
    CComVariant value(L"text");
    EXPECT_EQ(array.PutAt(0, value), S_OK);
  }
  EXPECT_STREQ(Array(owned).GetAt(0).bstrVal, L"text");
}

TEST(VariantSafeArray, DestroysAnArrayThatItOwns) {
  auto* object = new RecordingDispatch;
  {
    Array array(1);
    CComVariant value(static_cast<IDispatch*>(object));
    array.PutAt(0, value);
    release(object);  // the reference that PutAt takes on top
    EXPECT_EQ(object->references(), 3u);
  }
  EXPECT_EQ(object->references(), 1u);
  release(object);
}

TEST(VariantSafeArray, OutlivesItsOwnerOnceItIsDetached) {
  SAFEARRAY* kept = nullptr;
  {
    Array array(1);
    CComVariant value(L"kept");
    array.PutAt(0, value);
    kept = array.Detach();
    EXPECT_EQ(static_cast<SAFEARRAY*>(array), nullptr);
    EXPECT_EQ(array.Detach(), nullptr);
  }
  EXPECT_STREQ(Array(kept).GetAt(0).bstrVal, L"kept");
  EXPECT_EQ(SafeArrayDestroy(kept), S_OK);
}

// An array that was owned is not destroyed when another one is attached: that is meant.
TEST(VariantSafeArray, LetsGoOfTheArrayBeforeWithoutDestroyingIt) {
  const Owned other(VT_VARIANT, 0, 2);
  SAFEARRAY* before = nullptr;
  {
    Array array(1);
    before = array;
    EXPECT_EQ(array.Attach(other), S_OK);
    EXPECT_EQ(array.GetSize(), 2);
  }
  EXPECT_EQ(SafeArrayGetDim(before), 1u);
  EXPECT_EQ(SafeArrayDestroy(before), S_OK);
}

// One reference is the copy's, the other is on top of it: that is meant.
TEST(VariantSafeArray, TakesTwoReferencesOfAnObjectThatIsStored) {
  for (const bool as_dispatch : {true, false}) {
    auto* object = new RecordingDispatch;
    {
      Array array(2);
      VARIANT value = {};
      value.vt = static_cast<VARTYPE>(as_dispatch ? VT_DISPATCH : VT_UNKNOWN);
      value.punkVal = object;
      EXPECT_EQ(array.PutAt(0, value), S_OK);
      EXPECT_EQ(object->references(), 3u);
      {
        const kexComVariant read = array.GetAt(0);
        EXPECT_EQ(read.punkVal, object);
        EXPECT_EQ(object->references(), 4u);
      }
      EXPECT_EQ(object->references(), 3u);
      // Also where the store fails.
      EXPECT_EQ(array.PutAt(2, value), DISP_E_BADINDEX);
      EXPECT_EQ(object->references(), 4u);
      // Others get none on top.
      CComVariant number(5), none(static_cast<IDispatch*>(nullptr));
      EXPECT_EQ(array.PutAt(1, number), S_OK);
      EXPECT_EQ(array.PutAt(1, none), S_OK);
      EXPECT_EQ(object->references(), 4u);
    }
    EXPECT_EQ(object->references(), 3u);  // two on top, and the test's
    release(object);
    release(object);
    release(object);
  }
  EXPECT_EQ(RecordingDispatch::alive, 0);
}

TEST(VariantSafeArray, CopiesElementsOfEveryType) {
  const auto as_text = [](const VARIANT& value) {
    CComVariant text;
    EXPECT_EQ(text.ChangeType(VT_BSTR, &value), S_OK);
    return std::wstring(text.bstrVal);
  };
  Array array(1);
  const CComVariant number(1);
  for (const VARTYPE type : {VT_I1, VT_UI1, VT_I2, VT_UI2, VT_I4, VT_UI4, VT_I8, VT_UI8, VT_INT, VT_UINT, VT_R4, VT_R8,
                             VT_CY, VT_DATE, VT_BOOL, VT_BSTR, VT_DECIMAL}) {
    CComVariant value;
    ASSERT_EQ(value.ChangeType(type, &number), S_OK) << type;
    EXPECT_EQ(array.PutAt(0, value), S_OK) << type;
    const kexComVariant element = array.GetAt(0);
    EXPECT_EQ(element.vt, type);
    EXPECT_EQ(as_text(element), as_text(value)) << type;
  }
  VARIANT error = {};
  error.vt = VT_ERROR;
  error.scode = DISP_E_PARAMNOTFOUND;
  EXPECT_EQ(array.PutAt(0, error), S_OK);
  EXPECT_EQ(array.GetAt(0).scode, DISP_E_PARAMNOTFOUND);
  VARIANT null = {};
  null.vt = VT_NULL;
  EXPECT_EQ(array.PutAt(0, null), S_OK);
  EXPECT_EQ(array.GetAt(0).vt, VT_NULL);

  Array inner(2);
  CComVariant seven(7);
  inner.PutAt(1, seven);
  VARIANT list = inner;
  EXPECT_EQ(array.PutAt(0, list), S_OK);
  const kexComVariant copy = array.GetAt(0);
  EXPECT_EQ(copy.vt, VT_ARRAY | VT_VARIANT);
  EXPECT_NE(copy.parray, list.parray);
  EXPECT_EQ(Array(copy.parray).GetAt(1).lVal, 7);
}

TEST(VariantSafeArray, RefusesAValueThatCannotBeCopied) {
  Array array(1);
  VARIANT bad = no_such_type();
  EXPECT_TRUE(FAILED(array.PutAt(0, bad)));
  EXPECT_EQ(array.GetAt(0).vt, VT_EMPTY);
}

TEST(VariantSafeArray, GivesItsElementsInARow) {
  Array array(2);
  VARIANT* const data = array.AccessData();
  ASSERT_NE(data, nullptr);
  EXPECT_EQ(static_cast<SAFEARRAY*>(array)->cLocks, 1u);
  data[1].vt = VT_I4;
  data[1].lVal = 9;
  array.UnaccessData();
  EXPECT_EQ(static_cast<SAFEARRAY*>(array)->cLocks, 0u);
  EXPECT_EQ(array[1].lVal, 9);
}

// It cannot be destroyed, and is lost without a word: that is the system's rule.
TEST(VariantSafeArray, LosesAnArrayThatIsStillAccessed) {
  auto* object = new RecordingDispatch;
  SAFEARRAY* lost = nullptr;
  {
    Array array(1);
    CComVariant value(static_cast<IDispatch*>(object));
    array.PutAt(0, value);
    array.AccessData();
    lost = array;
  }
  EXPECT_EQ(object->references(), 3u);
  EXPECT_EQ(SafeArrayUnaccessData(lost), S_OK);
  EXPECT_EQ(SafeArrayDestroy(lost), S_OK);
  EXPECT_EQ(object->references(), 2u);
  release(object);
  release(object);
}

TEST(VariantSafeArray, IsPassedOnWithoutACopy) {
  Array array(2);
  const VARIANT variant = array;
  EXPECT_EQ(variant.vt, 0x200C);
  EXPECT_EQ(variant.parray, static_cast<SAFEARRAY*>(array));
}

TEST(VariantSafeArray, IsDestroyedThroughItsBase) {
  struct Derived : Array {
    explicit Derived(bool* destroyed) : Array(1), destroyed_(destroyed) {}
    Derived(const Derived&) = delete;
    Derived& operator=(const Derived&) = delete;
    ~Derived() override { *destroyed_ = true; }
    bool* destroyed_;
  };
  bool destroyed = false;
  std::unique_ptr<Array>(new Derived(&destroyed)).reset();
  EXPECT_TRUE(destroyed);
  EXPECT_FALSE(std::is_copy_constructible_v<Array> || std::is_copy_assignable_v<Array>);
}

}  // namespace
