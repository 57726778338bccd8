// Shortcuts, which a walk through folders replaces with their targets.
#include <gtest/gtest.h>

#include <kexlib/text/apply_to_files.h>

#include <atlbase.h>
#include <shlobj.h>

#include <support/files.h>
#include <support/import_override.h>
#include <support/shortcut.h>
#include <text/apply_to_files_fixture.h>

#include <string>

namespace {

namespace fs = std::filesystem;
using namespace apply_to_files;

class Shortcuts : public ApplyToFiles {
 protected:
  Shortcuts() { CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED); }
  ~Shortcuts() override { CoUninitialize(); }

  std::string below(const char* name) const { return (root() / name).string(); }
};

TEST_F(Shortcuts, StandForTheirTargets) {
  make("elsewhere\\target.txt");
  make("tree\\plain.dat");
  make_shortcut(below("tree\\link.lnk"), below("elsewhere\\target.txt"));
  make_shortcut(below("tree\\LOUD.LNK"), below("elsewhere\\target.txt"));
  EXPECT_EQ(walk_.Apply(below("tree").c_str(), "*.txt", 1), S_OK);
  ASSERT_EQ(walk_.files.size(), 2u);
  EXPECT_TRUE(walk_.files[0].ends_with("elsewhere\\target.txt")) << walk_.files[0];
  EXPECT_TRUE(walk_.files[1].ends_with("elsewhere\\target.txt")) << walk_.files[1];
}

TEST_F(Shortcuts, AreFilesLikeOthersUnlessTheyAreToBeFollowed) {
  make("target.txt");
  make_shortcut(below("link.lnk"), below("target.txt"));
  EXPECT_EQ(apply("*.txt", 0), S_OK);
  EXPECT_EQ(found(), Paths{"target.txt"});
}

TEST_F(Shortcuts, ThatMatchThemselvesAreNotFollowed) {
  make("elsewhere\\target.txt");
  make("tree\\plain.dat");
  make_shortcut(below("tree\\link.lnk"), below("elsewhere\\target.txt"));
  EXPECT_EQ(walk_.Apply(below("tree").c_str(), "*.*", 1), S_OK);
  EXPECT_EQ(walk_.found_below(root() / "tree"), (Paths{"link.lnk", "plain.dat"}));
}

TEST_F(Shortcuts, AreSkippedWhereThereIsNoFileToStandFor) {
  make("elsewhere\\target.txt");
  make("elsewhere\\folder.txt\\in.txt");
  make("elsewhere\\other.dat");
  fs::create_directory("tree");
  make_shortcut(below("tree\\folder.lnk"), below("elsewhere\\folder.txt"));
  make_shortcut(below("tree\\missing.lnk"), below("elsewhere\\missing.txt"));
  make_shortcut(below("tree\\other.lnk"), below("elsewhere\\other.dat"));
  make("tree\\junk.lnk");
  write_file("tree\\more junk.lnk", std::string(1000, 'x'));
  EXPECT_EQ(walk_.Apply(below("tree").c_str(), "*.txt", 1), S_OK);
  EXPECT_EQ(walk_.files, Paths{});
}

TEST_F(Shortcuts, AreSkippedWhereComIsNotThere) {
  make("elsewhere\\target.txt");
  fs::create_directory("tree");
  make_shortcut(below("tree\\link.lnk"), below("elsewhere\\target.txt"));
  CoUninitialize();
  EXPECT_EQ(walk_.Apply(below("tree").c_str(), "*.txt", 1), S_OK);
  CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED);
  EXPECT_EQ(walk_.files, Paths{});
}

TEST_F(Shortcuts, MayStopTheWalk) {
  make("elsewhere\\target.txt");
  fs::create_directory("tree");
  for (const char* link : {"tree\\a.lnk", "tree\\b.lnk", "tree\\c.lnk"})
    make_shortcut(below(link), below("elsewhere\\target.txt"));
  walk_.on_file = [](Walk& walk) { walk.end(); };
  EXPECT_EQ(walk_.Apply(below("tree").c_str(), "*.txt", 1), S_OK);
  EXPECT_EQ(walk_.files.size(), 1u);
}

// COM objects are deleted by Release alone.
// A shortcut object of the shell whose calls are recorded.
class RecordedLink final : public IShellLinkA, public IPersistFile {
 public:
  explicit RecordedLink(IShellLinkA* link) : link_(link) { link_.QueryInterface(&file_); }
  virtual ~RecordedLink() { --alive; }

  static inline int alive = 0;
  static inline DWORD mode, flags;
  static inline int size;

