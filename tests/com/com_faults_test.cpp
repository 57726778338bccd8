// Calls that fail while objects are made and values are copied, for each function of the family.
#include <gtest/gtest.h>

#include <kexlib/com/activex.h>
#include <kexlib/com/digit_control.h>
#include <kexlib/com/guid.h>
#include <kexlib/com/variant_safe_array.h>

#include <shlwapi.h>

#include <com/registration_free_fixture.h>
#include <com/resources.h>
#include <support/fault_sweep.h>
#include <support/recording_dispatch.h>
#include <support/test_control.h>

#include <string>

namespace {

using registration_free::components;

const Call calls[] = {
    memory_call(),
    Call("ole32.dll", "CoCreateGuid", &CoCreateGuid, E_OUTOFMEMORY),
    Call("ole32.dll", "CoCreateInstance", &CoCreateInstance, E_OUTOFMEMORY),
    Call("ole32.dll", "IIDFromString", &IIDFromString, E_OUTOFMEMORY),
    Call("OLEAUT32.dll", "SysAllocStringLen", &SysAllocStringLen, nullptr),
    Call("OLEAUT32.dll", "LoadTypeLib", &LoadTypeLib, E_OUTOFMEMORY),
    Call("OLEAUT32.dll", "VariantCopy", &VariantCopy, E_OUTOFMEMORY),
    Call("OLEAUT32.dll", "SafeArrayCreateVector", &SafeArrayCreateVector, nullptr),
    Call("OLEAUT32.dll", "SafeArrayGetElement", &SafeArrayGetElement, E_OUTOFMEMORY),
    Call("OLEAUT32.dll", "SafeArrayPutElement", &SafeArrayPutElement, E_OUTOFMEMORY),
    Call("OLEAUT32.dll", "SafeArrayAccessData", &SafeArrayAccessData, E_OUTOFMEMORY),
    Call("OLEAUT32.dll", "SafeArrayGetLBound", &SafeArrayGetLBound, E_INVALIDARG),
    Call("OLEAUT32.dll", "SafeArrayGetVartype", &SafeArrayGetVartype, E_INVALIDARG),
    Call("KERNEL32.dll", "CreateActCtxA", &CreateActCtxA, INVALID_HANDLE_VALUE),
    Call("KERNEL32.dll", "FindFirstFileA", &FindFirstFileA, INVALID_HANDLE_VALUE, ERROR_ACCESS_DENIED),
    Call("KERNEL32.dll", "FindNextFileA", &FindNextFileA, FALSE, ERROR_ACCESS_DENIED),
    Call("KERNEL32.dll", "MultiByteToWideChar", &MultiByteToWideChar, 0),
    Call("SHLWAPI.dll", "PathAppendA", &PathAppendA, FALSE),
    Call("USER32.dll", "CreateWindowExA", &CreateWindowExA, nullptr),
    Call("USER32.dll", "GetDlgItem", &GetDlgItem, nullptr),
    Call("USER32.dll", "GetWindowRect", &GetWindowRect, FALSE),
    Call("USER32.dll", "ScreenToClient", &ScreenToClient, FALSE),
    Call("USER32.dll", "GetDC", &GetDC, nullptr),
    Call("USER32.dll", "SetWindowPos", &SetWindowPos, FALSE),
};

const wchar_t guid_text[] = L"{6B29FC40-CA47-1067-B31D-00AA00C7A1E8}";
const char short_text[] = "6B29FC40-CA47-1067-B31D-00AA00C7A1E8";

// A list of two texts, seen before and after an attempt.
template <typename Action>
void use_array(Attempt& attempt, Action action) {
  QuickVariantSafeArray list(2);
  CComVariant first(L"first"), second(2);
  EXPECT_EQ(list.PutAt(0, first), S_OK);
  EXPECT_EQ(list.PutAt(1, second), S_OK);
  action(attempt, list);
  EXPECT_EQ(list.GetSize(), 2);
  EXPECT_STREQ(list.GetAt(0).bstrVal, L"first");
  EXPECT_EQ(list.GetAt(1).intVal, 2);
}

std::string memory_exception(const Attempt& attempt) { return attempt.failed() ? "CMemoryException" : ""; }

const Operation operations[] = {
    {"get_GUID",
     [](Attempt& attempt) {
       const kexGUID id;
       GUID value = GUID_NULL;
       EXPECT_EQ(attempt([&] { value = id.get_GUID(); }), "");
       EXPECT_EQ(value == GUID_NULL, attempt.failed("CoCreateGuid"));
       EXPECT_EQ(id.is_null(), attempt.failed("CoCreateGuid"));
       EXPECT_NE(id.get_GUID(), GUID_NULL);
     }},
    {"get_str",
     [](Attempt& attempt) {
       const kexGUID id(kexGUID(const_cast<wchar_t*>(guid_text)));
       CString text;
       const std::string thrown = attempt([&] { text = id.get_str(); });
       EXPECT_EQ(thrown, memory_exception(attempt));
       EXPECT_STREQ(id.get_str(), short_text);
     }},
    {"get_BSTR",
     [](Attempt& attempt) {
       const kexGUID id(kexGUID(const_cast<wchar_t*>(guid_text)));
       wchar_t* text = nullptr;
       const std::string thrown = attempt([&] { id.get_BSTR(&text); });
       EXPECT_EQ(thrown, memory_exception(attempt));
       EXPECT_EQ(text == nullptr, attempt.failed());
       SysFreeString(text);
     }},
    {"make_new",
     [](Attempt& attempt) {
       CString text;
       const std::string thrown = attempt([&] { text = kexGUID::make_new(); });
       EXPECT_EQ(thrown, attempt.failed("CoCreateGuid") ? "" : memory_exception(attempt));
     }},
    {"set_str",
     [](Attempt& attempt) {
       kexGUID id;
       const CString text(short_text);
       const std::string thrown = attempt([&] { id.set_str(text); });
       EXPECT_EQ(thrown, attempt.failed("IIDFromString") ? "" : memory_exception(attempt));
       EXPECT_EQ(id.is_null(), attempt.failed());
       id.set_str(text);
       EXPECT_STREQ(id.get_str(), short_text);
     }},
    {"set_BSTR",
     [](Attempt& attempt) {
       kexGUID id;
       CComBSTR text(short_text);
       const std::string thrown = attempt([&] { id.set_BSTR(text); });
       EXPECT_EQ(thrown, attempt.failed("IIDFromString") ? "" : memory_exception(attempt));
       EXPECT_EQ(id.is_null(), attempt.failed());
       id.set_BSTR(text);
       EXPECT_STREQ(id.get_str(), short_text);
     }},
    {"kexComVariant",
     [](Attempt& attempt) {
       kexComVariant text, copy;
       text.vt = VT_BSTR;
       text.bstrVal = SysAllocString(L"text");
       copy.vt = VT_BSTR;
       copy.bstrVal = SysAllocString(L"before");
       const std::string thrown = attempt([&] { copy = text; });
       EXPECT_EQ(thrown, memory_exception(attempt));
       EXPECT_EQ(copy.vt, attempt.failed() ? VT_EMPTY : VT_BSTR);
       copy = text;
       EXPECT_STREQ(copy.bstrVal, L"text");
     }},
    {"QuickVariantSafeArray",
     [](Attempt& attempt) {
       SAFEARRAY* made = nullptr;
       EXPECT_EQ(attempt([&] {
                   QuickVariantSafeArray list(2);
                   made = list;
                 }),
                 "");
       EXPECT_EQ(made == nullptr, attempt.failed());
     }},
    {"QuickVariantSafeArray::Attach",
     [](Attempt& attempt) {
       use_array(attempt, [](Attempt& in, QuickVariantSafeArray& list) {
         long result = -1;
         EXPECT_EQ(in([&] {
                     QuickVariantSafeArray view;
                     result = view.Attach(list);
                   }),
                   "");
         EXPECT_EQ(result, S_OK);  // an array without an element type is accepted
       });
     }},
    {"QuickVariantSafeArray::GetAt",
     [](Attempt& attempt) {
       use_array(attempt, [](Attempt& in, QuickVariantSafeArray& list) {
         VARTYPE type = VT_NULL;
         EXPECT_EQ(in([&] { type = list.GetAt(0).vt; }), "");
         EXPECT_EQ(type, in.failed("SafeArrayGetElement") ? VT_EMPTY : VT_BSTR);
       });
     }},
    {"QuickVariantSafeArray::PutAt",
     [](Attempt& attempt) {
       auto* const object = new RecordingDispatch;
       {
         QuickVariantSafeArray list(1);
         CComVariant value(static_cast<IDispatch*>(object));
         long result = -1;
         EXPECT_EQ(attempt([&] { result = list.PutAt(0, value); }), "");
         EXPECT_EQ(result, attempt.failed("SafeArrayPutElement") ? E_OUTOFMEMORY : S_OK);
         object->Release();  // the reference more
         EXPECT_EQ(object->references(), SUCCEEDED(result) ? 3u : 2u);
       }
       EXPECT_EQ(object->references(), 1u);
       object->Release();
     }},
    {"QuickVariantSafeArray::AccessData",
     [](Attempt& attempt) {
       use_array(attempt, [](Attempt& in, QuickVariantSafeArray& list) {
         VARIANT* elements = nullptr;
         EXPECT_EQ(in([&] { elements = list.AccessData(); }), "");
         EXPECT_EQ(elements == nullptr, in.failed());
         list.UnaccessData();
       });
     }},
    {"reg_free_manifest_path",
     [](Attempt& attempt) {
       std::string path;
       const std::string thrown =
           attempt([&] { path = reg_free_manifest_path("C:\\a folder", "C:\\bin\\part with a long name.dll"); });
       EXPECT_EQ(thrown, attempt.failed("malloc") ? "std::bad_alloc" : "");
       EXPECT_EQ(path, attempt.failed() ? "" : "C:\\a folder\\part with a long name.manifest");
     }},
    {"reg_free_co_create",
     [](Attempt& attempt) {
       const std::string folder = components(), manifest = registration_free::manifest();
       CComPtr<IUnknown> object;
       long result = -1;
       EXPECT_EQ(attempt([&] {
                   result = reg_free_co_create(__uuidof(Circle), folder.c_str(), manifest.c_str(), CLSCTX_INPROC_SERVER,
                                               &object);
                 }),
                 "");
       if (attempt.failed("CoCreateInstance")) {
         EXPECT_EQ(result, E_OUTOFMEMORY);
       } else if (attempt.failed("CreateActCtxA")) {  // the manifest is ignored
         EXPECT_EQ(result, REGDB_E_CLASSNOTREG);
       } else if (!attempt.failed()) {
         EXPECT_EQ(result, S_OK);
       }
       EXPECT_EQ(object.p != nullptr, SUCCEEDED(result));
     }},
    {"reg_free_list_classes",
     [](Attempt& attempt) {
       const std::string folder = components();
       std::set<GUID, kexLessGUID> found;
       const std::string thrown =
           attempt([&] { found = reg_free_list_classes(__uuidof(IArea), folder.c_str(), "com_server.dll"); });
       if (!thrown.empty()) {
         EXPECT_TRUE(thrown == "CMemoryException" || thrown == "std::bad_alloc") << thrown;
         EXPECT_TRUE(attempt.failed());
       }
       if (!attempt.failed()) {
         EXPECT_TRUE(found.contains(__uuidof(Circle)));
       }
       EXPECT_TRUE(reg_free_list_classes(__uuidof(IArea), folder.c_str(), "com_server.dll").contains(__uuidof(Circle)));
     },
     {.blocks = 18}},  // the attributes of the types that it scans, twice
    {"reg_free_find_tlb",
     [](Attempt& attempt) {
       const std::string folder = components();
       std::string found;
       const std::string thrown =
           attempt([&] { found = reg_free_find_tlb(__uuidof(Circle), folder.c_str(), "com_server.dll"); });
       if (!thrown.empty()) {
         EXPECT_TRUE(thrown == "CMemoryException" || thrown == "std::bad_alloc") << thrown;
         EXPECT_TRUE(attempt.failed());
       }
       if (!attempt.failed()) {
         EXPECT_EQ(found, folder + "\\com_server.dll");
       }
     },
     {.blocks = 1}},  // the attributes of the first class
    {"CreateControl",
     [](Attempt& attempt) {
       const HWND dialog = CreateDialogParamA(nullptr, MAKEINTRESOURCEA(IDD_HOST), nullptr, nullptr, 0);
       CAxWindowT<CWindow> host;
       CComPtr<IUnknown> control;
       const auto create = [&] {
         control = CreateControl(dialog, &host, IDC_PLACEHOLDER, "{9F4F3A70-6B1D-4C5E-8A11-520E773C0102}");
       };
       const std::string thrown = attempt(create);
       EXPECT_TRUE(thrown.empty() || attempt.failed()) << thrown;
       if (!attempt.failed()) {
         EXPECT_NE(control.p, nullptr);
       }
       control.Release();
       create();
       EXPECT_NE(control.p, nullptr);
       control.Release();
       DestroyWindow(dialog);
       EXPECT_EQ(RecordingDispatch::alive, 0);
     },
     {.blocks = 1}},  // Wine keeps one for the dialog, also for one without a control
};

class ComFaults : public testing::Test {
  registration_free::Com com_;
  TestControlClass known_;
};

TEST_F(ComFaults, NoCallThatFailsDoesHarm) { sweep_faults(calls, operations); }

TEST_F(ComFaults, RoundsWithoutOneLeaveNothingBehind) { repeat_rounds(operations); }

}  // namespace
