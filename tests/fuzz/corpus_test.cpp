// Each core with its kept inputs, and with inputs made from them: a short form of what ./kex fuzz does.
#include <gtest/gtest.h>

#include <fuzz/core.h>

namespace {

std::vector<std::string> names() {
  std::vector<std::string> names;
  for (const fuzz::Core* core : fuzz::Core::all()) names.push_back(core->name());
  return names;
}

class FuzzedCore : public testing::TestWithParam<std::string> {
 protected:
  const fuzz::Core& core_ = *fuzz::Core::named(GetParam());
  const std::vector<fuzz::KeptInput> kept_ = fuzz::kept_inputs(KEX_FUZZ_CORPUS "/" + GetParam());
};

TEST_P(FuzzedCore, DoesWithEachKeptInputWhatItsDefinitionDoes) {
  EXPECT_GE(kept_.size(), 3u) << "in tests/fuzz/corpus/" << GetParam();
  for (const auto& [file, bytes] : kept_) EXPECT_EQ(core_.run(bytes), "") << file;
}

TEST_P(FuzzedCore, DoesWithChangedInputsWhatItsDefinitionDoes) {
  constexpr std::uint64_t seed = 1;
  const fuzz::Generator generator(kept_, seed);
  for (std::uint64_t number = 0; number < 1000; ++number)
    ASSERT_EQ(core_.run(generator.input(number)), "")
        << "input " << number << " of seed " << seed << ": " << fuzz::readable(generator.input(number));
}

INSTANTIATE_TEST_SUITE_P(Each, FuzzedCore, testing::ValuesIn(names()), [](const auto& core) { return core.param; });

TEST(FuzzedCores, NoticeADifference) {
  const fuzz::Core differing("differing", [](fuzz::Input& input) {
    fuzz::expect_same(std::string(input.text()), std::string("expected"), "seen in a test");
  });
  EXPECT_EQ(differing.run("expected"), "");
  EXPECT_EQ(differing.run("a\"\n"), "\"a\\x22\\x0a\" instead of \"expected\", \"seen in a test\"");
}

}  // namespace
