// An application as its developer writes one on ATL, WTL and MFC: a dialog with a message map, an edit box that takes
// digits only, a button that handles its own click, a sheet of settings, an automation object that fails, and a
// document that is stored and loaded again. It uses itself, and writes down what happened in transcript.txt, a line
// each.
#define _WTL_NO_AUTOMATIC_NAMESPACE  // with MFC beside it, WTL's names are written in full

#include <afxdisp.h>
#include <afxwin.h>
#include <atlapp.h>
#include <atlctrls.h>
#include <atldlgs.h>
#include <hosts/framework_host.h>
#include <support/crash_report.h>

#include <cstdlib>
#include <string>

WTL::CAppModule _Module;

class HostApp : public CWinApp {
 public:
  using CWinApp::CWinApp;
} theApp;

namespace {

void note(CString line) {
  static CFile transcript("transcript.txt", CFile::modeCreate | CFile::modeWrite);
  line += "\n";
  transcript.Write(line.GetString(), static_cast<UINT>(line.GetLength()));
}

// ---- windows -------------------------------------------------------------------------------------------------------

// Takes digits only.
class CDigitEdit : public ATL::CWindowImpl<CDigitEdit, WTL::CEdit> {
 public:
  BEGIN_MSG_MAP(CDigitEdit)
    MESSAGE_HANDLER(WM_CHAR, OnChar)
  END_MSG_MAP()

  LRESULT OnChar(UINT, WPARAM wParam, LPARAM, BOOL& bHandled) {
    bHandled = wParam < '0' || wParam > '9';
    return 0;
  }
};

// Changes its own text when it is clicked.
class CLampButton : public ATL::CWindowImpl<CLampButton, WTL::CButton> {
 public:
  BEGIN_MSG_MAP(CLampButton)
    REFLECTED_COMMAND_CODE_HANDLER(BN_CLICKED, OnClicked)
    DEFAULT_REFLECTION_HANDLER()
  END_MSG_MAP()

  LRESULT OnClicked(WORD, WORD, HWND, BOOL&) {
    m_on = !m_on;
    SetWindowText(m_on ? "On" : "Off");
    return 0;
  }

 private:
  bool m_on = false;
};

// ---- a sheet of two pages ------------------------------------------------------------------------------------------

struct Settings {
  CString name = "none";
  int size = 0;
};

template <class T>
class CSettingsPage : public WTL::CPropertyPageImpl<T> {
 public:
  explicit CSettingsPage(Settings& settings) : m_settings(settings) {}

 protected:
  CString text(int id) {
    char text[50];
    ::GetDlgItemText(this->m_hWnd, id, text, sizeof text);
    return text;
  }
  Settings& m_settings;
};

class CNamePage : public CSettingsPage<CNamePage> {
 public:
  enum { IDD = IDD_NAME };
  using CSettingsPage::CSettingsPage;

  BEGIN_MSG_MAP(CNamePage)
    MESSAGE_HANDLER(WM_INITDIALOG, OnInitDialog)
    CHAIN_MSG_MAP(WTL::CPropertyPageImpl<CNamePage>)
  END_MSG_MAP()

  LRESULT OnInitDialog(UINT, WPARAM, LPARAM, BOOL&) {
    GetDlgItem(IDC_NAME).SetWindowText(m_settings.name);
    return TRUE;
  }
  BOOL OnApply() {
    m_settings.name = text(IDC_NAME);
    return TRUE;
  }
};

class CSizePage : public CSettingsPage<CSizePage> {
 public:
  enum { IDD = IDD_SIZE };
  using CSettingsPage::CSettingsPage;

  BEGIN_MSG_MAP(CSizePage)
    CHAIN_MSG_MAP(WTL::CPropertyPageImpl<CSizePage>)
  END_MSG_MAP()

