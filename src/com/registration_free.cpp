#include <kexlib/com/registration_free.h>
#include <kexlib/text/apply_to_files.h>

#include <oleauto.h>
#include <shlwapi.h>

#include <support/widened.h>

using namespace kexlib;

namespace {

// Null if the file has no type library.
CComPtr<ITypeLib> load_library(const char* path) {
  CComPtr<ITypeLib> library;
  if (FAILED(LoadTypeLib(widened(path), &library))) return {};
  return library;
}

// Kept for compatibility: the attributes are not released (ReleaseTypeAttr), callers see a small leak.
const TYPEATTR* attributes_of(ITypeInfo* type) {
  TYPEATTR* attributes = nullptr;
  return SUCCEEDED(type->GetTypeAttr(&attributes)) ? attributes : nullptr;
}

struct Description {
  CComPtr<ITypeInfo> type;
  TYPEKIND kind = TKIND_MAX;
};

// Its kind is TKIND_MAX if it cannot be read.
Description description(ITypeLib* library, UINT index) {
  Description found;
  if (FAILED(library->GetTypeInfo(index, &found.type)) || FAILED(library->GetTypeInfoType(index, &found.kind)))
    found.kind = TKIND_MAX;
  return found;
}

// A type that a class refers to, from the type library that describes it, which may be another one.
Description implemented(ITypeInfo* coclass, UINT index) {
  HREFTYPE reference;
  CComPtr<ITypeInfo> type;
  CComPtr<ITypeLib> library;
  UINT place = 0;
  if (FAILED(coclass->GetRefTypeOfImplType(index, &reference)) || FAILED(coclass->GetRefTypeInfo(reference, &type)) ||
      FAILED(type->GetContainingTypeLib(&library, &place)))
    return {};
  return description(library, place);
}

bool implements(ITypeInfo* coclass, UINT count, const GUID& iid) {
  for (UINT i = 0; i < count; ++i) {
    const Description found = implemented(coclass, i);
    if (found.kind != TKIND_INTERFACE && found.kind != TKIND_DISPATCH) continue;
    const TYPEATTR* const attributes = attributes_of(found.type);
    if (attributes && IsEqualGUID(attributes->guid, iid)) return true;
  }
  return false;
}

// Scans the classes that the type libraries of files describe.
class ClassScan : public kexApplyToFiles {
 public:
  void apply_to_file(char* path) final {
    const CComPtr<ITypeLib> library = load_library(path);
    const UINT count = library ? library->GetTypeInfoCount() : 0;
    for (UINT i = 0; i < count; ++i) {
      const Description found = description(library, i);
      if (found.kind != TKIND_COCLASS) continue;
      const TYPEATTR* const attributes = attributes_of(found.type);
      if (attributes && !look(path, found.type, *attributes)) return;
    }
  }

 protected:
  ~ClassScan() = default;
  // Whether to scan further classes of this file.
  virtual bool look(const char* path, ITypeInfo* coclass, const TYPEATTR& attributes) = 0;
};

class ListClasses final : public ClassScan {
 public:
  explicit ListClasses(const GUID& iid) : iid_(iid) {}
  std::set<GUID, kexLessGUID> classes;

 private:
  bool look(const char*, ITypeInfo* coclass, const TYPEATTR& attributes) override {
    if (implements(coclass, attributes.cImplTypes, iid_)) classes.insert(attributes.guid);
    return true;
  }

  const GUID& iid_;
};

class FindTypeLibrary final : public ClassScan {
 public:
  explicit FindTypeLibrary(const GUID& clsid) : clsid_(clsid) {}
  std::string path;

 private:
  // By design a match ends the scan of its file, not the walk: callers get the last file that describes the class.
  bool look(const char* file, ITypeInfo*, const TYPEATTR& attributes) override {
    if (!IsEqualGUID(attributes.guid, clsid_)) return true;
    path = file;
    return false;
  }

  const GUID& clsid_;
};

// The manifest is active on this thread during the lifetime of the object.
class Activation {
 public:
  Activation(const char* assembly_directory, const char* manifest) {
    if (!manifest || !*manifest) return;
    ACTCTXA wanted = {};
    wanted.cbSize = sizeof wanted;
    wanted.dwFlags = ACTCTX_FLAG_ASSEMBLY_DIRECTORY_VALID;
    wanted.lpSource = manifest;
    wanted.lpAssemblyDirectory = assembly_directory;
    context_ = CreateActCtxA(&wanted);
    if (context_ != INVALID_HANDLE_VALUE) active_ = ActivateActCtx(context_, &cookie_) != FALSE;
  }
  Activation(const Activation&) = delete;
  Activation& operator=(const Activation&) = delete;
  // Kept for compatibility: a context that cannot be activated is not released, callers see a leak.
  ~Activation() {
    if (!active_) return;
    DeactivateActCtx(0, cookie_);
    ReleaseActCtx(context_);
  }

 private:
  HANDLE context_ = INVALID_HANDLE_VALUE;
  ULONG_PTR cookie_ = 0;
  bool active_ = false;
};
static_assert(sizeof(ACTCTXA) == 56);

}  // namespace

std::string reg_free_manifest_path(const char* directory, const char* componentPath) {
  if (!componentPath || !*componentPath) return {};
  std::string component = componentPath;
  PathRemoveExtensionA(component.data());
  char path[MAX_PATH];
  if (!directory || lstrlenA(directory) >= MAX_PATH) return {};
  lstrcpynA(path, directory, MAX_PATH);
  if (!PathAppendA(path, PathFindFileNameA(component.c_str()))) return {};
  // By design a name that still has an extension, such as "part.2", gets no other: callers name their manifests so.
  // Nor does one that leaves no room for it: the caller sees which path was too long.
  PathAddExtensionA(path, ".manifest");
  return path;
}

long reg_free_co_create(const GUID& clsid, const char* assemblyDirectory, const char* manifestPath, DWORD clsContext,
                        IUnknown** result) {
  if (!result) return E_POINTER;
  CComPtr<IUnknown> object;
  HRESULT created;
  {
    const Activation activation(assemblyDirectory, manifestPath);
    created = CoCreateInstance(clsid, nullptr, clsContext, IID_IUnknown, reinterpret_cast<void**>(&object));
  }
  if (object) object.QueryInterface(result);
  return created;
}

std::set<GUID, kexLessGUID> reg_free_list_classes(const GUID& iid, const char* directory, const char* pattern) {
  ListClasses scan(iid);
  scan.Apply(directory, pattern, 0);
  return std::move(scan.classes);
}

std::string reg_free_find_tlb(const GUID& clsid, const char* directory, const char* pattern) {
  FindTypeLibrary scan(clsid);
  scan.Apply(directory, pattern, 0);
  return std::move(scan.path);
}
