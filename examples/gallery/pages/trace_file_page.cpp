// The trace file: writes diagnostic lines to a file on the desktop while Record > Trace to a file is checked.
#include <kexlib/diagnostics.h>

#include <shlobj.h>

#include <gallery/page.h>
#include <gallery/tour.h>

namespace {

enum { id_write = 100, id_show, id_mode, id_path, id_text };

// The newest trace file on the desktop; empty if there is none.
CString newest_trace() {
  char desktop[MAX_PATH];
  if (FAILED(::SHGetFolderPath(nullptr, CSIDL_DESKTOPDIRECTORY, nullptr, 0, desktop))) return {};
  const CString folder = CString(desktop) + "\\";
  CString newest;
  FILETIME when{};
  WIN32_FIND_DATA found;
  const HANDLE search = ::FindFirstFile(folder + "QZFileTrace_*.txt", &found);
  if (search == INVALID_HANDLE_VALUE) return {};
  do {
    if (::CompareFileTime(&found.ftLastWriteTime, &when) < 0) continue;
    newest = folder + found.cFileName;
    when = found.ftLastWriteTime;
  } while (::FindNextFile(search, &found));
  ::FindClose(search);
  return newest;
}

class TraceFilePage : public gallery::Page {
 public:
  BEGIN_MSG_MAP(TraceFilePage)
    COMMAND_ID_HANDLER(id_write, OnWrite)
    COMMAND_ID_HANDLER(id_show, OnShow)
  END_MSG_MAP()

 private:
  void add_controls() override {
    add_label(
        "Check Record > Trace to a file, and lines go to a new file on the desktop; uncheck it to close the file.",
        600);
    new_line();
    add(WC_BUTTON, "&Trace three lines", WS_TABSTOP, id_write, 120);
    add(WC_BUTTON, "&Show the file", WS_TABSTOP, id_show, 120);
    add(WC_STATIC, "", SS_CENTERIMAGE, id_mode, 340);
    new_line();
    add(WC_EDIT, "", WS_TABSTOP | WS_BORDER | ES_READONLY | ES_AUTOHSCROLL, id_path, 600);
    new_line();
    add(WC_EDIT, "", WS_TABSTOP | WS_BORDER | WS_VSCROLL | ES_READONLY | ES_MULTILINE, id_text, 600, 220);
  }

  LRESULT OnWrite(WORD, WORD, HWND, BOOL&) {
    for (int line = 1; line <= 3; ++line) g_traceToFile.Trace("Line %d of %d, %.1f %%\n", line, 3, line * 100 / 3.0);
    const bool on = CTraceToFile::GetTraceMode() & CTraceToFile::TraceToFile;
    set_text(id_mode, on ? "Three lines were written." : "The trace is off: nothing was written.");
    return 0;
  }

  LRESULT OnShow(WORD, WORD, HWND, BOOL&) {
    const CString path = newest_trace();
    set_text(id_path, path.GetLength() ? path : CString("There is no trace file yet."));
    set_text(id_text, gallery::text_of_file(path));
    return 0;
  }
};

void tour(gallery::Tour& user) {
  constexpr char lines[] = "Line 1 of 3, 33.3 %\r\nLine 2 of 3, 66.7 %\r\nLine 3 of 3, 100.0 %\r\n";
  user.click(id_write);
  user.check_text(id_mode, "The trace is off: nothing was written.");
  user.choose_from_menu('R', 'T');
  user.click(id_write);
  user.check_text(id_mode, "Three lines were written.");
  user.click(id_show);
  user.check("the file has the lines at once", [&] { return user.text(id_text) == lines; });
  user.choose_from_menu('R', 'T');
  user.click(id_write);
  user.check_text(id_mode, "The trace is off: nothing was written.");
  user.click(id_show);
  user.check("the file ends in a footer with the time",
             [&] { return user.text(id_text).starts_with(std::string(lines) + "\r\n\r\nFile closed at "); });
  user.take_picture("trace_file");
  user.tell_of_file(user.text(id_path));
}

const gallery::Registration trace_file{
    "diagnostics", "Trace file",
    "Lines in the manner of printf go to a file on the desktop, to the debugger, or to both.",
    gallery::make<TraceFilePage>, tour};

}  // namespace
