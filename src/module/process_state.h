// The state that the library keeps for the whole process. All of it is defined in module.cpp, in the order in which it
// is made.
#ifndef KEXLIB_MODULE_PROCESS_STATE_H
#define KEXLIB_MODULE_PROCESS_STATE_H

#include <diagnostics/profiler_state.h>
#include <messageloop/timer_registry.h>
#include <module/common_controls.h>
#include <text/number_texts.h>
#include <windowtools/hwnd_table_state.h>

namespace kexlib::module {

extern ProfilerState profiler;
extern TimerRegistry timers;
extern NumberTexts tip_numbers;
extern HwndTableState hwnd_table;

// The face that the digit control is given.
extern const char digit_font_name[];

extern OwnManifest own_manifest;

// Window messages that programs agree on; the library only sees to it that they are registered.
struct DialogMessages {
  UINT get_template_id;
  UINT get_resource_library;
};
extern const DialogMessages dialog_messages;

// Whether the unloading that is under way ends the process. The other threads are gone then, wherever they were, so
// what they may have been changing (the heap among it) is left alone.
bool process_is_ending();

}  // namespace kexlib::module

#endif
