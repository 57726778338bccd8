#include <afx.h>

#include <framework/error_text.h>

#include <algorithm>

namespace {

// In the order of the causes.
constexpr const char* archive_texts[] = {
    "There was no error.",
    "Something went wrong with %s.",
    "%s is being read and cannot be written to.",
    "%s ended before all of it was read.",
    "%s is being written and cannot be read from.",
    "%s is not what was expected.",
    "%s holds an object of another kind.",
    "%s was written by another version.",
};

constexpr int smallest_buffer = 128;

}  // namespace

CArchiveException::CArchiveException(int cause, LPCTSTR archiveName) : m_cause(cause), m_strFileName(archiveName) {}

BOOL CArchiveException::GetErrorMessage(LPTSTR message, UINT room, UINT* helpContext) const {
  if (helpContext) *helpContext = 0;
  return framework::give_text_of_cause(archive_texts, m_cause, m_strFileName, message, room);
}

void AfxThrowArchiveException(int cause, LPCTSTR archiveName) { throw new CArchiveException(cause, archiveName); }

CArchive::CArchive(CFile* file, UINT mode, int bufferSize, void* buffer)
    : m_file(file), m_mode(mode), m_buffer(static_cast<BYTE*>(buffer)), m_size(static_cast<UINT>(bufferSize)) {
  if (!file) AfxThrowInvalidArgException();
  m_fileName = file->GetFilePath();
  if (buffer) return;
  m_size = static_cast<UINT>(std::max(bufferSize, smallest_buffer));
  m_own.resize(m_size);
  m_buffer = m_own.data();
}

CArchive::~CArchive() {
  if (!m_file || (m_mode & bNoFlushOnDelete)) return;
  try {
    Close();
  } catch (CException* exception) {
    exception->Delete();
  }
}

UINT CArchive::Read(void* buffer, UINT count) {
  ExpectDirection(true);
  auto* to = static_cast<BYTE*>(buffer);
  UINT done = std::min(count, m_read - m_at);
  std::copy_n(m_buffer + m_at, done, to);
  m_at += done;
  while (done < count) {
    // Data of the size of the buffer or more is written directly.
    UINT rest = count - done;
    if (rest >= m_size) {
      UINT got = m_file->Read(to + done, rest);
      if (!got) break;
      done += got;
      continue;
    }
    m_at = m_read = 0;
    m_read = m_file->Read(m_buffer, m_size);
    if (!m_read) break;
    m_at = std::min(rest, m_read);
    std::copy_n(m_buffer, m_at, to + done);
    done += m_at;
  }
  return done;
}

void CArchive::Write(const void* buffer, UINT count) {
  ExpectDirection(false);
  if (count > m_size - m_at) {
    Flush();
    if (count >= m_size) return m_file->Write(buffer, count);
  }
  std::copy_n(static_cast<const BYTE*>(buffer), count, m_buffer + m_at);
  m_at += count;
}

void CArchive::Flush() {
  if (!m_file) return;
  if (IsStoring()) {
    if (m_at) m_file->Write(m_buffer, m_at);
  } else if (m_at != m_read) {
    m_file->Seek(LONGLONG{m_at} - m_read, CFile::current);
  }
  m_at = m_read = 0;
}

void CArchive::Close() {
  Flush();
  m_file = nullptr;
}

void CArchive::ReadWhole(void* value, UINT size) {
  // Read into a copy: if the file ends inside the value, the value does not change.
  BYTE bytes[8];
  if (Read(bytes, size) != size) AfxThrowArchiveException(CArchiveException::endOfFile, m_fileName);
  std::copy_n(bytes, size, static_cast<BYTE*>(value));
}

void CArchive::ExpectDirection(bool loading) const {
  if (!m_file) AfxThrowArchiveException(CArchiveException::genericException, m_fileName);
  if (loading && IsStoring()) AfxThrowArchiveException(CArchiveException::writeOnly, m_fileName);
  if (!loading && IsLoading()) AfxThrowArchiveException(CArchiveException::readOnly, m_fileName);
}
