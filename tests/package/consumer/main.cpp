// A program of somebody else's: it uses the library, the framework and each companion whose headers come with the
// library. Prints whether it has the manifest for the common controls.
#include <kexlib/controls.h>
#include <kexlib/diagnostics.h>

#include <bzbase/string.h>
#include <pvwnd/window_dib.h>
#include <rqgfx/duct_image.h>
#include <wbzframe/themer.h>

#include <cstdio>

namespace {

// An exception that is thrown in one module and caught in another.
bool refuses_an_unknown_file() {
  try {
    CFile file("no such file", CFile::modeRead);
  } catch (CFileException* exception) {
    exception->Delete();
    return true;
  }
  return false;
}

// Only a button of version 6 answers the message, and a program has that version by its manifest.
bool has_the_manifest() {
  const HWND button = CreateWindowA("BUTTON", "text", WS_POPUP, 0, 0, 50, 20, nullptr, nullptr, nullptr, nullptr);
  SIZE size{};
  const LRESULT answer = SendMessageA(button, BCM_GETIDEALSIZE, 0, reinterpret_cast<LPARAM>(&size));
  DestroyWindow(button);
  return answer && size.cx > 0;
}

}  // namespace

int main() {
  {
    CString name;
    name.Format("%s", "consumer");
    kexProfileScope scope(name.GetString());
    g_traceToFile.Trace("off, so nowhere\n");
  }
  kex_stop_profiling("consumer.js");

  kexNumericEditBox box;
  box.set_value(2.5);
  pvDIBStatus made = pvDIB_failed;
  const pvWindowDIB bitmap(8, 8, pvDIB_default, made, nullptr);
  const bzString text("text");
  std::puts(has_the_manifest() ? "with manifest" : "without manifest");
  return box.get_value() == 2.5 && made == pvDIB_made && text.length() == 4 && refuses_an_unknown_file() ? 0 : 1;
}
