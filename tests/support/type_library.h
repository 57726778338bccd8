// Creates type libraries by the system's calls, without a compiler.
#ifndef TESTS_SUPPORT_TYPE_LIBRARY_H
#define TESTS_SUPPORT_TYPE_LIBRARY_H

#include <windows.h>
#include <oaidl.h>

#include <filesystem>

// Writes a file with a library that describes one class and the vtable interface that it implements. Returns false if
// that fails.
bool make_type_library(const std::filesystem::path& path, const GUID& clsid, const GUID& iid);

// The same with an interface of another library.
bool make_type_library(const std::filesystem::path& path, const GUID& clsid, ITypeInfo* implemented);

#endif
