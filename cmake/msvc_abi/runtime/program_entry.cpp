// Where Windows enters a program.
#include <windows.h>
#include <stdlib.h>

#include "runtime.h"

int main(int, char**);

extern "C" {

int __cdecl _configure_narrow_argv(int);
int __cdecl _initialize_narrow_environment();
int* __cdecl __p___argc();
char*** __cdecl __p___argv();
void __cdecl _set_app_type(int);
int __cdecl _crt_atexit(Procedure);

int mainCRTStartup() {
  _set_app_type(1);  // a console program: assertions and abort write to the console
  _configure_narrow_argv(1);
  _initialize_narrow_environment();
  _crt_atexit(destroy_objects);
  if (!construct_objects()) return 255;
  exit(main(*__p___argc(), *__p___argv()));
}
}
