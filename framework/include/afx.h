// The core of MFC: run-time class information, exceptions, files and archives.
//
// Exceptions are thrown by pointer. The handler that does not rethrow one deletes it:
//
//     try {
//       archive >> value;
//     } catch (CArchiveException* exception) {
//       exception->Delete();
//     }
#ifndef FRAMEWORK_AFX_H
#define FRAMEWORK_AFX_H

#ifdef _WINDOWS_
#error "MFC's headers include windows.h themselves: they come before it, and before those of ATL"
#endif
#define _AFX

#include <kexframework/export.h>

#include <afxstr.h>

#include <optional>
#include <type_traits>
#include <vector>

class CObject;

// The run-time record of a class made with DECLARE_DYNCREATE.
struct CRuntimeClass {
  LPCSTR m_lpszClassName;
  int m_nObjectSize;
  UINT m_wSchema;
  CObject* (*m_pfnCreateObject)();        // null: objects cannot be created dynamically
  CRuntimeClass* (*m_pfnGetBaseClass)();  // null at the root

  // Returns a default-constructed object, which the caller owns; null if the class cannot create one.
  KEXFRAMEWORK_API CObject* CreateObject();
};

// The root of MFC's classes.
class KEXFRAMEWORK_API CObject {
 public:
  CObject() = default;
  CObject(const CObject&) = delete;
  CObject& operator=(const CObject&) = delete;
  virtual ~CObject();

  virtual CRuntimeClass* GetRuntimeClass() const;

  static CRuntimeClass* GetThisClass();
  static const CRuntimeClass classCObject;
};

// In the class: its run-time record and how to create an object.
#define DECLARE_DYNCREATE(class_name)              \
 protected:                                        \
  static CRuntimeClass* _GetBaseClass();           \
                                                   \
 public:                                           \
  static const CRuntimeClass class##class_name;    \
  static CRuntimeClass* GetThisClass();            \
  CRuntimeClass* GetRuntimeClass() const override; \
  static CObject* CreateObject();

#define RUNTIME_CLASS(class_name) (class_name::GetThisClass())

