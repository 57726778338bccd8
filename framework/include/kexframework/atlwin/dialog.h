// Dialogs written in C++: CDialogImpl. Part of <atlwin.h>.
#ifndef FRAMEWORK_ATLWIN_DIALOG_H
#define FRAMEWORK_ATLWIN_DIALOG_H

#include <kexframework/atlwin/window_impl.h>

namespace ATL {

// A dialog procedure over a message map.
template <class TBase = CWindow>
class CDialogImplBaseT : public CWindowImplRoot<TBase> {
 public:
  virtual DLGPROC GetDialogProc() { return DialogProc; }
  // See CWindowImplBaseT::OnFinalMessage.
  virtual void OnFinalMessage(HWND) {}

  // Ends a modal dialog. DoModal returns this result.
  BOOL EndDialog(INT_PTR result) {
    ATLASSERT(this->IsWindow());
    return ::EndDialog(this->m_hWnd, result);
  }

  static INT_PTR CALLBACK StartDialogProc(HWND hWnd, UINT uMsg, WPARAM wParam, LPARAM lParam) {
    auto* self = static_cast<CDialogImplBaseT*>(_AtlCreateWndData::Extract());
    if (!self) return FALSE;
    self->m_hWnd = hWnd;
    self->m_thunk.Init(reinterpret_cast<void*>(self->GetDialogProc()), self);
    auto ours = reinterpret_cast<DLGPROC>(self->m_thunk.GetCodeAddress());
    ::SetWindowLongPtr(hWnd, DWLP_DLGPROC, reinterpret_cast<LONG_PTR>(ours));
    return ours(hWnd, uMsg, wParam, lParam);
  }
  static INT_PTR CALLBACK DialogProc(HWND hWnd, UINT uMsg, WPARAM wParam, LPARAM lParam) {
    auto* self = reinterpret_cast<CDialogImplBaseT*>(hWnd);
    return self->work_on(
        uMsg, wParam, lParam, [=] { return self->handle(uMsg, wParam, lParam); },
        [=](HWND gone) { self->OnFinalMessage(gone); });
  }

 protected:
  // Prepares the procedure and creates the dialog. Returns `failure` if no memory is left.
  template <typename Result, typename MakeDialog>
  Result create(Result failure, MakeDialog make_dialog) {
    ATLASSERT(!this->m_hWnd);
    if (!this->m_thunk.Init(nullptr, nullptr)) {
      SetLastError(ERROR_OUTOFMEMORY);
      return failure;
    }
    _AtlCreateWndData waiting(static_cast<CDialogImplBaseT*>(this));
    return make_dialog(_AtlBaseModule.GetResourceInstance());
  }

 private:
  LRESULT handle(UINT uMsg, WPARAM wParam, LPARAM lParam) {
    LRESULT result = 0;
    BOOL handled = this->ProcessWindowMessage(this->m_hWnd, uMsg, wParam, lParam, result, 0);
    if (uMsg == WM_NCDESTROY) this->m_dwState |= CWindowImplRoot<TBase>::WINSTATE_DESTROYED;
    if (!handled) return FALSE;
    switch (uMsg) {
      // For these messages the result is that of the dialog procedure itself.
      case WM_COMPAREITEM:
      case WM_VKEYTOITEM:
      case WM_CHARTOITEM:
      case WM_INITDIALOG:
      case WM_QUERYDRAGICON:
      case WM_CTLCOLORMSGBOX:
      case WM_CTLCOLOREDIT:
      case WM_CTLCOLORLISTBOX:
      case WM_CTLCOLORBTN:
      case WM_CTLCOLORDLG:
      case WM_CTLCOLORSCROLLBAR:
      case WM_CTLCOLORSTATIC:
        return result;
      default:
        ::SetWindowLongPtr(this->m_hWnd, DWLP_MSGRESULT, result);
        return TRUE;
    }
  }
};

// A dialog T, created from the dialog resource T::IDD in the module's resources.
template <class T, class TBase = CWindow>
class CDialogImpl : public CDialogImplBaseT<TBase> {
 public:
  // Runs the modal dialog. Returns -1 if it cannot be created.
  INT_PTR DoModal(HWND parent = ::GetActiveWindow(), LPARAM parameter = 0) {
    return this->create(INT_PTR{-1}, [=](HINSTANCE resources) {
      return ::DialogBoxParam(resources, dialog_template(), parent, T::StartDialogProc, parameter);
    });
  }
  // Creates a modeless dialog. Returns null if it cannot be created.
  HWND Create(HWND parent, LPARAM parameter = 0) {
    return this->create(HWND{}, [=](HINSTANCE resources) {
      return ::CreateDialogParam(resources, dialog_template(), parent, T::StartDialogProc, parameter);
    });
  }
  // For a modeless dialog. A modal one is ended by EndDialog.
  BOOL DestroyWindow() { return ::DestroyWindow(this->m_hWnd); }

 private:
  static LPCTSTR dialog_template() { return MAKEINTRESOURCE(static_cast<WORD>(T::IDD)); }
};

}  // namespace ATL

#endif
