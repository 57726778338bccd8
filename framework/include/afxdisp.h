// MFC and OLE: the exceptions that failing COM calls become.
#ifndef FRAMEWORK_AFXDISP_H
#define FRAMEWORK_AFXDISP_H

#include <afx.h>
#include <atlbase.h>

// A COM call failed.
class KEXFRAMEWORK_API COleException : public CException {
 public:
  explicit COleException(SCODE code);
  // The system's text for the code.
  BOOL GetErrorMessage(LPTSTR message, UINT room, UINT* helpContext = nullptr) const override;

  SCODE m_sc;
};

[[noreturn]] KEXFRAMEWORK_API void AfxThrowOleException(SCODE code);

#endif
