#include <afx.h>

namespace {

DWORD access_of(UINT flags) {
  switch (flags & (CFile::modeWrite | CFile::modeReadWrite)) {
    case CFile::modeRead:
      return GENERIC_READ;
    case CFile::modeWrite:
      return GENERIC_WRITE;
    default:
      return GENERIC_READ | GENERIC_WRITE;
  }
}

DWORD sharing_of(UINT flags) {
  switch (flags & (CFile::shareDenyRead | CFile::shareDenyNone)) {
    case CFile::shareDenyWrite:
      return FILE_SHARE_READ;
    case CFile::shareDenyRead:
      return FILE_SHARE_WRITE;
    case CFile::shareDenyNone:
      return FILE_SHARE_READ | FILE_SHARE_WRITE;
    default:
      return 0;
  }
}

DWORD creation_of(UINT flags) {
  if (!(flags & CFile::modeCreate)) return OPEN_EXISTING;
  return flags & CFile::modeNoTruncate ? OPEN_ALWAYS : CREATE_ALWAYS;
}

CString full_path(LPCTSTR name) {
  CString path;
  DWORD room = GetFullPathNameA(name, 0, nullptr, nullptr);
  if (!room) return name;
  GetFullPathNameA(name, room, path.GetBuffer(static_cast<int>(room)), nullptr);
  path.ReleaseBuffer();
  return path;
}

}  // namespace

CFile::CFile() = default;

CFile::CFile(LPCTSTR fileName, UINT openFlags) {
  CFileException why;
  if (!CFile::Open(fileName, openFlags, &why)) AfxThrowFileException(why.m_cause, why.m_lOsError, why.m_strFileName);
}

CFile::~CFile() {
  if (m_hFile != INVALID_HANDLE_VALUE) CloseHandle(m_hFile);
}

BOOL CFile::Open(LPCTSTR fileName, UINT openFlags, CFileException* error) {
  CFile::Close();
  if (!fileName) fileName = "";
  SECURITY_ATTRIBUTES security = {sizeof security, nullptr, !(openFlags & modeNoInherit)};
  m_hFile = CreateFileA(fileName, access_of(openFlags), sharing_of(openFlags), &security, creation_of(openFlags),
                        FILE_ATTRIBUTE_NORMAL, nullptr);
  if (m_hFile == INVALID_HANDLE_VALUE) {
    auto code = static_cast<LONG>(GetLastError());
    if (error) {
      error->m_cause = CFileException::OsErrorToException(code);
      error->m_lOsError = code;
      error->m_strFileName = fileName;
    }
    return FALSE;
  }
  m_path = full_path(fileName);
  return TRUE;
}

void CFile::Close() {
  if (m_hFile == INVALID_HANDLE_VALUE) return;
  CString path = std::move(m_path);
  if (!CloseHandle(std::exchange(m_hFile, INVALID_HANDLE_VALUE)))
    CFileException::ThrowOsError(static_cast<LONG>(GetLastError()), path);
}

UINT CFile::Read(void* buffer, UINT count) {
  DWORD done = 0;
  if (!ReadFile(m_hFile, buffer, count, &done, nullptr))
    CFileException::ThrowOsError(static_cast<LONG>(GetLastError()), m_path);
  return done;
}

void CFile::Write(const void* buffer, UINT count) {
  DWORD done = 0;
  if (!WriteFile(m_hFile, buffer, count, &done, nullptr))
    CFileException::ThrowOsError(static_cast<LONG>(GetLastError()), m_path);
  // The system may write fewer bytes and report success: the disk is full.
  if (done != count) AfxThrowFileException(CFileException::diskFull, -1, m_path);
}

ULONGLONG CFile::Seek(LONGLONG offset, UINT from) {
  LARGE_INTEGER distance, position;
  distance.QuadPart = offset;
  if (!SetFilePointerEx(m_hFile, distance, &position, from))
    CFileException::ThrowOsError(static_cast<LONG>(GetLastError()), m_path);
  return static_cast<ULONGLONG>(position.QuadPart);
}

ULONGLONG CFile::GetPosition() const {
  LARGE_INTEGER position;
  if (!SetFilePointerEx(m_hFile, {}, &position, FILE_CURRENT))
    CFileException::ThrowOsError(static_cast<LONG>(GetLastError()), m_path);
  return static_cast<ULONGLONG>(position.QuadPart);
}

ULONGLONG CFile::GetLength() const {
  LARGE_INTEGER length;
  if (!GetFileSizeEx(m_hFile, &length)) CFileException::ThrowOsError(static_cast<LONG>(GetLastError()), m_path);
  return static_cast<ULONGLONG>(length.QuadPart);
}

CString CFile::GetFilePath() const { return m_path; }
