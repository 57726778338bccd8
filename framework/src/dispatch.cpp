#include <afxdisp.h>

#include <framework/dispatch.h>

#include <cstring>

namespace framework {

namespace {

constexpr BYTE narrow_text = 0x0E;  // the code of VTS_BSTR, which is no type of a variant

// Reads one argument as the variant to send.
void take_argument(CComVariant* target, VARTYPE type, va_list* arguments) {
  switch (type) {
    case VT_I2:
      target->iVal = static_cast<short>(va_arg(*arguments, int));
      break;
    case VT_I4:
      target->lVal = va_arg(*arguments, long);
      break;
    case VT_R8:
      target->dblVal = va_arg(*arguments, double);
      break;
    case VT_CY:
      target->cyVal = *va_arg(*arguments, const CY*);
      break;
    case VT_BOOL:
      target->boolVal = va_arg(*arguments, BOOL) ? VARIANT_TRUE : VARIANT_FALSE;
      break;
    case VT_BSTR: {
      LPCSTR text = va_arg(*arguments, LPCSTR);
      target->bstrVal = CComBSTR(text ? text : "").Detach();
      break;
    }
    case VT_DISPATCH:
      target->pdispVal = va_arg(*arguments, IDispatch*);
      if (target->pdispVal) target->pdispVal->AddRef();
      break;
    default:
      AfxThrowOleException(DISP_E_BADVARTYPE);
  }
  target->vt = type;
}

// Stores the variant, which has the type or is empty (0), in the variable that `result` points to.
void store(CComVariant* value, VARTYPE type, void* result) {
  switch (type) {
    case VT_EMPTY:
      break;
    case VT_I2:
      *static_cast<short*>(result) = value->iVal;
      break;
    case VT_I4:
      *static_cast<long*>(result) = value->lVal;
      break;
    case VT_R8:
      *static_cast<double*>(result) = value->dblVal;
      break;
    case VT_CY:
      *static_cast<CY*>(result) = value->cyVal;
      break;
    case VT_BOOL:
      *static_cast<BOOL*>(result) = value->boolVal != VARIANT_FALSE;
      break;
    case VT_BSTR:
      *static_cast<CString*>(result) = value->bstrVal;
      break;
    case VT_DISPATCH:
      *static_cast<IDispatch**>(result) = value->pdispVal;
      value->vt = VT_EMPTY;  // the caller has the reference now
      break;
    default:
      break;  // can_be_stored rejects other types
  }
}

bool can_be_stored(VARTYPE type) {
  switch (type) {
    case VT_EMPTY:
    case VT_I2:
    case VT_I4:
    case VT_R8:
    case VT_CY:
    case VT_BOOL:
    case VT_BSTR:
    case VT_DISPATCH:
      return true;
    default:
      return false;
  }
}

// The exception information of an object. The receiver frees its texts.
struct ExceptionInformation : EXCEPINFO {
  ExceptionInformation() : EXCEPINFO{} {}
  ExceptionInformation(const ExceptionInformation&) = delete;
  ExceptionInformation& operator=(const ExceptionInformation&) = delete;
  ~ExceptionInformation() {
    SysFreeString(bstrSource);
    SysFreeString(bstrDescription);
    SysFreeString(bstrHelpFile);
  }

  [[noreturn]] void raise() {
    if (pfnDeferredFillIn) pfnDeferredFillIn(this);
    CString description(bstrDescription), source(bstrSource), helpFile(bstrHelpFile);
    auto* exception = new COleDispatchException(description, dwHelpContext, wCode);
    exception->m_strSource = source;
    exception->m_strHelpFile = helpFile;
    exception->m_scError = scode;
    throw exception;
  }
};

}  // namespace

Arguments packed(const BYTE* parameters, va_list arguments) {
  size_t count = parameters ? strlen(reinterpret_cast<const char*>(parameters)) : 0;
  Arguments all(count);
  for (size_t i = 0; i < count; ++i) {
    if (parameters[i] == VT_BSTR)
      AfxThrowOleException(DISP_E_BADVARTYPE);  // not a code of the list: VTS_BSTR is another one
    take_argument(&all[count - 1 - i], parameters[i] == narrow_text ? VARTYPE{VT_BSTR} : parameters[i], &arguments);
  }
  return all;
}

void invoke(IDispatch* object, DISPID id, WORD flags, VARTYPE resultType, void* result, Arguments arguments) {
  if (!can_be_stored(resultType)) AfxThrowOleException(DISP_E_BADVARTYPE);
  CComVariant answer;
  if (!object) return store(&answer, resultType, result);

  DISPPARAMS sent{};
  sent.rgvarg = arguments.data();
  sent.cArgs = static_cast<UINT>(arguments.size());
  DISPID newValue = DISPID_PROPERTYPUT;
  if (flags & (DISPATCH_PROPERTYPUT | DISPATCH_PROPERTYPUTREF)) {
    sent.rgdispidNamedArgs = &newValue;
    sent.cNamedArgs = 1;
  }
  ExceptionInformation information;
  UINT wrongArgument = 0;
  HRESULT called = object->Invoke(id, IID_NULL, 0, flags, &sent, resultType == VT_EMPTY ? nullptr : &answer,
                                  &information, &wrongArgument);
  if (called == DISP_E_EXCEPTION) information.raise();
  if (FAILED(called)) AfxThrowOleException(called);

  if (resultType != VT_EMPTY && answer.vt != resultType) {
    HRESULT changed = answer.ChangeType(resultType);
    if (FAILED(changed)) AfxThrowOleException(changed);
  }
  store(&answer, resultType, result);
}

void set_property(IDispatch* object, DISPID id, VARTYPE type, va_list argument) {
  Arguments value(1);
  take_argument(&value[0], type, &argument);
  // By design objects are set by reference: callers rely on DISPATCH_PROPERTYPUTREF.
  WORD flags = type == VT_DISPATCH ? DISPATCH_PROPERTYPUTREF : DISPATCH_PROPERTYPUT;
  invoke(object, id, flags, VT_EMPTY, nullptr, std::move(value));
}

void get_property(IDispatch* object, DISPID id, VARTYPE type, void* value) {
  invoke(object, id, DISPATCH_PROPERTYGET, type, value, {});
}

}  // namespace framework
