// Wizard dialog: a wizard of the system's property sheets, with help and data that its pages share.
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
//     NamePage name;
//     PlacePage place;
//     kexWizardDialog wizard("New part", 0, frame);
//     wizard.add_page(name);
//     wizard.add_page(place);
//     wizard.put_user_object(std::make_shared<PartData>());
//     if (wizard.DoModal(frame) > 0) ...               // Finish; 0: Cancel; -1: it could not be made
//
// Give it at least one page: how a sheet without pages can be closed is the system's affair. A run uses the pages up: a
// second one, of the same object, needs them added again.
//
// What it adds to WTL::CPropertySheetImpl: the style (Wizard 97 with Finish on every page, without Apply), a "?" in the
// caption, help for each page by WM_HELP, Arial of 12 points for the sheet itself (its buttons keep their font), its
// place in the middle the first time that it is shown, and its row of buttons: Help, Cancel, Back, Next, Finish, six
// pixels apart, from six pixels to the right of where Back was. That is past the edge of the window for the last of
// them: widen it in OnSheetInitialized2.
//
// Help. F1, or the "?", calls CWinApp::WinHelpInternal of the program with the page's dialog identifier + 0x20000
// and HELP_CONTEXT. Which page that is, is told by its place among those of add_page: where some are added past it, or
// the system refused one, the places differ.
//
// Titles. That of the constructor goes before one that SetTitle gave earlier; a page with a caption of its own puts
// that there when it is shown.
//
// kexlib also registers two window messages when it is loaded, for programs that agree on their meaning:
// "MSG_QZ_GetDialogTemplateID" and "MSG_QZ_GetDialogResLibrary". It neither sends nor handles them.
//
// Threads. For the user-interface thread.
#ifndef KEXLIB_DIALOGS_WIZARD_DIALOG_H
#define KEXLIB_DIALOGS_WIZARD_DIALOG_H

#include <atlstr.h>

#include <atlapp.h>
#include <atldlgs.h>
#include <atlgdi.h>

#include <kexlib/export.h>

#include <memory>
#include <vector>

/// What a wizard has to know of a page; a base of the page's class.
class KEXLIB_API kexWizardPageInfoHolder {
 public:
  /// idd: the identifier of the page's dialog resource, for help.
  explicit kexWizardPageInfoHolder(DWORD idd);

  /// The description that the page is made of; it stays there until add_page returns.
  virtual const PROPSHEETPAGEA* psp() = 0;

  /// Pages may be deleted as what they are here.
  virtual ~kexWizardPageInfoHolder();

  /// The identifier that the constructor was given.
  DWORD idd() const;

 private:
  DWORD m_idd;
};

/// The base of the data that the pages of a wizard share.
class KEXLIB_API kexWizardExchangeBase {
 public:
  /// Deletes what was derived from it.
  virtual ~kexWizardExchangeBase();

 protected:
  /// For derived classes alone.
  kexWizardExchangeBase();
};

/// The wizard. Of its base: DoModal, SetTitle, GetActiveIndex, SetActivePage, PressButton, SetWizardButtons and more.
///
/// Copies share the font, the user object, the pages, and those that wait for DoModal: the first copy that is shown has
/// them. Do not copy one that is shown.
class KEXLIB_API kexWizardDialog : public WTL::CPropertySheetImpl<kexWizardDialog, WTL::CPropertySheetWindow> {
 public:
  /// A wizard that is not there yet. It begins with the page numbered start_page, counted from 0 (what the system makes
  /// of one that is not there is its own affair: the first, say), and belongs to `parent`.
  explicit kexWizardDialog(const CStringA& title = CStringA(), int start_page = 0, HWND parent = nullptr);

  /// With a title from the string resources (CStringA::LoadString), empty where there is none.
  kexWizardDialog(UINT title_id, int start_page, HWND parent);

  /// Copies everything; see the class.
  kexWizardDialog(const kexWizardDialog&);

  /// Copies everything; see the class.
  kexWizardDialog& operator=(const kexWizardDialog&);

  /// Pages that were never shown are let go; the objects given to add_page are not touched.
  ~kexWizardDialog() override;

  /// Adds a page behind the others, to the wizard that is shown too. The object is borrowed, and must outlive the
  /// wizard. A page that the system refuses counts as well.
  void add_page(kexWizardPageInfoHolder& page);

  /// The page of this index, from 0 to get_pages_count() - 1, unchecked.
  const kexWizardPageInfoHolder& get_page(int index) const;

  /// How often add_page was called.
  int get_pages_count() const;

  /// Sets what the pages share, and lets go of what it was before.
  void put_user_object(std::shared_ptr<kexWizardExchangeBase> object);

  /// Gives what the pages share; empty at first.
  void get_user_object(std::shared_ptr<kexWizardExchangeBase>& out);

  /// The icon in the caption, borrowed; before the wizard is shown.
  void set_icon(HICON icon);

  /// The messages of the wizard's window; those of map 0 alone.
  BOOL ProcessWindowMessage(HWND hWnd, UINT uMsg, WPARAM wParam, LPARAM lParam, LRESULT& lResult,
                            DWORD dwMsgMapID = 0) override;

 protected:
  /// Called when the wizard has been prepared and is not shown yet; for derived classes. Does nothing here.
  virtual void OnSheetInitialized2();

 private:
  friend class WTL::CPropertySheetImpl<kexWizardDialog, WTL::CPropertySheetWindow>;

  void init();
  void OnSheetInitialized();
  void make_font();
  void lay_out_buttons();
  void OnHelp();
  void Center();

  CStringA m_title;
  std::shared_ptr<WTL::CFont> m_font;  // null until the wizard is there
  bool m_centered = false;
  std::shared_ptr<kexWizardExchangeBase> m_user_object;
  int m_pages_count = 0;
  std::vector<kexWizardPageInfoHolder*> m_pages;
};

#endif
