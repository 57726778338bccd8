// Wizard dialog: a wizard-style property sheet with context help and with data that its pages share.
//
//     struct PartData : kexWizardExchangeBase { CStringA name; };
//
//     class NamePage : public WTL::CPropertyPageImpl<NamePage>, public kexWizardPageInfoHolder {
//      public:
//       enum { IDD = IDD_NAME };
//       NamePage() : kexWizardPageInfoHolder(IDD) {}
//       const PROPSHEETPAGEA* psp() override { return &m_psp; }
//       ...
//     };
//
//     class PartWizard : public kexWizardDialog {        // wide enough for its row of buttons
//      public:
//       using kexWizardDialog::kexWizardDialog;
//
//      protected:
//       void OnSheetInitialized2() override {
//         RECT window, finish;
//         GetWindowRect(&window);
//         GetDlgItem(ID_WIZFINISH).GetWindowRect(&finish);             // <afxres.h>
//         SetWindowPos(nullptr, 0, 0, finish.right + 12 - window.left, window.bottom - window.top,
//                      SWP_NOMOVE | SWP_NOZORDER);
//       }
//     };
//
//     NamePage name;
//     PlacePage place;
//     PartWizard wizard("New part", 0, frame);
//     wizard.add_page(name);
//     wizard.add_page(place);
//     wizard.put_user_object(std::make_shared<PartData>());
//     if (wizard.DoModal(frame) > 0) ...               // Finish; 0: Cancel; -1: it could not be created
//
// A wizard needs at least one page: whether a sheet without pages can be closed is unspecified. DoModal consumes the
// pages: add them again before a second run of the same object.
//
// It adds to WTL::CPropertySheetImpl:
//   - the style: Wizard 97 with Finish on every page and without Apply, and a "?" in the caption
//   - context help for each page (WM_HELP)
//   - Arial of 12 points for the sheet itself; its buttons keep their font
//   - centring when it is shown for the first time
//   - the order of the buttons: Help, Cancel, Back, Next, Finish, with gaps of 6 pixels, beginning 6 pixels to the
//     right of the place of Back. The last ones are outside the window: widen it in OnSheetInitialized2, as above
//
// Finish. The button stands on every page; SetWizardButtons in OnSetActive enables it where the user may finish. Which
// button the Enter key presses is the system's choice and is not documented: it may be Finish on any page. So each page
// checks its input in OnWizardFinish too, or reads it in OnKillActive.
//
// Help. F1 and the "?" call CWinApp::WinHelpInternal of the program with the page's dialog identifier + 0x20000 and
// HELP_CONTEXT. The page is found by its index among those of add_page: pages that are added past it, or refused by the
// system, shift the index.
//
// Titles. The title of the constructor replaces one that SetTitle set before DoModal. A page that has a caption sets it
// when it is shown.
//
// Messages. When kexlib is loaded it registers "MSG_QZ_GetDialogTemplateID" and "MSG_QZ_GetDialogResLibrary"
// (RegisterWindowMessageA), whose meaning applications define. It neither sends nor handles them.
//
// Errors. Calls that the system refuses are not reported, except by DoModal. Out of memory throws MFC's memory
// exception or std::bad_alloc; while the sheet initialises it ends the program, as any exception that leaves
// OnSheetInitialized2 does: the system's frames are between it and DoModal.
//
// Threads. Call on the user-interface thread.
#ifndef KEXLIB_DIALOGS_WIZARD_DIALOG_H
#define KEXLIB_DIALOGS_WIZARD_DIALOG_H

#include <kexlib/export.h>
#include <kexlib/framework.h>

#include <atlapp.h>
#include <atldlgs.h>
#include <atlgdi.h>

#include <memory>
#include <vector>

/// The wizard's view of a page; a base of the page's class.
class KEXLIB_API kexWizardPageInfoHolder {
 public:
  /// idd: the identifier of the page's dialog resource, for help.
  explicit kexWizardPageInfoHolder(DWORD idd);

