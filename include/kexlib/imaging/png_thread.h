// PNG generation thread: encodes an image as PNG on a thread of its own, into a file, or into a buffer and a file.
//
//     auto buffer = kexBuffer_create();
//     kexPNGGenerationThread job(std::move(image), "picture.png", buffer);
//     job.Resume();                                                     // it was made suspended
//     ...                                                               // others wait for the buffer
//     job.Join(INFINITE);                                               // before the object goes
//
// The thread uses the object while it runs, and the destructor does not wait for it.
#ifndef KEXLIB_IMAGING_PNG_THREAD_H
#define KEXLIB_IMAGING_PNG_THREAD_H

#include <kexlib/export.h>
#include <kexlib/imaging/buffer.h>

#include <atlstr.h>
#include <rqgfx/duct_image.h>
#include <windows.h>

#include <memory>
#include <type_traits>

/// A thread's handle and identifier. CThreadT<true> owns the handle; kexlib.dll has that one only.
template <bool owns>
class CThreadT {
 public:
  /// No thread.
  CThreadT() = default;

  /// Takes over a handle. The identifier 0 stands for the thread's own (GetThreadId).
  CThreadT(HANDLE h, DWORD id);

  /// Has a handle of its own for the same thread (DuplicateHandle).
  CThreadT(const CThreadT& other);

  /// Takes the handle as it is, without duplicating it and without closing the one that was here: afterwards two
  /// objects close the same handle.
  CThreadT& operator=(const CThreadT& other);

  /// Closes the handle. The thread goes on.
  virtual ~CThreadT();

  /// Starts a thread (_beginthreadex); without one the handle is null.
  static CThreadT Create(unsigned long(WINAPI* proc)(void*), void* param, unsigned long flags, SECURITY_ATTRIBUTES* sa,
                         unsigned long stackSize);

  /// A thread that runs (OpenThread); the identifier 0 is asked for.
  static CThreadT Open(unsigned long id, unsigned long access, int inherit);

  /// Ends the calling thread, whichever it is (_endthreadex).
  void Exit(unsigned long code);

  /// STILL_ACTIVE (259) while the thread runs, 0xFFFFFFFF where it cannot be told (GetExitCodeThread).
  unsigned long GetExitCode() const;

  /// The handle, which stays the object's.
  virtual HANDLE GetHandle() const;

  /// The identifier.
  unsigned long GetId() const;

  /// GetThreadPriority.
  int GetPriority() const;

  /// SetThreadPriority.
  int SetPriority(int priority);

  /// GetThreadTimes.
  int GetThreadTimes(FILETIME* creation, FILETIME* exit, FILETIME* kernel, FILETIME* user) const;

  /// Whether input or output is under way; 0 where it cannot be told (GetThreadIOPendingFlag).
  int IsIOPending() const;

  /// Waits for the thread's end: WAIT_OBJECT_0, WAIT_TIMEOUT or WAIT_FAILED.
  unsigned long Join(unsigned long timeoutMs) const;

  /// The suspend count before, 0xFFFFFFFF where that fails (ResumeThread).
  unsigned long Resume();

  /// The same for SuspendThread.
  unsigned long Suspend();

  /// TerminateThread: what the thread held stays held.
  int Terminate(unsigned long code);

 protected:
  HANDLE m_handle = nullptr;
  DWORD m_id = 0;
};

extern template class KEXLIB_API CThreadT<true>;

/// A thread that runs T::Run() of the object that made it, with its result as exit code. T derives from this.
template <class T, class Base>
class CThreadImpl : public Base {
 public:
  /// Makes the thread, suspended (CreateThread): Resume lets it run. Where there is none the handle is null.
  CThreadImpl() {
    this->m_handle = CreateThread(nullptr, 0, Start, static_cast<T*>(this), CREATE_SUSPENDED, &this->m_id);
  }

  /// No second thread: a handle for the same one, as Base has it.
  CThreadImpl(const CThreadImpl&) = default;
  /// As Base has it.
  CThreadImpl& operator=(const CThreadImpl&) = default;

 private:
  static DWORD WINAPI Start(void* object) { return static_cast<T*>(object)->Run(); }
};

/// Encodes one image.
class KEXLIB_API kexPNGGenerationThread : public CThreadImpl<kexPNGGenerationThread, CThreadT<true>> {
 public:
  /// The thread is made suspended. The path is in the ANSI code page; the buffer may be null.
  kexPNGGenerationThread(std::unique_ptr<hnDuctImage> image, const CString& path,
                         const std::shared_ptr<kexBuffer>& buffer);

  /// Does not wait for the thread: Join first. A thread that never ran stays suspended for good.
  ~kexPNGGenerationThread() override;

  kexPNGGenerationThread(const kexPNGGenerationThread&) = delete;
  kexPNGGenerationThread& operator=(const kexPNGGenerationThread&) = delete;

  /// What the thread does: write_image. Always 0.
  unsigned long Run();

  /// With a buffer: encodes into it, closes it whatever comes of it, and writes it to the path. Without: encodes into
  /// the file. Failures are not told. For any thread.
  static void write_image(hnDuctImage* image, const CString& path, const std::shared_ptr<kexBuffer>& buffer);

 private:
  std::unique_ptr<hnDuctImage> image_;
  CString path_;
  std::shared_ptr<kexBuffer> buffer_;
};

#endif
