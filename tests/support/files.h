// Files and folders of a test's own.
#ifndef TESTS_SUPPORT_FILES_H
#define TESTS_SUPPORT_FILES_H

#include <filesystem>
#include <string>
#include <vector>

// A new folder, which is the current one while the object lives. The destructor removes it.
class TemporaryFolder {
 public:
  TemporaryFolder();
  ~TemporaryFolder();
  TemporaryFolder(const TemporaryFolder&) = delete;
  TemporaryFolder& operator=(const TemporaryFolder&) = delete;

  const std::filesystem::path& path() const { return path_; }

 private:
  std::filesystem::path path_;
  std::filesystem::path previous_;
};

// The bytes of a file as they are, CR LF and all.
std::string read_file(const std::filesystem::path& path);

void write_file(const std::filesystem::path& path, const std::string& bytes);

// The names of the files in a folder, sorted.
std::vector<std::string> files_in(const std::filesystem::path& folder);

// CR LF becomes "\n". Use it only where another test asserts the line ends.
std::string without_carriage_returns(std::string text);

// The folder of the running program.
std::filesystem::path program_folder();

#endif
