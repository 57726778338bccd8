// Registration-free COM: creates objects of unregistered classes, and finds such classes below a folder.
//
//     for (const GUID& id : reg_free_list_classes(__uuidof(IPlugIn), "C:\\app\\plugins", "*.dll")) {
//       const std::string file = reg_free_find_tlb(id, "C:\\app\\plugins", "*.dll");
//       const std::string manifest = reg_free_manifest_path("C:\\app\\plugins", file.c_str());
//       CComPtr<IUnknown> object;
//       if (SUCCEEDED(reg_free_co_create(id, "C:\\app\\plugins", manifest.c_str(), CLSCTX_INPROC_SERVER, &object))) ...
//     }
//
// The type library of a file describes its classes. The manifest names the DLL that creates them. A component needs
// both.
//
// Scan only folders that you trust. The system's loader does not validate a type library: with a damaged one,
// LoadTypeLib can end the process or never return. Nothing of it is executed.
//
// Paths are full and in the ANSI code page. The system registers a type library that is loaded by its name alone.
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
/// "C:\\m" and "C:\\bin\\part.dll" become "C:\\m\\part.manifest". A name with a further dot keeps what comes before the
/// extension and gets no other (PathAddExtensionA): "part.2.dll" becomes "C:\\m\\part.2". A path that ".manifest" would
/// make longer than 259 characters comes without it. Empty if the component is empty or null, or if directory and name
/// alone are longer than that.
KEXLIB_API std::string reg_free_manifest_path(const char* directory, const char* componentPath);

/// Creates an object through a manifest: calls CoCreateInstance for IID_IUnknown while an activation context of the
/// manifest (CreateActCtxA) is active on this thread. The manifest's classes take precedence over the registry.
///
/// clsid: the class.
/// assemblyDirectory: the assembly directory of the activation context.
/// manifestPath: the manifest. An empty, null, missing or invalid manifest is ignored.
/// clsContext: CLSCTX_ values, usually CLSCTX_INPROC_SERVER.
/// result: receives the object, with a reference for the caller; unchanged on failure.
///
/// Returns E_POINTER if `result` is null, otherwise the HRESULT of CoCreateInstance: REGDB_E_CLASSNOTREG if neither the
/// manifest nor the registry has the class. An object of another apartment is created on another thread, where the
/// manifest is not active. If the server leaves another activation context active, the system raises
/// STATUS_SXS_EARLY_DEACTIVATION.
KEXLIB_API long reg_free_co_create(const GUID& clsid, const char* assemblyDirectory, const char* manifestPath,
                                   DWORD clsContext, IUnknown** result);

/// The classes that implement the interface `iid`, a vtable or dispatch interface, by the type libraries of the files
/// below `directory` whose names match `pattern` ("*.dll;*.tlb", see kexApplyToFiles). In the order of their bytes.
///
/// Files that are not type libraries (LoadTypeLib) are skipped, and so are interfaces of a library that is not on this
/// machine. Empty if the folder does not exist or cannot be read. Kept for compatibility: the attributes of each class,
/// and of its interfaces, are not released, so each class scanned leaks a few hundred bytes. Running out of memory
/// throws MFC's memory exception.
KEXLIB_API std::set<GUID, kexLessGUID> reg_free_list_classes(const GUID& iid, const char* directory,
                                                             const char* pattern);

/// The full path of the file whose type library describes the class, found as above. If there are several, the last one
/// in the order of the walk; empty if there is none.
KEXLIB_API std::string reg_free_find_tlb(const GUID& clsid, const char* directory, const char* pattern);

#endif
