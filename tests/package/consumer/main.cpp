#include <kexlib/diagnostics.h>

int main() {
  {
    kexProfileScope scope("consumer");
    g_traceToFile.Trace("off, so nowhere\n");
  }
  kex_stop_profiling("consumer.js");
}