  STDMETHODIMP QueryInterface(REFIID id, void** object) override {
    *object = nullptr;
    if (id == IID_IPersistFile) *object = static_cast<IPersistFile*>(this);
    if (id == IID_IShellLinkA) *object = static_cast<IShellLinkA*>(this);
    if (!*object) return E_NOINTERFACE;
    AddRef();
    return S_OK;
  }
  STDMETHODIMP_(ULONG) AddRef() override { return ++references_; }
  STDMETHODIMP_(ULONG) Release() override {
    const ULONG left = --references_;
    if (left == 0) delete this;
    return left;
  }

  STDMETHODIMP GetPath(LPSTR path, int room, WIN32_FIND_DATAA* found, DWORD with) override {
    size = room;
    flags = with;
    return link_->GetPath(path, room, found, with);
  }
  STDMETHODIMP Load(LPCOLESTR path, DWORD with) override {
    mode = with;
    return file_->Load(path, with);
  }

  STDMETHODIMP GetIDList(LPITEMIDLIST*) override { return E_NOTIMPL; }
  STDMETHODIMP SetIDList(LPCITEMIDLIST) override { return E_NOTIMPL; }
  STDMETHODIMP GetDescription(LPSTR, int) override { return E_NOTIMPL; }
  STDMETHODIMP SetDescription(LPCSTR) override { return E_NOTIMPL; }
  STDMETHODIMP GetWorkingDirectory(LPSTR, int) override { return E_NOTIMPL; }
  STDMETHODIMP SetWorkingDirectory(LPCSTR) override { return E_NOTIMPL; }
  STDMETHODIMP GetArguments(LPSTR, int) override { return E_NOTIMPL; }
  STDMETHODIMP SetArguments(LPCSTR) override { return E_NOTIMPL; }
  STDMETHODIMP GetHotkey(WORD*) override { return E_NOTIMPL; }
  STDMETHODIMP SetHotkey(WORD) override { return E_NOTIMPL; }
  STDMETHODIMP GetShowCmd(int*) override { return E_NOTIMPL; }
  STDMETHODIMP SetShowCmd(int) override { return E_NOTIMPL; }
  STDMETHODIMP GetIconLocation(LPSTR, int, int*) override { return E_NOTIMPL; }
  STDMETHODIMP SetIconLocation(LPCSTR, int) override { return E_NOTIMPL; }
  STDMETHODIMP SetRelativePath(LPCSTR, DWORD) override { return E_NOTIMPL; }
  STDMETHODIMP Resolve(HWND, DWORD) override { return E_NOTIMPL; }
  STDMETHODIMP SetPath(LPCSTR) override { return E_NOTIMPL; }
  STDMETHODIMP GetClassID(CLSID*) override { return E_NOTIMPL; }
  STDMETHODIMP IsDirty() override { return E_NOTIMPL; }
  STDMETHODIMP Save(LPCOLESTR, BOOL) override { return E_NOTIMPL; }
  STDMETHODIMP SaveCompleted(LPCOLESTR) override { return E_NOTIMPL; }
  STDMETHODIMP GetCurFile(LPOLESTR*) override { return E_NOTIMPL; }

 private:
  CComPtr<IShellLinkA> link_;
  CComPtr<IPersistFile> file_;
  ULONG references_ = 1;
};

HRESULT WINAPI create_recorded(REFCLSID clsid, IUnknown* outer, DWORD context, REFIID iid, void** object) {
  EXPECT_TRUE(clsid == CLSID_ShellLink);
  EXPECT_EQ(outer, nullptr);
  EXPECT_EQ(context, static_cast<DWORD>(CLSCTX_INPROC_SERVER));
  EXPECT_TRUE(iid == IID_IShellLinkA);
  CComPtr<IShellLinkA> link;
  const HRESULT created = CoCreateInstance(clsid, outer, context, iid, reinterpret_cast<void**>(&link));
  if (FAILED(created)) return created;
  ++RecordedLink::alive;
  *object = static_cast<IShellLinkA*>(new RecordedLink(link));
  return S_OK;
}

TEST_F(Shortcuts, AreReadInReadModeAndAskedForTheirNetworkPath) {
  make("elsewhere\\target.txt");
  fs::create_directory("tree");
  make_shortcut(below("tree\\link.lnk"), below("elsewhere\\target.txt"));
  const ImportOverride recorded("kexlib.dll", "ole32.dll", "CoCreateInstance", create_recorded);
  ASSERT_TRUE(recorded.made());
  RecordedLink::mode = RecordedLink::flags = 0xFFFF;
  EXPECT_EQ(walk_.Apply(below("tree").c_str(), "*.txt", 1), S_OK);
  EXPECT_EQ(walk_.files.size(), 1u);
  EXPECT_EQ(RecordedLink::mode, static_cast<DWORD>(STGM_READ));
  EXPECT_EQ(RecordedLink::flags, static_cast<DWORD>(SLGP_UNCPRIORITY));
  EXPECT_EQ(RecordedLink::size, 260);
  EXPECT_EQ(RecordedLink::alive, 0);
}

}  // namespace
