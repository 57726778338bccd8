#include <atlwin.h>

namespace ATL {

namespace {

// The thread-local slot for the innermost object that waits for a window.
class Waiting {
 public:
  Waiting() noexcept : slot_(TlsAlloc()) {}
  ~Waiting() { TlsFree(slot_); }
  _AtlCreateWndData* get() const noexcept { return static_cast<_AtlCreateWndData*>(TlsGetValue(slot_)); }
  void set(_AtlCreateWndData* innermost) const noexcept { TlsSetValue(slot_, innermost); }

 private:
  DWORD slot_;
};
const Waiting waiting;

}  // namespace

_AtlCreateWndData::_AtlCreateWndData(void* object) noexcept : m_object(object), m_outer(waiting.get()) {
  waiting.set(this);
}

_AtlCreateWndData::~_AtlCreateWndData() { waiting.set(m_outer); }

void* _AtlCreateWndData::Extract() noexcept {
  // The innermost object may have its window already: then this window was not announced.
  _AtlCreateWndData* innermost = waiting.get();
  return innermost ? std::exchange(innermost->m_object, nullptr) : nullptr;
}

}  // namespace ATL
