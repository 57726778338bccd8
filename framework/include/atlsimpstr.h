// The buffer of a CString: reference-counted, shared between copies, copied on write.
#ifndef FRAMEWORK_ATLSIMPSTR_H
#define FRAMEWORK_ATLSIMPSTR_H

#include <atldef.h>

#include <climits>
#include <cstring>
#include <cwchar>
#include <utility>

namespace ATL {

struct CStringData;

// Allocates and frees string buffers. By design in kexframework.dll: a string may be freed by a module other than the
// one that made it. Returns null if no memory is left.
KEXFRAMEWORK_API CStringData* AllocateStringData(size_t bytes) noexcept;
KEXFRAMEWORK_API void FreeStringData(CStringData* data) noexcept;

// The header in front of the characters. The count is atomic: copies of a string may be used on different threads.
struct CStringData {
  int nDataLength;   // length in characters, without the terminator
  int nAllocLength;  // capacity in characters, without the terminator
  long nRefs;        // number of owners; 0: the shared empty string, which is never freed

  void* data() { return this + 1; }
  bool IsShared() const { return nRefs != 1; }
  void AddRef() {
    if (nRefs) InterlockedIncrement(&nRefs);
  }
  void Release() {
    if (nRefs && !InterlockedDecrement(&nRefs)) FreeStringData(this);
  }
};

// The buffer of all empty strings. There is one in the process, so that it outlives every module; its text is the zeros
// of the second element.
extern KEXFRAMEWORK_API CStringData g_nilString[2];

// Owns one reference to a buffer. CStringT adds the text functions.
//
// An index outside 0..GetLength() throws E_INVALIDARG (AtlThrow). Index GetLength() reads the terminator.
template <typename BaseType>
class CSimpleStringT {
 public:
  using XCHAR = BaseType;
  using PXSTR = XCHAR*;
  using PCXSTR = const XCHAR*;

  CSimpleStringT() noexcept = default;
  CSimpleStringT(const CSimpleStringT& other) noexcept : m_data(other.m_data) { m_data->AddRef(); }
  CSimpleStringT(CSimpleStringT&& other) noexcept : m_data(std::exchange(other.m_data, g_nilString)) {}
  CSimpleStringT(PCXSTR text, int length) { SetString(text, length); }
  ~CSimpleStringT() { m_data->Release(); }

  CSimpleStringT& operator=(const CSimpleStringT& other) noexcept {
    other.m_data->AddRef();
    std::exchange(m_data, other.m_data)->Release();
    return *this;
  }
  CSimpleStringT& operator=(CSimpleStringT&& other) noexcept {
    std::swap(m_data, other.m_data);
    return *this;
  }

  int GetLength() const noexcept { return m_data->nDataLength; }
  bool IsEmpty() const noexcept { return GetLength() == 0; }
  PCXSTR GetString() const noexcept { return static_cast<PCXSTR>(m_data->data()); }
  operator PCXSTR() const noexcept { return GetString(); }
  XCHAR GetAt(int index) const {
    check(index >= 0 && index <= GetLength());
    return GetString()[index];
  }
  XCHAR operator[](int index) const { return GetAt(index); }

  // Releases the text and the buffer.
  void Empty() noexcept { std::exchange(m_data, g_nilString)->Release(); }

  // Replaces the text. The source may be inside this string's own buffer.
  void SetString(PCXSTR text) { SetString(text, length_of(text)); }
  void SetString(PCXSTR text, int length) {
    if (length == 0) return Empty();
    check(text && length > 0);
    if (is_inside(text)) {
      *this = CSimpleStringT(text, length);
      return;
    }
    if (m_data->IsShared()) Empty();  // avoids a copy of the text that is replaced
    std::memcpy(GetBuffer(length), text, bytes(length));
    ReleaseBufferSetLength(length);
  }

  void Append(PCXSTR text) { Append(text, length_of(text)); }
  void Append(PCXSTR text, int length) {
    if (length == 0) return;
    const int start = GetLength();
    check(text && length > 0 && length < INT_MAX / 2 - start);
    if (m_data->IsShared() || length > m_data->nAllocLength - start) return append_to_larger(text, length);
    std::memmove(static_cast<PXSTR>(m_data->data()) + start, text, bytes(length));  // it may be of this text
    ReleaseBufferSetLength(start + length);
  }

  // Returns the buffer for writing. It is not shared, and has space for `room` characters and a terminator. The pointer
  // is valid until the next call that modifies the string. By design: a copy made before that shares the buffer, and
  // sees later writes through the pointer.
  PXSTR GetBuffer() { return GetBuffer(GetLength()); }
  PXSTR GetBuffer(int room) {
    check(room >= 0 && room < INT_MAX / 2);
    if (m_data->IsShared() || room > m_data->nAllocLength) fork(room);
    return static_cast<PXSTR>(m_data->data());
  }
  PXSTR GetBufferSetLength(int length) {
    PXSTR buffer = GetBuffer(length);
    ReleaseBufferSetLength(length);
    return buffer;
  }
  // Ends a write through GetBuffer. The text ends at its first terminator, or at `length`.
  void ReleaseBuffer(int length = -1) {
    if (length < 0) {
      length = 0;
      while (length < m_data->nAllocLength && GetString()[length]) ++length;
    }
    ReleaseBufferSetLength(length);
  }
  void ReleaseBufferSetLength(int length) {
    check(length >= 0 && length <= m_data->nAllocLength);
    if (m_data == g_nilString) return;
    m_data->nDataLength = length;
    static_cast<PXSTR>(m_data->data())[length] = 0;
  }

 protected:
  static int length_of(PCXSTR text) {
    if (!text) return 0;
    if constexpr (sizeof(XCHAR) == 1)
      return lstrlenA(text);
    else
      return lstrlenW(text);
  }
  // Whether the text is inside this string's own buffer.
  bool is_inside(PCXSTR text) const { return text >= GetString() && text <= GetString() + GetLength(); }
  static size_t bytes(int length) { return static_cast<size_t>(length) * sizeof(XCHAR); }
  static void check(bool holds) {
    if (!holds) AtlThrow(E_INVALIDARG);
  }

 private:
  // Appends in a buffer of its own that grows by half, so that repeated appends take linear time.
  void append_to_larger(PCXSTR text, int length) {
    if (is_inside(text)) {
      CSimpleStringT copy(text, length);
      return append_to_larger(copy, length);
    }
    const int start = GetLength();
    std::memcpy(GetBuffer(start + length + start / 2) + start, text, bytes(length));
    ReleaseBufferSetLength(start + length);
  }

  // Makes the buffer unshared, with at least this capacity.
  void fork(int room) {
    if (room < GetLength()) room = GetLength();
    CStringData* own = AllocateStringData(sizeof(CStringData) + bytes(room + 1));
    if (!own) AtlThrow(E_OUTOFMEMORY);
    *own = {GetLength(), room, 1};
    std::memcpy(own->data(), m_data->data(), bytes(GetLength() + 1));
    std::exchange(m_data, own)->Release();
  }

  CStringData* m_data = g_nilString;
};

}  // namespace ATL

#endif