  // A size is a number: the page is not left with anything else.
  BOOL OnKillActive() {
    bool good = atoi(text(IDC_WIDTH)) > 0;
    note(CString("size page left with '") + text(IDC_WIDTH) + (good ? "'" : "': refused"));
    return good;
  }
  BOOL OnApply() {
    m_settings.size = atoi(text(IDC_WIDTH));
    return TRUE;
  }
};

class CSettingsSheet : public WTL::CPropertySheetImpl<CSettingsSheet> {
 public:
  using CPropertySheetImpl::CPropertySheetImpl;

  BEGIN_MSG_MAP(CSettingsSheet)
    MESSAGE_HANDLER(WM_TIMER, OnTimer)
    CHAIN_MSG_MAP(WTL::CPropertySheetImpl<CSettingsSheet>)
  END_MSG_MAP()

  void OnSheetInitialized() { SetTimer(1, 10); }

  // What a user would do, a step at a time.
  LRESULT OnTimer(UINT, WPARAM, LPARAM, BOOL&) {
    HWND page = GetActivePage();
    switch (m_step++) {
      case 0:
        ::SetDlgItemText(page, IDC_NAME, "Ann");
        SetActivePage(1);
        break;
      case 1:
        ::SetDlgItemText(page, IDC_WIDTH, "big");
        PressButton(PSBTN_OK);
        break;
      case 2:
        ::SetDlgItemText(page, IDC_WIDTH, "42");
        PressButton(PSBTN_OK);
        break;
      default:
        KillTimer(1);
        break;
    }
    return 0;
  }

 private:
  int m_step = 0;
};

// ---- the main dialog -----------------------------------------------------------------------------------------------

class CMainDialog : public ATL::CDialogImpl<CMainDialog> {
 public:
  enum { IDD = IDD_MAIN };

  BEGIN_MSG_MAP(CMainDialog)
    MESSAGE_HANDLER(WM_INITDIALOG, OnInitDialog)
    MESSAGE_HANDLER(WM_TIMER, OnTimer)
    COMMAND_HANDLER(IDC_SETTINGS, BN_CLICKED, OnSettings)
    COMMAND_ID_HANDLER(IDOK, OnClose)
    COMMAND_ID_HANDLER(IDCANCEL, OnClose)
    REFLECT_NOTIFICATIONS()
  END_MSG_MAP()

  LRESULT OnInitDialog(UINT, WPARAM, LPARAM, BOOL&) {
    m_amount.SubclassWindow(GetDlgItem(IDC_AMOUNT));
    m_lamp.SubclassWindow(GetDlgItem(IDC_LAMP));
    SetTimer(1, 10);
    return TRUE;
  }

  LRESULT OnTimer(UINT, WPARAM, LPARAM, BOOL&) {
    KillTimer(1);
    for (char c : {'1', 'x', '2', ' ', '3'}) m_amount.SendMessage(WM_CHAR, static_cast<WPARAM>(c));
    note("typed 1x2 3: " + text_of(m_amount));
    m_lamp.SendMessage(BM_CLICK);
    note("lamp clicked: " + text_of(m_lamp));
    m_lamp.SendMessage(BM_CLICK);
    note("lamp clicked: " + text_of(m_lamp));
    GetDlgItem(IDC_SETTINGS).SendMessage(BM_CLICK);
    GetDlgItem(IDOK).PostMessage(BM_CLICK);
    return 0;
  }

  LRESULT OnSettings(WORD, WORD, HWND, BOOL&) {
    Settings settings;
    CNamePage name(settings);
    CSizePage size(settings);
    CString title;
    title.LoadString(IDS_TITLE);
    CSettingsSheet sheet(title.GetString(), 0, m_hWnd);
    sheet.m_psh.dwFlags |= PSH_NOAPPLYNOW;
    sheet.AddPage(name);
    sheet.AddPage(size);
    INT_PTR result = sheet.DoModal();
    CString line;
    line.Format("settings closed with %d: name %s, size %d", static_cast<int>(result), settings.name.GetString(),
                settings.size);
    note(line);
    return 0;
  }

  LRESULT OnClose(WORD, WORD id, HWND, BOOL&) {
    EndDialog(id);
    return 0;
  }

