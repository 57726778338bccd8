// The texts of exceptions.
#ifndef FRAMEWORK_ERROR_TEXT_H
#define FRAMEWORK_ERROR_TEXT_H

#include <windows.h>

#include <cstddef>

namespace framework {

// Copies a text for GetErrorMessage: truncated to the buffer and terminated. Returns FALSE if the text is empty or the
// buffer has no space.
BOOL give_text(const char* text, LPTSTR message, UINT room);

// The same with the system's text for an error code or HRESULT, without the line end.
BOOL give_system_text(DWORD code, LPTSTR message, UINT room);

// The same with the text of a cause from a list, in which %s is the name of the file. An unknown cause has the second
// text, the generic one.
BOOL give_text_of_cause(const char* const* texts, std::size_t count, int cause, const char* name, LPTSTR message,
                        UINT room);
template <std::size_t count>
BOOL give_text_of_cause(const char* const (&texts)[count], int cause, const char* name, LPTSTR message, UINT room) {
  return give_text_of_cause(texts, count, cause, name, message, room);
}

}  // namespace framework

#endif
