#include <kexlib/controls/step_manager.h>

#include <cstdio>
#include <memory>

namespace {

constexpr unsigned int no_display = 0;

HWND control(HWND parent, unsigned int id) { return GetDlgItem(parent, static_cast<int>(id)); }

void enable_window(HWND window, int enable) { EnableWindow(window, enable != 0); }

void show_window(HWND window, int show) { ShowWindow(window, show ? SW_SHOW : SW_HIDE); }

}  // namespace

atlControlGroup::atlControlGroup(HWND parent) : parent_(parent) {}

atlControlGroup::atlControlGroup() = default;

atlControlGroup::atlControlGroup(const atlControlGroup& other) { copy_from(other); }

const atlControlGroup& atlControlGroup::operator=(const atlControlGroup& other) {
  copy_from(other);
  return *this;
}

atlControlGroup::~atlControlGroup() = default;

void atlControlGroup::copy_from(const atlControlGroup& other) {
  parent_ = other.parent_;
  control_ids_ = other.control_ids_;
  enabled_ = other.enabled_;
  visible_ = other.visible_;
}

void atlControlGroup::add_control(unsigned int id) { control_ids_.insert(id); }

int atlControlGroup::contains(unsigned int id) const { return control_ids_.count(id) ? 1 : 0; }

void atlControlGroup::set_enabled(int enable) {
  const HWND window = parent();
  for (const unsigned int id : control_ids_) enable_window(control(window, id), enable);
  enabled_ = enable;
}

int atlControlGroup::enabled() const { return enabled_; }

void atlControlGroup::set_visible(int show) {
  const HWND window = parent();
  for (const unsigned int id : control_ids_) show_window(control(window, id), show);
  visible_ = show;
}

int atlControlGroup::visible() const { return visible_; }

HWND atlControlGroup::parent() const { return parent_; }

const std::set<unsigned int>& atlControlGroup::control_ids() const { return control_ids_; }

atlStepControlGroup::atlStepControlGroup(HWND parent, int step_number)
    : atlControlGroup(parent), step_number_(step_number) {}

atlStepControlGroup::atlStepControlGroup(const atlStepControlGroup& other)
    : atlControlGroup(other), number_display_id_(other.number_display_id_), step_number_(other.step_number_) {}

const atlStepControlGroup& atlStepControlGroup::operator=(const atlStepControlGroup& other) {
  copy_from(other);
  return *this;
}

atlStepControlGroup::~atlStepControlGroup() = default;

void atlStepControlGroup::copy_from(const atlStepControlGroup& other) {
  atlControlGroup::copy_from(other);
  number_display_id_ = other.number_display_id_;
  step_number_ = other.step_number_;
}

void atlStepControlGroup::attach_number_display(unsigned int id) { number_display_id_ = id; }

void atlStepControlGroup::set_step_number(int number) { step_number_ = number; }

int atlStepControlGroup::step_number() const { return step_number_; }

HWND atlStepControlGroup::number_display() const { return control(parent(), number_display_id_); }

void atlStepControlGroup::update() {
  if (number_display_id_ == no_display) return;
  char text[16];
  std::snprintf(text, sizeof text, "%d", step_number_);
  SetWindowTextA(number_display(), text);
}

void atlStepControlGroup::set_enabled(int enable) {
  if (number_display_id_ != no_display) enable_window(number_display(), enable);
  atlControlGroup::set_enabled(enable);
}

void atlStepControlGroup::set_visible(int show) {
  if (number_display_id_ != no_display) show_window(number_display(), show);
  atlControlGroup::set_visible(show);
}

atlStepManager::atlStepManager(HWND parent, bool auto_number_steps, bool disable_completed_steps)
    : parent_(parent), auto_number_steps_(auto_number_steps), disable_completed_steps_(disable_completed_steps) {}

atlStepManager::atlStepManager(const atlStepManager& other) = default;

atlStepManager& atlStepManager::operator=(const atlStepManager& other) = default;

atlStepManager::~atlStepManager() { clear(); }

void atlStepManager::set_parent(HWND parent) { parent_ = parent; }

atlStepControlGroup* atlStepManager::create_step() {
  std::unique_ptr<atlStepControlGroup> made(new atlStepControlGroup(parent_, -1));
  steps_.push_back(made.get());
  if (auto_number_steps_) made->set_step_number(next_step_number_++);
  return made.release();
}

atlStepControlGroup* atlStepManager::step(int idx) {
  return idx >= 0 && idx < get_step_count() ? steps_[static_cast<std::size_t>(idx)] : nullptr;
}

int atlStepManager::get_step_count() const { return static_cast<int>(steps_.size()); }

int atlStepManager::get_active_step_idx() const { return active_step_idx_; }

int atlStepManager::get_next_step_idx() const {
  for (int i = active_step_idx_ + 1; i < get_step_count(); ++i)
    if (steps_[static_cast<std::size_t>(i)]->visible()) return i;
  return -1;
}

void atlStepManager::goto_step(int idx) {
  atlStepControlGroup* const target = step(idx);
  if (idx == active_step_idx_ || !target) return;
  const bool back = active_step_idx_ > idx;
  if (active_step_idx_ != -1 && (back || disable_completed_steps_))
    for (int i = active_step_idx_; i != idx; back ? --i : ++i)
      if (atlStepControlGroup* passed = step(i)) passed->set_enabled(0);  // the active step may have been cleared
  target->set_enabled(1);
  active_step_idx_ = idx;
}

// Kept for compatibility, here and in prev_step: callers reach hidden steps. Those who skip them use get_next_step_idx.
void atlStepManager::next_step() {
  if (active_step_idx_ >= 0) goto_step(active_step_idx_ + 1);
}

void atlStepManager::prev_step() {
  if (active_step_idx_ > 0) goto_step(active_step_idx_ - 1);
}

// Kept for compatibility: the active index stays, so that after a second call callers see all steps disabled.
void atlStepManager::init() {
  if (auto_number_steps_) renumber_steps();
  int first_visible = -1;
  for (int i = 0; i < get_step_count(); ++i) {
    step(i)->set_enabled(0);
    if (first_visible == -1 && step(i)->visible()) first_visible = i;
  }
  goto_step(first_visible);
}

void atlStepManager::renumber_steps() {
  int number = 1;
  for (int i = 0; i < get_step_count(); ++i) {  // a display that changes may cause steps to be added
    atlStepControlGroup* const each = step(i);
    if (!each->visible()) continue;
    each->set_step_number(number++);
    each->update();
  }
}

// Kept for compatibility: callers see the active index unchanged.
void atlStepManager::clear() {
  for (const atlStepControlGroup* each : steps_) delete each;
  steps_.clear();
  next_step_number_ = 1;
}
