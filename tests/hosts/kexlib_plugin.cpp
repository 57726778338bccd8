// A plug-in that is the only user of kexlib in its program: when it is freed, kexlib is unloaded.
#include <kexlib/diagnostics.h>

extern "C" __declspec(dllexport) void run_plugin() {
  CTraceToFile::SetTraceMode(CTraceToFile::TraceToFile);
  g_traceToFile.Trace("plug-in\n");
  kexProfileScope scope("plug-in");
}
