// Construction of a module's objects when it is loaded, and their release when it is unloaded.
#include "runtime.h"

extern "C" {

// The compiler puts pointers to initialisers into sections named between these, and the linker sorts them: first the C
// initialisers, which may fail, then the constructors of C++.
using FailingProcedure = int(__cdecl*)();
#pragma section(".CRT$XIA", long, read)
#pragma section(".CRT$XIZ", long, read)
#pragma section(".CRT$XCA", long, read)
#pragma section(".CRT$XCZ", long, read)
__declspec(allocate(".CRT$XIA")) FailingProcedure first_initialiser[] = {nullptr};
__declspec(allocate(".CRT$XIZ")) FailingProcedure last_initialiser[] = {nullptr};
__declspec(allocate(".CRT$XCA")) Procedure first_constructor[] = {nullptr};
__declspec(allocate(".CRT$XCZ")) Procedure last_constructor[] = {nullptr};

// The C library's own tables.
struct ExitTable {
  Procedure *first, *last, *end;
};
int __cdecl _initialize_onexit_table(ExitTable*);
int __cdecl _register_onexit_function(ExitTable*, FailingProcedure);
int __cdecl _execute_onexit_table(ExitTable*);
void __cdecl _initterm(Procedure*, Procedure*);
int __cdecl _initterm_e(FailingProcedure*, FailingProcedure*);

// Made ready before the first object registers its destructor.
static ExitTable exit_table;

// Destructors of static objects come here too. They belong to the module, not to the process.
int __cdecl atexit(Procedure procedure) {
  return _register_onexit_function(&exit_table, reinterpret_cast<FailingProcedure>(procedure));
}

bool construct_objects() {
  if (_initialize_onexit_table(&exit_table) != 0) return false;
  if (_initterm_e(first_initialiser, last_initialiser) != 0) return false;
  _initterm(first_constructor, last_constructor);
  return true;
}

void destroy_objects() { _execute_onexit_table(&exit_table); }

// A module that uses floating numbers asks for this name.
int _fltused = 0x9875;
}
