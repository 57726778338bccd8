// The sample component, which lies beside the gallery and is not registered: the control of digits.
#ifndef GALLERY_SAMPLE_COMPONENT_H
#define GALLERY_SAMPLE_COMPONENT_H

#include <windows.h>

#include <string>

namespace gallery {

// Where the components are: full paths.
std::string components_folder();

}  // namespace gallery

#endif
