#include <kexlib/diagnostics.h>
#include <kexlib/text.h>

#include <parts_list/parts.h>

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <fstream>

namespace parts_list {

namespace {

// Reads each file that the walk finds.
class PartFiles final : public kexApplyToFiles {
 public:
  std::vector<Part> parts;

  void apply_to_file(char* path) override {
    kexProfileScope scope("read a part");
    Part part;
    part.name = std::filesystem::path(path).stem().string().c_str();
    if (std::ifstream(path) >> part.millimetres)
      parts.push_back(part);
    else
      g_traceToFile.Trace("%s has no length\n", path);
  }
};

std::string file_of(const std::string& folder, const Part& part) {
  return folder + "\\" + part.name.GetString() + ".part";
}

}  // namespace

std::vector<Part> load_parts(const std::string& folder) {
  kexProfileScope scope("load the parts");
  PartFiles files;
  files.Apply(folder.c_str(), "*.part", 0);
  std::sort(files.parts.begin(), files.parts.end(),
            [](const Part& a, const Part& b) { return a.name.CompareNoCase(b.name) < 0; });
  return files.parts;
}

bool save_part(const std::string& folder, const Part& part) {
  kexProfileScope scope("save a part");
  std::ofstream file(file_of(folder, part));
  file << part.millimetres << '\n';
  file.close();
  g_traceToFile.Trace("%s: %g mm%s\n", part.name.GetString(), part.millimetres, file ? "" : ", which was not written");
  return !file.fail();
}

void remove_part(const std::string& folder, const Part& part) {
  g_traceToFile.Trace("%s: removed\n", part.name.GetString());
  std::remove(file_of(folder, part).c_str());
}

CString valid_name(CString name) {
  kex_replace_forbidden_symbols_strict(name, '_');
  name.Trim();
  return name;
}

CString unused_name(const std::vector<Part>& parts, const CString& name) {
  const auto is_used = [&](const CString& wanted) {
    return std::any_of(parts.begin(), parts.end(),
                       [&](const Part& part) { return part.name.CompareNoCase(wanted) == 0; });
  };
  CString wanted = name;
  for (int count = 2; is_used(wanted); ++count) wanted.Format("%s (%d)", name.GetString(), count);
  return wanted;
}

}  // namespace parts_list
