// The exceptions that the run-time library knows. Their layout is the ABI's: vcruntime140.dll copies the texts.
#pragma once
#include <corecrt.h>
#include <eh.h>

struct __std_exception_data {
  char const* _What;
  bool _DoFree;
};
extern "C" {
void __cdecl __std_exception_copy(const __std_exception_data*, __std_exception_data*);
void __cdecl __std_exception_destroy(__std_exception_data*);
}

namespace std {

class exception {
 public:
  exception() noexcept : _Data() {}
  explicit exception(char const* text) noexcept : _Data() {
    const __std_exception_data other = {text, true};
    __std_exception_copy(&other, &_Data);
  }
  exception(char const* text, int) noexcept : _Data() { _Data._What = text; }
  exception(exception const& other) noexcept : _Data() { __std_exception_copy(&other._Data, &_Data); }
  exception& operator=(exception const& other) noexcept {
    if (this != &other) {
      __std_exception_destroy(&_Data);
      __std_exception_copy(&other._Data, &_Data);
    }
    return *this;
  }
  virtual ~exception() noexcept { __std_exception_destroy(&_Data); }
  virtual char const* what() const { return _Data._What ? _Data._What : "Unknown exception"; }

 private:
  __std_exception_data _Data;
};

class bad_exception : public exception {
 public:
  bad_exception() noexcept : exception("bad exception", 1) {}
};

class bad_alloc : public exception {
 public:
  bad_alloc() noexcept : exception("bad allocation", 1) {}

 private:
  friend class bad_array_new_length;
  explicit bad_alloc(char const* text) noexcept : exception(text, 1) {}
};

class bad_array_new_length : public bad_alloc {
 public:
  bad_array_new_length() noexcept : bad_alloc("bad array new length") {}
};

}  // namespace std
