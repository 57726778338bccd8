// An application as its developer writes it on ATL, WTL and MFC: a dialog with a message map, an edit box that accepts
// digits only, a button that handles its own click, a sheet of settings, an automation object that fails, and a
// document that is stored and loaded again. It operates itself and records what happened in transcript.txt, a line
// each.
#define _WTL_NO_AUTOMATIC_NAMESPACE  // WTL's names need their namespace: MFC has the same ones

#include <afxdisp.h>
#include <afxwin.h>
#include <atlbase.h>
#include <atlhost.h>
#include <atlapp.h>
#include <atlctrls.h>
#include <atlctrlx.h>
#include <atldlgs.h>
#include <atlmisc.h>

#include <framework/sample_application.h>
#include <support/crash_report.h>

#include <cstdlib>
#include <set>
#include <string>

WTL::CAppModule _Module;

// Without a main window the application ends when its dialog does.
class HostApp : public CWinApp {
 public:
  BOOL InitInstance() override;
} theApp;

namespace {

void note(CString line) {
  static CFile transcript("transcript.txt", CFile::modeCreate | CFile::modeWrite);
  line.AppendChar('\n');
  transcript.Write(line.GetString(), static_cast<UINT>(line.GetLength()));
}

// ---- windows -------------------------------------------------------------------------------------------------------

// Accepts digits only.
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

// The answers of the pages are those of both WTL 9.1 and 10: a handler that agrees returns the answer of the base.
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
  int OnApply() {
    m_settings.name = text(IDC_NAME);
    return CSettingsPage::OnApply();
  }
};

class CSizePage : public CSettingsPage<CSizePage> {
 public:
  enum { IDD = IDD_SIZE };
  using CSettingsPage::CSettingsPage;

  BEGIN_MSG_MAP(CSizePage)
    CHAIN_MSG_MAP(WTL::CPropertyPageImpl<CSizePage>)
  END_MSG_MAP()

  // A size is a number: the page refuses anything else.
  BOOL OnKillActive() {
    bool good = atoi(text(IDC_WIDTH)) > 0;
    note(CString("size page left with '") + text(IDC_WIDTH) + (good ? "'" : "': refused"));
    return good ? CSettingsPage::OnKillActive() : !CSettingsPage::OnKillActive();
  }
  int OnApply() {
    m_settings.size = atoi(text(IDC_WIDTH));
    return CSettingsPage::OnApply();
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

  // The user's actions, one step at a time.
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
    show_pin();
    GetDlgItem(IDC_SETTINGS).SendMessage(BM_CLICK);
    GetDlgItem(IDOK).PostMessage(BM_CLICK);
    return 0;
  }

  LRESULT OnSettings(WORD, WORD, HWND, BOOL&) {
    Settings settings;
    CNamePage name(settings);
    CSizePage size(settings);
    CString title;
    title.LoadString(_Module.GetResourceInstance(), IDS_TITLE);
    CSettingsSheet sheet(title.GetString(), 0, m_hWnd);
    sheet.m_psh.dwFlags |= PSH_NOAPPLYNOW;
    sheet.AddPage(name);
    sheet.AddPage(size);
    INT_PTR result = sheet.DoModal();
    CString line;
    line.Format("settings closed with %d: name %s, size %d", static_cast<int>(result), settings.name.GetString(),
                settings.size);
    note(line);
    show_overview();
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

  // A sheet without handlers, which does not affect the dialog.
  void show_overview() {
    WTL::CPropertySheet overview("Overview", 0, m_hWnd);
    WTL::CPropertyPage<IDD_NAME> page("Name of the settings");
    overview.AddPage(page.Create());
    note(overview.Create() ? "overview shown" : "no overview");
    overview.DestroyWindow();
  }

  // A button with pictures that stays pressed.
  void show_pin() {
    RECT place{5, 45, 29, 69};
    m_pin.SetImages(0);
    m_pin.Create(m_hWnd, place, "Pin");
    m_pin.SetCheck(true);
    POINT corner{};
    m_pin.ClientToScreen(&corner);
    ScreenToClient(&corner);
    CString line;
    line.Format("pin at %ld, %ld: %s", corner.x, corner.y, m_pin.GetCheck() ? "down" : "up");
    note(line);
  }
  static HIMAGELIST pin_images() {
    WTL::CImageList images;
    images.Create(24, 24, ILC_COLOR32, 1, 1);
    return images.Detach();
  }

  CDigitEdit m_amount;
  CLampButton m_lamp;
  WTL::CBitmapButton m_pin{BMPBTN_CHECK, pin_images()};
};

}  // namespace

// ---- automation ----------------------------------------------------------------------------------------------------

