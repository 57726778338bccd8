// Control groups, on the controls of a real window.
#include <gtest/gtest.h>

#include <kexlib/controls/step_manager.h>

#include <controls/step_manager_fixture.h>

namespace {

TEST(ControlGroup, BeginsEmptyEnabledAndVisible) {
  const Controls controls(1);
  const atlControlGroup group(controls.parent());
  EXPECT_EQ(group.enabled(), 1);
  EXPECT_EQ(group.visible(), 1);
  EXPECT_EQ(group.parent(), controls.parent());
  EXPECT_TRUE(group.control_ids().empty());
  EXPECT_EQ(group.contains(1), 0);
}

TEST(ControlGroup, HoldsEachControlOnceInTheOrderOfTheIdentifiers) {
  atlControlGroup group(nullptr);
  for (const unsigned id : {3u, 1u, 0xFFFFFFFFu, 3u}) group.add_control(id);
  EXPECT_EQ(group.control_ids(), (std::set<unsigned>{1, 3, 0xFFFFFFFF}));
  EXPECT_EQ(group.contains(3), 1);
  EXPECT_EQ(group.contains(2), 0);
}

TEST(ControlGroup, EnablesItsControlsAndNoOthers) {
  const Controls controls(3);
  atlControlGroup group(controls.parent());
  group.add_control(1);
  group.add_control(3);
  group.set_enabled(0);
  EXPECT_FALSE(controls.enabled(1));
  EXPECT_TRUE(controls.enabled(2));
  EXPECT_FALSE(controls.enabled(3));
  EXPECT_EQ(group.enabled(), 0);
  group.set_enabled(1);
  EXPECT_TRUE(controls.enabled(1));
  EXPECT_TRUE(controls.enabled(3));
}

TEST(ControlGroup, ShowsItsControlsAndNoOthers) {
  const Controls controls(3);
  atlControlGroup group(controls.parent());
  group.add_control(2);
  group.set_visible(0);
  EXPECT_TRUE(controls.visible(1));
  EXPECT_FALSE(controls.visible(2));
  EXPECT_EQ(group.visible(), 0);
  EXPECT_EQ(group.enabled(), 1);
  group.set_visible(-1);
  EXPECT_TRUE(controls.visible(2));
  EXPECT_EQ(group.visible(), -1);
}

// Kept for compatibility: callers read the value that they stored, not 1.
TEST(ControlGroup, RemembersWhatItWasTold) {
  const Controls controls(1);
  atlControlGroup group(controls.parent());
  group.add_control(1);
  group.set_enabled(2);
  EXPECT_EQ(group.enabled(), 2);
  EXPECT_TRUE(controls.enabled(1));
}

TEST(ControlGroup, LeavesAControlThatIsAddedLaterAsItIs) {
  const Controls controls(1);
  atlControlGroup group(controls.parent());
  group.set_enabled(0);
  group.add_control(1);
  EXPECT_TRUE(controls.enabled(1));
  EXPECT_EQ(group.enabled(), 0);
}

TEST(ControlGroup, PassesOverWhatIsNotThere) {
  const Controls controls(2);
  atlControlGroup group(controls.parent());
  for (const unsigned id : {0u, 1u, 77u, 0xFFFFFFFFu}) group.add_control(id);
  group.set_enabled(0);
  EXPECT_FALSE(controls.enabled(1));
  DestroyWindow(controls.control(1));
  group.set_enabled(1);
  group.set_visible(0);

  atlControlGroup nowhere(nullptr);
  nowhere.add_control(1);
  nowhere.set_enabled(0);
  nowhere.set_visible(0);
  EXPECT_EQ(nowhere.visible(), 0);
  EXPECT_TRUE(controls.visible(2));
}

// A derived class may supply the parent of its controls.
class Elsewhere : public atlControlGroup {
 public:
  explicit Elsewhere(HWND place) : atlControlGroup(nullptr), place_(place) {}
  HWND parent() const override {
    ++asked_;
    return place_;
  }
  int asked() const { return asked_; }

 private:
  HWND place_;
  mutable int asked_ = 0;
};

TEST(ControlGroup, AsksForItsParentOnce) {
  const Controls controls(2);
  Elsewhere group(controls.parent());
  group.add_control(1);
  group.add_control(2);
  group.set_enabled(0);
  EXPECT_EQ(group.asked(), 1);
  EXPECT_FALSE(controls.enabled(2));
  group.set_visible(0);
  EXPECT_EQ(group.asked(), 2);
}

// A window procedure that reads the group's state while the group changes its controls.
const atlControlGroup* group_at_work = nullptr;
int enabled_meanwhile = -1;
LRESULT CALLBACK look_at_group(HWND window, UINT message, WPARAM w, LPARAM l) {
  if (message == WM_ENABLE && group_at_work) enabled_meanwhile = group_at_work->enabled();
  return DefWindowProcA(window, message, w, l);
}

// By design the flag is stored last: a handler that runs meanwhile sees the previous one.
TEST(ControlGroup, IsDoneOnlyWhenAllItsControlsAre) {
  const Controls controls(1);
  SetWindowLongPtrA(controls.control(1), GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(look_at_group));
  atlControlGroup group(controls.parent());
  group.add_control(1);
  group_at_work = &group;
  group.set_enabled(0);
  group_at_work = nullptr;
  EXPECT_EQ(enabled_meanwhile, 1);
  EXPECT_EQ(group.enabled(), 0);
}

// A derived class that copies itself in its own way.
class CopiedGroup : public atlControlGroup {
 public:
  explicit CopiedGroup(const atlControlGroup& other) { copy_from(other); }
};

TEST(ControlGroup, IsCopiedByADerivedClass) {
  const Controls controls(2);
  atlControlGroup group(controls.parent());
  group.add_control(2);
  group.set_visible(5);
  const CopiedGroup copy(group);
  EXPECT_EQ(copy.parent(), controls.parent());
  EXPECT_EQ(copy.control_ids(), std::set<unsigned>{2});
  EXPECT_EQ(copy.visible(), 5);
}

TEST(ControlGroup, CopiesAreOfTheSameControls) {
  const Controls controls(2);
  atlControlGroup group(controls.parent());
  group.add_control(1);
  group.set_enabled(0);
  group.set_visible(3);
  atlControlGroup copy(group);
  copy.add_control(2);
  EXPECT_EQ(copy.parent(), controls.parent());
  EXPECT_EQ(copy.enabled(), 0);
  EXPECT_EQ(copy.visible(), 3);
  EXPECT_EQ(group.contains(2), 0);
  EXPECT_EQ(&(group = copy), &group);
  EXPECT_EQ(group.contains(2), 1);
  const atlControlGroup& same = group;
  group = same;
  EXPECT_EQ(group.control_ids().size(), 2u);
}

}  // namespace
