// Lists of VARIANTs: created, attached, read and written, with exact reference counts.
#include <gtest/gtest.h>

#include <kexlib/com/variant_safe_array.h>

#include <afxdisp.h>
#include <atlbase.h>

#include <support/failing_record.h>
#include <support/recording_dispatch.h>

#include <algorithm>
#include <climits>
#include <cstring>
#include <memory>
#include <string>
#include <type_traits>
#include <utility>

namespace {

using Array = QuickVariantSafeArray;

// Not inlined: otherwise the compiler mistakes a first release for the last one.
[[gnu::noinline]] void release(IUnknown* object) { object->Release(); }

VARIANT no_such_type() {
  VARIANT value = {};
  value.vt = 0x7F;
  return value;
}

// A safe array that the test creates.
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

TEST(ComVariant, LeavesARecordAloneThatCannotBeCopied) {
  FailingRecord record;
  {
    kexComVariant source, target;
    static_cast<VARIANT&>(source) = record.value();
    EXPECT_THROW(target = source, COleException*);
    EXPECT_EQ(target.vt, VT_EMPTY);
    EXPECT_THROW(kexComVariant{source}, COleException*);
    EXPECT_EQ(record.references(), 1u);
    EXPECT_EQ(record.clears(), 0);
  }
  EXPECT_EQ(record.references(), 0u);
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

TEST(VariantSafeArray, HasNothingAtIndicesThatMakeNoSense) {
  for (const LONG first : {LONG_MIN, -1L, 0L, LONG_MAX - 2}) {
    const Owned elements(VT_VARIANT, first, 2);
    Array list(elements);
    VARIANT value{};
    value.vt = VT_I4;
    for (const int index : {INT_MIN, INT_MIN + 1, -2, -1, 2, INT_MAX}) {
      EXPECT_EQ(list.PutAt(index, value), DISP_E_BADINDEX) << first << " " << index;
      EXPECT_EQ(list.GetAt(index).vt, VT_EMPTY) << first << " " << index;
    }
    EXPECT_EQ(list.PutAt(1, value), S_OK) << first;
    EXPECT_EQ(list.GetAt(1).vt, VT_I4) << first;
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

// The array has no type, so it is accepted. Elements of another size than a VARIANT are not read.
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

// A VARIANT at the end of accessible memory: reading beyond it faults.
class VariantAtTheEndOfAPage {
 public:
  VariantAtTheEndOfAPage() {
    pages_ = static_cast<BYTE*>(VirtualAlloc(nullptr, 2 * page_size, MEM_RESERVE, PAGE_NOACCESS));
    VirtualAlloc(pages_, page_size, MEM_COMMIT, PAGE_READWRITE);
    value_ = new (pages_ + page_size - sizeof(VARIANT)) VARIANT{};
    value_->vt = VT_I4;
    value_->lVal = 7;
  }
  VariantAtTheEndOfAPage(const VariantAtTheEndOfAPage&) = delete;
  VariantAtTheEndOfAPage& operator=(const VariantAtTheEndOfAPage&) = delete;
  ~VariantAtTheEndOfAPage() { VirtualFree(pages_, 0, MEM_RELEASE); }
  VARIANT& get() const { return *value_; }

 private:
  static constexpr SIZE_T page_size = 0x1000;
  BYTE* pages_;
  VARIANT* value_;
};

TEST(VariantSafeArray, StoresNothingInElementsOfAnotherSizeAndReadsNone) {
  const VariantAtTheEndOfAPage value;
  for (const ULONG size : {4ul, 16ul, 48ul, 4096ul}) {
    SAFEARRAY* nameless = nullptr;
    ASSERT_EQ(SafeArrayAllocDescriptor(1, &nameless), S_OK);
    nameless->cbElements = size;
    nameless->rgsabound[0] = {2, 0};
    ASSERT_EQ(SafeArrayAllocData(nameless), S_OK);
    auto* const bytes = static_cast<BYTE*>(nameless->pvData);
    std::memset(bytes, 0xCC, 2 * size);
    Array array(nameless);
    ASSERT_EQ(static_cast<SAFEARRAY*>(array), nameless);
    EXPECT_EQ(array.PutAt(0, value.get()), E_INVALIDARG) << size;
    EXPECT_EQ(array.PutAt(1, value.get()), E_INVALIDARG) << size;
    ASSERT_EQ(array.GetAt(1).vt, VT_EMPTY) << size;
    EXPECT_EQ(std::count(bytes, bytes + 2 * size, 0xCC), static_cast<std::ptrdiff_t>(2 * size));
    // The elements cannot be accessed as VARIANTs either. A lock of the caller is kept.
    EXPECT_EQ(SafeArrayLock(nameless), S_OK);
    EXPECT_EQ(array.AccessData(), nullptr) << size;
    EXPECT_EQ(nameless->cLocks, 1u);
    array.UnaccessData();
    EXPECT_EQ(nameless->cLocks, 1u);
    EXPECT_EQ(SafeArrayUnlock(nameless), S_OK);
    array.Detach();
    SafeArrayDestroy(nameless);
  }
  // Elements of the size of a VARIANT are accepted as VARIANTs.
  Array array(1);
  EXPECT_EQ(array.PutAt(0, value.get()), S_OK);
  EXPECT_EQ(array[0].lVal, 7);
}

TEST(VariantSafeArray, LeavesAnElementAloneThatCannotBeCopied) {
  FailingRecord record;
  {
    Array array(1);
    array.AccessData()[0] = record.value();
    array.UnaccessData();
    EXPECT_EQ(array.GetAt(0).vt, VT_EMPTY);
    EXPECT_EQ(record.references(), 1u);
    EXPECT_EQ(record.clears(), 0);
  }
  EXPECT_EQ(record.references(), 0u);
}

TEST(VariantSafeArray, HoldsNothingOfARecordThatCannotBeStored) {
  FailingRecord record;
  {
    Array array(1);
    VARIANT value = record.value();
    EXPECT_EQ(array.PutAt(0, value), FailingRecord::failure);
    EXPECT_EQ(array.GetAt(0).vt, VT_EMPTY);
  }
  EXPECT_EQ(record.references(), 1u);
  EXPECT_EQ(record.clears(), 0);
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
    release(object);  // the additional reference of PutAt
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

// By design an owned array is not destroyed when another one is attached: callers may still use it.
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

// By design PutAt adds a reference besides that of the copy: callers release it, or transfer their own reference.
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
      // Also if the store fails.
      EXPECT_EQ(array.PutAt(2, value), DISP_E_BADINDEX);
      EXPECT_EQ(object->references(), 4u);
      // Other values get no additional reference.
      CComVariant number(5), none(static_cast<IDispatch*>(nullptr));
      EXPECT_EQ(array.PutAt(1, number), S_OK);
      EXPECT_EQ(array.PutAt(1, none), S_OK);
      EXPECT_EQ(object->references(), 4u);
    }
    EXPECT_EQ(object->references(), 3u);  // two additional ones, and that of the test
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

// The system does not destroy a locked array.
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
