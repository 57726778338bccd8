#include <kexlib/imaging/png_thread.h>

#include <process.h>

#include <rqgfx/png_writer.h>

#include <utility>

namespace {

DWORD known_id(HANDLE thread, DWORD id) { return id == 0 && thread ? GetThreadId(thread) : id; }

// The encoder's options: row filters chosen by the picture, 32 bits a pixel.
constexpr int filter = 1, bits = 32;

bool append(void* buffer, const unsigned char* data, unsigned __int64 count) {
  auto& to = *static_cast<kexBuffer*>(buffer);
  to.write(data, count);
  return !to.fail();
}

// Other threads wait for the buffer without a time-out: it is closed even if the encoding fails.
struct ClosedAtTheEnd {
  kexBuffer& buffer;
  ~ClosedAtTheEnd() { buffer.close(); }
};

}  // namespace

template <bool owns>
CThreadT<owns>::CThreadT() = default;

template <bool owns>
CThreadT<owns>::CThreadT(HANDLE h, DWORD id) : m_handle(h), m_id(known_id(h, id)) {}

template <bool owns>
CThreadT<owns>::CThreadT(const CThreadT& other) : m_id(other.m_id) {
  if (other.m_handle)
    DuplicateHandle(GetCurrentProcess(), other.m_handle, GetCurrentProcess(), &m_handle, 0, FALSE,
                    DUPLICATE_SAME_ACCESS);
}

// Memberwise, unlike the copy constructor: kept for compatibility.
template <bool owns>
CThreadT<owns>& CThreadT<owns>::operator=(const CThreadT& other) = default;

template <bool owns>
CThreadT<owns>::~CThreadT() {
  if (owns && m_handle) CloseHandle(m_handle);
}

template <bool owns>
CThreadT<owns> CThreadT<owns>::Create(unsigned long(WINAPI* proc)(void*), void* param, unsigned long flags,
                                      SECURITY_ATTRIBUTES* sa, unsigned long stackSize) {
  static_assert(sizeof(unsigned) == sizeof(unsigned long), "the run-time library's own type of the result");
  unsigned id = 0;
  const auto start = reinterpret_cast<unsigned(WINAPI*)(void*)>(proc);
  const auto thread =
      _beginthreadex(sa, static_cast<unsigned>(stackSize), start, param, static_cast<unsigned>(flags), &id);
  return CThreadT(reinterpret_cast<HANDLE>(thread), id);
}

template <bool owns>
CThreadT<owns> CThreadT<owns>::Open(unsigned long id, unsigned long access, int inherit) {
  return CThreadT(OpenThread(access, inherit, id), id);
}

template <bool owns>
void CThreadT<owns>::Exit(unsigned long code) {
  _endthreadex(static_cast<unsigned>(code));
}

template <bool owns>
unsigned long CThreadT<owns>::GetExitCode() const {
  DWORD code = 0;
  return GetExitCodeThread(m_handle, &code) ? code : 0xFFFFFFFF;
}

template <bool owns>
HANDLE CThreadT<owns>::GetHandle() const {
  return m_handle;
}

template <bool owns>
unsigned long CThreadT<owns>::GetId() const {
  return m_id;
}

template <bool owns>
int CThreadT<owns>::GetPriority() const {
  return GetThreadPriority(m_handle);
}

template <bool owns>
int CThreadT<owns>::SetPriority(int priority) {
  return SetThreadPriority(m_handle, priority);
}

template <bool owns>
int CThreadT<owns>::GetThreadTimes(FILETIME* creation, FILETIME* exit, FILETIME* kernel, FILETIME* user) const {
  return ::GetThreadTimes(m_handle, creation, exit, kernel, user);
}

template <bool owns>
int CThreadT<owns>::IsIOPending() const {
  BOOL pending = FALSE;
  return GetThreadIOPendingFlag(m_handle, &pending) ? pending : 0;
}

template <bool owns>
unsigned long CThreadT<owns>::Join(unsigned long timeoutMs) const {
  return WaitForSingleObject(m_handle, timeoutMs);
}

template <bool owns>
unsigned long CThreadT<owns>::Resume() {
  return ResumeThread(m_handle);
}

template <bool owns>
unsigned long CThreadT<owns>::Suspend() {
  return SuspendThread(m_handle);
}

template <bool owns>
int CThreadT<owns>::Terminate(unsigned long code) {
  return TerminateThread(m_handle, code);
}

template class KEXLIB_API_INSTANTIATED CThreadT<true>;

kexPNGGenerationThread::kexPNGGenerationThread(std::unique_ptr<hnDuctImage> image, const CString& path,
                                               const std::shared_ptr<kexBuffer>& buffer)
    : image_(std::move(image)), path_(path), buffer_(buffer) {}

kexPNGGenerationThread::~kexPNGGenerationThread() = default;

unsigned long kexPNGGenerationThread::Run() {
  write_image(image_.get(), path_, buffer_);
  return 0;
}

void kexPNGGenerationThread::write_image(hnDuctImage* image, const CString& path,
                                         const std::shared_ptr<kexBuffer>& buffer) try {
  if (!buffer) {
    rqPNGWriterDuctImage::write_file(image, bzString(path.GetString()), filter, bits);
    return;
  }
  {
    const ClosedAtTheEnd closed_at_the_end{*buffer};
    rqPNGWriterDuctImage::write_file(image, append, buffer.get(), filter, bits);
  }
  buffer->write_to_file(path);
} catch (...) {
  // No exception may leave the thread's entry: it would end the process.
}
