#include <windows.h>

#include <diagnostics/text_file.h>
#include <support/byte_blocks.h>

#include <algorithm>
#include <utility>

namespace kexlib::text_file {
namespace {

// In pieces, since a call takes less than 4 GiB.
bool write_bytes(Handle file, std::string_view bytes) {
  constexpr std::size_t largest_piece = std::size_t{1} << 30;
  while (!bytes.empty()) {
    const std::size_t piece = std::min(bytes.size(), largest_piece);
    DWORD written;
    if (!WriteFile(file, bytes.data(), static_cast<DWORD>(piece), &written, nullptr)) return false;
    bytes.remove_prefix(piece);
  }
  return true;
}

// The characters before the first line break. A profile has few.
std::size_t line_length(std::string_view text) { return length_before("\n", text); }

}  // namespace

Handle open(const char* path, Start start) {
  const DWORD disposition = start == Start::Truncated ? CREATE_ALWAYS : OPEN_ALWAYS;
  const HANDLE file = CreateFileA(path, GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr, disposition,
                                  FILE_ATTRIBUTE_NORMAL, nullptr);
  if (file == INVALID_HANDLE_VALUE) return nullptr;
  if (start == Start::AtEnd) SetFilePointer(file, 0, nullptr, FILE_END);
  return file;
}

void write(Handle file, std::string_view text) {
  std::size_t line = line_length(text);
  if (line == text.size()) {
    write_bytes(file, text);
    return;
  }
  char translated[16 * 1024];
  std::size_t used = 0;
  const auto flush = [&] { return write_bytes(file, {translated, std::exchange(used, 0)}); };
  for (;; line = line_length(text)) {
    while (line > sizeof translated - used) {
      const std::size_t part = text.copy(translated + used, sizeof translated - used);
      used += part;
      text.remove_prefix(part);
      line -= part;
      if (!flush()) return;
    }
    used += text.copy(translated + used, line);
    text.remove_prefix(line);
    if (text.empty()) break;
    if (used + 2 > sizeof translated && !flush()) return;
    translated[used++] = '\r';
    translated[used++] = '\n';
    text.remove_prefix(1);
  }
  if (used) flush();
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
