// MFC's application: its resources.
#ifndef FRAMEWORK_AFXWIN_H
#define FRAMEWORK_AFXWIN_H

#include <afx.h>

// The module that holds a resource.
KEXFRAMEWORK_API HINSTANCE AfxFindResourceHandle(LPCSTR name, LPCSTR type);

#endif
