// The words of exceptions.
#ifndef FRAMEWORK_ERROR_TEXT_H
#define FRAMEWORK_ERROR_TEXT_H

#include <windows.h>

#include <cstddef>

namespace framework {

// Copies a text as GetErrorMessage does: cut to the room, always ended. FALSE where it is empty or there is no room.
BOOL give_text(const char* text, LPTSTR message, UINT room);

// The same with the system's text for an error code or HRESULT, without the line end that closes it.
BOOL give_system_text(DWORD code, LPTSTR message, UINT room);

// The same with a cause's text out of a list, in which %s is the name of the file; an unknown cause is the list's
// second one, the generic one.
BOOL give_text_of_cause(const char* const* texts, std::size_t count, int cause, const char* name, LPTSTR message,
                        UINT room);
template <std::size_t count>
BOOL give_text_of_cause(const char* const (&texts)[count], int cause, const char* name, LPTSTR message, UINT room) {
  return give_text_of_cause(texts, count, cause, name, message, room);
}

}  // namespace framework

#endif
