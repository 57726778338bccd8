# Checks in our DLLs that end the process: of what the standard library is given, of the stack, and of what C++ leaves
# undefined. The folders of the DLLs' sources use KEXLIB_HARDENING; the tests are compiled without it.
set(KEXLIB_HARDENING -D_GLIBCXX_ASSERTIONS -fstack-protector-strong -fsanitize=undefined -fsanitize-undefined-trap-on-error
                     -fno-sanitize=vptr) # vptr needs a run-time library that mingw-w64 does not have
add_link_options(-fstack-protector-strong) # tests link objects of the library