// An object with one method, which fails with an error text.
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
  } catch (CException* exception) {
    char message[200];
    exception->GetErrorMessage(message, sizeof message);
    note(CString("reading on: ") + message);
    exception->Delete();
  }
}

// ---- a picture -----------------------------------------------------------------------------------------------------

HFONT bold_font() {
  WTL::CLogFont description(static_cast<HFONT>(GetStockObject(DEFAULT_GUI_FONT)));
  description.SetBold();
  WTL::CFont font(description.CreateFontIndirect());
  return font.Detach();
}

// Draws a framed label off screen, and copies it.
void draw_label() {
  WTL::CClientDC screen(nullptr);
  WTL::CDC drawing;
  drawing.CreateCompatibleDC(screen);
  WTL::CBitmap bitmap;
  bitmap.CreateCompatibleBitmap(screen, 200, 40);
  HBITMAP previous = drawing.SelectBitmap(bitmap);

  CRect label(0, 0, 200, 40);
  drawing.FillRect(label, static_cast<HBRUSH>(GetStockObject(BLACK_BRUSH)));
  label.DeflateRect(3, 3);
  label.InflateRect(1, 1);
  drawing.FillRect(label, static_cast<HBRUSH>(GetStockObject(WHITE_BRUSH)));

  WTL::CFont font;
  font = bold_font();
  CRect shadow = label;
  shadow.OffsetRect(1, 1);
  HFONT previous_font = drawing.SelectFont(font);
  drawing.SetBkMode(TRANSPARENT);
  for (const auto& [place, color] : {std::pair{shadow, RGB(160, 160, 160)}, std::pair{label, RGB(200, 0, 0)}}) {
    drawing.SetTextColor(color);
    drawing.TextOut(place.left, place.top, "Label");
  }
  drawing.SelectFont(previous_font);

  WTL::CDC copying;
  copying.CreateCompatibleDC(screen);
  WTL::CBitmap copy;
  copy.CreateCompatibleBitmap(screen, label.Size().cx, label.Size().cy);
  HBITMAP previous_copy = copying.SelectBitmap(copy);
  copying.BitBlt(0, 0, label.Size().cx, label.Size().cy, drawing, label.left, label.top, SRCCOPY);
  CString line;
  line.Format("label of %ld x %ld: frame %06lX, inside %06lX", label.Size().cx, label.Size().cy,
              GetPixel(drawing, 1, 1), GetPixel(copying, 195, 35));
  note(line);
  const CPoint middle = label.CenterPoint();
  const bool is_aside = middle != CPoint(100, 20) || label != CRect(2, 2, 198, 38);
  note(label.PtInRect(middle) && !is_aside ? "in the middle" : "aside");
  copying.SelectBitmap(previous_copy);
  drawing.SelectBitmap(previous);
}

}  // namespace

namespace {

// ---- resources and texts -------------------------------------------------------------------------------------------

void use_resource_library() {
  HINSTANCE shell = LoadLibrary("shell32.dll");
  CDynLinkLibrary library(shell, shell);
  bool found = AfxFindResourceHandle(MAKEINTRESOURCE(1), RT_VERSION) == library.m_hModule;
  note(found ? "version found in the library" : "no version");
}

void sort_names() {
  CString initials;
  for (const CString& name : std::set<CString>{"pear", "apple", "plum"}) initials += name.Left(2);
  note("sorted: " + initials);
  note(CComBSTR("pear") == CComBSTR(L"pear") ? "a pear is a pear" : "different pears");
}

void use_optional_control() {
  ATL::CAxWindow viewer;
  HWND made = viewer.Create(HWND_MESSAGE, nullptr, "{00000000-1111-2222-3333-444444444444}", WS_POPUP);
  note(made ? "viewer shown" : "no viewer installed");
}

}  // namespace

BOOL HostApp::InitInstance() {
  OleInitialize(nullptr);
  _Module.Init(nullptr, AfxGetInstanceHandle());
  note(AfxGetApp() == &theApp ? "the application is there" : "no application");

  CMainDialog dialog;
  INT_PTR result = dialog.DoModal(nullptr);
  note(CString("main dialog closed with ") + std::to_string(result).c_str());
  use_automation();
  store_and_load();
  draw_label();
  use_resource_library();
  sort_names();
  use_optional_control();

  _Module.Term();
  OleUninitialize();
  return TRUE;
}

int main() {
  report_crashes();
  if (!AfxWinInit(GetModuleHandle(nullptr), nullptr, GetCommandLine(), SW_SHOWNORMAL)) return 1;
  if (!theApp.InitInstance()) return theApp.ExitInstance();
  return theApp.Run();
}
