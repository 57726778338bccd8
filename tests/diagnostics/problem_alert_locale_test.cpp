// The alert's text, in each code page.
#include <kexlib/diagnostics/problem_alert.h>

#include <support/import_override.h>
#include <support/locale_matrix.h>

namespace {

std::string asked;
HANDLE shown;

int WINAPI record_text(HWND, LPCSTR text, LPCSTR, UINT) {
  asked = text;
  SetEvent(shown);
  return IDOK;
}

using ProblemAlertLocales = LocaleMatrix;

TEST_P(ProblemAlertLocales, HaveOneText) {
  CEvent event;
  shown = event;
  asked.clear();
  const ImportOverride recorded("kexlib.dll", "USER32.dll", "MessageBoxA", &record_text);
  ASSERT_TRUE(recorded.made());
  {
    CProblemAlert alert;
    alert.RaiseProblemMessage();
    EXPECT_TRUE(event.Lock(10000));
  }
  EXPECT_EQ(asked, "The problem has occurred");
}

INSTANTIATE_LOCALE_MATRIX(ProblemAlertLocales);

}  // namespace
