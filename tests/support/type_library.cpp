#include <atlbase.h>
#include <oleauto.h>

#include <support/type_library.h>

namespace {

CComPtr<ICreateTypeInfo> add_type(ICreateTypeLib2* library, const wchar_t* name, TYPEKIND kind, const GUID& id) {
  CComPtr<ICreateTypeInfo> type;
  CComBSTR text(name);
  if (FAILED(library->CreateTypeInfo(text, kind, &type)) || FAILED(type->SetGuid(id))) return {};
  return type;
}

CComPtr<ICreateTypeLib2> begin_library(const std::filesystem::path& path, const GUID& clsid) {
  GUID own = clsid;
  ++own.Data2;
  CComPtr<ICreateTypeLib2> library;
  CComBSTR name(L"Made");
  if (FAILED(CreateTypeLib2(SYS_WIN64, path.c_str(), &library)) || FAILED(library->SetGuid(own)) ||
      FAILED(library->SetName(name)) || FAILED(library->SetVersion(1, 0)))
    return {};
  return library;
}

bool end_library(ICreateTypeLib2* library, const GUID& clsid, ITypeInfo* implemented) {
  const CComPtr<ICreateTypeInfo> coclass = add_type(library, L"MadeClass", TKIND_COCLASS, clsid);
  HREFTYPE reference;
  return coclass && SUCCEEDED(coclass.p->AddRefTypeInfo(implemented, &reference)) &&
         SUCCEEDED(coclass.p->AddImplType(0, reference)) && SUCCEEDED(library->SaveAllChanges());
}

}  // namespace

bool make_type_library(const std::filesystem::path& path, const GUID& clsid, const GUID& iid) {
  const CComPtr<ICreateTypeLib2> library = begin_library(path, clsid);
  if (!library) return false;
  const CComPtr<ICreateTypeInfo> made = add_type(library, L"IMade", TKIND_INTERFACE, iid);
  CComPtr<ITypeInfo> readable;
  return made && SUCCEEDED(made.p->QueryInterface(IID_ITypeInfo, reinterpret_cast<void**>(&readable))) &&
         end_library(library, clsid, readable);
}

bool make_type_library(const std::filesystem::path& path, const GUID& clsid, ITypeInfo* implemented) {
  const CComPtr<ICreateTypeLib2> library = begin_library(path, clsid);
  return library && end_library(library, clsid, implemented);
}
