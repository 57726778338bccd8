#include <afxdisp.h>
#include <afxwin.h>

#include <framework/error_text.h>

namespace {

// Allocated when the module is loaded: later there may be no memory for it.
CMemoryException memory_exception(false);

// GetErrorMessage of exceptions with a fixed text and no help context.
BOOL say(const char* text, LPTSTR message, UINT room, UINT* helpContext) {
  if (helpContext) *helpContext = 0;
  return framework::give_text(text, message, room);
}

}  // namespace

CException::CException(bool autoDelete) : m_bAutoDelete(autoDelete) {}

CException::~CException() = default;

void CException::Delete() {
  if (m_bAutoDelete) delete this;
}

BOOL CException::GetErrorMessage(LPTSTR message, UINT room, UINT* helpContext) const {
  return say("", message, room, helpContext);
}

BOOL CMemoryException::GetErrorMessage(LPTSTR message, UINT room, UINT* helpContext) const {
  return say("Out of memory.", message, room, helpContext);
}

BOOL CInvalidArgException::GetErrorMessage(LPTSTR message, UINT room, UINT* helpContext) const {
  return say("An invalid argument was given.", message, room, helpContext);
}

BOOL CNotSupportedException::GetErrorMessage(LPTSTR message, UINT room, UINT* helpContext) const {
  return say("This is not supported.", message, room, helpContext);
}

BOOL CResourceException::GetErrorMessage(LPTSTR message, UINT room, UINT* helpContext) const {
  return say("The system has no such resource left.", message, room, helpContext);
}

COleException::COleException(SCODE code) : m_sc(code) {}

BOOL COleException::GetErrorMessage(LPTSTR message, UINT room, UINT* helpContext) const {
  if (helpContext) *helpContext = 0;
  return framework::give_system_text(static_cast<DWORD>(m_sc), message, room);
}

COleDispatchException::COleDispatchException(LPCTSTR description, UINT helpContext, WORD code)
    : m_wCode(code), m_strDescription(description), m_dwHelpContext(helpContext) {}

BOOL COleDispatchException::GetErrorMessage(LPTSTR message, UINT room, UINT* helpContext) const {
  if (helpContext) *helpContext = m_dwHelpContext;
  return framework::give_text(m_strDescription, message, room);
}

void AfxThrowMemoryException() { throw &memory_exception; }

void AfxThrowInvalidArgException() { throw new CInvalidArgException; }

void AfxThrowNotSupportedException() { throw new CNotSupportedException; }

void AfxThrowResourceException() { throw new CResourceException; }

void AfxThrowOleException(SCODE code) { throw new COleException(code); }
