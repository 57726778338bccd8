#include <windows.h>

#include <support/files.h>

#include <algorithm>
#include <atomic>
#include <fstream>
#include <iterator>

namespace fs = std::filesystem;

TemporaryFolder::TemporaryFolder() : previous_(fs::current_path()) {
  static std::atomic<int> count{0};
  // Process ids are reused, and a terminated process leaves its folders: the folder must be a new one.
  do {
    path_ =
        fs::temp_directory_path() / ("kexlib_" + std::to_string(GetCurrentProcessId()) + "_" + std::to_string(++count));
  } while (!fs::create_directory(path_));
  fs::current_path(path_);
}

TemporaryFolder::~TemporaryFolder() {
  fs::current_path(previous_);
  std::error_code ignored;
  fs::remove_all(path_, ignored);
}

std::string read_file(const fs::path& path) {
  std::ifstream stream(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(stream), {}};
}

void write_file(const fs::path& path, const std::string& bytes) { std::ofstream(path, std::ios::binary) << bytes; }

std::vector<std::string> files_in(const fs::path& folder) {
  std::vector<std::string> names;
  for (const fs::directory_entry& entry : fs::directory_iterator(folder))
    names.push_back(entry.path().filename().string());
  std::sort(names.begin(), names.end());
  return names;
}

std::string without_carriage_returns(std::string text) {
  // Records of a busy machine have megabytes: each character moves once at most.
  std::size_t kept = 0;
  for (std::size_t at = 0; at < text.size(); ++at)
    if (text.compare(at, 2, "\r\n") != 0) text[kept++] = text[at];
  text.resize(kept);
  return text;
}

fs::path program_folder() {
  wchar_t path[MAX_PATH];
  GetModuleFileNameW(nullptr, path, MAX_PATH);
  return fs::path(path).parent_path();
}
