// The sample component: the digit control in the gallery's folder, which is not registered.
#ifndef GALLERY_SAMPLE_COMPONENT_H
#define GALLERY_SAMPLE_COMPONENT_H

#include <windows.h>

#include <string>

namespace gallery {

// The full paths of the components.
std::string components_folder();

// Keeps the manifest of the component active on this thread while the object exists.
class SampleManifest {
 public:
  SampleManifest();
  SampleManifest(const SampleManifest&) = delete;
  SampleManifest& operator=(const SampleManifest&) = delete;
  ~SampleManifest();

 private:
  HANDLE context_;
  ULONG_PTR cookie_ = 0;
};

}  // namespace gallery

#endif
