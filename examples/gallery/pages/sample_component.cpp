#include <pages/sample_component.h>

#include <filesystem>

namespace gallery {

std::string components_folder() {
  char program[MAX_PATH];
  GetModuleFileNameA(nullptr, program, sizeof program);
  return (std::filesystem::path(program).parent_path() / "components").string();
}

}  // namespace gallery
