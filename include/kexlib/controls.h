// Controls: numbers as text, and controls for dialogs.
//
//   bitmap_button.h        a push button with a picture on a themed face
//   button_menu.h          a push button that opens a menu
//   numeric_edit_box.h     an edit control that holds a number
//   numeric_formatting.h   numbers to text and back, in inches and millimetres, with the user's decimal separator
//   step_manager.h         groups of controls, and a procedure of steps
#ifndef KEXLIB_CONTROLS_H
#define KEXLIB_CONTROLS_H

#include <kexlib/controls/bitmap_button.h>
#include <kexlib/controls/button_menu.h>
#include <kexlib/controls/numeric_edit_box.h>
#include <kexlib/controls/numeric_formatting.h>
#include <kexlib/controls/step_manager.h>

#endif
