// The main window: the list of the parts, their picture, and the commands.
#ifndef PARTS_LIST_MAIN_WINDOW_H
#define PARTS_LIST_MAIN_WINDOW_H

#include <kexlib/controls.h>
#include <kexlib/imaging.h>
#include <kexlib/messageloop.h>

#include <atlwin.h>

#include <parts_list/parts.h>
#include <parts_list/parts_picture.h>
#include <parts_list/resources.h>

#include <string>
#include <vector>

namespace parts_list {

class MainWindow : public ATL::CDialogImpl<MainWindow> {
 public:
  enum { IDD = IDD_MAIN };

  // `folder` is the project's folder.
  explicit MainWindow(std::string folder) : folder_(std::move(folder)) {}

  BEGIN_MSG_MAP(MainWindow)
    MESSAGE_HANDLER(WM_INITDIALOG, OnInitDialog)
    MESSAGE_HANDLER(WM_CLOSE, OnClose)
    MESSAGE_HANDLER(WM_DESTROY, OnDestroy)
    COMMAND_ID_HANDLER(IDCANCEL, OnCancel)
    COMMAND_ID_HANDLER(IDC_ADD, OnAdd)
    COMMAND_ID_HANDLER(IDC_SAVE_PICTURE, OnSavePicture)
    COMMAND_HANDLER(IDC_UNIT, CBN_SELCHANGE, OnUnit)
    COMMAND_ID_HANDLER(ID_DUPLICATE, OnDuplicate)
    COMMAND_ID_HANDLER(ID_REMOVE, OnRemove)
    COMMAND_ID_HANDLER(ID_COMPONENTS, OnComponents)
    COMMAND_ID_HANDLER(ID_TRACE, OnTrace)
    REFLECT_NOTIFICATIONS()
  END_MSG_MAP()

 private:
  // Moves the progress bar while a picture is saved.
  class Ticker : public CATLWindowLessTimer {
   public:
    explicit Ticker(MainWindow& window) : window_(window) {}
    void OnTimerTick() override { window_.GetDlgItem(IDC_PROGRESS).SendMessage(PBM_STEPIT); }

   private:
    MainWindow& window_;
  };

  // Shows the picture of the parts.
  class PictureView : public ATL::CWindowImpl<PictureView> {
   public:
    void show(const std::vector<Part>& parts);

    BEGIN_MSG_MAP(PictureView)
      MESSAGE_HANDLER(WM_PAINT, OnPaint)
    END_MSG_MAP()

   private:
    LRESULT OnPaint(UINT, WPARAM, LPARAM, BOOL&);

    PartsPicture picture_;
  };

  LRESULT OnInitDialog(UINT, WPARAM, LPARAM, BOOL&);
  LRESULT OnClose(UINT, WPARAM, LPARAM, BOOL&);
  LRESULT OnDestroy(UINT, WPARAM, LPARAM, BOOL&);
  LRESULT OnCancel(WORD, WORD, HWND, BOOL&);
  LRESULT OnAdd(WORD, WORD, HWND, BOOL&);
  LRESULT OnSavePicture(WORD, WORD, HWND, BOOL&);
  LRESULT OnUnit(WORD, WORD, HWND, BOOL&);
  LRESULT OnDuplicate(WORD, WORD, HWND, BOOL&);
  LRESULT OnRemove(WORD, WORD, HWND, BOOL&);
  LRESULT OnComponents(WORD, WORD, HWND, BOOL&);
  LRESULT OnTrace(WORD, WORD, HWND, BOOL&);

  bool shows_inches() const { return unit_.GetCurSel() == 1; }
  std::vector<int> selection();
  void reload();
  void fill_list();
  void save_picture(const std::string& path);
  void set_status(const CString& text) { GetDlgItem(IDC_STATUS).SetWindowText(text); }

  const std::string folder_;
  std::vector<Part> parts_;  // in the order of the list
  bool is_saving_ = false;
  WTL::CImageListT<false> images_;
  kexWTLBitmapButton add_;
  atlButtonMenu more_;
  WTL::CListViewCtrl list_;
  WTL::CComboBox unit_;
  PictureView picture_;
  Ticker ticker_{*this};
};

}  // namespace parts_list

#endif
