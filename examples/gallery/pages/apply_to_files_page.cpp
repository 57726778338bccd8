// Apply to files: an operation on every file below a folder whose name matches a pattern.
#include <kexlib/text.h>

#include <atlcomcli.h>
#include <shlobj.h>

#include <gallery/page.h>
#include <gallery/tour.h>

#include <filesystem>
#include <fstream>
#include <stdexcept>
#include <string>
#include <vector>

namespace {

enum { id_pattern = 100, id_list, id_enter_build, id_shortcuts, id_first_only, id_found, id_result };

namespace fs = std::filesystem;

// Creates a new folder, and deletes it with the object.
class NewFolder {
 public:
  explicit NewFolder(fs::path path) : path_(std::move(path)) {
    if (!fs::create_directory(path_)) throw std::runtime_error(path_.string() + " is there already.");
  }
  NewFolder(const NewFolder&) = delete;
  NewFolder& operator=(const NewFolder&) = delete;
  ~NewFolder() {
    std::error_code ignored;
    fs::remove_all(path_, ignored);
  }

  const fs::path& path() const { return path_; }

 private:
  fs::path path_;
};

// A small project in a folder below the current folder.
class SampleProject {
 public:
  SampleProject() {
    const fs::path& root = folder_.path();
    for (const char* file :
         {"readme.txt", "main.cpp", "ui/window.cpp", "ui/window.h", "ui/logo.png", "build/made.cpp"}) {
      const fs::path path = root / file;
      fs::create_directories(path.parent_path());
      std::ofstream(path) << "sample\n";
    }
    add_shortcut(root / "ui/made.lnk", root / "build/made.cpp");
  }

  std::string root() const { return fs::path(folder_.path()).make_preferred().string(); }

 private:
  static void add_shortcut(fs::path at, fs::path target) {
    ATL::CComPtr<IShellLinkW> link;
    if (FAILED(link.CoCreateInstance(CLSID_ShellLink))) return;
    link->SetPath(target.make_preferred().c_str());
    ATL::CComPtr<IPersistFile> file;
    if (SUCCEEDED(link.QueryInterface(&file))) file->Save(at.make_preferred().c_str(), FALSE);
  }

  const NewFolder folder_{fs::absolute("gallery_project")};
};

class ListFiles final : public kexApplyToFiles {
 public:
  ListFiles(std::string root, bool enter_build, bool first_only)
      : root_(std::move(root)), enter_build_(enter_build), first_only_(first_only) {}

  void apply_to_file(char* path) override {
    found.emplace_back(path + root_.size() + 1);
    if (first_only_) stop = 1;
  }

  std::vector<std::string> found;

 protected:
  int ignore_directory(const char* const path) override {
    return !enter_build_ && fs::path(path).filename() == "build";
  }

 private:
  std::string root_;
  bool enter_build_, first_only_;
};

class ApplyToFilesPage : public gallery::Page {
 public:
  BEGIN_MSG_MAP(ApplyToFilesPage)
    COMMAND_ID_HANDLER(id_list, OnList)
  END_MSG_MAP()

 private:
  void add_controls() override {
    add_label("A small project is made in the current folder, listed, and removed again.", 600);
    new_line();
    add_label("Pattern", 60);
    add(WC_EDIT, "*.cpp;*.h", WS_TABSTOP | WS_BORDER | ES_AUTOHSCROLL, id_pattern, 232);
    add(WC_BUTTON, "&List", WS_TABSTOP | BS_DEFPUSHBUTTON, id_list, 92);
    new_line();
    add(WC_BUTTON, "Enter \"&build\" too", WS_TABSTOP | BS_AUTOCHECKBOX, id_enter_build, 130);
    add(WC_BUTTON, "Follow &shortcuts", WS_TABSTOP | BS_AUTOCHECKBOX, id_shortcuts, 130);
    add(WC_BUTTON, "Stop at the &first", WS_TABSTOP | BS_AUTOCHECKBOX, id_first_only, 130);
    new_line();
    add(WC_EDIT, "", WS_TABSTOP | WS_BORDER | ES_READONLY | ES_MULTILINE, id_found, 400, 160);
    new_line();
    add(WC_STATIC, "", 0, id_result, 600);
  }

  LRESULT OnList(WORD, WORD, HWND, BOOL&) {
    try {
      list();
    } catch (const std::exception& problem) {
      set_text(id_found, "");
      set_text(id_result, problem.what());
    }
    return 0;
  }

  void list() {
    const SampleProject project;
    ListFiles files(project.root(), is_checked(id_enter_build), is_checked(id_first_only));
    const long outcome = files.Apply(project.root().c_str(), text_of(id_pattern), is_checked(id_shortcuts));
    std::string lines;
    for (const std::string& file : files.found) lines += file + "\r\n";
    set_text(id_found, lines.c_str());
    const std::string count = "Files: " + std::to_string(files.found.size());
    set_text(id_result, outcome == S_OK ? count.c_str() : "The folder could not be walked.");
  }
};

void tour(gallery::Tour& user) {
  const auto check_list = [&](const char* expected, const char* result) {
    user.click(id_list);
    user.check_text(id_found, expected);
    user.check_text(id_result, result);
  };
  user.write(id_pattern, "*.cpp;*.h");
  check_list("main.cpp\r\nui\\window.cpp\r\nui\\window.h\r\n", "Files: 3");
  user.click(id_shortcuts);
  check_list("main.cpp\r\nbuild\\made.cpp\r\nui\\window.cpp\r\nui\\window.h\r\n", "Files: 4");
  user.click(id_shortcuts);
  user.click(id_enter_build);
  check_list("build\\made.cpp\r\nmain.cpp\r\nui\\window.cpp\r\nui\\window.h\r\n", "Files: 4");
  user.take_picture("apply_to_files");
  user.click(id_first_only);
  check_list("build\\made.cpp\r\n", "Files: 1");
  user.click(id_first_only);
  user.click(id_enter_build);
  user.write(id_pattern, "*.txt");
  check_list("readme.txt\r\n", "Files: 1");
  user.check("the project is removed", [] { return !fs::exists("gallery_project"); });
  user.write(id_pattern, "*.cpp;*.h");
}

const gallery::Registration apply_to_files{
    "text", "Apply to files",
    "Does something with every file below a folder whose name matches a pattern; folders may be left out.",
    gallery::make<ApplyToFilesPage>, tour};

}  // namespace
