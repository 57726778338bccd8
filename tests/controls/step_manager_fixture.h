// A window with numbered controls, and steps of them.
#ifndef TESTS_CONTROLS_STEP_MANAGER_FIXTURE_H
#define TESTS_CONTROLS_STEP_MANAGER_FIXTURE_H

#include <gtest/gtest.h>

#include <kexlib/controls/step_manager.h>

#include <support/window_text.h>

#include <memory>
#include <string>

constexpr unsigned first_display = 100;

// A window with controls 1, 2, 3 ... and as many number displays from 100 on.
class Controls {
 public:
  explicit Controls(unsigned count) {
    parent_ = CreateWindowA("STATIC", "", WS_POPUP | WS_VISIBLE, 0, 0, 100, 100, nullptr, nullptr, nullptr, nullptr);
    for (unsigned i = 0; i < count; ++i) make(i + 1), make(first_display + i);
  }
  Controls(const Controls&) = delete;
  Controls& operator=(const Controls&) = delete;
  ~Controls() { DestroyWindow(parent_); }

  HWND parent() const { return parent_; }
  HWND control(unsigned id) const { return GetDlgItem(parent_, static_cast<int>(id)); }
  bool enabled(unsigned id) const { return IsWindowEnabled(control(id)); }
  bool visible(unsigned id) const { return IsWindowVisible(control(id)); }
  std::string text(unsigned id) const { return window_text(control(id)); }

 private:
  void make(unsigned id) {
    CreateWindowA("STATIC", "", WS_CHILD | WS_VISIBLE, 0, 0, 10, 10, parent_,
                  reinterpret_cast<HMENU>(static_cast<UINT_PTR>(id)), nullptr, nullptr);
  }
  HWND parent_;
};

// Steps 0, 1, 2 ... with the controls 1, 2, 3 ... and their displays.
class Steps : public testing::Test {
 protected:
  static constexpr int most = 8;

  void make(int count, bool number, bool disable_completed) {
    manager_ = std::make_unique<atlStepManager>(controls_.parent(), number, disable_completed);
    for (int i = 0; i < count; ++i) add();
  }
  atlStepControlGroup* add() {
    const auto i = static_cast<unsigned>(manager_->get_step_count());
    atlStepControlGroup* step = manager_->create_step();
    step->add_control(i + 1);
    step->attach_number_display(first_display + i);
    return step;
  }
  // The enabled steps, as "0 2".
  std::string enabled() const {
    std::string list;
    for (int i = 0; i < manager_->get_step_count(); ++i)
      if (controls_.enabled(static_cast<unsigned>(i) + 1)) list += (list.empty() ? "" : " ") + std::to_string(i);
    return list;
  }
  // The texts of the displays, as "1||2".
  std::string numbers() const {
    std::string list;
    for (int i = 0; i < manager_->get_step_count(); ++i)
      list += (i ? "|" : "") + controls_.text(first_display + static_cast<unsigned>(i));
    return list;
  }

  Controls controls_{most};
  std::unique_ptr<atlStepManager> manager_;
};

#endif
