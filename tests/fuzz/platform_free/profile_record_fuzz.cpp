// A profile record and its text, against vectors that are searched from the front and a recursive writer.
#include <fuzz/core.h>
#include <support/record_text.h>

#include <string>

namespace {

// Names that come again, names of one length that differ in one character, and any others.
std::string name(fuzz::Input& input) {
  constexpr unsigned longest = 40;
  const unsigned kind = input.below(256);
  if (kind < 64) return std::string(1, static_cast<char>('a' + kind % 8));
  if (kind >= 192) return std::string(input.text(kind % longest));
  std::string alike(1 + kind % 10, 'x');
  alike[input.below(256) % alike.size()] = 'y';
  return alike;
}

const fuzz::Core core("profile_record", [](fuzz::Input& input) {
  OwnRecord record;
  SimpleRecord simple;
  constexpr double rates[] = {1000, 10000000, 3579545, 1, 3};
  const double ticks_per_second = rates[input.below(std::size(rates))];
  std::uint32_t thread = 0;
  std::int64_t now = 0;
  while (!input.empty()) {
    const unsigned step = input.below(16);
    if (step == 0) thread = 4 * input.below(4);
    if (step == 1) thread = input.number<std::uint32_t>();
    now = step == 2 ? input.number<std::int64_t>() / 2 : now + step;  // half: the next steps must not overflow
    if (step % 2 == 0) {
      record.thread(thread).end(now);
      simple.end(thread, now);
    } else {
      const std::string block = name(input);
      record.thread(thread).begin(block, now);
      simple.begin(thread, block, now);
    }
  }
  fuzz::expect_same(written(record, ticks_per_second), simple.text(ticks_per_second));
});

}  // namespace
