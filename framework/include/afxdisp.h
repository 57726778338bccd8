// MFC and OLE: calls through IDispatch, and the exceptions for failed COM calls.
#ifndef FRAMEWORK_AFXDISP_H
#define FRAMEWORK_AFXDISP_H

#include <afx.h>
#include <atlbase.h>
#include <olectl.h>

// Enables CWnd::CreateControl in the module whose state is current, as a rule in the InitInstance of the program.
KEXFRAMEWORK_API void AfxEnableControlContainer();

// A COM call failed.
class KEXFRAMEWORK_API COleException : public CException {
 public:
  explicit COleException(SCODE code);
  // The system's description of the code.
  BOOL GetErrorMessage(LPTSTR message, UINT room, UINT* helpContext = nullptr) const override;

  SCODE m_sc;
};

[[noreturn]] KEXFRAMEWORK_API void AfxThrowOleException(SCODE code);

// An object raised an exception in a call through IDispatch. The members are those of its EXCEPINFO.
class KEXFRAMEWORK_API COleDispatchException : public CException {
 public:
  COleDispatchException(LPCTSTR description, UINT helpContext, WORD code);
  // The description and the help context.
  BOOL GetErrorMessage(LPTSTR message, UINT room, UINT* helpContext = nullptr) const override;

  WORD m_wCode;              // the error number of the object; 0 if it returned an SCODE
  CString m_strDescription;  // description of the error
  DWORD m_dwHelpContext;     // topic in the help file; 0: none
  CString m_strHelpFile;     // full path of the help file
  CString m_strSource;       // the source, usually a ProgID
  SCODE m_scError = S_OK;    // the SCODE; S_OK if the object returned an error number
};

// The types of the arguments of InvokeHelper, one after the other, for example VTS_I2 VTS_R8.
#define VTS_I2 "\x02"    // short
#define VTS_I4 "\x03"    // long
#define VTS_R8 "\x05"    // double
#define VTS_CY "\x06"    // the address of a CY
#define VTS_BSTR "\x0E"  // const char*, converted in the code page of the thread; null is an empty text
#define VTS_BOOL "\x0B"  // BOOL; nonzero is sent as VARIANT_TRUE

// A pointer to IDispatch and calls through it. Base of classes in which each member calls one DISPID.
//
// The VTS_ codes above give the types of arguments. Results are stored by the requested type:
//
//     VT_EMPTY  nothing is stored        VT_CY        CY
//     VT_I2     short                    VT_BSTR      CString, narrowed in the thread's code page
//     VT_I4     long                     VT_BOOL      BOOL, 1 or 0
//     VT_R8     double                   VT_DISPATCH  IDispatch*, with a reference for the caller
//
// An exception raised by the object is thrown as COleDispatchException, every other failure as COleException. That
// includes a result that cannot be converted to the requested type (DISP_E_TYPEMISMATCH, DISP_E_OVERFLOW) and a type
// that is not listed (DISP_E_BADVARTYPE; the object is not called). Without an object nothing is called, and the result
// is 0 or empty.
class KEXFRAMEWORK_API COleDispatchDriver {
 public:
  COleDispatchDriver() noexcept = default;
  // Takes over the caller's reference. autoRelease: the destructor and ReleaseDispatch release it.
  explicit(false) COleDispatchDriver(LPDISPATCH dispatch, BOOL autoRelease = TRUE) noexcept;
  // A copy has its own reference, and always releases it.
  COleDispatchDriver(const COleDispatchDriver& other) noexcept;
  const COleDispatchDriver& operator=(const COleDispatchDriver& other) noexcept;
  ~COleDispatchDriver();

  operator LPDISPATCH() const noexcept { return m_lpDispatch; }

  // Like the constructor. The previous object is released first (ReleaseDispatch).
  void AttachDispatch(LPDISPATCH dispatch, BOOL autoRelease = TRUE) noexcept;
  // Returns the pointer with its reference.
  LPDISPATCH DetachDispatch() noexcept;
  // Detaches the object, and releases it if m_bAutoRelease is set.
  void ReleaseDispatch() noexcept;

  // Calls a method or an indexed property (IDispatch::Invoke). `flags` is DISPATCH_METHOD, DISPATCH_PROPERTYGET or
  // DISPATCH_PROPERTYPUT; for the last one the new value is the last argument. `result` points to a variable of the
  // type that the table above gives for resultType. `parameters` is a text of VTS_ codes.
  void InvokeHelper(DISPID id, WORD flags, VARTYPE resultType, void* result, const BYTE* parameters, ...);
  // Sets a property to the argument that follows, of the type VT_x (see VTS_x). An object (VT_DISPATCH) is set by
  // reference (DISPATCH_PROPERTYPUTREF).
  void SetProperty(DISPID id, VARTYPE type, ...);
  void GetProperty(DISPID id, VARTYPE type, void* value) const;

  LPDISPATCH m_lpDispatch = nullptr;
  BOOL m_bAutoRelease = TRUE;
};

#endif
