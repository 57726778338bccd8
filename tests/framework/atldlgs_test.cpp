// WTL's property sheets and wizards, with the system's.
#include <gtest/gtest.h>

#include <afxres.h>
#include <atlbase.h>
#include <atlapp.h>
#include <atldlgs.h>

#include <framework/resources.h>
#include <support/message_pump.h>
#include <support/picture.h>
#include <support/resource_counts.h>

#include <functional>
#include <string>
#include <type_traits>

namespace {

// The notifications of the pages, by name.
std::string told;

// The answers of a page, which are others in WTL 10 than in 9.1.
#ifdef _WTL_NEW_PAGE_NOTIFY_HANDLERS
constexpr int agrees = 0, skips = -1, refuses = TRUE, does_not_apply = PSNRET_INVALID_NOCHANGEPAGE;
#else
constexpr int agrees = TRUE, skips = FALSE, refuses = FALSE, does_not_apply = FALSE;
#endif

// A page with configurable answers.
template <int t_idd>
class Page : public CPropertyPageImpl<Page<t_idd>> {
  using Impl = CPropertyPageImpl<Page>;

 public:
  enum { IDD = t_idd };
  explicit Page(const char* page_name) : name(page_name) {}

  BEGIN_MSG_MAP(Page)
    MESSAGE_HANDLER(WM_INITDIALOG, OnInitDialog)
    CHAIN_MSG_MAP(Impl)
    NOTIFY_CODE_HANDLER(PSN_APPLY, OnOtherApply)
  END_MSG_MAP()
  LRESULT OnInitDialog(UINT, WPARAM, LPARAM lParam, BOOL&) {
    tell("init");
    EXPECT_EQ(reinterpret_cast<PROPSHEETPAGE*>(lParam)->lParam, reinterpret_cast<LPARAM>(this));
    EXPECT_TRUE(this->IsWindow());
    return TRUE;
  }
  LRESULT OnOtherApply(int, LPNMHDR, BOOL&) { return 12345; }

  int OnSetActive() { return tell("active"), active; }
  BOOL OnKillActive() { return tell("kill"), kill; }
  int OnApply() { return tell("apply"), apply; }
  void OnReset() { tell("reset"); }
  BOOL OnQueryCancel() {
    tell("cancel?");
    return std::exchange(cancel, agrees);
  }
  int OnWizardBack() { return tell("back"), back; }
  int OnWizardNext() {
    tell("next");
    return std::exchange(next, 0);
  }
  auto OnWizardFinish() -> decltype(Impl().OnWizardFinish()) {
    tell("finish");
    return std::exchange(finish, agrees);
  }
  void OnHelp() { tell("help"); }

  int active = agrees, kill = agrees, apply = agrees, cancel = agrees, finish = agrees;
  int back = 0, next = 0;

 private:
  void tell(const char* what) { told += std::string(name) + ' ' + what + ", "; }
  const char* name;
};
using First = Page<IDD_FIRST_PAGE>;
using Second = Page<IDD_SECOND_PAGE>;
using Third = Page<IDD_THIRD_PAGE>;

// A sheet that performs steps, each after all messages of the previous one. At the end it is cancelled if it is still
// open.
class Sheet : public CPropertySheetImpl<Sheet> {
  using Impl = CPropertySheetImpl<Sheet>;

 public:
  using Impl::Impl;

  BEGIN_MSG_MAP(Sheet)
    MESSAGE_HANDLER(WM_APP, OnStep)
    MESSAGE_HANDLER(WM_TIMER, OnTimer)
    CHAIN_MSG_MAP(Impl)
  END_MSG_MAP()

  void OnSheetInitialized() {
    ++initialized;
    EXPECT_TRUE(IsWindow());
    EXPECT_NE(GetTabControl(), nullptr);
    EXPECT_EQ(m_psh.phpage, nullptr);
    EXPECT_EQ(m_psh.nPages, 0u);
    PostMessage(WM_APP);
    SetTimer(1, 20000);
  }
  LRESULT OnStep(UINT, WPARAM, LPARAM, BOOL&) {
    if (step == steps.size()) {
      PressButton(PSBTN_CANCEL);
      return 0;
    }
    steps[step++]();
    if (IsWindow()) PostMessage(WM_APP);
    return 0;
  }
  LRESULT OnTimer(UINT, WPARAM id, LPARAM, BOOL& handled) {
    handled = id == 1;
    if (!handled) return 0;
    ADD_FAILURE() << "the sheet does not end";
    ::EndDialog(m_hWnd, 0);
    return 0;
  }

