// Registration-free COM: objects of classes that the registry does not know, and what there is of them below a folder.
//
//     for (const GUID& id : reg_free_list_classes(__uuidof(IPlugIn), "C:\\app\\plugins", "*.dll")) {
//       const std::string file = reg_free_find_tlb(id, "C:\\app\\plugins", "*.dll");
//       const std::string manifest = reg_free_manifest_path("C:\\app\\plugins", file.c_str());
//       CComPtr<IUnknown> object;
//       if (SUCCEEDED(reg_free_co_create(id, "C:\\app\\plugins", manifest.c_str(), CLSCTX_INPROC_SERVER, &object))) ...
//     }
//
// What classes a file has is read from its type library; which DLL makes them, the system reads from a manifest. Both
// have to say it.
//
// Paths are in the ANSI code page, and full: a type library that is loaded without a folder is registered by the
// system.
//
// Threads. Creation needs COM initialised on the calling thread. Nothing here is shared between threads.
#ifndef KEXLIB_COM_REGISTRATION_FREE_H
#define KEXLIB_COM_REGISTRATION_FREE_H

#include <kexlib/com/guid.h>
#include <kexlib/export.h>

#include <set>
#include <string>

/// The manifest of a component: its file name in `directory`, with the extension ".manifest" in place of its own.
///
/// "C:\\m" and "C:\\bin\\part.dll" give "C:\\m\\part.manifest". A name with a further dot keeps what comes before the
/// extension and gets no other (PathAddExtensionA): "part.2.dll" gives "C:\\m\\part.2". Empty where the component is
/// empty or null, or where the path would be longer than 259 characters.
KEXLIB_API std::string reg_free_manifest_path(const char* directory, const char* componentPath);

/// Creates an object while a manifest is in force: CoCreateInstance for IID_IUnknown, inside an activation context made
/// of the manifest (CreateActCtxA, with `assemblyDirectory` as its assembly directory), which is this thread's for just
/// that call. The manifest's classes go before those of the registry.
///
/// clsContext: CLSCTX_ values, CLSCTX_INPROC_SERVER as a rule. result: the object, with a reference for the caller;
/// untouched on failure.
///
/// Returns E_POINTER for a null `result`; otherwise what CoCreateInstance says: REGDB_E_CLASSNOTREG where neither
/// manifest nor registry know the class. A manifest that is empty, null, missing or no manifest is left out without a
/// word. A class of another apartment is made on another thread, where the manifest is not in force. A server that
/// leaves an activation context of its own active is a fatal error of the system's.
KEXLIB_API long reg_free_co_create(const GUID& clsid, const char* assemblyDirectory, const char* manifestPath,
                                   DWORD clsContext, IUnknown** result);

/// The classes that implement the interface `iid`, a vtable or dispatch interface, by the type libraries of the files
/// below `directory` whose names match `pattern` ("*.dll;*.tlb", see kexApplyToFiles). In the order of their bytes.
///
/// Files that are no type libraries (LoadTypeLib) are passed over, and so are interfaces of another library that is not
/// on this machine. Empty where there is no such folder or it cannot be read. Each class that is looked at leaves a few
/// hundred bytes behind: its attributes, and those of its interfaces, are not given back. Running out of memory throws
/// MFC's memory exception.
KEXLIB_API std::set<GUID, kexLessGUID> reg_free_list_classes(const GUID& iid, const char* directory,
                                                             const char* pattern);

/// The file whose type library describes the class, searched for like above; its full path. Where several do, the last
/// one in the order of the walk. Empty where none does.
KEXLIB_API std::string reg_free_find_tlb(const GUID& clsid, const char* directory, const char* pattern);

#endif
