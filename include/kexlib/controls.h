// Controls: numbers as text, and what a dialog is made of.
//
//   numeric_formatting.h   numbers to text and back, in inches and millimetres, with the user's decimal separator
#ifndef KEXLIB_CONTROLS_H
#define KEXLIB_CONTROLS_H

#include <kexlib/controls/numeric_formatting.h>

#endif
