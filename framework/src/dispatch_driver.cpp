#include <afxdisp.h>

#include <framework/dispatch.h>

COleDispatchDriver::COleDispatchDriver(LPDISPATCH dispatch, BOOL autoRelease) noexcept
    : m_lpDispatch(dispatch), m_bAutoRelease(autoRelease) {}

COleDispatchDriver::COleDispatchDriver(const COleDispatchDriver& other) noexcept : m_lpDispatch(other.m_lpDispatch) {
  if (m_lpDispatch) m_lpDispatch->AddRef();
}

const COleDispatchDriver& COleDispatchDriver::operator=(const COleDispatchDriver& other) noexcept {
  if (this == &other) return *this;
  if (other.m_lpDispatch) other.m_lpDispatch->AddRef();
  AttachDispatch(other.m_lpDispatch);
  return *this;
}

COleDispatchDriver::~COleDispatchDriver() { ReleaseDispatch(); }

void COleDispatchDriver::AttachDispatch(LPDISPATCH dispatch, BOOL autoRelease) noexcept {
  ReleaseDispatch();
  m_lpDispatch = dispatch;
  m_bAutoRelease = autoRelease;
}

LPDISPATCH COleDispatchDriver::DetachDispatch() noexcept { return std::exchange(m_lpDispatch, nullptr); }

void COleDispatchDriver::ReleaseDispatch() noexcept {
  LPDISPATCH dispatch = DetachDispatch();
  if (dispatch && m_bAutoRelease) dispatch->Release();
}

void COleDispatchDriver::InvokeHelper(DISPID id, WORD flags, VARTYPE resultType, void* result, const BYTE* parameters,
                                      ...) {
  va_list arguments;
  va_start(arguments, parameters);
  framework::invoke(m_lpDispatch, id, flags, resultType, result, framework::packed(parameters, arguments));
  va_end(arguments);
}

void COleDispatchDriver::SetProperty(DISPID id, VARTYPE type, ...) {
  va_list argument;
  va_start(argument, type);
  framework::set_property(m_lpDispatch, id, type, argument);
  va_end(argument);
}

void COleDispatchDriver::GetProperty(DISPID id, VARTYPE type, void* value) const {
  framework::get_property(m_lpDispatch, id, type, value);
}
