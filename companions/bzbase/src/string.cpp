#include <bzbase/string.h>

bzString::bzString() = default;

bzString::bzString(const char* text) : text_(text ? text : "") {}

bzString& bzString::operator<<(const bzString& text) {
  text_ += text.text_;
  return *this;
}

const char* bzString::c_str() const { return text_.c_str(); }

std::size_t bzString::length() const { return text_.size(); }
