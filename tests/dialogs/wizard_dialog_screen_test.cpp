// Real wizards on the screen, operated as a user operates them.
#define _WTL_NO_AUTOMATIC_NAMESPACE
#include <gtest/gtest.h>

#include <kexlib/dialogs/wizard_dialog.h>

#include <afxwin.h>

#include <dialogs/dialog_driver.h>
#include <dialogs/resources.h>
#include <dialogs/wizard_dialog_fixture.h>
#include <support/c_library.h>
#include <support/import_override.h>
#include <support/resource_counts.h>
#include <support/user_input.h>
#include <support/window_text.h>

#include <array>
#include <functional>
#include <utility>
#include <vector>

namespace {

class WizardOnScreen : public testing::Test {
 protected:
  ~WizardOnScreen() override { EXPECT_EQ(dialog_in_front(), nullptr); }

  void add_pages(kexWizardDialog& to) {
    to.add_page(name);
    to.add_page(place);
    to.add_page(summary);
  }
  INT_PTR run(kexWizardDialog& shown, std::vector<Step> steps) {
    DialogDriver person(std::move(steps));
    return shown.DoModal(nullptr);
  }
  // Cancels the wizard at the end.
  void show(kexWizardDialog& shown, std::vector<Step> steps) {
    add_pages(shown);
    steps.push_back(press(PSBTN_CANCEL));
    EXPECT_EQ(run(shown, std::move(steps)), 0);
  }

