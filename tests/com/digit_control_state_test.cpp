// The digit control of the examples: rejected values, stored values, saving and loading.
#include <gtest/gtest.h>

#include <kexlib/com/digit_control.h>

#include <afx.h>

#include <com/digit_control_fixture.h>
#include <support/expect_flat.h>

#include <functional>
#include <limits>
#include <string>
#include <vector>

namespace {

using namespace digit_control;

void expect_refused(const std::function<void()>& member, HRESULT reason, const char* text) {
  try {
    member();
    FAIL() << "nothing was thrown";
  } catch (COleDispatchException* exception) {
    EXPECT_EQ(exception->m_scError, reason);
    EXPECT_EQ(exception->m_strDescription, text);
    exception->Delete();
  }
}

TEST_F(DrawnDigitsOnScreen, RefuseLinesThatThereAreNot) {
  digits_.SetNbLines(2);
  digits_.SetValue(1, 1.5);
  digits_.SetTitle(1, "Second");
  EXPECT_EQ(digits_.GetValue(1), 1.5);
  EXPECT_EQ(digits_.GetTitle(1), "Second");
  for (const short line : std::initializer_list<short>{-32768, -1, 2, 32767}) {
    const char* const no_line = "There is no such line.";
    expect_refused([&] { digits_.GetValue(line); }, DISP_E_BADINDEX, no_line);
    expect_refused([&] { digits_.SetValue(line, 1); }, DISP_E_BADINDEX, no_line);
    expect_refused([&] { digits_.GetTitle(line); }, DISP_E_BADINDEX, no_line);
    expect_refused([&] { digits_.SetTitle(line, "x"); }, DISP_E_BADINDEX, no_line);
  }
  digits_.SetNbLines(1);
  expect_refused([&] { digits_.GetValue(1); }, DISP_E_BADINDEX, "There is no such line.");
}

TEST_F(DrawnDigitsOnScreen, RefuseWhatTheyCannotShowAndStayAsTheyAre) {
  digits_.SetValue(0, 12.5);
  const Picture before = shown(digits_);
  const double none = std::numeric_limits<double>::quiet_NaN();
  const std::function<void()> members[] = {[&] { digits_.SetNbDigits(0); },
                                           [&] { digits_.SetNbDigits(33); },
                                           [&] { digits_.SetNbLines(0); },
                                           [&] { digits_.SetNbLines(65); },
                                           [&] { digits_.SetPrecision(-1); },
                                           [&] { digits_.SetPrecision(16); },
                                           [&] { digits_.SetGap(-1); },
                                           [&] { digits_.SetInterligne(201); },
                                           [&] { digits_.SetType(2); },
                                           [&] { digits_.SetAppearance(2); },
                                           [&] { digits_.SetBorderStyle(-1); },
                                           [&] { digits_.SetUpperBound(none); },
                                           [&] { digits_.SetBounds(2, 1); },
                                           [&] { digits_.SetBounds(none, 1); },
                                           [&] { digits_.SetForeColor(0x40000001); },
                                           [&] { digits_.GetOptimalWidth(0); },
                                           [&] { digits_.GetOptimalWidth(-5); },
                                           [&] { digits_.GetOptimalFontSize(0); },
                                           [&] { digits_.GetOptimalWidth2(-1, some_money); },
                                           [&] { digits_.GetOptimalWidth2(20, money(0)); },
                                           [&] { digits_.SetText(std::string(1001, 't').c_str()); },
                                           [&] { digits_.SetTitle(0, std::string(1001, 't').c_str()); }};
  for (const auto& member : members) expect_refused(member, E_INVALIDARG, "This value cannot be shown.");
  expect_refused([&] { digits_.SetFont(nullptr); }, E_INVALIDARG, "This is no font.");
  EXPECT_TRUE(shown(digits_) == before);
}

TEST_F(DrawnDigitsOnScreen, SetTheValuesOfAsManyLinesAsThereAre) {
  digits_.SetNbLines(3);
  digits_.SetDelta(1, 2, 3, 4);
  EXPECT_EQ(digits_.GetValue(2), 3.0);
  digits_.SetPoint(5, 6, 7);
  for (short line = 0; line < 3; ++line) EXPECT_EQ(digits_.GetValue(line), 5.0 + line);
  digits_.SetNbLines(4);
  EXPECT_EQ(digits_.GetValue(3), 0.0);
  digits_.SetDelta(1, 2, 3, 4);
  EXPECT_EQ(digits_.GetValue(3), 4.0);
}

TEST_F(DrawnDigitsOnScreen, KeepTheHostsSizeOrTheirOwn) {
  CComQIPtr<IOleObject> object(digits_.GetControlUnknown());
  const SIZEL own = extent();
  digits_.SetDimAuto(0);
  SIZEL wanted = {5000, 2500};
  EXPECT_EQ(object->SetExtent(DVASPECT_CONTENT, &wanted), S_OK);
  EXPECT_EQ(extent().cx, 5000);
  EXPECT_EQ(extent().cy, 2500);
  digits_.CalculateOptimizeSize();
  EXPECT_EQ(extent().cx, own.cx);
  EXPECT_EQ(object->SetExtent(DVASPECT_CONTENT, &wanted), S_OK);
  digits_.SetDimAuto(1);
  EXPECT_EQ(extent().cy, own.cy);
  EXPECT_EQ(object->SetExtent(DVASPECT_ICON, &wanted), DV_E_DVASPECT);
  EXPECT_EQ(object->GetExtent(DVASPECT_CONTENT, nullptr), E_POINTER);
}

// The control's state, as a file.
void save(kexDigitOCX& control, CMemFile& file) {
  CComQIPtr<IPersistStreamInit> state(control.GetControlUnknown());
  CComPtr<IStream> stream;
  ASSERT_EQ(CreateStreamOnHGlobal(nullptr, TRUE, &stream), S_OK);
  EXPECT_EQ(state->IsDirty(), S_OK);
  ASSERT_EQ(state->Save(stream, TRUE), S_OK);
  EXPECT_EQ(state->IsDirty(), S_FALSE);
  STATSTG about = {};
  ASSERT_EQ(stream->Stat(&about, STATFLAG_NONAME), S_OK);
  ASSERT_EQ(stream->Seek({}, STREAM_SEEK_SET, nullptr), S_OK);
  std::vector<BYTE> bytes(about.cbSize.LowPart);
  ASSERT_EQ(stream->Read(bytes.data(), about.cbSize.LowPart, nullptr), S_OK);
  file.Write(bytes.data(), static_cast<UINT>(bytes.size()));
  file.SeekToBegin();
}

TEST_F(DrawnDigitsOnScreen, ComeBackFromTheirState) {
  digits_.SetNbLines(2);
  digits_.SetTitle(1, "Depth");
  digits_.SetText("Heading");
  digits_.SetValue(1, -7.25);
  digits_.SetPrecision(1);
  digits_.SetInternalBorder(1);
  digits_.SetBounds(-5, 5);
  set_font_size(digits_, 12);
  digits_.GetFont().SetItalic(1);
  CMemFile file;
  save(digits_, file);
  const Picture before = shown(digits_);
  digits_.DestroyWindow();
  kexDigitOCX other;
  ASSERT_TRUE(create(other, place_, &file));
  EXPECT_EQ(other.GetTitle(1), "Depth");
  EXPECT_EQ(other.GetText(), "Heading");
  EXPECT_EQ(other.GetValue(1), -7.25);
  EXPECT_EQ(other.GetFont().GetItalic(), 1);
  EXPECT_TRUE(shown(other) == before);
  EXPECT_GT(count(other, underflow), 0);
}

TEST_F(DrawnDigitsOnScreen, AreNotMadeOfABrokenState) {
  digits_.SetTitle(0, "Depth");
  CMemFile file;
  save(digits_, file);
  const UINT whole = static_cast<UINT>(file.GetLength());
  std::vector<BYTE> bytes(whole);
  file.Read(bytes.data(), whole);
  const auto is_made_of = [&](const std::vector<BYTE>& state) {
    CMemFile broken;
    broken.Write(state.data(), static_cast<UINT>(state.size()));
    broken.SeekToBegin();
    kexDigitOCX other;
    return create(other, place_, &broken) != FALSE;
  };
  EXPECT_TRUE(is_made_of(bytes));
  for (UINT length = 0; length < whole; ++length)
    EXPECT_FALSE(is_made_of({bytes.begin(), bytes.begin() + length})) << length;
  // Every byte may be corrupt: if the state loads, it can be shown.
  for (UINT i = 0; i < whole; ++i)
    for (const int flipped : {0xFF, 0x80}) {
      std::vector<BYTE> other = bytes;
      other[i] = static_cast<BYTE>(other[i] ^ flipped);
      is_made_of(other);
    }
  // A value without a title, after the number of lines and the one with a title.
  const size_t count = whole - (sizeof(double) + 4 + 5 * sizeof(wchar_t)) - 4;
  for (const BYTE lines : std::initializer_list<BYTE>{64, 65}) {
    std::vector<BYTE> many = bytes;
    many[count] = lines;
    many.resize(whole + (lines - 1u) * (sizeof(double) + 4));
    EXPECT_EQ(is_made_of(many), lines == 64);
  }
  bytes[0] ^= 1;
  EXPECT_FALSE(is_made_of(bytes));
}

TEST_F(DrawnDigitsOnScreen, LeaveNothingBehind) {
  expect_flat(30, [&] {
    kexDigitOCX other;
    ASSERT_TRUE(create(other, place_));
    other.initialise();
    other.SetTitle(0, "Title");
    other.SetValue(0, 1.5);
    other.SetFlashing(1);
    shown(other);
    try {
      other.SetValue(9, 1);
    } catch (COleDispatchException* exception) {
      exception->Delete();
    }
    CMemFile file;
    save(other, file);
    other.DestroyWindow();
    ASSERT_TRUE(create(other, place_, &file));
  });
}

TEST(DrawnDigits, GoWithTheirComponent) {
  ASSERT_EQ(OleInitialize(nullptr), S_OK);
  for (int round = 0; round < 3; ++round) {
    CWnd frame;
    frame.Attach(CreateWindowA("STATIC", "", WS_POPUP, 0, 0, 200, 100, nullptr, nullptr, nullptr, nullptr));
    kexOleFont font;
    {
      const Manifest known;
      kexDigitOCX digits;
      ASSERT_TRUE(digits.Create(nullptr, style, place, &frame, 7, nullptr, 0, nullptr));
      EXPECT_NE(GetModuleHandleA("digit_control.dll"), nullptr);
      font = digits.GetFont();
    }
    frame.DestroyWindow();
    CoFreeUnusedLibrariesEx(0, 0);
    EXPECT_EQ(GetModuleHandleA("digit_control.dll"), nullptr);
    font.SetBold(1);  // the font belongs to the system and has no listener left
  }
  OleUninitialize();
}

}  // namespace
