#include <windows.h>

#include <support/child_process.h>
#include <support/files.h>

unsigned run_program(const std::string& name, const std::string& arguments) {
  std::string command = "\"" + (program_folder() / name).string() + "\" " + arguments;
  STARTUPINFOA startup{};
  startup.cb = sizeof startup;
  PROCESS_INFORMATION process;
  if (!CreateProcessA(nullptr, command.data(), nullptr, nullptr, FALSE, 0, nullptr, nullptr, &startup, &process))
    return GetLastError();
  DWORD code = program_hangs;
  if (WaitForSingleObject(process.hProcess, 30000) == WAIT_OBJECT_0)
    GetExitCodeProcess(process.hProcess, &code);
  else
    TerminateProcess(process.hProcess, program_hangs);
  CloseHandle(process.hThread);
  CloseHandle(process.hProcess);
  return code;
}