  Page<IDD_NAME_PAGE> name;
  Page<IDD_PLACE_PAGE> place;
  Page<IDD_SUMMARY_PAGE> summary;
  Wizard wizard{"New part"};
};

// Reserves space for the row of buttons, as a derived wizard may.
void widen(HWND sheet) {
  RECT rect;
  GetWindowRect(sheet, &rect);
  SetWindowPos(sheet, nullptr, 0, 0, rect.right - rect.left + 200, rect.bottom - rect.top, SWP_NOMOVE | SWP_NOZORDER);
}
Step click_on_page(int page, int button) {
  return click_on([=](HWND sheet) { return page_of(sheet) == page ? GetDlgItem(sheet, button) : nullptr; });
}

TEST_F(WizardOnScreen, GoesForthAndBackAndFinishesByTheMouse) {
  wizard.initialized = [this] { widen(wizard); };
  add_pages(wizard);
  EXPECT_GT(run(wizard, {click_on_page(0, ID_WIZNEXT), click_on_page(1, ID_WIZBACK), click_on_page(0, ID_WIZNEXT),
                         click_on_page(1, ID_WIZNEXT), wait_for_page(2), take_picture("wizard_widened"),
                         click_on_page(2, ID_WIZFINISH)}),
            0);
  add_pages(wizard);
  EXPECT_EQ(run(wizard, {click_on_page(0, ID_WIZNEXT), click_on_page(1, IDCANCEL)}), 0);
}

TEST_F(WizardOnScreen, GoesForthAndBackByTheKeyboard) {
  show(wizard, {press_the_key_on(0, 'N', VK_MENU), press_the_key_on(1, 'B', VK_MENU), wait_for_page(0)});
}

TEST_F(WizardOnScreen, CanBeFinishedOnEachPage) {
  add_pages(wizard);
  EXPECT_GT(run(wizard, {wait_for_page(0), press(PSBTN_FINISH)}), 0);
}

TEST_F(WizardOnScreen, IsCancelledByEscapeAndByItsCaption) {
  add_pages(wizard);
  EXPECT_EQ(run(wizard, {press_the_key_on(0, VK_ESCAPE)}), 0);
  add_pages(wizard);
  EXPECT_EQ(run(wizard, {then([](HWND sheet) { PostMessageA(sheet, WM_SYSCOMMAND, SC_CLOSE, 0); })}), 0);
}

TEST_F(WizardOnScreen, LooksLikeThis) {
  show(wizard, {take_picture("wizard_page_1"), press(PSBTN_NEXT), wait_for_page(1), take_picture("wizard_page_2"),
                press(PSBTN_NEXT), wait_for_page(2), take_picture("wizard_page_3")});
}

TEST_F(WizardOnScreen, HasItsTitleFromATextOrAResource) {
  wizard.initialized = [this] { EXPECT_EQ(window_text(wizard), "New part"); };
  show(wizard, {});
  Wizard of_resource(UINT{IDS_TITLE}, 0, nullptr), of_none(UINT{IDS_MISSING}, 0, nullptr);
  of_resource.initialized = [&] { EXPECT_EQ(window_text(of_resource), "New part"); };
  show(of_resource, {});
  of_none.initialized = [&] { EXPECT_EQ(window_text(of_none), ""); };
  show(of_none, {});
}

TEST_F(WizardOnScreen, TakesAnotherTitleWhileItIsThere) {
  wizard.SetTitle("goes before the title of the constructor?");
  wizard.initialized = [this] { EXPECT_EQ(window_text(wizard), "New part"); };  // no
  show(wizard, {then([this](HWND sheet) {
         wizard.SetTitle("Another", 0);
         EXPECT_EQ(window_text(sheet), "Another");
       })});
}

// The message does not reach the buttons, and WM_GETFONT of a dialog returns another font.
TEST_F(WizardOnScreen, IsGivenAFontThatItsButtonsAreNot) {
  LOGFONTA description{};
  show(wizard, {then([&](HWND sheet) {
         ASSERT_EQ(GetObjectA(wizard.font, sizeof description, &description), int{sizeof description});
         EXPECT_EQ(wizard.redrawn, TRUE);
         EXPECT_STREQ(description.lfFaceName, "Arial");
         HDC screen = GetDC(nullptr);
         EXPECT_EQ(description.lfHeight, -MulDiv(GetDeviceCaps(screen, LOGPIXELSY), 120, 720));
         ReleaseDC(nullptr, screen);
         EXPECT_EQ(description.lfCharSet, DEFAULT_CHARSET);
         EXPECT_EQ(description.lfWeight, 0);
         for (const int id : row)
           EXPECT_NE(SendDlgItemMessageA(sheet, id, WM_GETFONT, 0, 0), reinterpret_cast<LRESULT>(wizard.font));
       })});
  { Wizard copy(wizard); }
  EXPECT_EQ(GetObjectType(wizard.font), DWORD{OBJ_FONT}) << "the original holds it too";
  const HFONT first = wizard.font;
  wizard = Wizard();
  EXPECT_EQ(GetObjectType(first), 0u);
}

int WINAPI fine_screen(HDC dc, int what) { return what == LOGPIXELSY ? 7200 : GetDeviceCaps(dc, what); }

// On a usual screen similar sizes have the same number of pixels.
TEST_F(WizardOnScreen, IsGivenAFontOfTwelvePoints) {
  const ImportOverride fine("kexlib.dll", "gdi32.dll", "GetDeviceCaps", &fine_screen);
  ASSERT_TRUE(fine.made());
  LOGFONTA description{};
  show(wizard, {then([&](HWND) { GetObjectA(wizard.font, sizeof description, &description); })});
  EXPECT_EQ(description.lfHeight, -1200);
}

// The same sheet as the system lays it out.
class PlainWizard : public WTL::CPropertySheetImpl<PlainWizard> {
 public:
  PlainWizard() { m_psh.dwFlags = 0x01000190; }
  void OnSheetInitialized() {
    for (size_t i = 0; i < places.size(); ++i) places[i] = place_of(m_hWnd, row[i]);
    style = GetExStyle();
  }
  std::array<RECT, 5> places;
  DWORD style = 0;
};

TEST_F(WizardOnScreen, CanBeAskedForHelpInItsCaption) {
  PlainWizard plain;
  ASSERT_TRUE(plain.AddPage(name.psp()));
  {
    DialogDriver person({press(PSBTN_CANCEL)});
    EXPECT_EQ(plain.DoModal(nullptr), 0);
  }
  DWORD style = 0;
  wizard.initialized = [&] { style = wizard.GetExStyle(); };
  show(wizard, {});
  EXPECT_NE(style, plain.style);
  EXPECT_EQ(style, plain.style | WS_EX_CONTEXTHELP);
}

TEST_F(WizardOnScreen, MovesItsRowOfButtonsToTheRightOfWhereBackWas) {
  PlainWizard plain;
  for (kexWizardPageInfoHolder* page : std::initializer_list<kexWizardPageInfoHolder*>{&name, &place, &summary})
    ASSERT_TRUE(plain.AddPage(page->psp()));
  {
    DialogDriver person({press(PSBTN_CANCEL)});
    EXPECT_EQ(plain.DoModal(nullptr), 0);
  }
  int initialized = 0;
  wizard.initialized = [&] {
    ++initialized;
    LONG x = plain.places[2].right + 6;
    for (size_t i = 0; i < plain.places.size(); ++i) {
      const RECT before = plain.places[i], now = place_of(wizard, row[i]);
      EXPECT_EQ(now.left, x) << row[i];
      EXPECT_EQ(now.right - now.left, before.right - before.left) << row[i];
      EXPECT_EQ(now.top, before.top) << row[i];
      EXPECT_EQ(now.bottom, before.bottom) << row[i];
      x = now.right + 6;
    }
  };
  show(wizard, {});
  EXPECT_EQ(initialized, 1);
  show(wizard, {});  // once each time, from the positions that the system set
  EXPECT_EQ(initialized, 2);
}

POINT middle_of(const RECT& rect) { return {(rect.left + rect.right) / 2, (rect.top + rect.bottom) / 2}; }

void expect_centred(HWND sheet, const RECT& over) {
  RECT rect;
  GetWindowRect(sheet, &rect);
  EXPECT_NEAR(middle_of(rect).x, middle_of(over).x, 1);
  EXPECT_NEAR(middle_of(rect).y, middle_of(over).y, 1);
}

TEST_F(WizardOnScreen, IsCentredOnceInTheWorkArea) {
  RECT work;
  SystemParametersInfoA(SPI_GETWORKAREA, 0, &work, 0);
  const auto move_away = [](HWND sheet) {
    ShowWindow(sheet, SW_HIDE);
    SetWindowPos(sheet, nullptr, 3, 4, 0, 0, SWP_NOSIZE | SWP_NOZORDER);
    ShowWindow(sheet, SW_SHOW);
    RECT rect;
    GetWindowRect(sheet, &rect);
    EXPECT_EQ(rect.left, 3);
    EXPECT_EQ(rect.top, 4);
  };
  show(wizard, {then([&](HWND sheet) {
         expect_centred(sheet, work);
         move_away(sheet);
       })});
}

TEST_F(WizardOnScreen, IsCentredWhenItIsShownAndNotBefore) {
  wizard.initialized = [this] {
    SetWindowPos(wizard, nullptr, 3, 4, 0, 0, SWP_NOSIZE | SWP_NOZORDER);
    wizard.SendMessage(WM_SHOWWINDOW, FALSE);
    wizard.SendMessage(Wizard::posted_message, TRUE);
    RECT rect;
    wizard.GetWindowRect(&rect);
    EXPECT_EQ(rect.left, 3);
    EXPECT_EQ(rect.top, 4);
  };
  RECT work;
  SystemParametersInfoA(SPI_GETWORKAREA, 0, &work, 0);
  show(wizard, {then([&](HWND sheet) { expect_centred(sheet, work); })});
}

TEST_F(WizardOnScreen, IsCentredOnceOverItsOwner) {
  const HWND owner =
      CreateWindowA("STATIC", "owner", WS_POPUP | WS_VISIBLE, 250, 180, 500, 430, nullptr, nullptr, nullptr, nullptr);
  RECT over;
  GetWindowRect(owner, &over);
  Wizard owned("Owned", 0, owner);
  show(owned, {then([&](HWND sheet) {
         EXPECT_EQ(GetWindow(sheet, GW_OWNER), owner);
         EXPECT_FALSE(IsWindowEnabled(owner));
         expect_centred(sheet, over);
       })});
  EXPECT_TRUE(IsWindowEnabled(owner));

  // The second time it keeps its position.
  owned.initialized = [&] { SetWindowPos(owned, nullptr, 3, 4, 0, 0, SWP_NOSIZE | SWP_NOZORDER); };
  RECT second{};
  show(owned, {then([&](HWND sheet) { GetWindowRect(sheet, &second); })});
  EXPECT_NE(middle_of(second).x, middle_of(over).x);
  DestroyWindow(owner);
}

TEST_F(WizardOnScreen, TakesAPageWhileItIsThere) {
  Page<IDD_EXTRA_PAGE> extra;
  HelpfulApp app;
  show(wizard, {then([&](HWND sheet) {
         wizard.add_page(extra);
         EXPECT_EQ(wizard.get_pages_count(), 4);
         EXPECT_TRUE(wizard.SetActivePage(3));
         EXPECT_EQ(wizard.GetActiveIndex(), 3);
         EXPECT_EQ(SendMessageA(sheet, PSM_GETCURRENTPAGEHWND, 0, 0), reinterpret_cast<LRESULT>(extra.m_hWnd));
         SendMessageA(sheet, WM_HELP, 0, 0);
       })});
  EXPECT_EQ(app.asked, (decltype(app.asked){{IDD_EXTRA_PAGE + 0x20000, 1}}));
}

TEST_F(WizardOnScreen, F1AsksTheApplicationForHelpOnThePage) {
  HelpfulApp app;
  const auto asked = [&](size_t times) { return [&app, times](HWND) { return app.asked.size() >= times; }; };
  show(wizard, {press_the_key_on(0, VK_F1), asked(1), press(PSBTN_NEXT), press_the_key_on(1, VK_F1), asked(2),
                press(PSBTN_NEXT), press_the_key_on(2, VK_F1), asked(3)});
  EXPECT_EQ(app.asked,
            (decltype(app.asked){
                {IDD_NAME_PAGE + 0x20000, 1}, {IDD_PLACE_PAGE + 0x20000, 1}, {IDD_SUMMARY_PAGE + 0x20000, 1}}));
}

TEST_F(WizardOnScreen, F1DoesNothingWithoutAnApplication) {
  show(wizard,
       {press_the_key_on(0, VK_F1), then([](HWND sheet) { EXPECT_EQ(SendMessageA(sheet, WM_HELP, 0, 0), 0); })});
}

TEST_F(WizardOnScreen, AsksTheProgramsApplicationWhateverModuleStateHolds) {
  HelpfulApp app;
  AFX_MODULE_STATE other;
  show(wizard, {then([&](HWND sheet) {
         AFX_MANAGE_STATE(&other);
         SendMessageA(sheet, WM_HELP, 0, 0);
         EXPECT_EQ(AfxGetModuleState(), &other);
       })});
  EXPECT_EQ(app.asked.size(), 1u);
}

TEST_F(WizardOnScreen, PostsMessagesToItsWindow) {
  const std::vector<std::pair<WPARAM, LPARAM>> once{{3, 4}};
  show(wizard, {then([this](HWND) {
                  EXPECT_TRUE(wizard.PostMessageA(Wizard::posted_message, 3, 4));
                  EXPECT_TRUE(wizard.posted.empty()) << "it is not sent";
                }),
                [&](HWND) { return wizard.posted == once; }});
}

// The exception would unwind stack frames of the system, which does not support that.
TEST(WizardInChildProcess, AnExceptionThatLeavesItsInitializationEndsTheProgram) {
  EXPECT_EXIT(
      {
        Page<IDD_NAME_PAGE> name;
        Wizard wizard("New part");
        wizard.add_page(name);
        wizard.initialized = [] { throw 1; };
        wizard.DoModal(nullptr);
      },
      testing::ExitedWithCode(3), c_library::said_by_terminate);
}

TEST_F(WizardOnScreen, ShowsItsIcon) {
  const HICON icon = LoadIconA(nullptr, IDI_QUESTION);
  wizard.set_icon(icon);
  show(wizard, {then([icon](HWND sheet) {
         const LRESULT wanted = reinterpret_cast<LRESULT>(icon);
         EXPECT_TRUE(SendMessageA(sheet, WM_GETICON, ICON_BIG, 0) == wanted ||
                     SendMessageA(sheet, WM_GETICON, ICON_SMALL, 0) == wanted);
       })});
}

TEST_F(WizardOnScreen, ACopyRunsAsTheOriginalWould) {
  add_pages(wizard);
  Wizard copy(wizard);
  copy.initialized = [&] { EXPECT_EQ(window_text(copy), "New part"); };
  EXPECT_GT(run(copy, {then([&](HWND sheet) { EXPECT_EQ(copy.m_hWnd, sheet); }), press(PSBTN_FINISH)}), 0);
  EXPECT_EQ(wizard.m_hWnd, nullptr);
  const Wizard of_what_was_shown(copy);
  EXPECT_EQ(of_what_was_shown.m_arrPages.GetSize(), 0);
  EXPECT_EQ(of_what_was_shown.get_pages_count(), wizard.get_pages_count());
  EXPECT_GT(run(wizard, {then([&](HWND sheet) { EXPECT_EQ(wizard.m_hWnd, sheet); }), press(PSBTN_FINISH)}), 0)
      << "it has pages of its own";
}

TEST_F(WizardOnScreen, ACopyOfAShownOneHasNoWindow) {
  show(wizard, {then([&](HWND sheet) {
         const Wizard copy(wizard);
         EXPECT_EQ(wizard.m_hWnd, sheet);
         EXPECT_EQ(copy.m_hWnd, nullptr);
         EXPECT_EQ(copy.m_arrPages.GetSize(), 0);
       })});
}

TEST_F(WizardOnScreen, BeginsWithThePageThatItIsTold) {
  Wizard second("Second", 1);
  show(second, {wait_for_page(1)});
  for (const int page : {3, 99, -1}) {
    Wizard beyond("Beyond", page);
    show(beyond, {then([page](HWND sheet) { EXPECT_EQ(page_of(sheet), 0) << page; })});
  }
}

TEST_F(WizardOnScreen, LeavesAPageOutThatTheSystemRefuses) {
  NoPage none;
  add_pages(wizard);
  wizard.add_page(none);
  EXPECT_EQ(run(wizard, {then([](HWND sheet) {
                           const auto tabs = reinterpret_cast<HWND>(SendMessageA(sheet, PSM_GETTABCONTROL, 0, 0));
                           EXPECT_EQ(SendMessageA(tabs, TCM_GETITEMCOUNT, 0, 0), 3);
                         }),
                         press(PSBTN_CANCEL)}),
            0);
  EXPECT_EQ(wizard.get_pages_count(), 4);
}

TEST_F(WizardOnScreen, AQuitEndsItAndEnablesItsOwner) {
  const HWND owner =
      CreateWindowA("STATIC", "owner", WS_POPUP | WS_VISIBLE, 0, 0, 99, 99, nullptr, nullptr, nullptr, nullptr);
  Wizard owned("Owned", 0, owner);
  add_pages(owned);
  owned.initialized = [] { PostQuitMessage(3); };
  EXPECT_EQ(run(owned, {}), 0);
  EXPECT_TRUE(IsWindowEnabled(owner));
  MSG message;
  ASSERT_TRUE(PeekMessageA(&message, nullptr, WM_QUIT, WM_QUIT, PM_REMOVE)) << "it is passed on";
  EXPECT_EQ(message.wParam, 3u);
  DestroyWindow(owner);
}

// The system keeps some memory for each sheet. A wizard must keep no more than a plain sheet.
TEST_F(WizardOnScreen, RoundsLeaveNothingBehind) {
  int released = 0, shown_wizards = 0;
  const auto grows_by = [](int rounds, const std::function<void()>& round) {
    for (int i = 0; i < 10; ++i) round();
    const ResourceCounts before;
    const int blocks = count_heap_blocks();
    for (int i = 0; i < rounds; ++i) round();
    EXPECT_EQ(ResourceCounts(), before);
    return count_heap_blocks() - blocks;
  };
  const int plain = grows_by(20, [&] {
    PlainWizard shown;
    for (kexWizardPageInfoHolder* page : std::initializer_list<kexWizardPageInfoHolder*>{&name, &place, &summary})
      shown.AddPage(page->psp());
    DialogDriver person({press(PSBTN_CANCEL)});
    shown.DoModal(nullptr);
  });
  const int ours = grows_by(20, [&] {
    ++shown_wizards;
    Wizard shown("Round");
    shown.put_user_object(std::make_shared<Shared>(released));
    show(shown, {});
  });
  EXPECT_LT(ours, plain + 10);
  EXPECT_EQ(released, shown_wizards);
}

}  // namespace
