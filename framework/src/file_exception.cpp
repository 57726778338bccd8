#include <afx.h>

#include <framework/error_text.h>

namespace {

// In the order of the causes.
constexpr const char* file_texts[] = {
    "There was no error.",
    "Something went wrong with %s.",
    "There is no file %s.",
    "The path of %s cannot be right.",
    "There are too many open files to open %s.",
    "%s must not be used like this.",
    "%s is not open.",
    "%s is the current folder and stays.",
    "There is no room in the folder for %s.",
    "There is no such place in %s.",
    "The device failed with %s.",
    "%s is in use elsewhere.",
    "A part of %s is locked elsewhere.",
    "The disk has no room for %s.",
    "%s has ended.",
};

}  // namespace

CFileException::CFileException(int cause, LONG osError, LPCTSTR fileName)
    : m_cause(cause), m_lOsError(osError), m_strFileName(fileName) {}

BOOL CFileException::GetErrorMessage(LPTSTR message, UINT room, UINT* helpContext) const {
  if (helpContext) *helpContext = 0;
  return framework::give_text_of_cause(file_texts, m_cause, m_strFileName, message, room);
}

int CFileException::OsErrorToException(LONG osError) {
  switch (osError) {
    case ERROR_SUCCESS:
      return none;
    case ERROR_FILE_NOT_FOUND:
      return fileNotFound;
    case ERROR_PATH_NOT_FOUND:
    case ERROR_INVALID_NAME:
    case ERROR_BAD_PATHNAME:
    case ERROR_BAD_NETPATH:
    case ERROR_BAD_NET_NAME:
    case ERROR_INVALID_DRIVE:
    case ERROR_FILENAME_EXCED_RANGE:
      return badPath;
    case ERROR_TOO_MANY_OPEN_FILES:
      return tooManyOpenFiles;
    case ERROR_ACCESS_DENIED:
    case ERROR_FILE_EXISTS:
    case ERROR_ALREADY_EXISTS:
    case ERROR_WRITE_PROTECT:
      return accessDenied;
    case ERROR_INVALID_HANDLE:
      return invalidFile;
    case ERROR_CURRENT_DIRECTORY:
      return removeCurrentDir;
    case ERROR_CANNOT_MAKE:
      return directoryFull;
    case ERROR_SEEK:
    case ERROR_NEGATIVE_SEEK:
      return badSeek;
    case ERROR_CRC:
    case ERROR_NOT_READY:
    case ERROR_SECTOR_NOT_FOUND:
    case ERROR_READ_FAULT:
    case ERROR_WRITE_FAULT:
    case ERROR_GEN_FAILURE:
      return hardIO;
    case ERROR_SHARING_VIOLATION:
      return sharingViolation;
    case ERROR_LOCK_VIOLATION:
      return lockViolation;
    case ERROR_DISK_FULL:
    case ERROR_HANDLE_DISK_FULL:
      return diskFull;
    case ERROR_HANDLE_EOF:
      return endOfFile;
    default:
      return genericException;
  }
}

void CFileException::ThrowOsError(LONG osError, LPCTSTR fileName) {
  AfxThrowFileException(OsErrorToException(osError), osError, fileName);
}

void AfxThrowFileException(int cause, LONG osError, LPCTSTR fileName) {
  throw new CFileException(cause, osError, fileName);
}
