#include <atlsimpstr.h>

#include <cstdlib>

namespace ATL {

constinit CStringData g_nilString[2] = {};

CStringData* AllocateStringData(size_t bytes) noexcept { return static_cast<CStringData*>(std::malloc(bytes)); }

void FreeStringData(CStringData* data) noexcept { std::free(data); }

}  // namespace ATL
