// The wizard that asks for a new part: its name, its length in millimetres or inches, and a summary.
#ifndef PARTS_LIST_PART_WIZARD_H
#define PARTS_LIST_PART_WIZARD_H

#include <parts_list/parts.h>

#include <optional>

namespace parts_list {

// Runs the wizard over the window `owner`. `part` has what the pages show at first. Returns the part that the user has
// described, or nothing if the wizard was cancelled.
std::optional<Part> ask_for_part(HWND owner, const Part& part);

// "12.50 mm" or "0.492 in".
CString length_text(double millimetres, bool in_inches);

}  // namespace parts_list

#endif