  /// The description of the page, valid at least until add_page returns.
  virtual const PROPSHEETPAGEA* psp() = 0;

  /// Pages may be deleted through this base.
  virtual ~kexWizardPageInfoHolder();

  /// The identifier that the constructor was given.
  DWORD idd() const;

 private:
  DWORD idd_;
};

/// The base of the data that the pages of a wizard share.
class KEXLIB_API kexWizardExchangeBase {
 public:
  /// The shared data may be deleted through this base.
  virtual ~kexWizardExchangeBase();

 protected:
  /// For derived classes.
  kexWizardExchangeBase();
};

/// The wizard. Of its base: DoModal, SetTitle, GetActiveIndex, SetActivePage, PressButton, SetWizardButtons and more.
///
/// Copies share the font, the user object and the page objects. A copy has page handles of its own for DoModal, made
/// anew from the page objects whose pages its source has not shown yet (psp); pages that AddPage added without a page
/// object are not copied. A copy has no window. Do not assign to a wizard that is shown.
class KEXLIB_API kexWizardDialog : public WTL::CPropertySheetImpl<kexWizardDialog, WTL::CPropertySheetWindow> {
 public:
  /// Stores the settings; DoModal creates the window.
  ///   title       the caption
  ///   start_page  index of the first page to show, from 0; unspecified if there is no such page
  ///   parent      owner window; may be null
  kexWizardDialog(const CStringA& title = CStringA(), int start_page = 0, HWND parent = nullptr);

  /// As above, with a title from the string resources (CStringA::LoadString); empty if the resource is missing.
  kexWizardDialog(UINT title_id, int start_page, HWND parent);

  /// See the class.
  kexWizardDialog(const kexWizardDialog& other);

  /// See the class. Destroys the pages that this wizard has not shown.
  kexWizardDialog& operator=(const kexWizardDialog& other);

  /// Destroys pages that were never shown. The objects given to add_page are not accessed.
  ~kexWizardDialog() override;

  /// Appends a page, also to a wizard that is shown. The object is borrowed and must outlive the wizard. A page that
  /// the system refuses counts as well.
  void add_page(kexWizardPageInfoHolder& page);

  /// The page of an index from 0 to get_pages_count() - 1. The index is not checked.
  const kexWizardPageInfoHolder& get_page(int index) const;

  /// The number of add_page calls.
  int get_pages_count() const;

  /// The data that the pages share; empty at first. Setting it releases the previous object.
  void put_user_object(std::shared_ptr<kexWizardExchangeBase> object);
  /// Stores the shared data in `out`.
  void get_user_object(std::shared_ptr<kexWizardExchangeBase>& out);

  /// Sets the icon of the caption, which is borrowed. Call it before DoModal.
  void set_icon(HICON icon);

  /// WM_HELP calls help, WM_SHOWWINDOW centres the first time; WTL handles the rest. Message maps other than 0 handle
  /// nothing.
  BOOL ProcessWindowMessage(HWND hWnd, UINT uMsg, WPARAM wParam, LPARAM lParam, LRESULT& lResult,
                            DWORD dwMsgMapID = 0) override;

 protected:
  /// Called at the end of the initialisation, before the wizard is shown. Derived classes override it; the base does
  /// nothing.
  virtual void OnSheetInitialized2();

 private:
  friend class WTL::CPropertySheetImpl<kexWizardDialog, WTL::CPropertySheetWindow>;

  void init();
  void OnSheetInitialized() noexcept;
  void make_font();
  void lay_out_buttons();
  void OnHelp();
  void Center();

  CStringA title_;
  std::shared_ptr<WTL::CFont> font_;  // null until the sheet is initialised
  bool centered_ = false;
  std::shared_ptr<kexWizardExchangeBase> user_object_;
  int pages_count_ = 0;
  std::vector<kexWizardPageInfoHolder*> pages_;
  std::vector<kexWizardPageInfoHolder*> not_shown_;  // those of pages_ that the base has handles for
};

#endif