// In a source. The schema number is 0xFFFF: objects of the class are not serialized.
#define IMPLEMENT_DYNCREATE(class_name, base_class_name)                                                       \
  CObject* class_name::CreateObject() { return new class_name; }                                               \
  CRuntimeClass* class_name::_GetBaseClass() { return RUNTIME_CLASS(base_class_name); }                        \
  const CRuntimeClass class_name::class##class_name = {#class_name, sizeof(class class_name), 0xFFFF,          \
                                                       &class_name::CreateObject, &class_name::_GetBaseClass}; \
  CRuntimeClass* class_name::GetThisClass() { return const_cast<CRuntimeClass*>(&class##class_name); }         \
  CRuntimeClass* class_name::GetRuntimeClass() const { return GetThisClass(); }

// The base of all exceptions.
class KEXFRAMEWORK_API CException : public CObject {
 public:
  // autoDelete: whether Delete() frees the object. Pass false for an object that was not made with new.
  explicit CException(bool autoDelete = true);
  ~CException() override;

  // Call it in the handler, unless the exception is rethrown.
  void Delete();

  // Copies a description of the error, truncated to `room` characters with the terminator. Returns FALSE, and an empty
  // text, if there is no description.
  virtual BOOL GetErrorMessage(LPTSTR message, UINT room, UINT* helpContext = nullptr) const;

 private:
  bool m_bAutoDelete;
};

// No memory is left. AfxThrowMemoryException throws an object that is allocated in advance.
class KEXFRAMEWORK_API CMemoryException : public CException {
 public:
  using CException::CException;
  BOOL GetErrorMessage(LPTSTR message, UINT room, UINT* helpContext = nullptr) const override;
};

// A function was called with an invalid argument.
class KEXFRAMEWORK_API CInvalidArgException : public CException {
 public:
  using CException::CException;
  BOOL GetErrorMessage(LPTSTR message, UINT room, UINT* helpContext = nullptr) const override;
};

// The operation is not supported, such as data exchange with a control that the dialog does not have.
class KEXFRAMEWORK_API CNotSupportedException : public CException {
 public:
  using CException::CException;
  BOOL GetErrorMessage(LPTSTR message, UINT room, UINT* helpContext = nullptr) const override;
};

// A file could not be opened, read or written.
class KEXFRAMEWORK_API CFileException : public CException {
 public:
  enum {
    none,
    genericException,
    fileNotFound,
    badPath,
    tooManyOpenFiles,
    accessDenied,
    invalidFile,
    removeCurrentDir,
    directoryFull,
    badSeek,
    hardIO,
    sharingViolation,
    lockViolation,
    diskFull,
    endOfFile
  };

  explicit CFileException(int cause = none, LONG osError = -1, LPCTSTR fileName = nullptr);
  BOOL GetErrorMessage(LPTSTR message, UINT room, UINT* helpContext = nullptr) const override;

  // Returns the cause for a system error code; genericException if there is none.
  static int OsErrorToException(LONG osError);
  // Throws the exception for a system error code.
  [[noreturn]] static void ThrowOsError(LONG osError, LPCTSTR fileName = nullptr);

  int m_cause;
  LONG m_lOsError;  // the system error code; -1: none
  CString m_strFileName;
};

// An archive was used against its direction, or its file ended too early.
class KEXFRAMEWORK_API CArchiveException : public CException {
 public:
  enum {
    none,
    genericException,
    readOnly,   // write to an archive that loads
    endOfFile,  // the file ended inside a value
    writeOnly,  // read from an archive that stores
    badIndex,
    badClass,
    badSchema
  };

  explicit CArchiveException(int cause = none, LPCTSTR archiveName = nullptr);
  BOOL GetErrorMessage(LPTSTR message, UINT room, UINT* helpContext = nullptr) const override;

  int m_cause;
  CString m_strFileName;
};

[[noreturn]] KEXFRAMEWORK_API void AfxThrowMemoryException();
[[noreturn]] KEXFRAMEWORK_API void AfxThrowInvalidArgException();
[[noreturn]] KEXFRAMEWORK_API void AfxThrowNotSupportedException();
[[noreturn]] KEXFRAMEWORK_API void AfxThrowFileException(int cause, LONG osError = -1, LPCTSTR fileName = nullptr);
[[noreturn]] KEXFRAMEWORK_API void AfxThrowArchiveException(int cause, LPCTSTR archiveName = nullptr);

// An unbuffered binary file (CreateFile, ReadFile, WriteFile). All members but Open report errors by CFileException. If
// no file is open the cause is invalidFile.
class KEXFRAMEWORK_API CFile : public CObject {
 public:
  // Combine one mode flag, one share flag and any of the others.
  enum OpenFlags : UINT {
    modeRead = 0x0000,
    modeWrite = 0x0001,
    modeReadWrite = 0x0002,
    shareCompat = 0x0000,  // same as shareExclusive
    shareExclusive = 0x0010,
    shareDenyWrite = 0x0020,
    shareDenyRead = 0x0030,
    shareDenyNone = 0x0040,
    modeNoInherit = 0x0080,   // child processes do not inherit the handle
    modeCreate = 0x1000,      // creates the file; an existing file is truncated
    modeNoTruncate = 0x2000,  // with modeCreate: an existing file is not truncated
    typeBinary = 0x8000       // no effect: files are always binary
  };
  enum SeekPosition : UINT { begin, current, end };

  CFile();
  // Opens the file. Throws CFileException on failure.
  CFile(LPCTSTR fileName, UINT openFlags);
  // Closes the file. Errors are ignored.
  ~CFile() override;

  // Returns FALSE if the file cannot be opened, and stores the cause in `error` unless that is null. A file that is
  // already open in this object is closed first.
  virtual BOOL Open(LPCTSTR fileName, UINT openFlags, CFileException* error = nullptr);
  // Does nothing if no file is open.
  virtual void Close();

  // Reads up to `count` bytes and returns how many; fewer than `count` only at the end of the file.
  virtual UINT Read(void* buffer, UINT count);
  // Writes all bytes, or throws.
  virtual void Write(const void* buffer, UINT count);

  // Returns the new position, in bytes from the beginning. It may be beyond the end of the file; a position before the
  // beginning is badSeek.
  virtual ULONGLONG Seek(LONGLONG offset, UINT from);
  void SeekToBegin() { Seek(0, begin); }
  virtual ULONGLONG GetPosition() const;
  virtual ULONGLONG GetLength() const;

  // The full path; empty if no file is open, or if the file has no name.
  virtual CString GetFilePath() const;

  HANDLE m_hFile = INVALID_HANDLE_VALUE;

 private:
  CString m_path;
};

// A file in memory. It grows as data is written. A write beyond the end fills the gap with zeros.
class KEXFRAMEWORK_API CMemFile : public CFile {
 public:
  CMemFile();
  ~CMemFile() override;

  // Not applicable: returns FALSE and does nothing.
  BOOL Open(LPCTSTR fileName, UINT openFlags, CFileException* error = nullptr) override;
  // Discards the contents. The file can be used again.
  void Close() override;
  UINT Read(void* buffer, UINT count) override;
  void Write(const void* buffer, UINT count) override;
  ULONGLONG Seek(LONGLONG offset, UINT from) override;
  ULONGLONG GetPosition() const override;
  ULONGLONG GetLength() const override;

 private:
  std::vector<BYTE> m_bytes;
  size_t m_position = 0;
};

// Stores values in a file, or loads them, through a buffer. Numbers are little-endian, with nothing between them.
//
//     CFile file("sizes.bin", CFile::modeCreate | CFile::modeWrite);
//     CArchive archive(&file, CArchive::store);
//     archive << DWORD{3};
//     archive.Close();
//
// The caller owns the file. It must stay open until Close or the destructor. A call against the archive's direction
// throws CArchiveException, a file error throws CFileException.
class KEXFRAMEWORK_API CArchive {
 public:
  enum Mode : UINT {
    store = 0,
    load = 1,
    bNoFlushOnDelete = 2  // the destructor of an archive that is not closed discards the buffer
  };

  // buffer: memory of the caller for the buffer, which must exist as long as the archive; null: it has its own.
  CArchive(CFile* file, UINT mode, int bufferSize = 4096, void* buffer = nullptr);
  // Closes the archive. Errors are ignored; call Close to receive them.
  ~CArchive();
  CArchive(const CArchive&) = delete;
  CArchive& operator=(const CArchive&) = delete;

  BOOL IsLoading() const { return (m_mode & load) != 0; }
  BOOL IsStoring() const { return !IsLoading(); }

  // Reads up to `count` bytes and returns how many. Fewer than `count` at the end of the file; that is not an error.
  UINT Read(void* buffer, UINT count);
  void Write(const void* buffer, UINT count);

  // Storing: writes the buffer to the file. Loading: sets the file's position to that of the archive, which reads
  // ahead.
  void Flush();
  // Flushes and detaches the file, which stays open. A later read or write throws genericException.
  void Close();

  // Stores or loads a number in its own size. The end of the file inside a number throws endOfFile.
  template <typename Number, typename = std::enable_if_t<std::is_arithmetic_v<Number> && sizeof(Number) <= 8>>
  CArchive& operator<<(Number value) {
    Write(&value, sizeof value);
    return *this;
  }
  template <typename Number, typename = std::enable_if_t<std::is_arithmetic_v<Number> && sizeof(Number) <= 8>>
  CArchive& operator>>(Number& value) {
    ReadWhole(&value, sizeof value);
    return *this;
  }

 private:
  void ReadWhole(void* value, UINT size);
  void ExpectDirection(bool loading) const;

  CFile* m_file;
  UINT m_mode;
  CString m_fileName;
  std::vector<BYTE> m_own;
  BYTE* m_buffer;
  UINT m_size;      // of the buffer
  UINT m_at = 0;    // offset of the next byte
  UINT m_read = 0;  // loading: number of bytes in the buffer
};

// Enumerates the files and folders that match a name with wildcards. FindFile and FindNextFile look one entry ahead:
//
//     CFileFind find;
//     BOOL more = find.FindFile("C:\\Data\\*.*");
//     while (more) {
//       more = find.FindNextFile();
//       use(find.GetFilePath());
//     }
//
// Before the first FindNextFile there is no current entry: names are empty and tests return FALSE.
class KEXFRAMEWORK_API CFileFind : public CObject {
 public:
  CFileFind();
  ~CFileFind() override;

  // Starts a search; null means all entries of the current folder. Returns FALSE if nothing is found; GetLastError()
  // returns the reason, such as ERROR_FILE_NOT_FOUND or ERROR_PATH_NOT_FOUND.
  virtual BOOL FindFile(LPCTSTR name = nullptr, DWORD unused = 0);
  // Makes the next entry current. Returns FALSE if it is the last one (ERROR_NO_MORE_FILES), or if the search for the
  // entry after it failed; the entry is current in both cases. After the last entry the current one does not change.
  virtual BOOL FindNextFile();
  void Close();

  virtual CString GetFileName() const;
  // The full path.
  virtual CString GetFilePath() const;
  BOOL IsDirectory() const;
  // TRUE for "." and "..".
  virtual BOOL IsDots() const;

 private:
  HANDLE m_search = INVALID_HANDLE_VALUE;
  std::optional<WIN32_FIND_DATAA> m_found;
  std::optional<WIN32_FIND_DATAA> m_next;
  CString m_folder;  // ends with a separator
};

#endif
