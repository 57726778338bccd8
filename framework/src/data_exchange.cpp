#include <afxwin.h>

CDataExchange::CDataExchange(CWnd* dialog, BOOL saveAndValidate)
    : m_bSaveAndValidate(saveAndValidate), m_pDlgWnd(dialog) {}

HWND CDataExchange::PrepareCtrl(int id) {
  HWND control = m_pDlgWnd ? GetDlgItem(m_pDlgWnd->m_hWnd, id) : nullptr;
  if (!control) AfxThrowNotSupportedException();
  return control;
}

void DDX_Check(CDataExchange* exchange, int id, int& value) {
  HWND control = exchange->PrepareCtrl(id);
  if (exchange->m_bSaveAndValidate) {
    value = static_cast<int>(SendMessageA(control, BM_GETCHECK, 0, 0));
    return;
  }
  if (value < BST_UNCHECKED || value > BST_INDETERMINATE) value = BST_UNCHECKED;
  SendMessageA(control, BM_SETCHECK, static_cast<WPARAM>(value), 0);
}
