#include <kexlib/com.h>
#include <kexlib/diagnostics.h>
#include <kexlib/dialogs.h>
#include <kexlib/windowtools.h>

#include <parts_list/main_window.h>
#include <parts_list/part_wizard.h>

#include <filesystem>

namespace parts_list {

namespace {

constexpr int icon_size = 24;
constexpr int picture_width = 2000, picture_height = 1400;
constexpr int tick = 40;  // milliseconds

// The interface of the components that could draw the parts.
constexpr GUID digits_interface = {0x5D0E8A60, 0x3C1B, 0x4B7A, {0x9E, 0x52, 0x6A, 0x1F, 0x0C, 0x7D, 0x2B, 0x01}};

std::string components_folder() {
  char program[MAX_PATH];
  ::GetModuleFileName(nullptr, program, MAX_PATH);
  return (std::filesystem::path(program).parent_path() / "components").string();
}

}  // namespace

// ---- the window -----------------------------------------------------------------------------------------------------

LRESULT MainWindow::OnInitDialog(UINT, WPARAM, LPARAM, BOOL&) {
  const HINSTANCE module = ATL::_AtlBaseModule.GetResourceInstance();
  images_.Create(icon_size, icon_size, ILC_COLOR32, 2, 2);
  add_.SetInfo(GetDlgItem(IDC_ADD), &images_, IDB_ADD, "Add a part", module);
  more_.SetMenu(module, IDR_MORE);
  more_.SubclassWindow(GetDlgItem(IDC_MORE));
  unit_.Attach(GetDlgItem(IDC_UNIT));
  kexWTLComboBoxUtils(unit_).populate({"millimetres", "inches"});
  unit_.SetCurSel(0);
  list_.Attach(GetDlgItem(IDC_PARTS));
  list_.InsertColumn(0, "Name", LVCFMT_LEFT, 300);
  list_.InsertColumn(1, "Length", LVCFMT_RIGHT, 120);
  picture_.SubclassWindow(GetDlgItem(IDC_PICTURE));
  ticker_.SetInterval(tick);

  kexHWNDTable& windows = kexHWNDTable::singleton();
  windows.reg_window(m_hWnd, "main", IDD_MAIN);
  windows.reg_window(list_, "parts", IDD_MAIN);
  reload();
  return TRUE;
}

// The window stays while its picture is saved.
LRESULT MainWindow::OnClose(UINT, WPARAM, LPARAM, BOOL&) {
  if (!is_saving_) DestroyWindow();
  return 0;
}

LRESULT MainWindow::OnDestroy(UINT, WPARAM, LPARAM, BOOL&) {
  images_.Destroy();
  ::PostQuitMessage(0);
  return 0;
}

LRESULT MainWindow::OnCancel(WORD, WORD, HWND, BOOL&) {
  PostMessage(WM_CLOSE);
  return 0;
}

void MainWindow::reload() {
  parts_ = load_parts(folder_);
  fill_list();
  picture_.show(parts_);
  CString count;
  count.Format(parts_.size() == 1 ? "%llu part" : "%llu parts", static_cast<unsigned long long>(parts_.size()));
  set_status(count);
}

void MainWindow::fill_list() {
  kexProfileScope scope("fill the list");
  list_.DeleteAllItems();
  for (int i = 0; i < static_cast<int>(parts_.size()); ++i) {
    list_.InsertItem(i, parts_[static_cast<size_t>(i)].name);
    list_.SetItemText(i, 1, length_text(parts_[static_cast<size_t>(i)].millimetres, shows_inches()));
  }
}

std::vector<int> MainWindow::selection() { return kexWTLListViewCtrlUtils(list_).get_selection(); }

LRESULT MainWindow::OnUnit(WORD, WORD, HWND, BOOL&) {
  fill_list();
  return 0;
}

// ---- the parts ------------------------------------------------------------------------------------------------------

LRESULT MainWindow::OnAdd(WORD, WORD, HWND, BOOL&) {
  auto part = ask_for_part(m_hWnd, {unused_name(parts_, "part"), 100});
  if (!part) return 0;
  part->name = unused_name(parts_, part->name);
  const bool is_saved = save_part(folder_, *part);
  reload();
  if (!is_saved) set_status("The part could not be written.");
  return 0;
}

LRESULT MainWindow::OnDuplicate(WORD, WORD, HWND, BOOL&) {
  for (const int row : selection()) {
    Part copy = parts_[static_cast<size_t>(row)];
    copy.name = unused_name(load_parts(folder_), copy.name);
    save_part(folder_, copy);
  }
  reload();
  return 0;
}

LRESULT MainWindow::OnRemove(WORD, WORD, HWND, BOOL&) {
  for (const int row : selection()) remove_part(folder_, parts_[static_cast<size_t>(row)]);
  reload();
  return 0;
}

// ---- the picture ----------------------------------------------------------------------------------------------------

LRESULT MainWindow::OnSavePicture(WORD, WORD, HWND, BOOL&) {
  std::filesystem::path path = std::filesystem::path(folder_) / "parts.png";
  if (std::filesystem::exists(path)) {
    kexTaskDialog dialog;
    dialog.set_parent(m_hWnd);
    dialog.set_title("Save picture");
    dialog.set_icon(kexTDIcon_Warning);
    dialog.set_main_instruction("parts.png exists already.");
    dialog.set_message("It shows the parts as they were. <a href=\"size\">How large is it?</a>");
    const int replace = dialog.add_button("Replace");
    const int keep = dialog.add_button("Keep both");
    const int show = dialog.add_button("Tell its age");
    dialog.add_button("Cancel");
    dialog.set_default_button(keep);
    dialog.add_action(show, [&](const kexTaskDialogActionContext&) {
      const auto age = std::filesystem::file_time_type::clock::now() - std::filesystem::last_write_time(path);
      CString text;
      text.Format("parts.png is %lld seconds old.", std::chrono::duration_cast<std::chrono::seconds>(age).count());
      set_status(text);
    });
    dialog.set_hyperlink_action([&](const kexTaskDialogHyperlinkActionContext&) {
      CString text;
      text.Format("parts.png has %llu bytes.", static_cast<unsigned long long>(std::filesystem::file_size(path)));
      set_status(text);
    });
    const int answer = dialog.raise();
    if (answer == keep)
      for (int count = 2; std::filesystem::exists(path); ++count)
        path.replace_filename("parts (" + std::to_string(count) + ").png");
    else if (answer != replace)
      return 0;
  }
  save_picture(path.string());
  return 0;
}

// The worker encodes; meanwhile the window paints and its progress bar moves, but it takes no input.
void MainWindow::save_picture(const std::string& path) {
  kexProfileScope scope("save the picture");
  PartsPicture picture;
  picture.draw(parts_, picture_width, picture_height);
  const auto buffer = kexBuffer_create();
  kexPNGGenerationThread worker(picture.image(), path.c_str(), buffer);
  is_saving_ = true;
  set_status("Saving ...");
  ticker_.SetEnabled(TRUE);
  worker.Resume();
  const HANDLE ended = worker.GetHandle();
  MSG quit{};
  if (SafeWaitWithMessageLoop(1, &ended, INFINITE, TRUE, &quit) == WAIT_OBJECT_0 + 1) {
    worker.Join(INFINITE);
    ::PostQuitMessage(static_cast<int>(quit.wParam));
  }
  ticker_.SetEnabled(FALSE);
  is_saving_ = false;
  GetDlgItem(IDC_PROGRESS).SendMessage(PBM_SETPOS, 0);
  CString text;
  text.Format("%s: %llu bytes", std::filesystem::path(path).filename().string().c_str(), buffer->size());
  set_status(buffer->fail() || buffer->size() == 0 ? CString("The picture could not be made.") : text);
}

void MainWindow::PictureView::show(const std::vector<Part>& parts) {
  RECT client;
  GetClientRect(&client);
  picture_.draw(parts, client.right, client.bottom);
  Invalidate(FALSE);
}

LRESULT MainWindow::PictureView::OnPaint(UINT, WPARAM, LPARAM, BOOL&) {
  WTL::CPaintDC dc(m_hWnd);
  picture_.show(dc);
  return 0;
}

// ---- more -----------------------------------------------------------------------------------------------------------

LRESULT MainWindow::OnComponents(WORD, WORD, HWND, BOOL&) {
  const std::string folder = components_folder();
  const auto classes = reg_free_list_classes(digits_interface, folder.c_str(), "*.dll");
  ATL::CComPtr<IUnknown> object;
  if (!classes.empty()) {
    const std::string library = reg_free_find_tlb(*classes.begin(), folder.c_str(), "*.dll");
    const std::string manifest = reg_free_manifest_path(folder.c_str(), library.c_str());
    reg_free_co_create(*classes.begin(), folder.c_str(), manifest.c_str(), CLSCTX_INPROC_SERVER, &object);
  }
  CString text;
  text.Format("Components: %llu, %s", static_cast<unsigned long long>(classes.size()),
              object ? "and the first one works." : "and none works.");
  set_status(text);
  return 0;
}

LRESULT MainWindow::OnTrace(WORD, WORD, HWND, BOOL&) {
  const bool on = CTraceToFile::GetTraceMode() == CTraceToFile::TraceOff;
  CTraceToFile::SetTraceMode(on ? CTraceToFile::TraceToFile : CTraceToFile::TraceOff);
  set_status(on ? "Tracing to a file on the desktop." : "Tracing has ended.");
  return 0;
}

}  // namespace parts_list
