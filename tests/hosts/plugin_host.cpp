// Loads, runs and frees the plug-in three times. Does not itself use kexlib.
#include <windows.h>

#include <cstdio>

int main() {
  for (int round = 1; round <= 3; ++round) {
    const HMODULE plugin = LoadLibraryA("kexlib_plugin.dll");
    if (!plugin) return 1;
    if (!GetModuleHandleA("kexlib.dll")) return 2;
    reinterpret_cast<void (*)()>(reinterpret_cast<void*>(GetProcAddress(plugin, "run_plugin")))();
    if (!FreeLibrary(plugin)) return 3;
    if (GetModuleHandleA("kexlib.dll")) return 4;
    char name[32];
    std::snprintf(name, sizeof name, "round %d.js", round);
    if (!MoveFileA("profiler.js", name)) return 5;
  }
  return 0;
}
