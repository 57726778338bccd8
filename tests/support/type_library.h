// Type libraries made by the system, without a compiler: as many as a test wants.
#ifndef TESTS_SUPPORT_TYPE_LIBRARY_H
#define TESTS_SUPPORT_TYPE_LIBRARY_H

#include <windows.h>

#include <oaidl.h>

#include <filesystem>

// A file with a library that describes one class, and the vtable interface that it implements. False where that fails.
bool make_type_library(const std::filesystem::path& path, const GUID& clsid, const GUID& iid);

// The same with an interface of another library.
bool make_type_library(const std::filesystem::path& path, const GUID& clsid, ITypeInfo* implemented);

#endif
