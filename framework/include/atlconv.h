// Conversion between narrow and wide text. Short texts are converted in a buffer on the stack, long ones on the heap.
//
//     SetWindowTextW(window, CA2W(narrow));     // valid until the end of the statement
#ifndef FRAMEWORK_ATLCONV_H
#define FRAMEWORK_ATLCONV_H

#include <atldef.h>

#include <cstdlib>
#include <cstring>
#include <cwchar>

namespace ATL {

// The code page of conversions without an explicit one: that of the calling thread.
inline UINT _AtlGetConversionACP() { return CP_THREAD_ACP; }

// Converts narrow text to wide text. A null pointer gives a null pointer. Throws if the conversion fails or no memory
// is left (AtlThrow).
template <int t_nBufferLength = 128>
class CA2WEX {
 public:
  explicit CA2WEX(LPCSTR text) : CA2WEX(text, _AtlGetConversionACP()) {}
  CA2WEX(LPCSTR text, UINT codePage) {
    if (!text) {
      m_psz = nullptr;
      return;
    }
    // A narrow character never becomes more than one wide character.
    int length = lstrlenA(text) + 1;
    if (length > t_nBufferLength) m_psz = static_cast<LPWSTR>(std::calloc(static_cast<size_t>(length), sizeof(WCHAR)));
    if (!m_psz) AtlThrow(E_OUTOFMEMORY);
    if (!MultiByteToWideChar(codePage, 0, text, length, m_psz, length)) {
      HRESULT result = AtlHresultFromLastError();
      release();
      AtlThrow(result);
    }
  }
  CA2WEX(const CA2WEX&) = delete;
  CA2WEX& operator=(const CA2WEX&) = delete;
  ~CA2WEX() { release(); }

  operator LPWSTR() const { return m_psz; }

  LPWSTR m_psz = m_szBuffer;
  wchar_t m_szBuffer[static_cast<size_t>(t_nBufferLength)];

 private:
  void release() {
    if (m_psz != m_szBuffer) std::free(m_psz);
  }
};
using CA2W = CA2WEX<>;

// Converts wide text to narrow text, like CA2WEX.
template <int t_nBufferLength = 128>
class CW2AEX {
 public:
  explicit CW2AEX(LPCWSTR text) : CW2AEX(text, _AtlGetConversionACP()) {}
  CW2AEX(LPCWSTR text, UINT codePage) {
    if (!text) {
      m_psz = nullptr;
      return;
    }
    int room = WideCharToMultiByte(codePage, 0, text, -1, nullptr, 0, nullptr, nullptr);
    if (!room) AtlThrow(AtlHresultFromLastError());
    if (room > t_nBufferLength) m_psz = static_cast<LPSTR>(std::malloc(static_cast<size_t>(room)));
    if (!m_psz) AtlThrow(E_OUTOFMEMORY);
    WideCharToMultiByte(codePage, 0, text, -1, m_psz, room, nullptr, nullptr);
  }
  CW2AEX(const CW2AEX&) = delete;
  CW2AEX& operator=(const CW2AEX&) = delete;
  ~CW2AEX() {
    if (m_psz != m_szBuffer) std::free(m_psz);
  }

  operator LPSTR() const { return m_psz; }

  LPSTR m_psz = m_szBuffer;
  char m_szBuffer[static_cast<size_t>(t_nBufferLength)];
};
using CW2A = CW2AEX<>;

}  // namespace ATL

#endif
