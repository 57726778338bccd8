#include <kexlib/framework.h>
#include <kexlib/text/apply_to_files.h>

#include <shlobj.h>
#include <shlwapi.h>

#include <support/widened.h>

using namespace kexlib;

namespace {

// The target of a shortcut; empty on failure.
CString shortcut_target(const char* path) {
  CComPtr<IShellLinkA> link;
  CComPtr<IPersistFile> file;
  if (FAILED(link.CoCreateInstance(CLSID_ShellLink, nullptr, CLSCTX_INPROC_SERVER))) return {};
  if (FAILED(link.QueryInterface(&file))) return {};
  if (FAILED(file->Load(widened(path), STGM_READ))) return {};
  char target[MAX_PATH] = "";
  if (FAILED(link->GetPath(target, MAX_PATH, nullptr, SLGP_UNCPRIORITY))) return {};
  return target;
}

bool is_shortcut(const char* name) { return CString(PathFindExtensionA(name)).CompareNoCase(".lnk") == 0; }

bool is_folder(const char* path) { return PathFileExistsA(path) && PathIsDirectoryA(path); }

bool is_file(const char* path) { return PathFileExistsA(path) && !PathIsDirectoryA(path); }

// The system's matcher calls itself for each asterisk. Three in a row match what two do; one does not: "*.*" is
// special.
CString without_needless_asterisks(const char* pattern) {
  CString shorter(pattern);
  while (shorter.Replace("***", "**")) {
  }
  return shorter;
}

}  // namespace

int kexApplyToFiles::ignore_directory(const char* const) { return 0; }

long kexApplyToFiles::Apply(const char* directory, const char* pattern, int followShortcuts) {
  if (!pattern || !is_folder(directory)) return E_INVALIDARG;
  return walk(directory, without_needless_asterisks(pattern), followShortcuts);
}

// One search per folder and no other access to the file system: the search already returns the attributes.
long kexApplyToFiles::walk(const char* directory, const char* pattern, int followShortcuts) {
  stop = 0;
  char mask[MAX_PATH];
  lstrcpynA(mask, directory, MAX_PATH);
  if (!PathAppendA(mask, "*.*")) return E_INVALIDARG;

  CFileFind find;
  if (!find.FindFile(mask)) {
    const HRESULT failure = AtlHresultFromLastError();
    return is_folder(directory) ? failure : E_INVALIDARG;  // it may have been deleted since it was found
  }
  BOOL more;
  do {
    more = find.FindNextFile();
    if (!more && GetLastError() != ERROR_NO_MORE_FILES) return AtlHresultFromLastError();
    if (find.IsDirectory()) {
      if (find.IsDots()) continue;
      const CString folder = find.GetFilePath();
      if (ignore_directory(folder)) continue;
      const HRESULT result = walk(folder, pattern, followShortcuts);
      if (FAILED(result)) return result;
      continue;
    }
    const CString name = find.GetFileName();
    if (PathMatchSpecA(name, pattern)) {
      apply_to_file(find.GetFilePath().GetBuffer());
    } else if (followShortcuts && is_shortcut(name)) {
      CString target = shortcut_target(find.GetFilePath());
      if (is_file(target) && PathMatchSpecA(PathFindFileNameA(target), pattern)) apply_to_file(target.GetBuffer());
    }
  } while (more && !stop);
  return S_OK;
}
