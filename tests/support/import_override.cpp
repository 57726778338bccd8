#include <support/import_override.h>

#include <cstring>

namespace {

// The importer's address table entry for the function; null if it does not import the function.
ULONG_PTR* find_slot(char* module, const char* library, const char* function) {
  auto* dos = reinterpret_cast<IMAGE_DOS_HEADER*>(module);
  auto* headers = reinterpret_cast<IMAGE_NT_HEADERS*>(module + dos->e_lfanew);
  const IMAGE_DATA_DIRECTORY& imports = headers->OptionalHeader.DataDirectory[IMAGE_DIRECTORY_ENTRY_IMPORT];
  auto* from = reinterpret_cast<IMAGE_IMPORT_DESCRIPTOR*>(module + imports.VirtualAddress);
  for (; from->Name; ++from) {
    if (lstrcmpiA(module + from->Name, library) != 0) continue;
    auto* names = reinterpret_cast<IMAGE_THUNK_DATA*>(module + from->OriginalFirstThunk);
    auto* slots = reinterpret_cast<IMAGE_THUNK_DATA*>(module + from->FirstThunk);
    for (; names->u1.AddressOfData; ++names, ++slots) {
      if (IMAGE_SNAP_BY_ORDINAL(names->u1.Ordinal)) continue;
      auto* name = reinterpret_cast<IMAGE_IMPORT_BY_NAME*>(module + names->u1.AddressOfData);
      if (strcmp(reinterpret_cast<const char*>(name->Name), function) == 0)
        return reinterpret_cast<ULONG_PTR*>(&slots->u1.Function);
    }
  }
  return nullptr;
}

void store(ULONG_PTR* slot, ULONG_PTR value) {
  DWORD before;
  VirtualProtect(slot, sizeof *slot, PAGE_READWRITE, &before);
  *slot = value;
  VirtualProtect(slot, sizeof *slot, before, &before);
}

}  // namespace

ImportOverride::ImportOverride(const char* importer, const char* library, const char* function, ULONG_PTR replacement) {
  auto* module = reinterpret_cast<char*>(GetModuleHandleA(importer));
  if (module) slot_ = find_slot(module, library, function);
  if (!slot_) return;
  original_ = *slot_;
  store(slot_, replacement);
}

ImportOverride::~ImportOverride() {
  if (slot_) store(slot_, original_);
}
