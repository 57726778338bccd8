// Control groups and the step manager: whole groups of a dialog's controls switched on and off together, and steps that
// the user goes through one after the other.
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
// Controls are named by their identifiers and looked up in the parent window each time (GetDlgItem). An identifier that
// names none is passed over.
//
// Errors. None is reported. Running out of memory throws std::bad_alloc.
//
// Threads. For the thread of the parent window.
#ifndef KEXLIB_CONTROLS_STEP_MANAGER_H
#define KEXLIB_CONTROLS_STEP_MANAGER_H

#include <kexlib/export.h>

#include <windows.h>

#include <set>
#include <vector>

/// Controls of one parent window. It owns none of them.
class KEXLIB_API atlControlGroup {
 public:
  /// No controls; taken to be enabled and visible.
  explicit atlControlGroup(HWND parent);
  /// The same controls of the same parent.
  atlControlGroup(const atlControlGroup& other);
  /// The same.
  const atlControlGroup& operator=(const atlControlGroup& other);

  /// Adds a control, once. It is left as it is, whatever was asked of the group before.
  virtual void add_control(unsigned int id);

  /// 1 if the control is in the group, else 0.
  virtual int contains(unsigned int id) const;

  /// Enables the controls, or disables them with 0 (EnableWindow), in the order of their identifiers.
  virtual void set_enabled(int enable);

  /// What set_enabled was told last, as it was told; at first 1. Controls may have been changed by others since.
  virtual int enabled() const;

  /// Shows the controls, or hides them with 0 (ShowWindow), in the order of their identifiers.
  virtual void set_visible(int show);

  /// What set_visible was told last, as it was told; at first 1.
  virtual int visible() const;

  /// The window in which the controls are looked up.
  virtual HWND parent() const;

  /// The controls.
  virtual const std::set<unsigned int>& control_ids() const;

  /// Leaves the controls as they are.
  virtual ~atlControlGroup();

 protected:
  /// For copy constructors, which call copy_from.
  atlControlGroup();

  /// Takes everything over.
  void copy_from(const atlControlGroup& other);

 private:
  std::set<unsigned int> control_ids_;
  int enabled_ = 1;
  int visible_ = 1;
  HWND parent_ = nullptr;
};

/// A step: a group with a number, and with a control that shows the number. Step managers make them.
class KEXLIB_API atlStepControlGroup : public atlControlGroup {
 public:
  /// The same controls, display and number; the copy belongs to no manager.
  atlStepControlGroup(const atlStepControlGroup& other);
  /// The same.
  const atlStepControlGroup& operator=(const atlStepControlGroup& other);

  /// The control that shows the number, which is enabled and shown with the group; 0 for none. Nothing is written yet.
  void attach_number_display(unsigned int id);

  /// Sets the number. Nothing is written yet.
  void set_step_number(int number);

  /// The number; -1 for a step that got none.
  int step_number() const;

  /// Writes the number into its display, if there is one (SetWindowTextA).
  void update();

  /// The number display first, then as in every group.
  void set_enabled(int enable) override;

  /// The number display first, then as in every group.
  void set_visible(int show) override;

  /// Leaves the controls as they are.
  ~atlStepControlGroup() override;

 protected:
  /// Takes everything over.
  void copy_from(const atlStepControlGroup& other);

 private:
  friend class atlStepManager;
  atlStepControlGroup(HWND parent, int step_number);

  HWND number_display() const;

  unsigned int number_display_id_ = 0;
  int step_number_ = 0;
};

/// Steps in their order, of which one is active. Steps are named by their index, from 0.
class KEXLIB_API atlStepManager {
 public:
  /// parent: of the steps to come; auto_number_steps: the visible ones are numbered 1, 2, 3 ...;
  /// disable_completed_steps: going on disables what is left behind, otherwise it stays enabled. No step is active.
  explicit atlStepManager(HWND parent = nullptr, bool auto_number_steps = false, bool disable_completed_steps = true);
  /// The copy shares the steps with its source: only one of the two may be cleared or destroyed. Better not used.
  atlStepManager(const atlStepManager& other);
  /// The same; the steps that this manager had are not deleted.
  atlStepManager& operator=(const atlStepManager& other);

  /// Deletes the steps.
  virtual ~atlStepManager();

  /// The parent of the steps to come; those that are there keep theirs.
  void set_parent(HWND parent);

  /// A new step at the end, which stays the manager's. With automatic numbers it gets the next one.
  atlStepControlGroup* create_step();

  /// The step, or null if there is none of that index.
  atlStepControlGroup* step(int idx);

  /// How many steps there are.
  int get_step_count() const;

  /// The active step's index; -1 before there was one. It stays when the steps are cleared.
  int get_active_step_idx() const;

  /// The first visible step after the active one, or -1.
  int get_next_step_idx() const;

  /// Makes a step the active one and enables it. Going back, and with disable_completed_steps also going on, disables
  /// all steps from the one that was active up to it. Nothing happens if it is active already or is not there.
  void goto_step(int idx);

  /// goto_step to the next one, hidden or not; on the last step nothing happens.
  void next_step();

  /// goto_step to the one before, hidden or not; on the first step nothing happens.
  void prev_step();

  /// Numbers the steps if that is automatic, disables them all and goes to the first visible one. If that is the active
  /// one already it stays disabled like the others: call it once.
  void init();

  /// Numbers the visible steps from 1 and writes the numbers into their displays. Hidden ones keep theirs.
  void renumber_steps();

  /// Deletes the steps; the next one is numbered 1. The active index stays.
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
