// Wine's headers give an interface its identifier by an attribute only where they are told how: __uuidof reads it.
#pragma once
#include_next <rpcndr.h>
#undef DECLSPEC_UUID
#undef MIDL_INTERFACE
#define DECLSPEC_UUID(text) __declspec(uuid(text))
#define MIDL_INTERFACE(text) struct __declspec(uuid(text)) __declspec(novtable)
