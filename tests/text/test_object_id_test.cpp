// Identifiers for automated tests: parameters of any automation type, and one text with a special meaning.
#include <gtest/gtest.h>

#include <kexlib/text/test_object_id.h>

#include <afxdisp.h>

#include <support/failing_record.h>
#include <support/import_override.h>
#include <support/recording_dispatch.h>
#include <support/resource_counts.h>

#include <string>

namespace {

CComVariant id_of(const kexTestObjectID& id) {
  CComVariant value;
  EXPECT_EQ(id.get_id(&value), S_OK);
  return value;
}

VARIANT no_such_type() {
  VARIANT value = {};
  value.vt = 0x7F;
  return value;
}

TEST(TestObjectId, IsNotConfiguredAtFirst) {
  kexTestObjectID id;
  EXPECT_FALSE(id.is_configured());
  EXPECT_FALSE(id.is_special_value());
  EXPECT_EQ(id_of(id).vt, VT_EMPTY);
  EXPECT_EQ(id.put_id(CComVariant()), S_OK);
  EXPECT_FALSE(id.is_configured());
}

TEST(TestObjectId, IsMadeOfItsSpecialText) {
  kexTestObjectID id = "auto";
  EXPECT_FALSE(id.is_configured());
  id.put_id(CComVariant(L"auto"));
  EXPECT_TRUE(id.is_special_value());
}

TEST(TestObjectId, IsNotConfiguredAnyMoreOnceItIsEmptied) {
  kexTestObjectID id;
  id.put_id(CComVariant(L"name"));
  EXPECT_TRUE(id.is_configured());
  id.put_id(CComVariant());
  EXPECT_FALSE(id.is_configured());
}

TEST(TestObjectId, IsSpecialWhereItIsTheSpecialText) {
  kexTestObjectID id("auto");
  id.put_id(CComVariant(L"auto"));
  EXPECT_TRUE(id.is_special_value());
  for (const wchar_t* text : {L"AUTO", L"Auto", L"aut", L"auto ", L""}) {
    id.put_id(CComVariant(text));
    EXPECT_FALSE(id.is_special_value()) << text;
    EXPECT_TRUE(id.is_configured());
  }
}

struct Comparison {
  int calls;
  LCID locale;
  ULONG flags;
} comparison;

HRESULT WINAPI recorded_comparison(BSTR left, BSTR right, LCID locale, ULONG flags) {
  comparison = {comparison.calls + 1, locale, flags};
  return VarBstrCmp(left, right, locale, flags);
}

TEST(TestObjectId, IsComparedInTheUsersLocale) {
  kexTestObjectID id("auto");
  id.put_id(CComVariant(L"auto"));
  comparison = {};
  const ImportOverride recorded("kexlib.dll", "oleaut32.dll", "VarBstrCmp", recorded_comparison);
  ASSERT_TRUE(recorded.made());
  EXPECT_TRUE(id.is_special_value());
  EXPECT_EQ(comparison.calls, 1);
  EXPECT_EQ(comparison.locale, 0x400u);
  EXPECT_EQ(comparison.flags, 0u);
}

TEST(TestObjectId, IsNeverSpecialWhereItIsNoText) {
  kexTestObjectID id("5");
  id.put_id(CComVariant(5));
  EXPECT_TRUE(id.is_configured());
  EXPECT_FALSE(id.is_special_value());
  CComBSTR text(L"5");
  VARIANT by_reference = {};
  by_reference.vt = VT_BYREF | VT_BSTR;
  by_reference.pbstrVal = &text.m_str;
  id.put_id(by_reference);
  EXPECT_FALSE(id.is_special_value());
}

TEST(TestObjectId, IsNeverSpecialWithoutASpecialText) {
  kexTestObjectID none(nullptr), empty("");
  VARIANT null_text = {};
  null_text.vt = VT_BSTR;
  for (kexTestObjectID* id : {&none, &empty}) {
    id->put_id(CComVariant(L"text"));
    EXPECT_FALSE(id->is_special_value());
    id->put_id(CComVariant(L""));
    EXPECT_FALSE(id->is_special_value());
    id->put_id(null_text);
    EXPECT_FALSE(id->is_special_value());
    EXPECT_TRUE(id->is_configured());
  }
}

TEST(TestObjectId, WidensTheSpecialTextInTheCodePageOfTheThread) {
  const LCID before = GetThreadLocale();
  SetThreadLocale(0x0419);
  kexTestObjectID id("\xe4");
  SetThreadLocale(before);
  id.put_id(CComVariant(L"\u0434"));
  EXPECT_TRUE(id.is_special_value());
}

TEST(TestObjectId, KeepsACopyOfEveryType) {
  kexTestObjectID id;
  const CComVariant number(1);
  const auto as_text = [](const VARIANT& value) {
    CComVariant text;
    EXPECT_EQ(text.ChangeType(VT_BSTR, &value), S_OK);
    return std::wstring(text.bstrVal);
  };
  for (const VARTYPE type : {VT_I1, VT_UI1, VT_I2, VT_UI2, VT_I4, VT_UI4, VT_I8, VT_UI8, VT_INT, VT_UINT, VT_R4, VT_R8,
                             VT_CY, VT_DATE, VT_BOOL, VT_BSTR, VT_DECIMAL}) {
    CComVariant value;
    ASSERT_EQ(value.ChangeType(type, &number), S_OK) << type;
    EXPECT_EQ(id.put_id(value), S_OK);
    const CComVariant same = id_of(id);
    EXPECT_EQ(same.vt, type);
    EXPECT_EQ(as_text(same), as_text(value)) << type;
    EXPECT_TRUE(id.is_configured());
  }
  VARIANT null = {};
  null.vt = VT_NULL;
  id.put_id(null);
  EXPECT_EQ(id_of(id).vt, VT_NULL);
  EXPECT_TRUE(id.is_configured());
}

TEST(TestObjectId, KeepsTextsOfItsOwn) {
  kexTestObjectID id;
  CComVariant text(L"name");
  id.put_id(text);
  text.bstrVal[0] = L'X';
  CComVariant first = id_of(id), second = id_of(id);
  EXPECT_STREQ(first.bstrVal, L"name");
  EXPECT_NE(first.bstrVal, second.bstrVal);
}

TEST(TestObjectId, CountsReferencesOfObjects) {
  auto* object = new RecordingDispatch;
  {
    kexTestObjectID id;
    const CComVariant value(static_cast<IDispatch*>(object));
    EXPECT_EQ(object->references(), 2u);
    id.put_id(value);
    EXPECT_EQ(object->references(), 3u);
    id.put_id(value);
    EXPECT_EQ(object->references(), 3u);
    {
      const CComVariant read = id_of(id);
      EXPECT_EQ(object->references(), 4u);
    }
    id.put_id(CComVariant());
    EXPECT_EQ(object->references(), 2u);
    id.put_id(value);
  }
  EXPECT_EQ(object->references(), 1u);
  object->Release();
}

TEST(TestObjectId, KeepsReferencesAsReferences) {
  kexTestObjectID id;
  LONG number = 5;
  VARIANT by_reference = {};
  by_reference.vt = VT_BYREF | VT_I4;
  by_reference.plVal = &number;
  EXPECT_EQ(id.put_id(by_reference), S_OK);
  number = 6;
  const CComVariant read = id_of(id);
  EXPECT_EQ(read.vt, VT_BYREF | VT_I4);
  EXPECT_EQ(read.plVal, &number);
}

TEST(TestObjectId, ClearsWhatItIsReadInto) {
  kexTestObjectID id;
  id.put_id(CComVariant(5));
  auto* object = new RecordingDispatch;
  {
    CComVariant value(static_cast<IDispatch*>(object));
    EXPECT_EQ(object->references(), 2u);
    EXPECT_EQ(id.get_id(&value), S_OK);
    EXPECT_EQ(object->references(), 1u);
    EXPECT_EQ(value.lVal, 5);
  }
  object->Release();
}

TEST(TestObjectId, FreesTheTextThatItIsReadInto) {
  kexTestObjectID id;
  id.put_id(CComVariant(5));
  const std::wstring large(100000, L'x');  // too large for the system to cache its memory
  const auto round = [&] {
    VARIANT text = {};
    text.vt = VT_BSTR;
    text.bstrVal = SysAllocString(large.c_str());
    EXPECT_EQ(id.get_id(&text), S_OK);
    EXPECT_EQ(text.vt, VT_I4);
    EXPECT_EQ(text.lVal, 5);
  };
  for (int i = 0; i < 3; ++i) round();
  const int before = count_heap_blocks();
  for (int i = 0; i < 50; ++i) round();
  EXPECT_LT(count_heap_blocks() - before, 25);
}

TEST(TestObjectId, FreesItsTwoTexts) {
  const std::string special(100000, 'x');  // too large for the system to cache its memory
  const CComVariant text(special.c_str());
  const auto round = [&] {
    kexTestObjectID id(special.c_str());
    EXPECT_EQ(id.put_id(text), S_OK);
    EXPECT_TRUE(id.is_special_value());
  };
  for (int i = 0; i < 3; ++i) round();
  const int before = count_heap_blocks();
  for (int i = 0; i < 50; ++i) round();
  EXPECT_LT(count_heap_blocks() - before, 25);
}

TEST(TestObjectId, NeedsAPlaceToBeReadInto) { EXPECT_EQ(kexTestObjectID().get_id(nullptr), E_POINTER); }

TEST(TestObjectId, IsNotReadIntoWhatCannotBeCleared) {
  kexTestObjectID id;
  id.put_id(CComVariant(5));
  VARIANT bad = no_such_type();
  VARIANT same = bad;
  const HRESULT expected = VariantClear(&same);
  ASSERT_TRUE(FAILED(expected));
  EXPECT_EQ(id.get_id(&bad), expected);
  EXPECT_EQ(bad.vt, same.vt);
}

TEST(TestObjectId, HoldsTheFailureOfACopyAndThrowsIt) {
  kexTestObjectID id("auto");
  id.put_id(CComVariant(L"auto"));
  HRESULT thrown = S_OK;
  try {
    id.put_id(no_such_type());
  } catch (COleException* exception) {
    thrown = exception->m_sc;
    exception->Delete();
  }
  EXPECT_EQ(thrown, DISP_E_BADVARTYPE);
  const CComVariant held = id_of(id);
  EXPECT_EQ(held.vt, VT_ERROR);
  EXPECT_EQ(held.scode, DISP_E_BADVARTYPE);
  EXPECT_TRUE(id.is_configured());
  EXPECT_FALSE(id.is_special_value());
}

TEST(TestObjectId, LeavesTheCallersRecordAloneWhereItCannotBeCopied) {
  FailingRecord record;
  auto* object = new RecordingDispatch;
  {
    kexTestObjectID id;
    id.put_id(CComVariant(static_cast<IDispatch*>(object)));
    EXPECT_EQ(object->references(), 2u);
    EXPECT_THROW(id.put_id(record.value()), COleException*);
    EXPECT_EQ(object->references(), 1u) << "the previous identifier is cleared";
    const CComVariant held = id_of(id);
    EXPECT_EQ(held.vt, VT_ERROR);
    EXPECT_EQ(held.scode, FailingRecord::failure);
  }
  EXPECT_EQ(record.references(), 1u);
  EXPECT_EQ(record.clears(), 0);
  object->Release();
}

TEST(TestObjectId, KeepsItsRecordWhereItCannotBeCopiedToTheCaller) {
  FailingRecord record;
  {
    kexTestObjectID id;
    record.fails = false;
    EXPECT_EQ(id.put_id(record.value()), S_OK);
    EXPECT_EQ(record.references(), 2u);
    record.fails = true;
    CComVariant read;
    EXPECT_THROW(id.get_id(&read), COleException*);
    EXPECT_EQ(read.vt, VT_ERROR);
    EXPECT_EQ(read.scode, FailingRecord::failure);
    EXPECT_EQ(record.references(), 2u);
    EXPECT_EQ(record.clears(), 0);
  }
  EXPECT_EQ(record.references(), 1u);
  EXPECT_EQ(record.clears(), 1);
}

HRESULT WINAPI no_memory(VARIANT*, VARIANT*) { return E_OUTOFMEMORY; }

TEST(TestObjectId, LeavesNothingBehindWhereACopyFails) {
  auto* object = new RecordingDispatch;
  {
    kexTestObjectID id;
    id.put_id(CComVariant(static_cast<IDispatch*>(object)));
    EXPECT_EQ(object->references(), 2u);
    ImportOverride failing("kexlib.dll", "oleaut32.dll", "VariantCopy", no_memory);
    ASSERT_TRUE(failing.made());
    CComVariant read;
    EXPECT_THROW(id.get_id(&read), CMemoryException*);
    EXPECT_EQ(read.vt, VT_ERROR);
    EXPECT_EQ(read.scode, E_OUTOFMEMORY);
    EXPECT_EQ(object->references(), 2u);
    EXPECT_THROW(id.put_id(CComVariant(5)), CMemoryException*);
    EXPECT_EQ(object->references(), 1u) << "the previous object is released";
  }
  object->Release();
}

BSTR WINAPI no_string(const OLECHAR*, UINT) { return nullptr; }

TEST(TestObjectId, ThrowsWhereThereIsNoMemoryForTheSpecialText) {
  ImportOverride none("kexlib.dll", "oleaut32.dll", "SysAllocStringLen", no_string);
  ASSERT_TRUE(none.made());
  EXPECT_THROW(kexTestObjectID id("auto"), CMemoryException*);
}

}  // namespace
