#include <afx.h>

CFileFind::CFileFind() = default;

CFileFind::~CFileFind() { CFileFind::Close(); }

BOOL CFileFind::FindFile(LPCTSTR name, DWORD) {
  Close();
  if (!name) name = "*.*";

  DWORD room = GetFullPathNameA(name, 0, nullptr, nullptr);
  CString path;
  LPSTR last_part = nullptr;
  LPSTR start = path.GetBuffer(static_cast<int>(room));
  if (!room || !GetFullPathNameA(name, room, start, &last_part)) return FALSE;
  m_folder.SetString(start, last_part ? static_cast<int>(last_part - start) : lstrlenA(start));

  WIN32_FIND_DATAA first;
  m_search = FindFirstFileA(name, &first);
  if (m_search == INVALID_HANDLE_VALUE) return FALSE;
  m_next = first;
  return TRUE;
}

BOOL CFileFind::FindNextFile() {
  if (!m_next) {
    SetLastError(m_search == INVALID_HANDLE_VALUE ? ERROR_INVALID_HANDLE : ERROR_NO_MORE_FILES);
    return FALSE;
  }
  m_found = m_next;
  WIN32_FIND_DATAA next;
  if (::FindNextFileA(m_search, &next)) {
    m_next = next;
    return TRUE;
  }
  m_next.reset();
  return FALSE;
}

void CFileFind::Close() {
  if (m_search != INVALID_HANDLE_VALUE) FindClose(m_search);
  m_search = INVALID_HANDLE_VALUE;
  m_found.reset();
  m_next.reset();
  m_folder.Empty();
}

CString CFileFind::GetFileName() const { return m_found ? CString(m_found->cFileName) : CString(); }

CString CFileFind::GetFilePath() const { return m_found ? m_folder + m_found->cFileName : CString(); }

BOOL CFileFind::IsDirectory() const { return m_found && (m_found->dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) != 0; }

BOOL CFileFind::IsDots() const {
  return m_found && (!lstrcmpA(m_found->cFileName, ".") || !lstrcmpA(m_found->cFileName, ".."));
}
