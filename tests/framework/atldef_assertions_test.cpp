// The assertions of ATL and WTL. Each ends a process of its own, in every build.
#include <gtest/gtest.h>

#include <atlbase.h>
#include <atlimage.h>
#include <atlapp.h>
#include <atlctrls.h>
#include <atlctrlx.h>
#include <atldlgs.h>

#include <string>

namespace {

class Window : public CWindowImpl<Window, CWindow, CFrameWinTraits> {
 public:
  BEGIN_MSG_MAP(Window)
  END_MSG_MAP()
};

HWND make_static() { return CreateWindow("STATIC", "", WS_POPUP, 0, 0, 9, 9, nullptr, nullptr, nullptr, nullptr); }

struct Mistake {
  const char* name;
  const char* assertion;  // a part of it
  void (*make)();
};

const Mistake mistakes[] = {
    {"DescribesNoBitmap", "m_hBitmap",
     [] {
       BITMAP description;
       CBitmap().GetBitmap(description);
     }},
    {"DeletesNoBitmap", "m_hBitmap", [] { CBitmap().DeleteObject(); }},
    {"MakesABitmapOverAnother", "!m_hBitmap",
     [] {
       CClientDC screen(nullptr);
       CBitmap bitmap;
       bitmap.CreateCompatibleBitmap(screen, 1, 1);
       bitmap.CreateCompatibleBitmap(screen, 1, 1);
     }},
    {"DescribesNoFont", "m_hFont",
     [] {
       LOGFONT description;
       CFont().GetLogFont(description);
     }},
    {"MakesAFontOverAnother", "!m_hFont",
     [] {
       CFont font;
       font.CreatePointFont(90, "Tahoma");
       font.CreatePointFont(90, "Tahoma");
     }},
    {"DeletesNoDeviceContext", "m_hDC", [] { CDC().DeleteDC(); }},
    {"MakesADeviceContextOverAnother", "!m_hDC",
     [] {
       CDC dc;
       dc.CreateCompatibleDC();
       dc.CreateCompatibleDC();
     }},
    {"PaintsNoWindow", "m_hDC && ::IsWindow", [] { CPaintDC paint(nullptr); }},
    {"DetachesNoImage", "m_hBitmap", [] { CImage().Detach(); }},
    {"MeasuresNoImage", "bitmap", [] { CImage().GetWidth(); }},

    {"CountsNoImageList", "m_hImageList", [] { CImageList().GetImageCount(); }},
    {"AddsToNoImageList", "m_hImageList", [] { CImageList().Add(nullptr); }},
    {"MeasuresNoImageList", "m_hImageList",
     [] {
       int width = 0, height = 0;
       CImageList().GetIconSize(width, height);
     }},
    {"DrawsNoImageList", "m_hImageList", [] { CImageList().Draw(nullptr, 0, 0, 0, ILD_NORMAL); }},
    {"OverlaysNoImageList", "m_hImageList", [] { CImageList().SetOverlayImage(0, 1); }},
    {"MakesAnImageListOverAnother", "!m_hImageList",
     [] {
       CImageListT<true> images;
       images.Create(1, 1, ILC_COLOR32, 1, 1);
       images.Create(1, 1, ILC_COLOR32, 1, 1);
     }},

    {"SendsToNoWindow", "IsWindow", [] { CWindow().SendMessage(WM_USER); }},
    {"MovesNoWindow", "IsWindow", [] { CWindow().MoveWindow(0, 0, 1, 1); }},
    {"CentersNoWindow", "IsWindow", [] { CWindow().CenterWindow(); }},
    {"ChecksNoButton", "IsWindow", [] { CButton().SetCheck(1); }},
    {"DestroysAWindowThatIsGone", "IsWindow",
     [] {
       CWindow window(make_static());
       ::DestroyWindow(window);
       window.DestroyWindow();
     }},
    {"MakesAWindowOverAnother", "!m_hWnd",
     [] {
       CStatic text(make_static());
       text.Create(nullptr);
     }},
    {"MakesAWindowOfAnObjectThatHasOne", "!this->m_hWnd",
     [] {
       Window window;
       window.Create(nullptr);
       window.Create(nullptr);
     }},
    {"SubclassesNoWindow", "::IsWindow", [] { Window().SubclassWindow(nullptr); }},
    {"SubclassesWithAnObjectThatHasAWindow", "!this->m_hWnd",
     [] {
       Window window;
       window.Attach(make_static());
       window.SubclassWindow(make_static());
     }},
    {"LeavesNoWindow", "this->m_hWnd", [] { Window().UnsubclassWindow(); }},
    {"LeavesAWindowThatItNeverSubclassed", "ours",
     [] {
       Window window;
       window.Attach(make_static());
       window.UnsubclassWindow();
     }},

    {"TakesAComPointerOver", "!p",
     [] {
       CComPtr<IStream> stream;
       CreateStreamOnHGlobal(nullptr, TRUE, &stream);
       CreateStreamOnHGlobal(nullptr, TRUE, &stream);
     }},
    {"CallsThroughNoComPointer", "p", [] { CComPtr<IStream>()->Revert(); }},
    {"MakesAnObjectOverAnother", "!p",
     [] {
       CComPtr<IStream> stream;
       CreateStreamOnHGlobal(nullptr, TRUE, &stream);
       stream.CoCreateInstance(CLSID_NULL);
     }},
    {"CopiesAComPointerNowhere", "target", [] { CComPtr<IStream>().CopyTo(nullptr); }},
    {"TakesATextOver", "!m_str",
     [] {
       CComBSTR text(L"a");
       *&text = nullptr;
     }},
    {"AttachesATextOverAnother", "!m_str", [] { CComBSTR(L"a").Attach(nullptr); }},
    {"ReadsBeyondAnArray", "index", [] { CSimpleArray<int>()[0] = 1; }},

    {"PaintsAButtonWithoutImages", "m_ImageList",
     [] {
       CBitmapButton button(0);
       button.SubclassWindow(make_static());
       button.SendMessage(WM_PAINT);
     }},
    {"PaintsAButtonWithoutItsNormalImage", "_nImageNormal",
     [] {
       CBitmapButton button(0, ImageList_Create(1, 1, ILC_COLOR32, 1, 1));
       button.SubclassWindow(make_static());
       button.SendMessage(WM_PAINT);
     }},
    {"SizesAButtonToNoImages", "m_ImageList",
     [] {
       CBitmapButton button(BMPBTN_AUTOSIZE);
       button.SubclassWindow(make_static());
       button.SetImageList(nullptr);
     }},
    {"ShowsTheCheckOfNoButton", "IsWindow", [] { CBitmapButton(0).SetCheck(true); }},
};

class AssertionInChildProcess : public testing::TestWithParam<Mistake> {};

TEST_P(AssertionInChildProcess, EndsTheProgram) {
  EXPECT_EXIT(GetParam().make(), testing::ExitedWithCode(3),
              std::string("assertion failed: .*") + GetParam().assertion);
}

INSTANTIATE_TEST_SUITE_P(Mistakes, AssertionInChildProcess, testing::ValuesIn(mistakes),
                         [](const auto& each) { return std::string(each.param.name); });

}  // namespace
