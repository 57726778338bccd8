#include <afx.h>

#include <algorithm>
#include <new>
#include <stdexcept>

CMemFile::CMemFile() = default;

CMemFile::~CMemFile() = default;

BOOL CMemFile::Open(LPCTSTR, UINT, CFileException*) { return FALSE; }

void CMemFile::Close() {
  std::vector<BYTE>().swap(m_bytes);
  m_position = 0;
}

UINT CMemFile::Read(void* buffer, UINT count) {
  if (m_position >= m_bytes.size()) return 0;
  size_t done = std::min<size_t>(count, m_bytes.size() - m_position);
  std::copy_n(m_bytes.data() + m_position, done, static_cast<BYTE*>(buffer));
  m_position += done;
  return static_cast<UINT>(done);
}

void CMemFile::Write(const void* buffer, UINT count) {
  if (!count) return;
  try {
    if (m_bytes.size() < m_position + count) m_bytes.resize(m_position + count);
  } catch (const std::bad_alloc&) {
    AfxThrowMemoryException();
  } catch (const std::length_error&) {
    AfxThrowMemoryException();
  }
  std::copy_n(static_cast<const BYTE*>(buffer), count, m_bytes.data() + m_position);
  m_position += count;
}

ULONGLONG CMemFile::Seek(LONGLONG offset, UINT from) {
  if (from > end) AfxThrowFileException(CFileException::genericException, ERROR_INVALID_PARAMETER);
  LONGLONG start = 0;
  if (from == current) start = static_cast<LONGLONG>(m_position);
  if (from == end) start = static_cast<LONGLONG>(m_bytes.size());
  // Not before the beginning, and not beyond the range of a position.
  if (offset < -start || offset > LLONG_MAX - start) AfxThrowFileException(CFileException::badSeek);
  m_position = static_cast<size_t>(start + offset);
  return m_position;
}

ULONGLONG CMemFile::GetPosition() const { return m_position; }

ULONGLONG CMemFile::GetLength() const { return m_bytes.size(); }
