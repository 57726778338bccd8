// Calls through IDispatch with variadic arguments. COleDispatchDriver documents the types.
#ifndef FRAMEWORK_DISPATCH_H
#define FRAMEWORK_DISPATCH_H

#include <atlcomcli.h>

#include <cstdarg>
#include <vector>

namespace framework {

// In the order of IDispatch::Invoke: the last one first.
using Arguments = std::vector<CComVariant>;
Arguments packed(const BYTE* parameters, va_list arguments);

void invoke(IDispatch* object, DISPID id, WORD flags, VARTYPE resultType, void* result, Arguments arguments);
void set_property(IDispatch* object, DISPID id, VARTYPE type, va_list argument);
void get_property(IDispatch* object, DISPID id, VARTYPE type, void* value);

}  // namespace framework

#endif
