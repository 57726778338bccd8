#include <kexlib/dialogs/task_dialog.h>

#include <commctrl.h>
#include <shellapi.h>

#include <support/common_controls.h>
#include <support/widened.h>

#include <algorithm>
#include <deque>
#include <map>
#include <optional>
#include <string>
#include <vector>

// Packed to the byte: with any other packing the system refuses it.
static_assert(sizeof(TASKDIALOGCONFIG) == 160);

namespace {

constexpr int first_button = 101;

std::wstring wide(const char* text) {
  const ATL::CComBSTR copy = kexlib::widened(text);
  return copy ? std::wstring(copy, copy.Length()) : std::wstring();
}

HWND main_window() {
  const CWnd* window = AfxGetMainWnd();
  return window ? window->GetSafeHwnd() : nullptr;
}

PCWSTR platform_icon(kexTaskDialogIcon icon) {
  switch (icon) {
    case kexTDIcon_Error:
      return TD_ERROR_ICON;
    case kexTDIcon_Information:
      return TD_INFORMATION_ICON;
    case kexTDIcon_Shield:
      return TD_SHIELD_ICON;
    default:
      return TD_WARNING_ICON;
  }
}

}  // namespace

// An action may add buttons and actions and replace the handler while they are in use: additions must not move
// elements, and a replaced handler lives until it returns.
struct kexTaskDialog::State {
  using Action = std::function<void(const kexTaskDialogActionContext&)>;
  using HyperlinkAction = std::function<void(const kexTaskDialogHyperlinkActionContext&)>;

  explicit State(kexTaskDialog* dialog) : owner(dialog) {}

  std::vector<TASKDIALOG_BUTTON> platform_buttons() const;
  TASKDIALOGCONFIG configuration(const std::vector<TASKDIALOG_BUTTON>& shown);
  bool every_button_acts() const;
  HRESULT pressed(int id) const;
  void clicked(const wchar_t* target);
  static HRESULT CALLBACK notified(HWND, UINT notification, WPARAM wparam, LPARAM lparam, LONG_PTR data);

  kexTaskDialog* owner;
  std::deque<std::wstring> buttons;  // the first is number 101
  std::optional<int> default_button;
  kexTaskDialogIcon icon = kexTDIcon_Warning;
  std::map<int, std::deque<Action>> actions;
  std::shared_ptr<HyperlinkAction> hyperlink_action;  // null, or one that can be called
  HWND parent = nullptr;
  std::wstring message, main_instruction, title;
};

void kexTaskDialog::State::clicked(const wchar_t* target) {
  if (const auto handler = hyperlink_action)
    (*handler)({owner, target});
  else
    owner->open_url_or_file(target);
}

// Whether the button closes the dialog: S_FALSE for one that has actions.
HRESULT kexTaskDialog::State::pressed(int id) const {
  const auto found = actions.find(id);
  if (found == actions.end()) return S_OK;
  const size_t count = found->second.size();  // an action added meanwhile runs at the next press
  for (size_t i = 0; i < count; ++i) found->second[i]({owner, id});
  return S_FALSE;
}

// By design an exception passes, so that callers may catch it if the system passes it on. The system's frames do not
// clean up: they would leave the dialog on the screen and its owner disabled.
HRESULT CALLBACK kexTaskDialog::State::notified(HWND shown, UINT notification, WPARAM wparam, LPARAM lparam,
                                                LONG_PTR data) try {
  auto* state = reinterpret_cast<State*>(data);
  if (notification == TDN_BUTTON_CLICKED) return state->pressed(static_cast<int>(wparam));
  if (notification == TDN_HYPERLINK_CLICKED) state->clicked(reinterpret_cast<const wchar_t*>(lparam));
  return S_OK;
} catch (...) {
  EnableWindow(GetWindow(shown, GW_OWNER), TRUE);
  DestroyWindow(shown);
  throw;
}

std::vector<TASKDIALOG_BUTTON> kexTaskDialog::State::platform_buttons() const {
  std::vector<TASKDIALOG_BUTTON> made;
  made.reserve(buttons.size());
  for (const std::wstring& text : buttons) made.push_back({first_button + static_cast<int>(made.size()), text.c_str()});
  return made;
}

TASKDIALOGCONFIG kexTaskDialog::State::configuration(const std::vector<TASKDIALOG_BUTTON>& shown) {
  TASKDIALOGCONFIG config{};
  config.cbSize = sizeof config;
  config.hwndParent = parent ? parent : main_window();
  config.dwFlags = TDF_ENABLE_HYPERLINKS | TDF_SIZE_TO_CONTENT;
  config.pszWindowTitle = title.c_str();
  config.pszMainIcon = platform_icon(icon);
  if (!main_instruction.empty()) config.pszMainInstruction = main_instruction.c_str();
  config.pszContent = message.c_str();
  config.cButtons = static_cast<UINT>(shown.size());
  if (!shown.empty()) config.pButtons = shown.data();
  config.nDefaultButton = default_button.value_or(0);
  config.pfCallback = notified;
  config.lpCallbackData = reinterpret_cast<LONG_PTR>(this);
  return config;
}

bool kexTaskDialog::State::every_button_acts() const {
  int id = first_button;
  return !buttons.empty() &&
         std::all_of(buttons.begin(), buttons.end(), [&](const std::wstring&) { return actions.contains(id++); });
}

kexTaskDialog::kexTaskDialog() : state_(std::make_unique<State>(this)) {}

kexTaskDialog::~kexTaskDialog() = default;

void kexTaskDialog::set_title(const char* text) { state_->title = wide(text); }

void kexTaskDialog::set_main_instruction(const char* text) { state_->main_instruction = wide(text); }

void kexTaskDialog::set_message(const char* text) { state_->message = wide(text); }

void kexTaskDialog::set_icon(kexTaskDialogIcon icon) { state_->icon = icon; }

void kexTaskDialog::set_parent(HWND parent) { state_->parent = parent; }

int kexTaskDialog::add_button(const char* text) {
  state_->buttons.push_back(wide(text));
  return first_button + static_cast<int>(state_->buttons.size()) - 1;
}

void kexTaskDialog::set_default_button(int id) { state_->default_button = id; }

void kexTaskDialog::add_action(int id, std::function<void(const kexTaskDialogActionContext&)> action) {
  state_->actions[id].push_back(std::move(action));
}

void kexTaskDialog::set_hyperlink_action(std::function<void(const kexTaskDialogHyperlinkActionContext&)> action) {
  state_->hyperlink_action = action ? std::make_shared<State::HyperlinkAction>(std::move(action)) : nullptr;
}

void kexTaskDialog::open_url_or_file(const wchar_t* target) {
  ShellExecuteW(main_window(), L"open", target, nullptr, nullptr, SW_SHOWNORMAL);
}

int kexTaskDialog::raise() {
  if (state_->every_button_acts())
    OutputDebugStringA("kexTaskDialog: no button closes this dialog, all have actions\n");

  const std::vector<TASKDIALOG_BUTTON> buttons = state_->platform_buttons();
  const TASKDIALOGCONFIG config = state_->configuration(buttons);
  const kexlib::CommonControls6 common_controls;
  const auto show = reinterpret_cast<decltype(&TaskDialogIndirect)>(
      reinterpret_cast<void*>(common_controls.find("TaskDialogIndirect")));
  int pressed = 0;  // also the result if the dialog cannot be shown
  BOOL verified = FALSE;
  if (show) show(&config, &pressed, nullptr, &verified);
  return pressed;
}
