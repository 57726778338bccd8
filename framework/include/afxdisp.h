// MFC and OLE: calls through IDispatch, and the exceptions that failing COM calls become.
#ifndef FRAMEWORK_AFXDISP_H
#define FRAMEWORK_AFXDISP_H

#include <afx.h>
#include <atlbase.h>
#include <olectl.h>

// A COM call failed.
class KEXFRAMEWORK_API COleException : public CException {
 public:
  explicit COleException(SCODE code);
  // The system's text for the code.
  BOOL GetErrorMessage(LPTSTR message, UINT room, UINT* helpContext = nullptr) const override;

  SCODE m_sc;
};

[[noreturn]] KEXFRAMEWORK_API void AfxThrowOleException(SCODE code);

// An object raised an exception of its own in a call through IDispatch: what its EXCEPINFO said.
class KEXFRAMEWORK_API COleDispatchException : public CException {
 public:
  COleDispatchException(LPCTSTR description, UINT helpContext, WORD code);
  // The description, and the help context.
  BOOL GetErrorMessage(LPTSTR message, UINT room, UINT* helpContext = nullptr) const override;

  WORD m_wCode;              // the object's own error number, or 0 where it gave an SCODE
  CString m_strDescription;  // what went wrong
  DWORD m_dwHelpContext;     // the topic in the help file; 0: none
  CString m_strHelpFile;     // with its path
  CString m_strSource;       // who raised it, as a rule a ProgID
  SCODE m_scError = S_OK;    // the error as an SCODE, or S_OK where it gave a number
};

// What the parameters of InvokeHelper are, one after the other: VTS_I2 VTS_R8, say.
#define VTS_I2 "\x02"    // short
#define VTS_I4 "\x03"    // long
#define VTS_R8 "\x05"    // double
#define VTS_CY "\x06"    // the address of a CY
#define VTS_BSTR "\x08"  // const char*, widened in the thread's code page; null is the empty text
#define VTS_BOOL "\x0B"  // BOOL: anything but 0 is sent as VARIANT_TRUE

// A pointer to IDispatch, and calls through it: the base of classes whose members each call one DISPID.
//
// Arguments are passed as the VTS_ codes above say, and results are stored by the type that is asked for:
//
//     VT_EMPTY  nothing is stored        VT_CY        CY
//     VT_I2     short                    VT_BSTR      CString, narrowed in the thread's code page
//     VT_I4     long                     VT_BOOL      BOOL, 1 or 0
//     VT_R8     double                   VT_DISPATCH  IDispatch*, with a reference for the caller
//
// An exception that the object raises is thrown as COleDispatchException, every other failure as COleException: a
// result that cannot be made into the type asked for (DISP_E_TYPEMISMATCH or DISP_E_OVERFLOW), and a type that is not
// listed (DISP_E_BADVARTYPE; then the object is not called). Where no object is attached nothing is called, and the
// result is 0 or empty.
class KEXFRAMEWORK_API COleDispatchDriver {
 public:
  COleDispatchDriver() noexcept = default;
  // Takes over the caller's reference. autoRelease: it is given back with this object or by ReleaseDispatch.
  explicit(false) COleDispatchDriver(LPDISPATCH dispatch, BOOL autoRelease = TRUE) noexcept;
  // A copy has a reference of its own, and gives it back whatever the other one does.
  COleDispatchDriver(const COleDispatchDriver& other) noexcept;
  const COleDispatchDriver& operator=(const COleDispatchDriver& other) noexcept;
  ~COleDispatchDriver();

  operator LPDISPATCH() const noexcept { return m_lpDispatch; }

  // As the constructor; the object that was attached is released first, as by ReleaseDispatch.
  void AttachDispatch(LPDISPATCH dispatch, BOOL autoRelease = TRUE) noexcept;
  // Hands the pointer, and its reference, out.
  LPDISPATCH DetachDispatch() noexcept;
  // Lets go of the object, and releases it where m_bAutoRelease says so.
  void ReleaseDispatch() noexcept;

  // Calls a method or an indexed property (IDispatch::Invoke). flags is DISPATCH_METHOD, DISPATCH_PROPERTYGET or
  // DISPATCH_PROPERTYPUT, where the last argument is the new value; result points to what the table above says for
  // resultType; parameters is a text of VTS_ codes.
  void InvokeHelper(DISPID id, WORD flags, VARTYPE resultType, void* result, const BYTE* parameters, ...);
  // Sets a property to the argument that follows, of the type VT_x that stands in the code VTS_x. An object
  // (VT_DISPATCH) is set by reference, DISPATCH_PROPERTYPUTREF.
  void SetProperty(DISPID id, VARTYPE type, ...);
  void GetProperty(DISPID id, VARTYPE type, void* value) const;

  LPDISPATCH m_lpDispatch = nullptr;
  BOOL m_bAutoRelease = TRUE;
};

#endif
