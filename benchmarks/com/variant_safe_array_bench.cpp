#include <kexlib/com/variant_safe_array.h>

#include <support/bench.h>

#include <algorithm>

namespace {

// Puts a number into each element and reads it again.
double nanoseconds_an_element(std::size_t size) {
  VARIANT number{};
  V_VT(&number) = VT_I4;
  V_I4(&number) = 7;
  const int count = static_cast<int>(size);
  const auto put_and_get = [&] {
    QuickVariantSafeArray array(count);
    for (int i = 0; i < count; ++i) array.PutAt(i, number);
    for (int i = 0; i < count; ++i) array.GetAt(i);
  };
  const int repeats = static_cast<int>(std::max<std::size_t>(1, 10000 / size));
  return bench::nanoseconds_each(repeats, put_and_get) / static_cast<double>(size);
}

void grow_arrays() {
  bench::grow({.name = "made, filled with numbers, read",
               .x = "variants",
               .y = "nanoseconds an element",
               .sizes = {10, 100, 1000, 10000, 100000, 1000000},
               .own_exponent = 0,
               .explained = "an array of 100,000 variants, 24 bytes each, exceeds the processor's own caches",
               .measure = nanoseconds_an_element});
}

const bench::Growth arrays_growth("variant arrays", grow_arrays);

}  // namespace
