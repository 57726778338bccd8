#include <kexlib/diagnostics.h>

#include <atlstr.h>

int main() {
  {
    // The package carries what its users' sources are written on, too.
    CString name;
    name.Format("%s", "consumer");
    kexProfileScope scope(name.GetString());
    g_traceToFile.Trace("off, so nowhere\n");
  }
  kex_stop_profiling("consumer.js");
}