 private:
  static CString text_of(const ATL::CWindow& window) {
    CString text;
    window.GetWindowText(text.GetBuffer(50), 50);
    text.ReleaseBuffer();
    return text;
  }

  CDigitEdit m_amount;
  CLampButton m_lamp;
};

}  // namespace

// ---- automation ----------------------------------------------------------------------------------------------------

// An object whose one method fails, and says why.
struct FailingObject : IDispatch {
  ULONG references = 0;

  HRESULT STDMETHODCALLTYPE QueryInterface(REFIID, void** target) override {
    *target = nullptr;
    return E_NOINTERFACE;
  }
  ULONG STDMETHODCALLTYPE AddRef() override { return ++references; }
  ULONG STDMETHODCALLTYPE Release() override { return --references; }
  HRESULT STDMETHODCALLTYPE GetTypeInfoCount(UINT*) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE GetTypeInfo(UINT, LCID, ITypeInfo**) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE GetIDsOfNames(REFIID, LPOLESTR*, UINT, LCID, DISPID*) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE Invoke(DISPID id, REFIID, LCID, WORD, DISPPARAMS* parameters, VARIANT*, EXCEPINFO* error,
                                   UINT*) override {
    if (id != 7) return DISP_E_MEMBERNOTFOUND;
    error->wCode = static_cast<WORD>(parameters->rgvarg[0].iVal);
    error->bstrSource = SysAllocString(L"printer");
    error->bstrDescription = SysAllocString(L"out of paper");
    return DISP_E_EXCEPTION;
  }
};

namespace {

void use_automation() {
  FailingObject object;
  {
    COleDispatchDriver driver(&object, FALSE);
    static const BYTE parameters[] = VTS_I2;
    try {
      driver.InvokeHelper(7, DISPATCH_METHOD, VT_EMPTY, nullptr, parameters, 1003);
    } catch (COleDispatchException* exception) {
      CString line;
      line.Format("method 7 failed: code %d, %s says '%s'", exception->m_wCode, exception->m_strSource.GetString(),
                  exception->m_strDescription.GetString());
      note(line);
      exception->Delete();
    }
    try {
      driver.InvokeHelper(8, DISPATCH_METHOD, VT_EMPTY, nullptr, nullptr);
    } catch (COleException* exception) {
      CString line;
      line.Format("method 8 failed: %08lX", exception->m_sc);
      note(line);
      exception->Delete();
    }
  }
}

// ---- a document ----------------------------------------------------------------------------------------------------

void store_and_load() {
  CMemFile file;
  {
    CArchive archive(&file, CArchive::store);
    archive << DWORD{3} << 2.5 << short{-1};
    archive.Write("abc", 3);
    archive.Close();
  }
  note(CString("stored bytes: ") + std::to_string(file.GetLength()).c_str());

  file.SeekToBegin();
  CArchive archive(&file, CArchive::load);
  DWORD count;
  double width;
  short offset;
  char text[4] = {};
  archive >> count >> width >> offset;
  archive.Read(text, 3);
  CString line;
  line.Format("loaded: %lu %.1f %d %s", count, width, offset, text);
  note(line);

  try {
    archive << count;
  } catch (CArchiveException* exception) {
    note(CString("writing while loading: cause ") + std::to_string(exception->m_cause).c_str());
    exception->Delete();
  }
  try {
    archive >> count;
  } catch (CArchiveException* exception) {
    note(CString("reading on: cause ") + std::to_string(exception->m_cause).c_str());
    exception->Delete();
  }
}

}  // namespace

int main() {
  report_crashes();
  OleInitialize(nullptr);
  _Module.Init(nullptr, GetModuleHandle(nullptr));
  note(AfxGetApp() == &theApp ? "the application is there" : "no application");

  CMainDialog dialog;
  INT_PTR result = dialog.DoModal(nullptr);
  note(CString("main dialog closed with ") + std::to_string(result).c_str());
  use_automation();
  store_and_load();

  _Module.Term();
  OleUninitialize();
  return 0;
}
