// Control groups and the step manager: groups of a dialog's controls that are enabled and shown together, and steps of
// which the user does one after the other.
//
//     atlStepManager steps(dialog, true);              // numbered
//     atlStepControlGroup* first = steps.create_step();
//     first->add_control(IDC_NAME);
//     first->attach_number_display(IDC_NUMBER_1);      // a static control that shows "1"
//     atlStepControlGroup* second = steps.create_step();
//     second->add_control(IDC_SIZE);
//     steps.init();                                    // the first step is enabled, the others are not
//     ...
//     steps.next_step();
//
// Controls are named by their identifiers and looked up in the parent window at each call (GetDlgItem). An identifier
// without a control is ignored.
//
// Handlers. Windows tells controls and their parent what these calls change, while they run. What handles that may add
// steps and controls, but must not delete a group that is in use: no clear, and no end of the manager.
//
// Errors. None is reported. Out of memory throws std::bad_alloc.
//
// Threads. Call on the thread of the parent window.
#ifndef KEXLIB_CONTROLS_STEP_MANAGER_H
#define KEXLIB_CONTROLS_STEP_MANAGER_H

#include <kexlib/export.h>
#include <kexlib/windows.h>

#include <set>
#include <vector>

/// Controls of one parent window. It owns none of them.
class KEXLIB_API atlControlGroup {
 public:
  /// No controls; enabled() and visible() are 1.
  explicit atlControlGroup(HWND parent);
  /// Copies the identifiers, the parent and the two flags.
  atlControlGroup(const atlControlGroup& other);
  /// Copies the same.
  const atlControlGroup& operator=(const atlControlGroup& other);

  /// Adds a control, once. The control itself does not change until the next set_enabled or set_visible.
  virtual void add_control(unsigned int id);

  /// 1 if the control is in the group, else 0.
  virtual int contains(unsigned int id) const;

  /// Enables the controls, or disables them with 0 (EnableWindow), in the order of their identifiers.
  virtual void set_enabled(int enable);

  /// The last argument of set_enabled, unchanged; 1 at first. The controls' own state may differ.
  virtual int enabled() const;

  /// Shows the controls, or hides them with 0 (ShowWindow), in the order of their identifiers.
  virtual void set_visible(int show);

  /// The last argument of set_visible, unchanged; 1 at first.
  virtual int visible() const;

  /// The window in which the controls are looked up.
  virtual HWND parent() const;

  /// The identifiers of the controls.
  virtual const std::set<unsigned int>& control_ids() const;

  /// Does not change the controls.
  virtual ~atlControlGroup();

 protected:
  /// For copy constructors, which call copy_from.
  atlControlGroup();

  /// Copies everything.
  void copy_from(const atlControlGroup& other);

 private:
  std::set<unsigned int> control_ids_;
  int enabled_ = 1;
  int visible_ = 1;
  HWND parent_ = nullptr;
};

/// A step: a group with a number and a control that shows the number. Step managers create steps.
class KEXLIB_API atlStepControlGroup : public atlControlGroup {
 public:
  /// Copies the group, the display and the number; the copy belongs to no manager.
  atlStepControlGroup(const atlStepControlGroup& other);
  /// Copies the same.
  const atlStepControlGroup& operator=(const atlStepControlGroup& other);

  /// Sets the control that shows the number; it is enabled and shown with the group. 0 means none. Call update to write
  /// the number.
  void attach_number_display(unsigned int id);

  /// Sets the number. Call update to write it.
  void set_step_number(int number);

  /// The number; -1 at first.
  int step_number() const;

  /// Writes the number into its display, if any (SetWindowTextA).
  void update();

  /// Applies to the number display first, then to the group.
  void set_enabled(int enable) override;

  /// Applies to the number display first, then to the group.
  void set_visible(int show) override;

  /// Does not change the controls.
  ~atlStepControlGroup() override;

 protected:
  /// Copies everything.
  void copy_from(const atlStepControlGroup& other);

 private:
  friend class atlStepManager;
  atlStepControlGroup(HWND parent, int step_number);

  HWND number_display() const;

  unsigned int number_display_id_ = 0;
  int step_number_ = 0;
};

/// An ordered list of steps, one of which is active. Indices begin with 0.
class KEXLIB_API atlStepManager {
 public:
  /// No steps, and no active step.
  ///   parent                   parent of the steps that are created
  ///   auto_number_steps        visible steps are numbered 1, 2, 3 ...
  ///   disable_completed_steps  moving forward disables the steps left behind; otherwise they stay enabled
  atlStepManager(HWND parent = nullptr, bool auto_number_steps = false, bool disable_completed_steps = true);
  /// The copy shares the steps with its source: only one of the two may be cleared or destroyed. Avoid it.
  atlStepManager(const atlStepManager& other);
  /// As the copy constructor. The steps that this manager had are not deleted.
  atlStepManager& operator=(const atlStepManager& other);

  /// Deletes the steps.
  virtual ~atlStepManager();

  /// Sets the parent of steps created from now on; existing steps keep theirs.
  void set_parent(HWND parent);

  /// Appends a step and returns it; the manager owns it. With automatic numbers it gets the next number.
  atlStepControlGroup* create_step();

  /// The step of an index, or null.
  atlStepControlGroup* step(int idx);

  /// The number of steps.
  int get_step_count() const;

  /// The index of the active step; -1 until one was active. clear does not change it.
  int get_active_step_idx() const;

  /// The index of the first visible step after the active one, or -1.
  int get_next_step_idx() const;

  /// Makes a step the active one and enables it. Moving back, and with disable_completed_steps also moving forward,
  /// first disables the steps from the previously active one up to it. Ignored if the step is active or does not exist.
  void goto_step(int idx);

  /// Calls goto_step for the next step, visible or not; ignored on the last step. Use get_next_step_idx to skip hidden
  /// steps.
  void next_step();

  /// Calls goto_step for the previous step, visible or not; ignored on the first step.
  void prev_step();

  /// Numbers the steps if that is automatic, disables all of them and activates the first visible one. If that one is
  /// active already it stays disabled: call init once.
  void init();

  /// Numbers the visible steps from 1 and writes the numbers into their displays. Hidden steps keep their numbers.
  void renumber_steps();

  /// Deletes the steps; the next one is numbered 1. The active index does not change.
  void clear();

 private:
  HWND parent_;
  std::vector<atlStepControlGroup*> steps_;
  int active_step_idx_ = -1;
  bool auto_number_steps_;
  int next_step_number_ = 1;
  bool disable_completed_steps_;
};

#endif
