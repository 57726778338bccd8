// For the source of an extension DLL that has its DllMain, and for no other: the real header has code that a DLL may
// have once. So there is no guard.
//
//     static AFX_EXTENSION_MODULE extension;
//
//     extern "C" BOOL WINAPI DllMain(HINSTANCE module, DWORD reason, LPVOID) {
//       if (reason == DLL_PROCESS_ATTACH) return AfxInitExtensionModule(extension, module);
//       if (reason == DLL_PROCESS_DETACH) AfxTermExtensionModule(extension);
//       return TRUE;
//     }
//
// A DLL with resources, or with classes that the program finds by name, also makes a `new CDynLinkLibrary(extension)`.
#if !defined(_AFXEXT)
#error "afxdllx.h is for extension DLLs, which are built with _AFXEXT"
#endif
#include <afxwin.h>
