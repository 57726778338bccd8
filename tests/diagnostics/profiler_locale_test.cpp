// The record's bytes, in each code page with each decimal point.
#include <kexlib/diagnostics/profiler.h>

#include <support/files.h>
#include <support/locale_matrix.h>

#include <regex>

namespace {

class ProfilerLocales : public LocaleMatrix {
 protected:
  TemporaryFolder folder_;
};

TEST_P(ProfilerLocales, KeepTheBytesOfNamesAndWritePoints) {
  const std::string narrow = code_page().narrow;
  kex_start_profiling();
  kex_begin_block(narrow);
  Sleep(1);  // an interval with digits behind the point
  kex_end_block();
  kex_stop_profiling("record.js");
  const std::string text = read_file("record.js");
  EXPECT_NE(text.find("name: '" + narrow + "',\r\n"), std::string::npos) << text;
  EXPECT_TRUE(std::regex_search(text, std::regex("\\[\\{b: 0, e: [0-9]+(\\.[0-9]+)?\\},\\]"))) << text;
  EXPECT_NE(text.find("'Thread " + std::to_string(GetCurrentThreadId()) + "'"), std::string::npos) << text;
}

INSTANTIATE_LOCALE_MATRIX(ProfilerLocales);

}  // namespace
