// A program with one object of each kind that the debugger shows in a way of its own: gdb_printers_test.py stops it in
// `show_locals`. It is compiled without optimisation.
#include <kexlib/com.h>
#include <kexlib/controls.h>
#include <kexlib/imaging.h>
#include <kexlib/messageloop.h>

#include <diagnostics/profile_record.h>

#include <cstring>

namespace {

class Picture : public kexWTLDIB {};

class Timer : public CATLWindowLessTimer {
 public:
  void OnTimerTick() override {}
};

void set_text(kexComVariant& value, const wchar_t* text) {
  value.bstrVal = SysAllocString(text);
  value.vt = VT_BSTR;
}

// What is not initialised has any bytes.
template <class Object>
union Raw {
  Raw() { std::memset(static_cast<void*>(this), 0xCD, sizeof *this); }
  ~Raw() {}
  Object object;
};

}  // namespace

__attribute__((noinline)) void show_locals() {}

int main() {
  kexGUID lazy_guid;
  kexGUID known_guid(CString("6B29FC40-CA47-1067-B31D-00AA00C7A1E8"));
  kexGUID braced_guid(kexWithBraces);
  braced_guid.set_str("00000000-0000-0000-0000-0000000000A1");

  kexComVariant empty_variant, short_variant, long_variant, double_variant, text_variant, null_text_variant,
      error_variant, true_variant, false_variant, date_variant;
  short_variant.vt = VT_I2, short_variant.iVal = -2;
  long_variant.vt = VT_I4, long_variant.lVal = 70000;
  double_variant.vt = VT_R8, double_variant.dblVal = 2.5;
  set_text(text_variant, L"bolt");
  null_text_variant.vt = VT_BSTR;
  error_variant.vt = VT_ERROR, error_variant.scode = E_FAIL;
  true_variant.vt = false_variant.vt = VT_BOOL;
  true_variant.boolVal = VARIANT_TRUE;
  date_variant.vt = VT_DATE;

  QuickVariantSafeArray no_array, owned_array(2), viewed_array(static_cast<SAFEARRAY*>(owned_array));
  owned_array.PutAt(0, text_variant);
  owned_array.PutAt(1, long_variant);

  Picture no_picture, picture;
  picture.create(4, 2);

  kexBuffer open_buffer, closed_buffer;
  open_buffer.write("one", 3);
  closed_buffer.write("x", 1);
  closed_buffer.close();

  Timer stopped_timer, running_timer, suspended_timer, single_timer;
  running_timer.SetInterval(500);
  suspended_timer.SetSuspended(1);
  single_timer.SetRepeatable(0);
  for (Timer* timer : {&running_timer, &suspended_timer, &single_timer}) timer->SetEnabled(1);

  atlStepManager no_steps, steps(GetDesktopWindow(), true);
  steps.create_step()->add_control(7);
  atlStepControlGroup& second = *steps.create_step();
  second.add_control(8);
  second.add_control(9);
  steps.goto_step(0);
  steps.step(1)->set_visible(0);

  kexlib::ProfileRecord no_profile, profile;
  kexlib::ThreadRecord& thread = profile.thread(8);
  profile.thread(12);
  thread.begin("load", 1);
  for (int i = 0; i < 3; ++i) {
    thread.begin("parse", 2);
    thread.end(3);
  }
  thread.begin("", 4);
  thread.end(5);

  Raw<kexGUID> raw_guid;
  Raw<kexComVariant> raw_variant;
  Raw<QuickVariantSafeArray> raw_array;
  Raw<Picture> raw_picture;
  Raw<kexBuffer> raw_buffer;
  Raw<Timer> raw_timer;
  Raw<atlControlGroup> raw_group;
  Raw<atlStepManager> raw_steps;
  Raw<kexlib::Block> raw_block;
  Raw<kexlib::ThreadRecord> raw_thread;
  Raw<kexlib::ProfileRecord> raw_profile;
  show_locals();
  for (Timer* timer : {&running_timer, &suspended_timer, &single_timer}) timer->SetEnabled(0);
}
