#include <windows.h>
#include <emmintrin.h>

#include <diagnostics/text_file.h>

#include <bit>
#include <utility>

namespace kexlib::text_file {
namespace {

bool write_bytes(Handle file, std::string_view bytes) {
  DWORD written;
  return WriteFile(file, bytes.data(), static_cast<DWORD>(bytes.size()), &written, nullptr);
}

// The characters before the first line break. A profile has few, and memchr of some run-time libraries goes byte by
// byte.
std::size_t line_length(std::string_view text) {
  constexpr std::size_t block_size = sizeof(__m128i);
  const __m128i breaks = _mm_set1_epi8('\n');
  std::size_t i = 0;
  for (; i + block_size <= text.size(); i += block_size) {
    const __m128i block = _mm_loadu_si128(reinterpret_cast<const __m128i*>(text.data() + i));
    const int found = _mm_movemask_epi8(_mm_cmpeq_epi8(block, breaks));
    if (found) return i + static_cast<std::size_t>(std::countr_zero(static_cast<unsigned>(found)));
  }
  while (i < text.size() && text[i] != '\n') ++i;
  return i;
}

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
