// The example parts_list, as a user works with it: by mouse and keyboard, in a process of its own.
#include <gtest/gtest.h>

#include <kexlib/framework.h>

#include <afxres.h>
#include <commctrl.h>

#include <gallery/screen_picture.h>
#include <gallery/user_input.h>
#include <parts_list/resources.h>
#include <support/files.h>
#include <support/message_pump.h>
#include <support/user_input.h>

#include <functional>
#include <string>

namespace {

std::string text_of(HWND window) {
  char text[400] = "";
  SendMessageA(window, WM_GETTEXT, sizeof text, reinterpret_cast<LPARAM>(text));
  return text;
}

// At a place in the client area. What the display reports to the program may move the pointer again, so the place comes
// with the button.
void click_in(HWND window, int x, int y) {
  POINT place{x, y};
  ClientToScreen(window, &place);
  gallery::move_mouse(place);
  gallery::send_mouse(place, MOUSEEVENTF_LEFTDOWN);
  gallery::send_mouse(place, MOUSEEVENTF_LEFTUP);
}

void click_in(HWND window) {
  RECT client;
  GetClientRect(window, &client);
  click_in(window, client.right / 2, client.bottom / 2);
}

// To build/pictures, for people to look at.
void save_picture(HWND window, const std::string& name) {
  RECT place;
  GetWindowRect(window, &place);
  const auto folder = program_folder().parent_path().parent_path() / "pictures";
  std::filesystem::create_directories(folder);
  EXPECT_TRUE(gallery::save_screen_picture(place, (folder / (name + ".png")).string()));
}

class PartsListOnScreen : public testing::Test {
 protected:
  void SetUp() override {
    std::string command =
        "\"" + (program_folder() / "parts_list.exe").string() + "\" \"" + folder_.path().string() + "\"";
    STARTUPINFOA startup{};
    startup.cb = sizeof startup;
    ASSERT_TRUE(
        CreateProcessA(nullptr, command.data(), nullptr, nullptr, FALSE, 0, nullptr, nullptr, &startup, &process_));
    window_ = wait_for_window("Parts list");
    ASSERT_TRUE(window_);
    ASSERT_TRUE(bring_to_front(window_));
  }
  void TearDown() override {
    TerminateProcess(process_.hProcess, 1);
    CloseHandle(process_.hThread);
    CloseHandle(process_.hProcess);
  }

  // A visible window of the program.
  HWND wait_for_window(const char* title) {
    HWND found = nullptr;
    pump_until([&] {
      DWORD owner = 0;
      found = FindWindowA(nullptr, title);
      GetWindowThreadProcessId(found, &owner);
      return owner == process_.dwProcessId && IsWindowVisible(found);
    });
    return found;
  }
  HWND control(int id) const { return GetDlgItem(window_, id); }
  // A control of the wizard's visible page.
  HWND on_page(HWND wizard, int id) {
    HWND found = nullptr;
    pump_until([&] {
      for (HWND page = nullptr; !found && (page = FindWindowExA(wizard, page, "#32770", nullptr));)
        if (IsWindowVisible(page)) found = GetDlgItem(page, id);
      return found != nullptr;
    });
    return found;
  }
  // A new window may not get the first click: the display has yet to show it.
  void focus(HWND edit) {
    EXPECT_TRUE(pump_until([&] {
      click_in(edit);
      return pump_until(
          [&] {
            GUITHREADINFO thread{};
            thread.cbSize = sizeof thread;
            return GetGUIThreadInfo(process_.dwThreadId, &thread) && thread.hwndFocus == edit;
          },
          std::chrono::seconds(2));
    }));
  }
  void replace_text(HWND edit, const char* text) {
    focus(edit);
    press_key(VK_HOME);
    press_key(VK_END, VK_SHIFT);
    press_key(VK_DELETE);
    type_text(text);
    EXPECT_TRUE(pump_until([&] { return text_of(edit) == text; })) << text_of(edit);
  }
  void expect_status(const std::string& expected) {
    pump_until([&] { return text_of(control(IDC_STATUS)) == expected; });
    EXPECT_EQ(text_of(control(IDC_STATUS)), expected);
  }
  bool status_begins(const std::string& beginning) {
    return pump_until([&] { return text_of(control(IDC_STATUS)).starts_with(beginning); },
                      std::chrono::milliseconds(300));
  }
  void choose_more(char item) {
    HWND menu = nullptr;
    const auto opens = [&] { return (menu = FindWindowA("#32768", nullptr)) != nullptr && IsWindowVisible(menu); };
    ASSERT_TRUE(pump_until([&] {
      click_in(control(IDC_MORE));
      return pump_until(opens, std::chrono::seconds(2));
    }));
    press_key(static_cast<WORD>(item));
    EXPECT_TRUE(pump_until([&] { return !IsWindow(menu); }));
  }
  void click_first_row() {
    constexpr auto none = static_cast<WPARAM>(-1);
    EXPECT_TRUE(pump_until([&] {
      click_in(control(IDC_PARTS), 40, 25);
      return SendMessageA(control(IDC_PARTS), LVM_GETNEXTITEM, none, LVNI_SELECTED) == 0;
    }));
  }

