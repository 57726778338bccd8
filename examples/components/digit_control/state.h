// The saved state of a display: one list of values, written to a stream or read from it.
#ifndef EXAMPLES_COMPONENTS_DIGIT_CONTROL_STATE_H
#define EXAMPLES_COMPONENTS_DIGIT_CONTROL_STATE_H

#include <windows.h>
#include <objidl.h>

#include <digit_control/digit_display.h>

#include <string>

constexpr size_t longest_text = 1000;  // of titles, headings and font names

class StateWriter {
 public:
  explicit StateWriter(IStream* stream) : stream_(stream) {}
  HRESULT result = S_OK;

  template <class Number>
  void operator()(Number& value) {
    write(&value, sizeof value);
  }
  void operator()(bool& value) {
    const BYTE kept = value;
    write(&kept, sizeof kept);
  }
  void operator()(std::wstring& text) {
    const auto length = static_cast<DWORD>(text.size());
    write(&length, sizeof length);
    write(text.data(), text.size() * sizeof(wchar_t));
  }

 private:
  void write(const void* bytes, size_t count) {
    if (SUCCEEDED(result)) result = stream_->Write(bytes, static_cast<ULONG>(count), nullptr);
  }

  IStream* stream_;
};

class StateReader {
 public:
  explicit StateReader(IStream* stream) : stream_(stream) {}
  HRESULT result = S_OK;

  template <class Number>
  void operator()(Number& value) {
    read(&value, sizeof value);
  }
  void operator()(bool& value) {
    BYTE kept = 0;
    read(&kept, sizeof kept);
    value = kept != 0;
  }
  void operator()(std::wstring& text) {
    DWORD length = 0;
    read(&length, sizeof length);
    if (SUCCEEDED(result) && length > longest_text) result = E_FAIL;
    if (FAILED(result)) return;
    text.resize(length);
    read(text.data(), length * sizeof(wchar_t));
  }

 private:
  void read(void* bytes, size_t count) {
    ULONG had = 0;
    if (SUCCEEDED(result)) result = stream_->Read(bytes, static_cast<ULONG>(count), &had);
    if (SUCCEEDED(result) && had != count) result = E_FAIL;  // the stream is too short
  }

  IStream* stream_;
};

// A font as its object describes it.
struct SavedFont {
  std::wstring name;
  LONGLONG size = 0;  // ten thousandths of a point
  short weight = FW_NORMAL, charset = DEFAULT_CHARSET;
  bool italic = false, underline = false, strikethrough = false;
};

template <class Archive>
void visit(Archive& archive, DigitLook& look) {
  archive(look.back), archive(look.fore), archive(look.mask), archive(look.overflow), archive(look.underflow);
  archive(look.appearance), archive(look.border_style), archive(look.gap), archive(look.line_gap);
  archive(look.digits), archive(look.precision), archive(look.type);
  archive(look.shows_digits), archive(look.shows_mask), archive(look.shows_titles), archive(look.has_line_borders);
  archive(look.is_enabled), archive(look.finds_own_size);
  archive(look.lower), archive(look.upper);
}

template <class Archive>
void visit(Archive& archive, SavedFont& font) {
  archive(font.name), archive(font.size), archive(font.weight), archive(font.charset);
  archive(font.italic), archive(font.underline), archive(font.strikethrough);
}

template <class Archive>
void visit(Archive& archive, DigitLine& line) {
  archive(line.value), archive(line.title);
}

#endif
