#include <kexlib/diagnostics.h>

#include <atlstr.h>

int main() {
  {
    // The package contains the framework that its users' sources are written on.
    CString name;
    name.Format("%s", "consumer");
    kexProfileScope scope(name.GetString());
    g_traceToFile.Trace("off, so nowhere\n");
  }
  kex_stop_profiling("consumer.js");
}
