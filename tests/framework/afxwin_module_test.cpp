// The application object, module states and resources.
#include <gtest/gtest.h>

#include <afxwin.h>

#include <framework/resources.h>

#include <optional>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

namespace {

TEST(ModuleState, IsThatOfTheProgramUntilItIsSaidOtherwise) {
  EXPECT_EQ(AfxGetModuleState(), AfxGetAppModuleState());
  EXPECT_EQ(AfxGetInstanceHandle(), GetModuleHandleA(nullptr));
  EXPECT_EQ(AfxGetResourceHandle(), GetModuleHandleA(nullptr));
  EXPECT_EQ(AfxGetApp(), nullptr);
}

TEST(ModuleState, HoldsUntilTheBlockEnds) {
  AFX_MODULE_STATE own, inner;
  own.m_hCurrentInstanceHandle = GetModuleHandleA("user32");
  {
    AFX_MANAGE_STATE(&own);
    EXPECT_EQ(AfxGetModuleState(), &own);
    EXPECT_EQ(AfxGetInstanceHandle(), GetModuleHandleA("user32"));
    EXPECT_NE(AfxGetAppModuleState(), &own);
    {
      const AFX_MAINTAIN_STATE2 nested(&inner);
      EXPECT_EQ(AfxGetModuleState(), &inner);
    }
    EXPECT_EQ(AfxGetModuleState(), &own);
  }
  EXPECT_EQ(AfxGetModuleState(), AfxGetAppModuleState());
}

TEST(ModuleState, IsRestoredByAnExceptionToo) {
  AFX_MODULE_STATE own;
  try {
    AFX_MANAGE_STATE(&own);
    throw std::runtime_error("out");
  } catch (const std::runtime_error&) {
  }
  EXPECT_EQ(AfxGetModuleState(), AfxGetAppModuleState());
}

TEST(ModuleState, BelongsToTheThread) {
  AFX_MODULE_STATE own;
  AFX_MANAGE_STATE(&own);
  AFX_MODULE_STATE* of_the_other = nullptr;
  std::thread([&] { of_the_other = AfxGetModuleState(); }).join();
  EXPECT_EQ(of_the_other, AfxGetAppModuleState());
}

TEST(ModuleState, SettingNullMeansThatOfTheProgram) {
  AFX_MODULE_STATE own;
  EXPECT_EQ(AfxSetModuleState(&own), AfxGetAppModuleState());
  EXPECT_EQ(AfxSetModuleState(nullptr), &own);
  EXPECT_EQ(AfxGetModuleState(), AfxGetAppModuleState());
}

TEST(Resources, AreThoseOfTheModuleThatIsSet) {
  HINSTANCE shell = LoadLibraryA("shell32.dll");
  AfxSetResourceHandle(shell);
  EXPECT_EQ(AfxGetResourceHandle(), shell);
  EXPECT_EQ(AfxFindResourceHandle(MAKEINTRESOURCE(1), RT_VERSION), shell);
  AfxSetResourceHandle(GetModuleHandleA(nullptr));
}

TEST(Resources, AreLookedForInThisModuleAndThenInTheLibrariesTheNewestFirst) {
  HINSTANCE program = GetModuleHandleA(nullptr);
  HINSTANCE shell = LoadLibraryA("shell32.dll"), controls = LoadLibraryA("comctl32.dll");
  // The program has a manifest, but no version resource.
  const auto manifest = [] { return AfxFindResourceHandle(MAKEINTRESOURCE(1), RT_MANIFEST); };
  const auto version = [] { return AfxFindResourceHandle(MAKEINTRESOURCE(1), RT_VERSION); };
  EXPECT_EQ(version(), nullptr);
  {
    CDynLinkLibrary older(shell, shell);
    EXPECT_EQ(version(), shell);
    {
      CDynLinkLibrary newer(controls, controls);
      EXPECT_EQ(version(), controls);
      EXPECT_EQ(manifest(), program);
    }
    EXPECT_EQ(version(), shell);
    EXPECT_EQ(AfxFindResourceHandle("nobody has it", RT_BITMAP), nullptr);
  }
  EXPECT_EQ(version(), nullptr);
}

TEST(Resources, AStringIsFoundInTheLibraryThatHasIt) {
  HINSTANCE shell = LoadLibraryA("shell32.dll");
  UINT id = 1;
  char expected[200];
  while (!LoadStringA(shell, id, expected, sizeof expected)) ASSERT_LT(++id, 65535u);

  CString text;
  EXPECT_EQ(AfxFindStringResourceHandle(id), nullptr);
  EXPECT_FALSE(text.LoadString(id));
  CDynLinkLibrary library(shell, shell);
  EXPECT_EQ(AfxFindStringResourceHandle(id), shell);
  EXPECT_TRUE(text.LoadString(id));
  EXPECT_STREQ(text, expected);
  EXPECT_EQ(AfxFindStringResourceHandle(IDS_FIRST), GetModuleHandleA(nullptr));
  EXPECT_NE(AfxFindStringResourceHandle(IDS_MISSING), GetModuleHandleA(nullptr)) << "it has the block, not the string";
  EXPECT_EQ(AfxFindStringResourceHandle(65535), nullptr);
}

// Records the requests for help.
class HelpfulApp : public CWinApp {
 public:
  using CWinApp::CWinApp;
  void WinHelp(DWORD_PTR data, UINT command) override { asked.push_back({data, command}); }

