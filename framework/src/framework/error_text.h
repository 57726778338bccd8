// The words of exceptions.
#ifndef FRAMEWORK_ERROR_TEXT_H
#define FRAMEWORK_ERROR_TEXT_H

#include <windows.h>

namespace framework {

// Copies a text as GetErrorMessage does: cut to the room, always ended. FALSE where it is empty or there is no room.
BOOL give_text(const char* text, LPTSTR message, UINT room);

// The same with the system's text for an error code or HRESULT, without the line end that closes it.
BOOL give_system_text(DWORD code, LPTSTR message, UINT room);

}  // namespace framework

#endif
