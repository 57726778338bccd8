// Text, names and files: helpers for what users read, and walks through folders.
//
//   apply_to_files.h   an operation on every file below a folder
//   test_object_id.h   the name by which an object presents itself to automated tests
//   text_helpers.h     valid file names, the bitness of a product, localised texts
//   tip_name.h         the line that names an object in a tool tip
#ifndef KEXLIB_TEXT_H
#define KEXLIB_TEXT_H

#include <kexlib/text/apply_to_files.h>
#include <kexlib/text/test_object_id.h>
#include <kexlib/text/text_helpers.h>
#include <kexlib/text/tip_name.h>

#endif
