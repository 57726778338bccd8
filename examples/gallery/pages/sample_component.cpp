#include <kexlib/com/registration_free.h>

#include <gallery/pages/sample_component.h>

#include <filesystem>

namespace gallery {

std::string components_folder() {
  char program[MAX_PATH];
  GetModuleFileNameA(nullptr, program, sizeof program);
  return (std::filesystem::path(program).parent_path() / "components").string();
}

SampleManifest::SampleManifest() {
  const std::string folder = components_folder();
  const std::string path = reg_free_manifest_path(folder.c_str(), "digit_control.dll");
  ACTCTXA wanted{};
  wanted.cbSize = sizeof wanted;
  wanted.dwFlags = ACTCTX_FLAG_ASSEMBLY_DIRECTORY_VALID;
  wanted.lpSource = path.c_str();
  wanted.lpAssemblyDirectory = folder.c_str();
  context_ = CreateActCtxA(&wanted);
  if (context_ != INVALID_HANDLE_VALUE) ActivateActCtx(context_, &cookie_);
}

SampleManifest::~SampleManifest() {
  if (cookie_) DeactivateActCtx(0, cookie_);
  if (context_ != INVALID_HANDLE_VALUE) ReleaseActCtx(context_);
}

}  // namespace gallery