  std::vector<std::pair<DWORD_PTR, UINT>> asked;
};

TEST(Application, IsKnownAsLongAsItLives) {
  {
    CWinApp app("name");
    EXPECT_STREQ(app.m_pszAppName, "name");
    EXPECT_EQ(AfxGetApp(), &app);
    EXPECT_EQ(AfxGetThread(), &app);
    EXPECT_EQ(app.m_nThreadID, GetCurrentThreadId());
    EXPECT_EQ(app.m_hInstance, GetModuleHandleA(nullptr));
    CWinApp* on_another_thread = nullptr;
    std::thread([&] { on_another_thread = AfxGetApp(); }).join();
    EXPECT_EQ(on_another_thread, &app);
  }
  EXPECT_EQ(AfxGetApp(), nullptr);
  EXPECT_EQ(AfxGetThread(), nullptr);
}

TEST(Application, BelongsToTheModuleWhoseStateHeldWhenItWasMade) {
  AFX_MODULE_STATE own;
  {
    CWinApp of_the_program;
    std::optional<CWinApp> of_the_module;
    {
      AFX_MANAGE_STATE(&own);
      EXPECT_EQ(AfxGetApp(), nullptr);
      of_the_module.emplace();
      EXPECT_EQ(AfxGetApp(), &*of_the_module);
    }
    EXPECT_EQ(AfxGetApp(), &of_the_program);
  }
  EXPECT_EQ(own.m_pCurrentWinApp, nullptr);
  EXPECT_EQ(AfxGetApp(), nullptr);
}

TEST(Application, HasTheMainWindowThatItIsGiven) {
  CWinApp app;
  EXPECT_EQ(AfxGetMainWnd(), nullptr);
  CWnd window;
  app.m_pMainWnd = &window;
  EXPECT_EQ(AfxGetMainWnd(), &window);
}

TEST(Application, TakesOverWhatTheProgramWasCalledWith) {
  char command_line[] = "a b";
  HINSTANCE program = GetModuleHandleA(nullptr), user = GetModuleHandleA("user32");
  CWinApp app;
  EXPECT_EQ(app.m_nCmdShow, SW_SHOWNORMAL);
  EXPECT_TRUE(AfxWinInit(user, nullptr, command_line, SW_SHOWMAXIMIZED));
  EXPECT_EQ(app.m_hInstance, user);
  EXPECT_EQ(app.m_lpCmdLine, command_line);
  EXPECT_EQ(app.m_nCmdShow, SW_SHOWMAXIMIZED);
  EXPECT_EQ(AfxGetInstanceHandle(), user);
  EXPECT_EQ(AfxGetResourceHandle(), user);
  EXPECT_TRUE(AfxWinInit(program, nullptr, command_line, SW_SHOW));
}

TEST(Application, RunsUntilItIsToldToQuitAndReturnsTheCode) {
  static int ticks;
  ticks = 0;
  CWinApp app;
  CWnd window;
  app.m_pMainWnd = &window;
  EXPECT_TRUE(app.InitInstance());
  SetTimer(nullptr, 0, 1, [](HWND, UINT, UINT_PTR id, DWORD) {
    if (++ticks < 3) return;
    KillTimer(nullptr, id);
    PostQuitMessage(7);
  });
  EXPECT_EQ(app.Run(), 7);
  EXPECT_EQ(ticks, 3);
}

TEST(Application, WithoutAMainWindowEndsAtOnce) {
  CWinApp app;
  EXPECT_EQ(app.Run(), 0);
}

TEST(Application, IsAskedForHelpByItsVirtualFunction) {
  HelpfulApp app;
  AfxGetApp()->WinHelp(0x20000 + 130, HELP_CONTEXT);
  AfxGetApp()->WinHelpInternal(0x20000 + 131);
  EXPECT_EQ(app.asked, (std::vector<std::pair<DWORD_PTR, UINT>>{{0x20082, 1}, {0x20083, 1}}));
}

// A window of the help program's class; counts the messages it receives.
class HelpProgram {
 public:
  HelpProgram() {
    WNDCLASSA description{};
    description.lpfnWndProc = [](HWND receiver, UINT message, WPARAM wparam, LPARAM lparam) -> LRESULT {
      if (message == WM_COPYDATA) {
        const auto* data = reinterpret_cast<const COPYDATASTRUCT*>(lparam);
        sent.emplace_back(static_cast<const char*>(data->lpData), data->cbData);
        return TRUE;
      }
      return DefWindowProcA(receiver, message, wparam, lparam);
    };
    description.lpszClassName = "MS_WINHELP";
    RegisterClassA(&description);
    sent.clear();
    window = CreateWindowA("MS_WINHELP", "", WS_POPUP, 0, 0, 1, 1, nullptr, nullptr, nullptr, nullptr);
  }
  ~HelpProgram() {
    DestroyWindow(window);
    UnregisterClassA("MS_WINHELP", nullptr);
  }
  HelpProgram(const HelpProgram&) = delete;
  HelpProgram& operator=(const HelpProgram&) = delete;

  HWND window;
  static inline std::vector<std::string> sent;
};

TEST(Application, ShowsItsHelpFileInTheHelpProgram) {
  HelpProgram help;
  CWnd window;
  window.Attach(CreateWindowA("STATIC", "", WS_POPUP, 0, 0, 1, 1, nullptr, nullptr, nullptr, nullptr));
  CWinApp app;
  app.WinHelp(1);
  app.m_pszHelpFilePath = "product.hlp";
  app.WinHelp(1);
  app.m_pMainWnd = &window;
  app.m_pszHelpFilePath = nullptr;
  app.WinHelp(1);
  EXPECT_TRUE(help.sent.empty()) << "without a help file or a main window there is no help";

  app.m_pszHelpFilePath = "product.hlp";
  app.WinHelp(1);
  ASSERT_EQ(help.sent.size(), 1u);
  EXPECT_NE(help.sent[0].find("product.hlp"), std::string::npos);
}

}  // namespace
