// CWnd as the host of an ActiveX control.
#include <gtest/gtest.h>

#include <afxdisp.h>
#include <afxwin.h>

#include <support/expect_flat.h>
#include <support/test_control.h>

#include <memory>
#include <string>

namespace {

constexpr RECT place{10, 20, 130, 100};
constexpr DWORD style = WS_CHILD | WS_VISIBLE;
constexpr UINT id = 7;

// A frame. create() creates a control in it.
class Control : public testing::Test {
 protected:
  Control() {
    AfxEnableControlContainer();
    frame_.Attach(
        CreateWindowA("STATIC", "frame", WS_OVERLAPPEDWINDOW, 0, 0, 400, 300, nullptr, nullptr, nullptr, nullptr));
  }
  ~Control() override {
    window_.DestroyWindow();
    frame_.DestroyWindow();
    EXPECT_EQ(RecordingDispatch::alive, 0);
  }

  BOOL create(const char* text = nullptr, CFile* persist = nullptr, BOOL storage = FALSE, BSTR key = nullptr) {
    return window_.CreateControl(TestControlClass::id, text, style, place, &frame_, id, persist, storage, key);
  }
  TestControl* control() const { return class_.made; }

  TestControlClass class_;
  CWnd frame_, window_;
};

TEST_F(Control, IsHostedInAChildWindowOfItsPlaceAndId) {
  ASSERT_TRUE(create());
  EXPECT_EQ(GetDlgItem(frame_.m_hWnd, id), window_.m_hWnd);
  RECT rect;
  GetWindowRect(window_.m_hWnd, &rect);
  MapWindowPoints(nullptr, frame_.m_hWnd, reinterpret_cast<POINT*>(&rect), 2);
  EXPECT_TRUE(EqualRect(&rect, &place));
  EXPECT_TRUE(GetWindowLongA(window_.m_hWnd, GWL_STYLE) & WS_VISIBLE);
  EXPECT_TRUE(GetWindowLongA(window_.m_hWnd, GWL_STYLE) & WS_CLIPCHILDREN);
  EXPECT_TRUE(control()->began_anew);
  EXPECT_EQ(GetParent(control()->window), window_.m_hWnd);
  GetClientRect(control()->window, &rect);
  EXPECT_EQ(rect.right, 120);
  EXPECT_EQ(rect.bottom, 80);
}

TEST_F(Control, IsMadeWhereControlsAreEnabled) {
  AFX_MODULE_STATE other;
  AFX_MANAGE_STATE(&other);
  EXPECT_FALSE(create());
  EXPECT_EQ(window_.m_hWnd, nullptr);
  EXPECT_EQ(control(), nullptr);
  AfxEnableControlContainer();
  EXPECT_TRUE(create());
}

TEST_F(Control, IsMadeByTheTextOfItsClassToo) {
  EXPECT_FALSE(window_.CreateControl("No.Such.Control", nullptr, style, place, &frame_, id));
  LPOLESTR text = nullptr;
  ASSERT_EQ(StringFromCLSID(TestControlClass::id, &text), S_OK);
  EXPECT_TRUE(window_.CreateControl(CString(text), "Speed", style, place, &frame_, id));
  CoTaskMemFree(text);
  EXPECT_STREQ(control()->calls.at(0).arguments.at(0).bstrVal, L"Speed");
}

TEST_F(Control, IsMadeAtAPointInASizeToo) {
  const POINT at{10, 20};
  const SIZE size{120, 80};
  ASSERT_TRUE(window_.CreateControl(TestControlClass::id, nullptr, style, &at, &size, &frame_, id));
  RECT rect;
  GetWindowRect(window_.m_hWnd, &rect);
  MapWindowPoints(nullptr, frame_.m_hWnd, reinterpret_cast<POINT*>(&rect), 2);
  EXPECT_TRUE(EqualRect(&rect, &place));
}

TEST_F(Control, GivesItsUnknownWithoutAReference) {
  ASSERT_TRUE(create());
  ULONG before = control()->references();
  EXPECT_EQ(window_.GetControlUnknown(), static_cast<IOleObject*>(control()));
  EXPECT_EQ(control()->references(), before);
}

TEST_F(Control, IsClosedAndReleasedWithItsWindow) {
  ASSERT_TRUE(create());
  control()->AddRef();
  TestControl* kept = control();
  EXPECT_TRUE(window_.DestroyWindow());
  EXPECT_TRUE(kept->closed);
  EXPECT_EQ(kept->references(), 1u);
  EXPECT_EQ(window_.m_hWnd, nullptr);
  EXPECT_EQ(window_.GetControlUnknown(), nullptr);
  EXPECT_FALSE(window_.DestroyWindow());
  kept->Release();
}

TEST_F(Control, IsReleasedWithItsObject) {
  {
    CWnd local;
    ASSERT_TRUE(local.CreateControl(TestControlClass::id, nullptr, style, place, &frame_, id));
    EXPECT_EQ(RecordingDispatch::alive, 1);
  }
  EXPECT_EQ(RecordingDispatch::alive, 0);
  EXPECT_EQ(GetDlgItem(frame_.m_hWnd, id), nullptr);
}

TEST_F(Control, IsReleasedWithItsParent) {
  ASSERT_TRUE(create());
  frame_.DestroyWindow();
  EXPECT_EQ(RecordingDispatch::alive, 0);
  EXPECT_EQ(window_.GetControlUnknown(), nullptr);
  BOOL value = 5;
  window_.GetProperty(9, VT_BOOL, &value);
  EXPECT_EQ(value, 0);
}

TEST_F(Control, MayBeMadeAgainInTheNextParent) {
  ASSERT_TRUE(create());
  frame_.DestroyWindow();
  frame_.Attach(CreateWindowA("STATIC", "next", WS_POPUP, 0, 0, 400, 300, nullptr, nullptr, nullptr, nullptr));
  EXPECT_TRUE(create());
  EXPECT_EQ(GetDlgItem(frame_.m_hWnd, id), window_.m_hWnd);
}

TEST_F(Control, OfAClassThatIsNotInstalledIsNotMade) {
  EXPECT_FALSE(window_.CreateControl(IID_IUnknown, "x", style, place, &frame_, id));
  EXPECT_EQ(window_.m_hWnd, nullptr);
  EXPECT_EQ(GetWindow(frame_.m_hWnd, GW_CHILD), nullptr);
  EXPECT_EQ(window_.GetControlUnknown(), nullptr);
}

TEST_F(Control, NeedsAParentAndAnObjectWithoutAWindow) {
  CWnd none;
  EXPECT_FALSE(window_.CreateControl(TestControlClass::id, nullptr, style, place, nullptr, id));
  EXPECT_FALSE(window_.CreateControl(TestControlClass::id, nullptr, style, place, &none, id));
  ASSERT_TRUE(create());
  HWND before = window_.m_hWnd;
  EXPECT_FALSE(create());
  EXPECT_EQ(window_.m_hWnd, before);
  EXPECT_EQ(RecordingDispatch::alive, 1);
}

TEST_F(Control, ThatRefusesToBeginIsNotMade) {
  class_.prepare = [](TestControl* made) { made->refuses_state = true; };
  EXPECT_FALSE(create());
  EXPECT_EQ(RecordingDispatch::alive, 0);
  EXPECT_EQ(GetWindow(frame_.m_hWnd, GW_CHILD), nullptr);
}

TEST_F(Control, TakesTheWindowNameAsItsCaption) {
  ASSERT_TRUE(create("Speed"));
  ASSERT_EQ(control()->calls.size(), 1u);
  EXPECT_EQ(control()->calls[0].id, DISPID_CAPTION);
  EXPECT_EQ(control()->calls[0].flags, DISPATCH_PROPERTYPUT);
  EXPECT_STREQ(control()->calls[0].arguments.at(0).bstrVal, L"Speed");
}

TEST_F(Control, WithoutACaptionTakesTheWindowNameAsItsText) {
  class_.prepare = [](TestControl* made) { made->returned = DISP_E_MEMBERNOTFOUND; };
  ASSERT_TRUE(create("Speed"));
  ASSERT_EQ(control()->calls.size(), 2u);
  EXPECT_EQ(control()->calls[1].id, DISPID_TEXT);
  EXPECT_STREQ(control()->calls[1].arguments.at(0).bstrVal, L"Speed");
}

TEST_F(Control, ThatRaisesAnExceptionAtItsTextIsMadeAllTheSame) {
  class_.prepare = [](TestControl* made) {
    made->returned = DISP_E_EXCEPTION;
    made->raise = [](EXCEPINFO* information) { information->wCode = 7; };
  };
  EXPECT_TRUE(create("Speed"));
  EXPECT_EQ(control()->calls.size(), 2u);
}

TEST_F(Control, LoadsItsStateFromTheRestOfAFile) {
  CMemFile file;
  file.Write("headstate\0of it", 15);
  file.Seek(4, CFile::begin);
  ASSERT_TRUE(create(nullptr, &file));
  EXPECT_EQ(control()->state, std::string("state\0of it", 11));
  EXPECT_FALSE(control()->began_anew);
  EXPECT_EQ(file.GetPosition(), 15u);
}

TEST_F(Control, LoadsItsStateFromACompoundFile) {
  CComPtr<ILockBytes> bytes;
  ASSERT_EQ(CreateILockBytesOnHGlobal(nullptr, TRUE, &bytes), S_OK);
  {
    CComPtr<IStorage> storage;
    ASSERT_EQ(StgCreateDocfileOnILockBytes(bytes, STGM_CREATE | STGM_READWRITE | STGM_SHARE_EXCLUSIVE, 0, &storage),
              S_OK);
    CComPtr<IStream> stream;
    ASSERT_EQ(storage->CreateStream(L"state", STGM_CREATE | STGM_WRITE | STGM_SHARE_EXCLUSIVE, 0, 0, &stream), S_OK);
    ASSERT_EQ(stream->Write("stored", 6, nullptr), S_OK);
  }
  HGLOBAL memory = nullptr;
  ASSERT_EQ(GetHGlobalFromILockBytes(bytes, &memory), S_OK);
  CMemFile file;
  file.Write(GlobalLock(memory), static_cast<UINT>(GlobalSize(memory)));
  GlobalUnlock(memory);
  file.SeekToBegin();

  ASSERT_TRUE(create(nullptr, &file, TRUE));
  EXPECT_EQ(control()->state, "stored");
  window_.DestroyWindow();

  CMemFile junk;
  junk.Write("no compound file", 16);
  junk.SeekToBegin();
  EXPECT_FALSE(create(nullptr, &junk, TRUE));
}

TEST_F(Control, ThatNeedsALicenseIsMadeWithItsKeyOnly) {
  class_.license = L"key";
  EXPECT_FALSE(create());
  EXPECT_FALSE(create(nullptr, nullptr, FALSE, CComBSTR(L"other")));
  EXPECT_TRUE(create(nullptr, nullptr, FALSE, CComBSTR(L"key")));
}

TEST_F(Control, ItsMembersAreCalledAsThoseOfAnyObject) {
  ASSERT_TRUE(create());
  static const BYTE parameters[] = VTS_I2 VTS_R8;
  window_.InvokeHelper(21, DISPATCH_PROPERTYPUT, VT_EMPTY, nullptr, parameters, 2, 1.5);
  window_.SetProperty(DISPID_ENABLED, VT_BOOL, TRUE);
  control()->answer = CComVariant(0.75);
  double value = 0;
  window_.GetProperty(6, VT_R8, &value);
  EXPECT_EQ(value, 0.75);

  ASSERT_EQ(control()->calls.size(), 3u);
  EXPECT_EQ(control()->calls[0].id, 21);
  EXPECT_EQ(control()->calls[0].named, std::vector<DISPID>{DISPID_PROPERTYPUT});
  EXPECT_EQ(control()->calls[0].arguments.at(0).iVal, 2);
  EXPECT_EQ(control()->calls[0].arguments.at(1).dblVal, 1.5);
  EXPECT_EQ(control()->calls[1].id, DISPID_ENABLED);
  EXPECT_EQ(control()->calls[1].arguments.at(0).boolVal, VARIANT_TRUE);
  EXPECT_EQ(control()->calls[2].flags, DISPATCH_PROPERTYGET);
}

TEST_F(Control, ItsExceptionIsThrownAsThatOfAnyObject) {
  ASSERT_TRUE(create());
  ULONG before = control()->references();
  control()->returned = DISP_E_EXCEPTION;
  control()->raise = [](EXCEPINFO* information) {
    information->wCode = 5;
    information->bstrDescription = SysAllocString(L"no");
  };
  try {
    window_.SetProperty(6, VT_R8, 1.0);
    FAIL() << "nothing was thrown";
  } catch (COleDispatchException* exception) {
    EXPECT_EQ(exception->m_wCode, 5);
    EXPECT_STREQ(exception->m_strDescription, "no");
    exception->Delete();
  }
  EXPECT_EQ(control()->references(), before);
}

TEST_F(Control, WithoutADispatchInterfaceIsAnOleException) {
  class_.prepare = [](TestControl* made) { made->has_dispatch = false; };
  ASSERT_TRUE(create("ignored"));
  try {
    window_.SetProperty(6, VT_R8, 1.0);
    FAIL() << "nothing was thrown";
  } catch (COleException* exception) {
    EXPECT_EQ(exception->m_sc, E_NOINTERFACE);
    exception->Delete();
  }
}

TEST_F(Control, AMemberMayDestroyItsOwnWindow) {
  ASSERT_TRUE(create());
  control()->answer = CComVariant(short{3});
  control()->raise = [this](EXCEPINFO*) { window_.DestroyWindow(); };
  short value = 0;
  window_.GetProperty(6, VT_I2, &value);
  EXPECT_EQ(value, 3);
  EXPECT_EQ(window_.m_hWnd, nullptr);
}

TEST_F(Control, AWindowThatHostsNoneCallsNothing) {
  EXPECT_EQ(frame_.GetControlUnknown(), nullptr);
  CString text("before");
  frame_.GetProperty(DISPID_TEXT, VT_BSTR, &text);
  EXPECT_STREQ(text, "");
  frame_.SetProperty(DISPID_TEXT, VT_BSTR, "x");
  window_.InvokeHelper(1, DISPATCH_METHOD, VT_EMPTY, nullptr, nullptr);
}

// A class for one control, as class wizards write it.
class TypedControl : public CWnd {
 public:
  BOOL Create(LPCTSTR, LPCTSTR windowName, DWORD windowStyle, const RECT& rect, CWnd* parent, UINT windowId,
              CCreateContext* = nullptr) override {
    return CreateControl(TestControlClass::id, windowName, windowStyle, rect, parent, windowId);
  }
};

TEST_F(Control, AClassForItMayMakeItInAnOverriddenCreate) {
  TypedControl typed;
  CWnd& window = typed;
  ASSERT_TRUE(window.Create(nullptr, "Speed", style, place, &frame_, id));
  EXPECT_NE(window.GetControlUnknown(), nullptr);
}

TEST_F(Control, AThousandRoundsLeaveNothingBehind) {
  expect_flat(1000, [&] {
    ASSERT_TRUE(create("Speed"));
    control()->calls.clear();
    BOOL value = FALSE;
    window_.GetProperty(9, VT_BOOL, &value);
    window_.DestroyWindow();
    ASSERT_FALSE(window_.CreateControl(IID_IUnknown, nullptr, style, place, &frame_, id));
    ASSERT_EQ(RecordingDispatch::alive, 0);
  });
}

}  // namespace
