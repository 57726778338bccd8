// The parts of a project: each is a text file, NAME.part, below the project's folder, with its length in millimetres.
#ifndef PARTS_LIST_PARTS_H
#define PARTS_LIST_PARTS_H

#include <kexlib/framework.h>

#include <string>
#include <vector>

namespace parts_list {

struct Part {
  CString name;  // a valid file name
  double millimetres = 0;
};

// All parts of the files below a folder, sorted by name.
std::vector<Part> load_parts(const std::string& folder);

// Writes the part's file into the folder. Returns false if it cannot be written.
bool save_part(const std::string& folder, const Part& part);

// Deletes the part's file.
void remove_part(const std::string& folder, const Part& part);

// The name with the characters replaced that no file name may have, and without blanks at its ends.
CString valid_name(CString name);

// A name that no part has yet: "NAME", "NAME (2)", "NAME (3)" ...
CString unused_name(const std::vector<Part>& parts, const CString& name);

}  // namespace parts_list

#endif
