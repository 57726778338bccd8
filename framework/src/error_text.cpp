#include <afx.h>

#include <framework/error_text.h>

#include <cstring>

namespace framework {

BOOL give_text(const char* text, LPTSTR message, UINT room) {
  if (!message || room == 0) return FALSE;
  lstrcpynA(message, text, static_cast<int>(room));
  return *text != 0;
}

BOOL give_system_text(DWORD code, LPTSTR message, UINT room) {
  char* text = nullptr;
  DWORD length =
      FormatMessageA(FORMAT_MESSAGE_ALLOCATE_BUFFER | FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS,
                     nullptr, code, 0, reinterpret_cast<char*>(&text), 0, nullptr);
  while (length && strchr("\r\n", text[length - 1])) text[--length] = 0;
  BOOL given = give_text(length ? text : "", message, room);
  LocalFree(text);
  return given;
}

BOOL give_text_of_cause(const char* const* texts, std::size_t count, int cause, const char* name, LPTSTR message,
                        UINT room) {
  bool known = cause >= 0 && static_cast<std::size_t>(cause) < count;
  CString text(texts[known ? cause : 1]);
  text.Replace("%s", *name ? name : "an unnamed file");
  return give_text(text, message, room);
}

}  // namespace framework