  // Functions for steps.
  auto press(int button) {
    return [this, button] { PressButton(button); };
  }
  auto go_to(int page) {
    return [this, page] { SetActivePage(page); };
  }
  auto expect_page(int page) {
    return [this, page] { EXPECT_EQ(GetActiveIndex(), page); };
  }
  INT_PTR run(std::vector<std::function<void()>> what) {
    steps = std::move(what);
    step = 0;
    return DoModal();
  }

  int initialized = 0;
  std::vector<std::function<void()>> steps;
  size_t step = 0;
};

class PropertySheetsOnScreen : public testing::Test {
 protected:
  void SetUp() override { told.clear(); }
  void add_pages() {
    EXPECT_TRUE(sheet.AddPage(first));
    EXPECT_TRUE(sheet.AddPage(second));
  }
  void add_wizard_pages() {
    sheet.m_psh.dwFlags |= PSH_WIZARD97;
    add_pages();
    EXPECT_TRUE(sheet.AddPage(third));
  }

  First first{"1"};
  Second second{"2"};
  Third third{"3"};
  Sheet sheet{"Settings"};
};

TEST_F(PropertySheetsOnScreen, AsksForItsCallbackAndNothingElse) {
  Sheet made("title", 2, GetDesktopWindow());
  EXPECT_EQ(made.m_psh.dwSize, sizeof(PROPSHEETHEADER));
  EXPECT_EQ(made.m_psh.dwFlags, DWORD{PSH_USECALLBACK});
  EXPECT_EQ(made.m_psh.hwndParent, GetDesktopWindow());
  EXPECT_EQ(made.m_psh.hInstance, _AtlBaseModule.GetResourceInstance());
  EXPECT_STREQ(made.m_psh.pszCaption, "title");
  EXPECT_EQ(made.m_psh.nStartPage, 2u);
  EXPECT_EQ(made.m_psh.pfnCallback, &Sheet::PropSheetCallback);
  EXPECT_EQ(Sheet(UINT{IDS_FIRST}).m_psh.pszCaption, MAKEINTRESOURCE(IDS_FIRST));
  EXPECT_EQ(Sheet().m_psh.pszCaption, nullptr);
}

TEST_F(PropertySheetsOnScreen, OkAppliesThePagesThatWereThere) {
  add_pages();
  EXPECT_GT(sheet.run({sheet.expect_page(0), sheet.go_to(1), sheet.expect_page(1), sheet.press(PSBTN_OK)}), 0);
  EXPECT_EQ(told, "1 init, 1 active, 1 kill, 2 init, 2 active, 2 kill, 1 apply, 2 apply, ");
  EXPECT_EQ(sheet.initialized, 1);
  EXPECT_EQ(sheet.m_hWnd, nullptr);
  EXPECT_EQ(first.m_hWnd, nullptr);
}

TEST_F(PropertySheetsOnScreen, CancelResetsThePagesThatWereThere) {
  add_pages();
  EXPECT_EQ(sheet.run({sheet.press(PSBTN_CANCEL)}), 0);
  EXPECT_EQ(told, "1 init, 1 active, 1 cancel?, 1 reset, ");
}

TEST_F(PropertySheetsOnScreen, APageMayRefuseToBeCancelled) {
  first.cancel = refuses;
  add_pages();
  EXPECT_EQ(sheet.run({sheet.press(PSBTN_CANCEL), [] { told += "still there, "; }}), 0);
  EXPECT_EQ(told, "1 init, 1 active, 1 cancel?, still there, 1 cancel?, 1 reset, ");
}

TEST_F(PropertySheetsOnScreen, APageMayRefuseToBeLeft) {
  first.kill = refuses;
  add_pages();
  EXPECT_EQ(sheet.run({sheet.go_to(1), sheet.expect_page(0), sheet.press(PSBTN_OK), sheet.expect_page(0)}), 0);
  EXPECT_EQ(told, "1 init, 1 active, 1 kill, 1 kill, 1 cancel?, 1 reset, ");
}

TEST_F(PropertySheetsOnScreen, APageMayRefuseToBeApplied) {
  first.apply = does_not_apply;
  add_pages();
  EXPECT_EQ(sheet.run({sheet.press(PSBTN_OK), sheet.expect_page(0)}), 0);
  EXPECT_EQ(told, "1 init, 1 active, 1 kill, 1 apply, 1 cancel?, 1 reset, ");
}

#ifdef _WTL_NEW_PAGE_NOTIFY_HANDLERS
TEST_F(PropertySheetsOnScreen, APageThatIsNotAppliedMayCallTheUserBack) {
  first.apply = PSNRET_INVALID;
  add_pages();
  EXPECT_EQ(sheet.run({sheet.go_to(1), sheet.press(PSBTN_OK), sheet.expect_page(0)}), 0);
}
#endif

TEST_F(PropertySheetsOnScreen, APageKnowsItsSheet) {
  add_pages();
  sheet.run({[&] { EXPECT_EQ(first.GetPropertySheet().m_hWnd, sheet.m_hWnd); }});
}

TEST_F(PropertySheetsOnScreen, HelpIsThePages) {
  first.m_psp.dwFlags |= PSP_HASHELP;
  sheet.m_psh.dwFlags |= PSH_HASHELP;
  add_pages();
  sheet.run({sheet.press(PSBTN_HELP)});
  EXPECT_EQ(told, "1 init, 1 active, 1 help, 1 cancel?, 1 reset, ");
}

TEST_F(PropertySheetsOnScreen, WhatAControlSaysIsNotTakenForTheSheets) {
  add_pages();
  sheet.run({[&] {
    NMHDR header{first.GetDlgItem(IDC_PUSH), IDC_PUSH, static_cast<UINT>(PSN_APPLY)};
    EXPECT_EQ(first.SendMessage(WM_NOTIFY, IDC_PUSH, reinterpret_cast<LPARAM>(&header)), 12345);
  }});
  EXPECT_EQ(told, "1 init, 1 active, 1 cancel?, 1 reset, ");
}

TEST_F(PropertySheetsOnScreen, BeginsWithThePageAndTheTitleThatItIsGiven) {
  add_pages();
  EXPECT_EQ(sheet.GetActiveIndex(), 0);
  EXPECT_TRUE(sheet.SetActivePage(1));
  EXPECT_EQ(sheet.GetActiveIndex(), 1);
  sheet.m_psh.dwFlags |= PSH_PROPTITLE;
  sheet.SetTitle("Another", PSH_NOAPPLYNOW);
  EXPECT_EQ(sheet.m_psh.dwFlags, DWORD{PSH_USECALLBACK | PSH_NOAPPLYNOW});
  sheet.run({sheet.expect_page(1), [&] {
               char title[80];
               sheet.GetWindowText(title, sizeof title);
               EXPECT_STREQ(title, "Another");
               sheet.SetTitle("Live");
               sheet.GetWindowText(title, sizeof title);
               EXPECT_STREQ(title, "Live");
             }});
  EXPECT_EQ(told, "2 init, 2 active, 2 cancel?, 2 reset, ");
}

TEST_F(PropertySheetsOnScreen, TakesPagesWhileItIsThere) {
  add_pages();
  sheet.run({[&] {
               EXPECT_TRUE(sheet.AddPage(third));
               EXPECT_EQ(sheet.m_arrPages.GetSize(), 0);
               EXPECT_EQ(::SendMessage(sheet.GetTabControl(), TCM_GETITEMCOUNT, 0, 0), 3);
             },
             sheet.go_to(2), [&] { EXPECT_EQ(sheet.GetActivePage(), third.m_hWnd); }});
  EXPECT_EQ(told, "1 init, 1 active, 1 kill, 3 init, 3 active, 3 cancel?, 1 reset, 3 reset, ");
}

TEST_F(PropertySheetsOnScreen, MayBeShownAgainWithNewPages) {
  for (int i = 0; i < 2; ++i) {
    add_pages();
    EXPECT_EQ(sheet.m_arrPages.GetSize(), 2);
    EXPECT_GT(sheet.run({sheet.press(PSBTN_OK)}), 0);
    EXPECT_EQ(sheet.m_arrPages.GetSize(), 0);
  }
  EXPECT_EQ(sheet.initialized, 2);
  EXPECT_EQ(told, "1 init, 1 active, 1 kill, 1 apply, 1 init, 1 active, 1 kill, 1 apply, ");
}

TEST_F(PropertySheetsOnScreen, TakesTheParentGivenFirst) {
  sheet.m_psh.hwndParent = GetDesktopWindow();
  add_pages();
  sheet.run({});
  EXPECT_EQ(sheet.m_psh.hwndParent, GetDesktopWindow());
}

TEST_F(PropertySheetsOnScreen, ATitleOfAPageIsItsTab) {
  CPropertyPage<IDD_FIRST_PAGE> plain("Named"), unnamed;
  EXPECT_TRUE(sheet.AddPage(plain));
  EXPECT_TRUE(sheet.AddPage(unnamed.Create()));
  sheet.run({[&] {
    auto tab = [&](WPARAM index) {
      char text[80];
      TCITEM item{};
      item.mask = TCIF_TEXT;
      item.pszText = text;
      item.cchTextMax = sizeof text;
      ::SendMessage(sheet.GetTabControl(), TCM_GETITEM, index, reinterpret_cast<LPARAM>(&item));
      return std::string(text);
    };
    EXPECT_EQ(tab(0), "Named");
    EXPECT_EQ(tab(1), "First");
    pump_waiting();
    EXPECT_TRUE(Picture(sheet.m_hWnd).save("framework_property_sheet"));
  }});
}

int released = 0;
UINT CALLBACK count_releases(HWND, UINT message, LPPROPSHEETPAGE) {
  if (message == PSPCB_RELEASE) ++released;
  return 1;
}

TEST_F(PropertySheetsOnScreen, PagesGoWithTheSheetThatWasNeverShown) {
  released = 0;
  first.m_psp.dwFlags |= PSP_USECALLBACK;
  first.m_psp.pfnCallback = count_releases;
  {
    Sheet never;
    EXPECT_TRUE(never.AddPage(first));
    EXPECT_TRUE(never.AddPage(first));
  }
  EXPECT_EQ(released, 2);

  add_pages();
  sheet.run({});
  EXPECT_EQ(released, 3) << "the system lets those go that were shown";
}

// The real one copies the handles of its pages, and both objects destroy them.
static_assert(!std::is_copy_constructible_v<Sheet> && !std::is_copy_assignable_v<Sheet>);

TEST_F(PropertySheetsOnScreen, APageThatTheSystemRefusesIsNotAdded) {
  PROPSHEETPAGE none{};
  EXPECT_FALSE(sheet.AddPage(&none));
  EXPECT_FALSE(sheet.AddPage(HPROPSHEETPAGE{}));
  EXPECT_EQ(sheet.m_arrPages.GetSize(), 0);
}

// ---- wizards --------------------------------------------------------------------------------------------------------

TEST_F(PropertySheetsOnScreen, AWizardGoesForthAndBackAndFinishes) {
  add_wizard_pages();
  EXPECT_GT(sheet.run({sheet.press(PSBTN_NEXT), sheet.expect_page(1), sheet.press(PSBTN_BACK), sheet.expect_page(0),
                       sheet.press(PSBTN_NEXT), sheet.press(PSBTN_NEXT),
                       [&] {
                         pump_waiting();
                         EXPECT_TRUE(Picture(sheet.m_hWnd).save("framework_wizard"));
                       },
                       sheet.press(PSBTN_FINISH)}),
            0);
  EXPECT_EQ(told,
            "1 init, 1 active, 1 next, 1 kill, 2 init, 2 active, 2 back, 2 kill, 1 active, 1 next, 1 kill, 2 active, "
            "2 next, 2 kill, 3 init, 3 active, 3 finish, ");
}

TEST_F(PropertySheetsOnScreen, APageOfAWizardMayKeepTheUserOrSendHimElsewhere) {
  add_wizard_pages();
  first.next = -1;
  second.back = -1;
  sheet.run({sheet.press(PSBTN_NEXT), sheet.expect_page(0), sheet.press(PSBTN_NEXT), sheet.expect_page(1),
             sheet.press(PSBTN_BACK), sheet.expect_page(1), [&] { second.back = 0; }, sheet.press(PSBTN_BACK),
             sheet.expect_page(0), [&] { first.next = IDD_THIRD_PAGE; }, sheet.press(PSBTN_NEXT),
             sheet.expect_page(2)});
}

TEST_F(PropertySheetsOnScreen, APageThatDoesNotWantToBeActiveIsPassedOver) {
  add_wizard_pages();
  second.active = skips;
  sheet.run({sheet.press(PSBTN_NEXT), sheet.expect_page(2)});
  EXPECT_EQ(told,
            "1 init, 1 active, 1 next, 1 kill, 2 init, 2 active, 3 init, 3 active, 3 cancel?, 1 reset, 2 reset, "
            "3 reset, ");
}

#ifdef _WTL_NEW_PAGE_NOTIFY_HANDLERS
TEST_F(PropertySheetsOnScreen, APageMayNameThePageToShowInstead) {
  add_wizard_pages();
  second.active = IDD_FIRST_PAGE;
  sheet.run({sheet.press(PSBTN_NEXT), sheet.expect_page(0)});
  EXPECT_EQ(told, "1 init, 1 active, 1 next, 1 kill, 2 init, 2 active, 1 active, 1 cancel?, 1 reset, 2 reset, ");
}
#endif

TEST_F(PropertySheetsOnScreen, APageMayRefuseToFinish) {
  add_wizard_pages();
  first.finish = refuses;
  EXPECT_GT(sheet.run({sheet.press(PSBTN_FINISH), sheet.expect_page(0), sheet.press(PSBTN_FINISH)}), 0);
  EXPECT_EQ(told, "1 init, 1 active, 1 finish, 1 finish, ");
}

TEST_F(PropertySheetsOnScreen, TheButtonsOfAWizardAreSetAfterWhatIsUnderWay) {
  add_wizard_pages();
  auto enabled = [&] { return ::IsWindowEnabled(::GetDlgItem(sheet, ID_WIZNEXT)); };
  sheet.run({[&] {
               EXPECT_TRUE(enabled());
               sheet.SetWizardButtons(PSWIZB_BACK);
               EXPECT_TRUE(enabled());
             },
             [&] { EXPECT_FALSE(enabled()); }});
}

// ---- modeless sheets ------------------------------------------------------------------------------------------------

TEST_F(PropertySheetsOnScreen, AModelessOneGoesWhenItIsClosed) {
  for (auto [message, parameter] :
       {std::pair<UINT, WPARAM>{WM_COMMAND, IDOK}, {WM_COMMAND, IDCANCEL}, {WM_SYSCOMMAND, SC_CLOSE}}) {
    CPropertySheet modeless("Modeless");
    EXPECT_TRUE(modeless.AddPage(first));
    HWND window = modeless.Create();
    ASSERT_TRUE(::IsWindow(window));
    EXPECT_EQ(modeless.m_hWnd, window);
    EXPECT_EQ(modeless.GetActivePage(), first.m_hWnd);
    modeless.SendMessage(message, parameter);
    EXPECT_FALSE(::IsWindow(window)) << message << ' ' << parameter;
    EXPECT_EQ(modeless.m_hWnd, nullptr);
  }
}

TEST_F(PropertySheetsOnScreen, AModelessOneThatMayNotBeClosedStays) {
  first.cancel = refuses;
  CPropertySheet modeless("Modeless");
  EXPECT_TRUE(modeless.AddPage(first));
  modeless.Create();
  modeless.SendMessage(WM_SYSCOMMAND, SC_CLOSE);
  EXPECT_TRUE(modeless.IsWindow());
  modeless.SendMessage(WM_SYSCOMMAND, SC_CLOSE);
  EXPECT_FALSE(modeless.IsWindow());
}

TEST_F(PropertySheetsOnScreen, RoundsLeaveNothingBehind) {
  auto round = [&] {
    First a("a");
    Second b("b");
    Sheet shown("Round");
    shown.AddPage(a);
    shown.AddPage(b);
    shown.run({shown.go_to(1), shown.press(PSBTN_OK)});
    Sheet never;
    never.AddPage(a);
  };
  for (int i = 0; i < 3; ++i) round();
  ResourceCounts before;
  for (int i = 0; i < 20; ++i) round();
  EXPECT_EQ(ResourceCounts(), before);
}

}  // namespace
