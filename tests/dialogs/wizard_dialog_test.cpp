// kexWizardDialog before it is shown, and the messages that the library registers.
#define _WTL_NO_AUTOMATIC_NAMESPACE
#include <gtest/gtest.h>

#include <kexlib/dialogs/wizard_dialog.h>

#include <psapi.h>

#include <dialogs/resources.h>
#include <dialogs/wizard_dialog_fixture.h>

#include <memory>

namespace {

TEST(Wizard, BeginsWithItsStyleAndWhatItIsGiven) {
  const HWND parent = GetDesktopWindow();
  const Wizard of_text("title", 2, parent), of_resource(UINT{IDS_TITLE}, 1, nullptr), of_nothing;
  for (const Wizard* wizard : {&of_text, &of_resource, &of_nothing}) {
    const PROPSHEETHEADERA& header = wizard->m_psh;
    EXPECT_EQ(header.dwSize, sizeof(PROPSHEETHEADERA));
    EXPECT_EQ(header.dwFlags, 0x01000190u);
    EXPECT_EQ(header.hInstance, GetModuleHandleA("kexlib.dll"));
    EXPECT_NE(header.pfnCallback, nullptr);
    EXPECT_EQ(header.hIcon, nullptr);
    EXPECT_EQ(header.pszCaption, nullptr);
    EXPECT_EQ(header.nPages, 0u);
    EXPECT_EQ(header.phpage, nullptr);
    EXPECT_EQ(header.hbmWatermark, nullptr);
    EXPECT_EQ(header.hbmHeader, nullptr);
    EXPECT_EQ(wizard->get_pages_count(), 0);
    EXPECT_EQ(wizard->m_hWnd, nullptr);
  }
  EXPECT_EQ(of_text.m_psh.hwndParent, parent);
  EXPECT_EQ(of_text.m_psh.nStartPage, 2u);
  EXPECT_EQ(of_text.GetActiveIndex(), 2);
  EXPECT_EQ(of_resource.m_psh.hwndParent, nullptr);
  EXPECT_EQ(of_resource.m_psh.nStartPage, 1u);
  EXPECT_EQ(of_nothing.m_psh.nStartPage, 0u);
}

TEST(Wizard, IsReturnedByItsParts) {
  const auto wizard = []() -> kexWizardDialog { return {CStringA("title"), 2, nullptr}; };
  EXPECT_EQ(wizard().GetActiveIndex(), 2);
}

TEST(Wizard, CountsAndKeepsThePagesThatItWasGiven) {
  Page<IDD_NAME_PAGE> name;
  NoPage none;
  Wizard wizard;
  wizard.add_page(name);
  EXPECT_EQ(wizard.get_pages_count(), 1);
  wizard.add_page(none);  // rejected but counted: callers see it in the count
  EXPECT_EQ(wizard.get_pages_count(), 2);
  EXPECT_EQ(wizard.m_arrPages.GetSize(), 1);
  EXPECT_EQ(&wizard.get_page(0), &name);
  EXPECT_EQ(&wizard.get_page(1), &none);
  EXPECT_EQ(wizard.get_page(0).idd(), DWORD{IDD_NAME_PAGE});
  EXPECT_EQ(wizard.get_page(1).idd(), 77u);
}

TEST(Wizard, SharesItsUserObjectAndReleasesItOnce) {
  int released = 0;
  {
    Wizard wizard;
    std::shared_ptr<kexWizardExchangeBase> got = std::make_shared<Shared>(released);
    wizard.get_user_object(got);
    EXPECT_EQ(got, nullptr);
    EXPECT_EQ(released, 1);

    const auto object = std::make_shared<Shared>(released);
    wizard.put_user_object(object);
    wizard.get_user_object(got);
    EXPECT_EQ(got, object);
    EXPECT_EQ(object.use_count(), 3);
    wizard.put_user_object(std::make_shared<Shared>(released));
    EXPECT_EQ(object.use_count(), 2);
    EXPECT_EQ(released, 1);
  }
  EXPECT_EQ(released, 3);
}

TEST(Wizard, CopiesHaveThePagesTheUserObjectAndTheHeader) {
  int released = 0;
  Page<IDD_NAME_PAGE> name;
  {
    Wizard assigned;
    {
      Wizard wizard("title", 1, GetDesktopWindow());
      wizard.add_page(name);
      wizard.put_user_object(std::make_shared<Shared>(released));
      const Wizard copy(wizard);
      assigned = copy;
    }
    EXPECT_EQ(released, 0);
    EXPECT_EQ(assigned.get_pages_count(), 1);
    EXPECT_EQ(&assigned.get_page(0), &name);
    EXPECT_EQ(assigned.m_psh.nStartPage, 1u);
    EXPECT_EQ(assigned.m_psh.hwndParent, GetDesktopWindow());
    EXPECT_EQ(assigned.m_arrPages.GetSize(), 1);
  }
  EXPECT_EQ(released, 1);
}

TEST(Wizard, CopiesOfAFreshOneAreFresh) {
  Wizard copy{Wizard()};
  const Wizard& itself = copy;
  copy = itself;
  EXPECT_EQ(copy.m_hWnd, nullptr);
  EXPECT_EQ(copy.get_pages_count(), 0);
  EXPECT_EQ(copy.m_arrPages.GetSize(), 0);
  EXPECT_EQ(copy.m_psh.dwFlags, 0x01000190u);
}

// Of the pages that the callback of a page sees.
int pages_alive = 0;
UINT CALLBACK count_pages(HWND, UINT message, PROPSHEETPAGEA*) {
  if (message == PSPCB_ADDREF) ++pages_alive;
  if (message == PSPCB_RELEASE) --pages_alive;
  return 1;
}

TEST(Wizard, CopiesHavePageHandlesOfTheirOwn) {
  Page<IDD_NAME_PAGE> name;
  name.m_psp.dwFlags |= PSP_USECALLBACK;
  name.m_psp.pfnCallback = count_pages;
  NoPage refused;
  for (const bool source_goes_first : {true, false}) {
    pages_alive = 0;
    auto source = std::make_unique<Wizard>();
    source->add_page(refused);
    source->add_page(name);
    ASSERT_EQ(pages_alive, 1);
    auto copy = std::make_unique<Wizard>(*source);
    EXPECT_EQ(copy->get_pages_count(), 2);
    EXPECT_EQ(copy->m_arrPages.GetSize(), 1) << "what the system refused is not tried again";
    EXPECT_EQ(pages_alive, 2);
    EXPECT_NE(copy->m_arrPages[0], source->m_arrPages[0]);
    *copy = *source;
    EXPECT_EQ(pages_alive, 2) << "those that it had are destroyed";
    (source_goes_first ? source : copy).reset();
    EXPECT_EQ(pages_alive, 1);
    source.reset();
    copy.reset();
    EXPECT_EQ(pages_alive, 0);
  }
}

TEST(Wizard, TakesAnIconAndATitleForLater) {
  Wizard wizard;
  const HICON icon = LoadIconA(nullptr, IDI_QUESTION);
  wizard.set_icon(icon);
  EXPECT_EQ(wizard.m_psh.dwFlags, 0x01000190u | PSH_USEHICON);
  EXPECT_EQ(wizard.m_psh.hIcon, icon);

  wizard.m_psh.dwFlags |= PSH_PROPTITLE;
  wizard.SetTitle("later", PSH_NOCONTEXTHELP);
  EXPECT_EQ(wizard.m_psh.dwFlags, 0x01000190u | PSH_USEHICON | PSH_NOCONTEXTHELP);
  EXPECT_STREQ(wizard.m_psh.pszCaption, "later");
}

TEST(Wizard, AsksForHelpByTheStartPageWhileThereIsNoWindow) {
  Page<IDD_NAME_PAGE> name;
  Page<IDD_PLACE_PAGE> place;
  HelpfulApp app;
  LRESULT result = 5;
  Wizard wizard("", 1);
  EXPECT_TRUE(wizard.ProcessWindowMessage(nullptr, WM_HELP, 0, 0, result));
  EXPECT_EQ(result, 0);
  wizard.add_page(name);
  EXPECT_TRUE(wizard.ProcessWindowMessage(nullptr, WM_HELP, 0, 0, result));
  EXPECT_EQ(app.asked.size(), 0u) << "there is no such page, without pages nor with one";
  wizard.add_page(place);
  EXPECT_TRUE(wizard.ProcessWindowMessage(nullptr, WM_HELP, 0, 0, result));
  EXPECT_EQ(app.asked, (decltype(app.asked){{IDD_PLACE_PAGE + 0x20000, 1}}));
}

TEST(Wizard, HandlesHelpWithoutAnApplicationAndNothingInOtherMaps) {
  Page<IDD_NAME_PAGE> name;
  Wizard wizard;
  wizard.add_page(name);
  LRESULT result = 5;
  EXPECT_FALSE(wizard.ProcessWindowMessage(nullptr, WM_HELP, 0, 0, result, 1));
  EXPECT_FALSE(wizard.ProcessWindowMessage(nullptr, WM_SHOWWINDOW, 1, 0, result, 7));
  EXPECT_EQ(result, 5);
  EXPECT_TRUE(wizard.ProcessWindowMessage(nullptr, WM_HELP, 0, 0, result));
  EXPECT_EQ(result, 0);
}

// The library does not export the registered messages: search its data for the two numbers side by side.
TEST(WizardMessages, AreThoseThatEveryModuleGetsForTheirNames) {
  const UINT wanted[] = {RegisterWindowMessageA("MSG_QZ_GetDialogTemplateID"),
                         RegisterWindowMessageA("MSG_QZ_GetDialogResLibrary")};
  ASSERT_NE(wanted[0], 0u);
  ASSERT_NE(wanted[1], wanted[0]);
  MODULEINFO module;
  ASSERT_TRUE(GetModuleInformation(GetCurrentProcess(), GetModuleHandleA("kexlib.dll"), &module, sizeof module));
  const char* const begin = static_cast<const char*>(module.lpBaseOfDll);
  const char* const end = begin + module.SizeOfImage;
  int found = 0;
  MEMORY_BASIC_INFORMATION region;
  for (const char* at = begin; at < end; at = static_cast<const char*>(region.BaseAddress) + region.RegionSize) {
    ASSERT_TRUE(VirtualQuery(at, &region, sizeof region));
    const char* const region_end = static_cast<const char*>(region.BaseAddress) + region.RegionSize;
    if (region.Protect != PAGE_READWRITE && region.Protect != PAGE_WRITECOPY) continue;
    for (const char* place = at; place + sizeof wanted <= region_end; place += sizeof(UINT))
      if (memcmp(place, wanted, sizeof wanted) == 0) ++found;
  }
  EXPECT_EQ(found, 1);
}

}  // namespace
