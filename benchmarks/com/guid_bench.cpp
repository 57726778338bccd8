#include <kexlib/com/guid.h>

#include <support/bench.h>

#include <algorithm>
#include <cstring>
#include <random>
#include <vector>

namespace {

struct ByMemcmp {
  bool operator()(const GUID& a, const GUID& b) const { return std::memcmp(&a, &b, sizeof a) < 0; }
};

// Class identifiers of one vendor often share their first bytes.
std::vector<GUID> some_guids() {
  std::mt19937_64 random(1);
  std::vector<GUID> ids(1000);
  for (GUID& id : ids) {
    const std::uint64_t halves[2] = {random() % 100, random()};
    std::memcpy(&id, halves, sizeof id);
  }
  return ids;
}

template <class Less>
double nanoseconds_a_comparison(const std::vector<GUID>& ids) {
  const GUID* const first = ids.data();
  const std::size_t comparisons = ids.size() - 1;
  unsigned before = 0;
  const double time = bench::nanoseconds_each(100, [&] {
    for (std::size_t i = 0; i < comparisons; ++i) before += Less()(first[i], first[i + 1]);
  });
  volatile unsigned result = before;
  static_cast<void>(result);
  return time / static_cast<double>(comparisons);
}

void measure_guid_order() {
  static const std::vector<GUID> ids = some_guids();
  bench::Comparison order("one comparison of two GUIDs");
  order.add("memcmp", [] { return nanoseconds_a_comparison<ByMemcmp>(ids); });
  order.add("kexLessGUID", [] { return nanoseconds_a_comparison<kexLessGUID>(ids); });
  order.run();
  bench::at_most(0.6, order.ratio("kexLessGUID", "memcmp"),
                 {.name = "the order of two GUIDs",
                  .compared = "kexLessGUID, of the time of memcmp over 16 bytes",
                  .reason = "memcmp is the usual way to use GUIDs as keys of a map, and gives the same order"});
}

const bench::Benchmark guid_order_benchmark("order", measure_guid_order);

}  // namespace
