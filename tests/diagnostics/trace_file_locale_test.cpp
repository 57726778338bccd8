// The trace file's bytes, in each code page with each decimal point.
#include <kexlib/diagnostics/trace_file.h>

#include <support/desktop_folder.h>
#include <support/files.h>
#include <support/locale_matrix.h>

namespace {

class TraceFileLocalesOnDesktop : public LocaleMatrix {
 protected:
  void TearDown() override {
    CTraceToFile::SetTraceMode(CTraceToFile::TraceOff);
    LocaleMatrix::TearDown();
  }

  TemporaryFolder folder_;
  DesktopFolder desktop_{folder_.path()};
};

TEST_P(TraceFileLocalesOnDesktop, KeepTheBytesOfTextsAndFormatNumbersAsTheRunTimeLibraryDoes) {
  const std::string narrow = code_page().narrow;
  CTraceToFile::SetTraceMode(CTraceToFile::TraceToFile);
  g_traceToFile.Trace("<%s|%.1f|%5.2f>", narrow.c_str(), 1234567.5, -0.25);
  g_traceToFile.Trace(("<" + narrow + "%d>").c_str(), 1);
  g_traceToFile.CloseFile();
  const std::vector<std::string> files = files_in(folder_.path());
  ASSERT_EQ(files.size(), 1u);
  const std::string text = read_file(folder_.path() / files[0]);
  EXPECT_NE(text.find("<" + narrow + "|1234567" + point() + "5|-0" + point() + "25>"), std::string::npos) << text;
  EXPECT_NE(text.find("<" + narrow + "1>"), std::string::npos) << text;
}

INSTANTIATE_LOCALE_MATRIX(TraceFileLocalesOnDesktop);

}  // namespace