  // The wizard, from its first page to its last.
  void add_part(const char* name, const char* inches, const char* summary) {
    click_in(control(IDC_ADD));
    const HWND wizard = wait_for_window("New part");
    ASSERT_TRUE(wizard);
    replace_text(on_page(wizard, IDC_NAME), name);
    click_in(GetDlgItem(wizard, ID_WIZNEXT));
    const HWND length = on_page(wizard, IDC_LENGTH);
    EXPECT_EQ(text_of(length), "100.00");
    focus(on_page(wizard, IDC_LENGTH_UNIT));
    press_key(VK_DOWN);
    press_key(VK_RETURN);
    EXPECT_TRUE(pump_until([&] { return text_of(length) == "3.937"; })) << text_of(length);
    replace_text(length, inches);
    save_picture(wizard, "parts_list_wizard");
    click_in(GetDlgItem(wizard, ID_WIZNEXT));
    const HWND shown = on_page(wizard, IDC_SUMMARY);
    EXPECT_TRUE(pump_until([&] { return text_of(shown) == summary; })) << text_of(shown);
    click_in(GetDlgItem(wizard, ID_WIZFINISH));
    EXPECT_TRUE(pump_until([&] { return !IsWindow(wizard); }));
  }

  TemporaryFolder folder_;
  PROCESS_INFORMATION process_{};
  HWND window_ = nullptr;
};

TEST_F(PartsListOnScreen, AddsDuplicatesAndRemovesParts) {
  expect_status("0 parts");
  add_part("wheel: left", "10", "Finish adds the part \"wheel_ left\", 10.000 in long.");
  expect_status("1 part");
  EXPECT_EQ(without_carriage_returns(read_file("wheel_ left.part")), "254\n");
  click_first_row();
  choose_more('D');
  expect_status("2 parts");
  EXPECT_EQ(files_in(folder_.path()), (std::vector<std::string>{"wheel_ left (2).part", "wheel_ left.part"}));
  click_first_row();
  choose_more('R');
  expect_status("1 part");
}

TEST_F(PartsListOnScreen, TheWizardEndsOnAnyPageWhoseInputIsComplete) {
  click_in(control(IDC_ADD));
  const HWND wizard = wait_for_window("New part");
  ASSERT_TRUE(wizard);
  replace_text(on_page(wizard, IDC_NAME), "");
  click_in(GetDlgItem(wizard, ID_WIZFINISH));
  replace_text(on_page(wizard, IDC_NAME), "bolt");
  EXPECT_TRUE(IsWindow(wizard)) << "a part needs a name";
  click_in(GetDlgItem(wizard, ID_WIZFINISH));
  expect_status("1 part");
  EXPECT_EQ(without_carriage_returns(read_file("bolt.part")), "100\n");
}

TEST_F(PartsListOnScreen, SavesAPictureAndAsksBeforeItReplacesOne) {
  add_part("axle", "8", "Finish adds the part \"axle\", 8.000 in long.");
  click_in(control(IDC_SAVE_PICTURE));
  EXPECT_TRUE(pump_until([&] { return text_of(control(IDC_STATUS)).starts_with("parts.png:"); }));
  const std::string size = std::to_string(std::filesystem::file_size("parts.png"));
  expect_status("parts.png: " + size + " bytes");
  EXPECT_EQ(read_file("parts.png").substr(1, 3), "PNG");

  click_in(control(IDC_SAVE_PICTURE));
  const HWND dialog = wait_for_window("Save picture");
  ASSERT_TRUE(dialog);
  click_in(FindWindowExA(dialog, nullptr, "Button", "Tell its age"));
  EXPECT_TRUE(pump_until([&] { return text_of(control(IDC_STATUS)).ends_with("seconds old."); }));
  const HWND message = FindWindowExA(dialog, nullptr, "SysLink", nullptr);
  RECT area;
  GetClientRect(message, &area);
  for (int x = area.right; x > 0 && !status_begins("parts.png has " + size + " bytes."); x -= 20) {
    click_in(message, x, 8);
  }
  expect_status("parts.png has " + size + " bytes.");
  save_picture(dialog, "parts_list_question");
  click_in(FindWindowExA(dialog, nullptr, "Button", "Keep both"));
  expect_status("parts (2).png: " + size + " bytes");
  EXPECT_TRUE(read_file("parts (2).png") == read_file("parts.png"));
  save_picture(window_, "parts_list");
}

TEST_F(PartsListOnScreen, ShowsItsComponentsAndEndsWithAProfile) {
  choose_more('M');
  expect_status("Components: 1, and the first one works.");
  press_key(VK_F4, VK_MENU);
  ASSERT_EQ(WaitForSingleObject(process_.hProcess, 20000), WAIT_OBJECT_0);
  DWORD code = 99;
  GetExitCodeProcess(process_.hProcess, &code);
  EXPECT_EQ(code, 0u);
  EXPECT_NE(read_file("profiler.js").find("name: 'load the parts'"), std::string::npos);
}

}  // namespace
