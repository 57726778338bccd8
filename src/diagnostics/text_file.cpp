#include <windows.h>

#include <diagnostics/text_file.h>

namespace kexlib::text_file {

Handle open(const char* path, Start start) {
  const DWORD disposition = start == Start::Truncated ? CREATE_ALWAYS : OPEN_ALWAYS;
  const HANDLE file = CreateFileA(path, GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr, disposition,
                                  FILE_ATTRIBUTE_NORMAL, nullptr);
  if (file == INVALID_HANDLE_VALUE) return nullptr;
  if (start == Start::AtEnd) SetFilePointer(file, 0, nullptr, FILE_END);
  return file;
}

void write(Handle file, std::string_view text) {
  char translated[16 * 1024];
  while (!text.empty()) {
    std::size_t used = 0;
    while (!text.empty() && used + 2 <= sizeof translated) {
      if (text.front() == '\n') {
        translated[used++] = '\r';
        translated[used++] = '\n';
        text.remove_prefix(1);
      } else {
        const std::string_view fitting = text.substr(0, sizeof translated - used);
        const std::string_view line = fitting.substr(0, fitting.find('\n'));
        used += line.copy(translated + used, line.size());
        text.remove_prefix(line.size());
      }
    }
    DWORD written;
    if (!WriteFile(file, translated, static_cast<DWORD>(used), &written, nullptr)) return;
  }
}

void close(Handle file) { CloseHandle(file); }

std::string path_of(Handle file) {
  std::string path(MAX_PATH, '\0');
  DWORD length = GetFinalPathNameByHandleA(file, path.data(), MAX_PATH, 0);
  if (length >= MAX_PATH) {
    path.resize(length + 1);
    length = GetFinalPathNameByHandleA(file, path.data(), length + 1, 0);
  }
  path.resize(length);
  // The system's answer has the prefix for paths of any length: \\?\C:\... or \\?\UNC\server\...
  if (path.starts_with(R"(\\?\UNC\)")) return path.replace(0, 8, R"(\\)");
  if (path.starts_with(R"(\\?\)")) path.erase(0, 4);
  return path;
}

}  // namespace kexlib::text_file
