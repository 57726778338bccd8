// PNG generation thread: encodes an image as PNG on a worker thread, to a file, or to a buffer and a file.
//
//     std::unique_ptr<hnDuctImage> image(rq_duct_image_from_dib(drawing.bitmap()));   // of a pvWindowDIB, for instance
//     auto buffer = kexBuffer_create();
//     kexPNGGenerationThread job(std::move(image), "picture.png", buffer);
//     job.Resume();                                                     // the thread is created suspended
//     ...                                                               // other threads wait for the buffer
//     job.Join(INFINITE);                                               // before the object is destroyed
//
// The image. rq_duct_image_from_dib (<rqgfx/duct_image.h>) copies any bottom-up DIB section of 32 bits: the bitmap of a
// pvWindowDIB (<pvwnd/window_dib.h>), to draw on with GDI, or of a class that is derived from kexWTLDIB (m_bitmap).
// Call GdiFlush after drawing. Or fill an hnDuctImage row by row. A screenshot needs no image: see screen_capture.h.
//
// The thread uses the object while it runs. The destructor does not wait for it.
#ifndef KEXLIB_IMAGING_PNG_THREAD_H
#define KEXLIB_IMAGING_PNG_THREAD_H

#include <kexlib/export.h>
#include <kexlib/framework.h>
#include <kexlib/imaging/buffer.h>

#include <rqgfx/duct_image.h>

#include <memory>
#include <type_traits>

/// Holds a thread's handle and identifier. CThreadT<true>, which owns the handle, is the only instantiation that
/// kexlib.dll exports.
//
// No member is inline, not even a defaulted one: GCC does not export the inline members of an instantiation, and users
// without optimisation import them.
template <bool owns>
class CThreadT {
 public:
  /// No thread.
  CThreadT();

  /// Takes ownership of a handle. If the identifier is 0, it is queried (GetThreadId).
  CThreadT(HANDLE h, DWORD id);

  /// Duplicates the handle; the duplicate has the same access and is not inheritable (DuplicateHandle).
  CThreadT(const CThreadT& other);

  /// Copies the handle without duplicating it, and does not close the previous handle. Afterwards both objects close
  /// the same handle. Kept for compatibility, unlike the copy constructor.
  CThreadT& operator=(const CThreadT& other);

  /// Closes the handle. The thread continues to run.
  virtual ~CThreadT();

  /// Starts a thread (_beginthreadex). On failure the handle is null.
  ///   proc       the thread's function; its result is the exit code
  ///   param      passed to `proc`
  ///   flags      0 or CREATE_SUSPENDED
  ///   sa         the security attributes, may be null
  ///   stackSize  in bytes; 0 is the default
  static CThreadT Create(unsigned long(WINAPI* proc)(void*), void* param, unsigned long flags, SECURITY_ATTRIBUTES* sa,
                         unsigned long stackSize);

  /// Opens a running thread (OpenThread). On failure the handle is null.
  ///   id       the thread's identifier
  ///   access   such as THREAD_QUERY_INFORMATION
  ///   inherit  whether child processes inherit the handle
  static CThreadT Open(unsigned long id, unsigned long access, int inherit);

  /// Ends the calling thread, which need not be this object's (_endthreadex).
  void Exit(unsigned long code);

  /// STILL_ACTIVE (259) while the thread runs; 0xFFFFFFFF on failure (GetExitCodeThread).
  unsigned long GetExitCode() const;

  /// The handle. The object keeps its ownership.
  virtual HANDLE GetHandle() const;

  /// The thread's identifier, 0 if there is no thread.
  unsigned long GetId() const;

  /// The priority, THREAD_PRIORITY_ERROR_RETURN on failure (GetThreadPriority); the setter's result is 0 on failure
  /// (SetThreadPriority).
  int GetPriority() const;
  int SetPriority(int priority);

  /// The times of creation and exit, and the time spent in kernel and user mode (GetThreadTimes). 0 on failure.
  int GetThreadTimes(FILETIME* creation, FILETIME* exit, FILETIME* kernel, FILETIME* user) const;

  /// Whether the thread has pending input or output; 0 on failure (GetThreadIOPendingFlag).
  int IsIOPending() const;

  /// Waits for the thread to end: WAIT_OBJECT_0, WAIT_TIMEOUT or WAIT_FAILED (WaitForSingleObject).
  unsigned long Join(unsigned long timeoutMs) const;

  /// Decrements or increments the suspend count. The result is the previous count, 0xFFFFFFFF on failure (ResumeThread,
  /// SuspendThread).
  unsigned long Resume();
  unsigned long Suspend();

  /// Ends the thread at once; its locks stay locked (TerminateThread). 0 on failure.
  int Terminate(unsigned long code);

 protected:
  HANDLE m_handle = nullptr;  ///< null: no thread
  DWORD m_id = 0;             ///< the thread's identifier
};

extern template class KEXLIB_API_INSTANTIATION CThreadT<true>;

/// A thread that calls T::Run() of its object; the result is the exit code. T derives from this class. An exception
/// that leaves Run ends the process (std::terminate).
template <class T, class Base>
class CThreadImpl : public Base {
 public:
  /// Creates the thread suspended (CreateThread); Resume starts it. On failure the handle is null.
  CThreadImpl() {
    this->m_handle = CreateThread(nullptr, 0, Start, static_cast<T*>(this), CREATE_SUSPENDED, &this->m_id);
  }

  /// Copies the handle as Base does. No second thread is created.
  CThreadImpl(const CThreadImpl&) = default;
  CThreadImpl& operator=(const CThreadImpl&) = default;

 private:
  static DWORD WINAPI Start(void* object) noexcept { return static_cast<T*>(object)->Run(); }
};

/// Encodes one image on its thread.
class KEXLIB_API kexPNGGenerationThread : public CThreadImpl<kexPNGGenerationThread, CThreadT<true>> {
 public:
  /// Creates the thread suspended. Parameters as for write_image; the object owns the image.
  kexPNGGenerationThread(std::unique_ptr<hnDuctImage> image, const CString& path,
                         const std::shared_ptr<kexBuffer>& buffer);

  /// Does not wait for the thread: call Join first. A thread that was never resumed stays suspended until the process
  /// ends.
  ~kexPNGGenerationThread() override;

  kexPNGGenerationThread(const kexPNGGenerationThread&) = delete;
  kexPNGGenerationThread& operator=(const kexPNGGenerationThread&) = delete;

  /// Called on the thread: calls write_image and returns 0.
  unsigned long Run();

  /// Encodes an image. May be called on any thread. Failures are not reported, and nothing is thrown.
  ///   image   not changed
  ///   path    the file, in the ANSI code page. An existing file is replaced; without a buffer it is left unchanged if
  ///           the image is null or empty
  ///   buffer  if not null, the image is encoded to the buffer, which is closed even if the encoding fails; then the
  ///           bytes of the buffer, complete or not, are written to the file
  static void write_image(hnDuctImage* image, const CString& path, const std::shared_ptr<kexBuffer>& buffer);

 private:
  std::unique_ptr<hnDuctImage> image_;
  CString path_;
  std::shared_ptr<kexBuffer> buffer_;
};

#endif
