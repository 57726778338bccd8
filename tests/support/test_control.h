// A small ActiveX control, and its class object in this process.
#ifndef TESTS_SUPPORT_TEST_CONTROL_H
#define TESTS_SUPPORT_TEST_CONTROL_H

#include <olectl.h>

#include <support/recording_dispatch.h>

#include <string>

// Shows a window, records the calls of its members, and accepts any bytes as its state: a whole stream, or the stream
// "state" of a storage.
class TestControl : public RecordingDispatch,
                    public IOleObject,
                    public IOleInPlaceObject,
                    public IPersistStreamInit,
                    public IPersistStorage {
 public:
  ~TestControl() override;

  bool refuses_state = false;
  bool has_dispatch = true;
  bool is_ole_object = true;
  const SIZEL* natural_size = nullptr;  // kept whatever extent the host sets; null: the host's

  bool began_anew = false;
  std::string state;      // what was loaded
  HWND window = nullptr;  // while it is active
  bool closed = false;

  STDMETHODIMP QueryInterface(REFIID id, void** object) override;
  STDMETHODIMP_(ULONG) AddRef() override { return RecordingDispatch::AddRef(); }
  STDMETHODIMP_(ULONG) Release() override { return RecordingDispatch::Release(); }

  STDMETHODIMP SetClientSite(IOleClientSite* site) override;
  STDMETHODIMP GetClientSite(IOleClientSite** site) override { return site_.CopyTo(site); }
  STDMETHODIMP SetHostNames(LPCOLESTR, LPCOLESTR) override { return S_OK; }
  STDMETHODIMP Close(DWORD) override;
  STDMETHODIMP SetMoniker(DWORD, IMoniker*) override { return E_NOTIMPL; }
  STDMETHODIMP GetMoniker(DWORD, DWORD, IMoniker**) override { return E_NOTIMPL; }
  STDMETHODIMP InitFromData(IDataObject*, BOOL, DWORD) override { return E_NOTIMPL; }
  STDMETHODIMP GetClipboardData(DWORD, IDataObject**) override { return E_NOTIMPL; }
  STDMETHODIMP DoVerb(LONG verb, LPMSG, IOleClientSite*, LONG, HWND parent, LPCRECT place) override;
  STDMETHODIMP EnumVerbs(IEnumOLEVERB**) override { return E_NOTIMPL; }
  STDMETHODIMP Update() override { return S_OK; }
  STDMETHODIMP IsUpToDate() override { return S_OK; }
  STDMETHODIMP GetUserClassID(CLSID* id) override { return GetClassID(id); }
  STDMETHODIMP GetUserType(DWORD, LPOLESTR*) override { return E_NOTIMPL; }
  STDMETHODIMP SetExtent(DWORD, SIZEL* size) override;
  STDMETHODIMP GetExtent(DWORD, SIZEL* size) override;
  STDMETHODIMP Advise(IAdviseSink*, DWORD*) override { return E_NOTIMPL; }
  STDMETHODIMP Unadvise(DWORD) override { return E_NOTIMPL; }
  STDMETHODIMP EnumAdvise(IEnumSTATDATA**) override { return E_NOTIMPL; }
  STDMETHODIMP GetMiscStatus(DWORD, DWORD* status) override;
  STDMETHODIMP SetColorScheme(LOGPALETTE*) override { return E_NOTIMPL; }

  STDMETHODIMP GetWindow(HWND* result) override;
  STDMETHODIMP ContextSensitiveHelp(BOOL) override { return S_OK; }
  STDMETHODIMP InPlaceDeactivate() override;
  STDMETHODIMP UIDeactivate() override { return S_OK; }
  STDMETHODIMP SetObjectRects(LPCRECT place, LPCRECT clip) override;
  STDMETHODIMP ReactivateAndUndo() override { return E_NOTIMPL; }

  STDMETHODIMP GetClassID(CLSID* id) override;
  STDMETHODIMP IsDirty() override { return S_FALSE; }
  STDMETHODIMP Load(IStream* stream) override;
  STDMETHODIMP Save(IStream*, BOOL) override { return E_NOTIMPL; }
  STDMETHODIMP GetSizeMax(ULARGE_INTEGER*) override { return E_NOTIMPL; }
  STDMETHODIMP InitNew() override;
  STDMETHODIMP InitNew(IStorage*) override { return S_OK; }
  STDMETHODIMP Load(IStorage* storage) override;
  STDMETHODIMP Save(IStorage*, BOOL) override { return E_NOTIMPL; }
  STDMETHODIMP SaveCompleted(IStorage*) override { return S_OK; }
  STDMETHODIMP HandsOffStorage() override { return S_OK; }

 private:
  CComPtr<IOleClientSite> site_;
  SIZEL size_{3000, 2000};
};

// While the object lives, the control's class is registered in this process, under its own identifier or the one given,
// and COM is initialized on this thread.
class TestControlClass : public IClassFactory2 {
 public:
  static const CLSID id;

  explicit TestControlClass(const CLSID& as = id);
  TestControlClass(const TestControlClass&) = delete;
  TestControlClass& operator=(const TestControlClass&) = delete;
  virtual ~TestControlClass();

  const wchar_t* license = nullptr;           // the required key; null: the control needs no license
  std::function<void(TestControl*)> prepare;  // called for each new control
  TestControl* made = nullptr;                // the last one; not owned

  STDMETHODIMP QueryInterface(REFIID id, void** object) override;
  STDMETHODIMP_(ULONG) AddRef() override { return 2; }  // the object lives as long as the test
  STDMETHODIMP_(ULONG) Release() override { return 1; }
  STDMETHODIMP CreateInstance(IUnknown* outer, REFIID id, void** object) override;
  STDMETHODIMP LockServer(BOOL) override { return S_OK; }
  STDMETHODIMP GetLicInfo(LICINFO*) override { return E_NOTIMPL; }
  STDMETHODIMP RequestLicKey(DWORD, BSTR*) override { return E_NOTIMPL; }
  STDMETHODIMP CreateInstanceLic(IUnknown* outer, IUnknown*, REFIID id, BSTR key, void** object) override;

 private:
  DWORD registration_ = 0;
};

#endif
