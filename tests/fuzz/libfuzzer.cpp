// The core named by KEX_FUZZ_CORE as libFuzzer calls it.
#include <fuzz/core.h>

#include <cstdio>
#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static const fuzz::Core* const core = [] {
    const char* const name = std::getenv("KEX_FUZZ_CORE");
    const fuzz::Core* const named = name ? fuzz::Core::named(name) : nullptr;
    if (!named) std::fprintf(stderr, "KEX_FUZZ_CORE names no core of this program\n"), std::exit(2);
    return named;
  }();
  const std::string difference = core->run({reinterpret_cast<const char*>(data), size});
  if (difference.empty()) return 0;
  std::fprintf(stderr, "difference: %s\n", difference.c_str());
  std::abort();  // libFuzzer keeps the input
}
