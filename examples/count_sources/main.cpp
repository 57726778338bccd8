// Counts the lines of every source file below a folder, on two threads, and profiles the work.
//
//     count_sources FOLDER
//
// Two threads profile the reading and counting of each file. Stopping the first pass writes "counting.js". The second
// pass is not stopped: unloading the library writes "profiler.js". The trace file receives a line for each folder.
#include <kexlib/diagnostics.h>

#include <algorithm>
#include <atomic>
#include <cstdio>
#include <exception>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <map>
#include <string>
#include <thread>
#include <vector>

namespace fs = std::filesystem;

namespace {

struct Folder {
  std::string name;
  std::vector<fs::path> files;
  std::ptrdiff_t lines = 0;
};

bool is_source(const fs::path& file) {
  static const std::vector<fs::path> extensions = {".cpp", ".h",  ".rc", ".cmake", ".txt",
                                                   ".md",  ".py", ".sh", ".ts",    ".tsx"};
  return std::find(extensions.begin(), extensions.end(), file.extension()) != extensions.end();
}

std::vector<Folder> find_folders(const fs::path& root) {
  kexProfileScope scope("find files");
  std::map<std::string, Folder> folders;
  for (fs::recursive_directory_iterator at(root), end; at != end; ++at) {
    const fs::path name = at->path().filename();
    if (name == "build" || name == "node_modules" || name == ".git") {
      at.disable_recursion_pending();
    } else if (at->is_regular_file() && is_source(name)) {
      const std::string folder = fs::relative(at->path().parent_path(), root).generic_string();
      folders[folder].files.push_back(at->path());
    }
  }
  std::vector<Folder> result;
  for (auto& [name, folder] : folders) result.emplace_back(std::move(folder)).name = name;
  return result;
}

std::ptrdiff_t count_lines(const fs::path& file) {
  kexProfileScope scope(file.filename().string());

  kex_begin_block("read");
  std::ifstream stream(file, std::ios::binary);
  const std::string text{std::istreambuf_iterator<char>(stream), {}};
  kex_end_block();

  kex_begin_block("count");
  const std::ptrdiff_t lines = std::count(text.begin(), text.end(), '\n');
  kex_end_block();
  return lines;
}

// Two threads process one folder after the other.
void count(std::vector<Folder>& folders) {
  std::atomic<std::size_t> next{0};
  const auto work = [&] {
    for (std::size_t i; (i = next++) < folders.size();) {
      kexProfileScope scope(folders[i].name);
      for (const fs::path& file : folders[i].files) folders[i].lines += count_lines(file);
    }
  };
  kexProfileScope scope("count");
  std::thread helper(work);
  work();
  helper.join();
}

void count_twice(const fs::path& root) {
  CTraceToFile::SetTraceMode(CTraceToFile::TraceToFile);

  kex_start_profiling();
  std::vector<Folder> folders = find_folders(root);
  count(folders);
  kex_stop_profiling("counting.js");

  std::size_t files = 0;
  std::ptrdiff_t lines = 0;
  for (const Folder& folder : folders) {
    g_traceToFile.Trace("%s: %llu files, %lld lines\n", folder.name.c_str(), folder.files.size(), folder.lines);
    files += folder.files.size();
    lines += folder.lines;
  }
  std::printf("%zu files in %zu folders hold %td lines\n", files, folders.size(), lines);

  count(folders);  // its scopes switch profiling on again; it is not stopped
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 2) {
    std::fputs("usage: count_sources FOLDER\n", stderr);
    return 2;
  }
  try {
    count_twice(argv[1]);
  } catch (const std::exception& error) {
    std::fprintf(stderr, "count_sources: %s\n", error.what());
    return 2;
  }
}
