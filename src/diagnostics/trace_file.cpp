#include <kexlib/diagnostics/trace_file.h>

#include <windows.h>
#include <shlobj.h>
#include <shlwapi.h>

#include <diagnostics/text_file.h>

#include <cstdarg>
#include <cstdio>
#include <cstring>
#include <ctime>

using namespace kexlib;

namespace {

// Local time by a strftime pattern; empty if there is none or it does not fit.
template <std::size_t size>
void format_local_time(char (&text)[size], const char* pattern) {
  const __time64_t now = _time64(nullptr);
  const std::tm* const local = _localtime64(&now);
  if (!local || std::strftime(text, size, pattern, local) == 0) text[0] = '\0';
}

}  // namespace

CTraceToFile::~CTraceToFile() { CloseFile(); }

CTraceToFile::Mode CTraceToFile::GetTraceMode() { return g_traceToFile.mode_; }

void CTraceToFile::SetTraceMode(Mode mode) {
  if (!(mode & TraceToFile)) g_traceToFile.CloseFile();
  g_traceToFile.mode_ = mode;
}

void CTraceToFile::Trace(const char* format, ...) {
  if (mode_ == TraceOff || !format) return;

  char text[512];
  std::va_list arguments;
  va_start(arguments, format);
  if (std::vsnprintf(text, sizeof text, format, arguments) < 0) text[0] = '\0';
  va_end(arguments);

  if (mode_ & TraceToFile) {
    if (!file_) OpenFile();
    if (file_) text_file::write(file_, text);
  }
  if (mode_ & TraceToDebugger) OutputDebugStringA(text);
}

void CTraceToFile::OpenFile() {
  char base_name[28];
  format_local_time(base_name, "QZFileTrace_%d%m%Y_%H%M%S");
  char path[MAX_PATH + 16];
  for (int n = 0;; ++n) {
    if (!GetDesktopFolderPath(path)) std::strcpy(path, "C:\\");
    if (!PathAppendA(path, base_name)) return;
    const std::size_t length = std::strlen(path);
    std::snprintf(path + length, sizeof path - length, "_%d.txt", n);
    if (!PathFileExistsA(path)) break;
  }
  // Appends: another process may have created the file meanwhile, and its lines are kept.
  file_ = text_file::open(path, text_file::Start::AtEnd);
}

void CTraceToFile::CloseFile() {
  if (!file_) return;
  char footer[37];
  format_local_time(footer, "\n\nFile closed at %d/%m/%Y %H:%M:%S");
  text_file::write(file_, footer);
  text_file::close(file_);
  file_ = nullptr;
}

std::string CTraceToFile::GetFilePath() const { return file_ ? text_file::path_of(file_) : std::string(); }

int CTraceToFile::GetDesktopFolderPath(char* path) {
  return SUCCEEDED(SHGetFolderPathA(nullptr, CSIDL_DESKTOPDIRECTORY, nullptr, SHGFP_TYPE_CURRENT, path));
}
