// The core of MFC: objects that know their class, exceptions, files and archives.
//
// Exceptions are thrown by pointer and deleted by whoever catches them:
//
//     try {
//       archive >> value;
//     } catch (CArchiveException* exception) {
//       exception->Delete();
//     }
#ifndef FRAMEWORK_AFX_H
#define FRAMEWORK_AFX_H

#include <atlstr.h>

#include <kexframework/export.h>

#include <optional>
#include <type_traits>
#include <vector>

class CObject;

// What the framework knows of a class made with DECLARE_DYNCREATE.
struct CRuntimeClass {
  LPCSTR m_lpszClassName;
  int m_nObjectSize;
  UINT m_wSchema;
  CObject* (*m_pfnCreateObject)();        // null where the class cannot be made dynamically
  CRuntimeClass* (*m_pfnGetBaseClass)();  // null at the root

  // A default-constructed object, owned by the caller; null where the class cannot be made.
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

// In the class: its record, and how to get at it.
#define DECLARE_DYNAMIC(class_name)             \
 protected:                                     \
  static CRuntimeClass* _GetBaseClass();        \
                                                \
 public:                                        \
  static const CRuntimeClass class##class_name; \
  static CRuntimeClass* GetThisClass();         \
  CRuntimeClass* GetRuntimeClass() const override;
// The same, and how to make an object.
#define DECLARE_DYNCREATE(class_name) \
  DECLARE_DYNAMIC(class_name)         \
  static CObject* CreateObject();

#define RUNTIME_CLASS(class_name) (class_name::GetThisClass())

// Nothing reads or writes objects of the class by its schema number: 0xFFFF says so.
#define IMPLEMENT_RUNTIMECLASS(class_name, base_class_name, schema, creator)                                   \
  CRuntimeClass* class_name::_GetBaseClass() { return RUNTIME_CLASS(base_class_name); }                        \
  const CRuntimeClass class_name::class##class_name = {#class_name, sizeof(class class_name), schema, creator, \
                                                       &class_name::_GetBaseClass};                            \
  CRuntimeClass* class_name::GetThisClass() { return const_cast<CRuntimeClass*>(&class##class_name); }         \
  CRuntimeClass* class_name::GetRuntimeClass() const { return GetThisClass(); }
#define IMPLEMENT_DYNCREATE(class_name, base_class_name)         \
  CObject* class_name::CreateObject() { return new class_name; } \
  IMPLEMENT_RUNTIMECLASS(class_name, base_class_name, 0xFFFF, &class_name::CreateObject)

// An error on its way to whoever can deal with it.
class KEXFRAMEWORK_API CException : public CObject {
 public:
  // autoDelete: Delete() frees the object, as is right for one made with new.
  explicit CException(bool autoDelete = true);
  ~CException() override;

  // Called by whoever caught the exception and does not throw it on.
  void Delete();

  // The error in words, cut to `room` characters with the terminator. FALSE, and an empty text, where there are none.
  virtual BOOL GetErrorMessage(LPTSTR message, UINT room, UINT* helpContext = nullptr) const;

 private:
  bool m_bAutoDelete;
};

// No memory is left. There is one object of it, since none could be made.
class KEXFRAMEWORK_API CMemoryException : public CException {
 public:
  using CException::CException;
  BOOL GetErrorMessage(LPTSTR message, UINT room, UINT* helpContext = nullptr) const override;
};

// A function was called with an argument that it does not take.
class KEXFRAMEWORK_API CInvalidArgException : public CException {
 public:
  using CException::CException;
  BOOL GetErrorMessage(LPTSTR message, UINT room, UINT* helpContext = nullptr) const override;
};

// What was asked for is not offered: data exchange with a control that the dialog does not have, for one.
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

  // The cause that an error code of the system stands for; genericException where there is none for it.
  static int OsErrorToException(LONG osError);
  // Throws what an error code of the system stands for.
  [[noreturn]] static void ThrowOsError(LONG osError, LPCTSTR fileName = nullptr);

  int m_cause;
  LONG m_lOsError;  // the system's error code; -1 where there is none
  CString m_strFileName;
};

// An archive was used against its direction, or it ended too early.
class KEXFRAMEWORK_API CArchiveException : public CException {
 public:
  enum {
    none,
    genericException,
    readOnly,   // a loading archive was written to
    endOfFile,  // the file ended within a value
    writeOnly,  // a storing archive was read from
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

// A file of bytes, unbuffered (CreateFile, ReadFile, WriteFile). All but Open throws CFileException; a file that is
// not open is an invalidFile.
class KEXFRAMEWORK_API CFile : public CObject {
 public:
  // One of mode..., one of share..., and what else is wanted.
  enum OpenFlags : UINT {
    modeRead = 0x0000,
    modeWrite = 0x0001,
    modeReadWrite = 0x0002,
    shareCompat = 0x0000,  // the same as shareExclusive
    shareExclusive = 0x0010,
    shareDenyWrite = 0x0020,
    shareDenyRead = 0x0030,
    shareDenyNone = 0x0040,
    modeNoInherit = 0x0080,   // started programs do not get the handle
    modeCreate = 0x1000,      // a new file; an old one of the name is emptied
    modeNoTruncate = 0x2000,  // with modeCreate: an old one is kept as it is
    typeBinary = 0x8000       // says nothing more: bytes always stay as they are
  };
  enum SeekPosition : UINT { begin, current, end };

  CFile();
  // Opens the file, or throws.
  CFile(LPCTSTR fileName, UINT openFlags);
  // Closes the file, without a word if that fails.
  ~CFile() override;

  // FALSE where the file cannot be opened; the exception object, if there is one, then says why. A file that was open
  // in this object is closed first.
  virtual BOOL Open(LPCTSTR fileName, UINT openFlags, CFileException* error = nullptr);
  // A file that is not open stays so.
  virtual void Close();

  // Up to `count` bytes; fewer at the end of the file only.
  virtual UINT Read(void* buffer, UINT count);
  // All bytes, or the exception.
  virtual void Write(const void* buffer, UINT count);
  // To what is still to be written by the system (FlushFileBuffers).
  virtual void Flush();

  // The new position, in bytes from the beginning. It may lie behind the end, never before the beginning (badSeek).
  virtual ULONGLONG Seek(LONGLONG offset, UINT from);
  void SeekToBegin() { Seek(0, begin); }
  virtual ULONGLONG GetPosition() const;
  virtual ULONGLONG GetLength() const;

  // The full path; empty where no file is open, or where the file has none.
  virtual CString GetFilePath() const;

  HANDLE m_hFile = INVALID_HANDLE_VALUE;

 private:
  CString m_path;
};

// A file in memory, which grows with what is written. Writing behind the end fills the gap with zeros.
class KEXFRAMEWORK_API CMemFile : public CFile {
 public:
  CMemFile();
  ~CMemFile() override;

  // There is nothing to open: FALSE, and nothing else happens.
  BOOL Open(LPCTSTR fileName, UINT openFlags, CFileException* error = nullptr) override;
  // Lets go of the bytes. The file can be used again.
  void Close() override;
  UINT Read(void* buffer, UINT count) override;
  void Write(const void* buffer, UINT count) override;
  void Flush() override;
  ULONGLONG Seek(LONGLONG offset, UINT from) override;
  ULONGLONG GetPosition() const override;
  ULONGLONG GetLength() const override;

 private:
  std::vector<BYTE> m_bytes;
  size_t m_position = 0;
};

// Stores values in a file, or loads them, through a buffer of its own; little-endian, nothing between the values.
//
//     CFile file("sizes.bin", CFile::modeCreate | CFile::modeWrite);
//     CArchive archive(&file, CArchive::store);
//     archive << DWORD{3};
//     archive.Close();
//
// The file is borrowed and has to be open until Close or the end of the archive. What is used against the archive's
// direction throws CArchiveException, a file that fails CFileException.
class KEXFRAMEWORK_API CArchive {
 public:
  enum Mode : UINT {
    store = 0,
    load = 1,
    bNoFlushOnDelete = 2  // the end of an archive that was not closed throws away what is in its buffer
  };

  CArchive(CFile* file, UINT mode, int bufferSize = 4096);
  // Closes the archive, without a word if that fails: call Close yourself to hear of it.
  ~CArchive();
  CArchive(const CArchive&) = delete;
  CArchive& operator=(const CArchive&) = delete;

  BOOL IsLoading() const { return (m_mode & load) != 0; }
  BOOL IsStoring() const { return !IsLoading(); }

  // Up to `count` bytes; fewer at the end of the file only, which is no exception here.
  UINT Read(void* buffer, UINT count);
  void Write(const void* buffer, UINT count);

  // Storing: the buffer goes to the file. Loading: the file's position becomes that of the archive, which reads ahead.
  void Flush();
  // Flush, and lets go of the file, which stays open. What is read or written after that is a genericException.
  void Close();

  // A number in its own width. A file that ends within it is an endOfFile.
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
  std::vector<BYTE> m_buffer;
  UINT m_at = 0;    // where the next byte is taken from or put to
  UINT m_read = 0;  // loading: the bytes that were read ahead
};

// Walks through the files and folders that a name with wildcards stands for. The loop is always one step behind:
//
//     CFileFind find;
//     BOOL more = find.FindFile("C:\\Data\\*.*");
//     while (more) {
//       more = find.FindNextFile();
//       use(find.GetFilePath());
//     }
//
// Before the first FindNextFile no entry is current: names are empty, questions are answered FALSE.
class KEXFRAMEWORK_API CFileFind : public CObject {
 public:
  CFileFind();
  ~CFileFind() override;

  // Begins a search; null means all that is in the current folder. FALSE where nothing is found, GetLastError() then
  // says why: ERROR_FILE_NOT_FOUND, ERROR_PATH_NOT_FOUND...
  virtual BOOL FindFile(LPCTSTR name = nullptr, DWORD unused = 0);
  // Makes the next entry the current one. FALSE where it is the last one (ERROR_NO_MORE_FILES) or looking for the one
  // after it failed; it is the current one all the same. Behind the last one it stays where it is.
  virtual BOOL FindNextFile();
  void Close();

  virtual CString GetFileName() const;
  // With its folder, from the root.
  virtual CString GetFilePath() const;
  BOOL IsDirectory() const;
  // The folder itself or the one above it: "." or "..".
  virtual BOOL IsDots() const;

 private:
  HANDLE m_search = INVALID_HANDLE_VALUE;
  std::optional<WIN32_FIND_DATAA> m_found;
  std::optional<WIN32_FIND_DATAA> m_next;
  CString m_folder;  // with the separator at its end
};

#endif
