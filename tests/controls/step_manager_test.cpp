// Steps, on the controls of a real window and in a dialog.
#include <gtest/gtest.h>

#include <kexlib/controls/step_manager.h>

#include <atlwin.h>

#include <controls/resources.h>
#include <controls/step_manager_fixture.h>
#include <support/expect_flat.h>
#include <support/message_pump.h>
#include <support/picture.h>
#include <support/user_input.h>

#include <climits>
#include <functional>
#include <random>
#include <string>
#include <utility>
#include <vector>

namespace {

struct Walk {
  const char* what;
  bool disable_completed;
  const char* hidden;  // 'h' for a hidden step
  const char* moves;   // n next, p previous, i init, a digit activates that step
  const char* enabled;
  int active;
};

// Three steps each.
const Walk walks[] = {
    {"none before init", true, "   ", "", "0 1 2", -1},
    {"the first after init", true, "   ", "i", "0", 0},
    {"on", true, "   ", "in", "1", 1},
    {"to the end", true, "   ", "inn", "2", 2},
    {"past the end", true, "   ", "innnn", "2", 2},
    {"on and back", true, "   ", "innp", "1", 1},
    {"before the beginning", true, "   ", "ippp", "0", 0},
    {"to itself", true, "   ", "i0", "0", 0},
    {"jump on", true, "   ", "i2", "2", 2},
    {"jump back", true, "   ", "i20", "0", 0},
    {"twice init", true, "   ", "ii", "", 0},
    {"init elsewhere", true, "   ", "ini", "0", 0},
    {"back after init twice", true, "   ", "iin", "1", 1},
    {"next without init", true, "   ", "n", "0 1 2", -1},
    {"previous without init", true, "   ", "p", "0 1 2", -1},
    {"goto without init", true, "   ", "1", "0 1 2", 1},
    {"no such step", true, "   ", "i7", "0", 0},
    {"first hidden", true, "h  ", "i", "1", 1},
    {"to a hidden one all the same", true, " h ", "in", "1", 1},
    {"over a hidden one", true, " h ", "i2", "2", 2},
    {"all hidden", true, "hhh", "i", "", -1},
    {"kept on", false, "   ", "in", "0 1", 1},
    {"kept to the end", false, "   ", "inn", "0 1 2", 2},
    {"kept and back to the first", false, "   ", "inn0", "0", 0},
    {"kept and back", false, "   ", "innp", "0 1", 1},
    {"kept, jump on", false, "   ", "i2", "0 2", 2},
    {"kept, jump back disables what is between", false, "   ", "inn0", "0", 0},
};

class WalksThroughSteps : public Steps, public testing::WithParamInterface<Walk> {};

TEST_P(WalksThroughSteps, EnableWhatIsToBeDone) {
  const Walk& walk = GetParam();
  make(3, false, walk.disable_completed);
  for (int i = 0; i < 3; ++i)
    if (walk.hidden[i] == 'h') manager_->step(i)->set_visible(0);
  for (const char* move = walk.moves; *move; ++move) {
    if (*move == 'n') manager_->next_step();
    if (*move == 'p') manager_->prev_step();
    if (*move == 'i') manager_->init();
    if (*move >= '0' && *move <= '9') manager_->goto_step(*move - '0');
  }
  EXPECT_EQ(enabled(), walk.enabled) << walk.what;
  EXPECT_EQ(manager_->get_active_step_idx(), walk.active) << walk.what;
}

INSTANTIATE_TEST_SUITE_P(AllOfThem, WalksThroughSteps, testing::ValuesIn(walks));

TEST_F(Steps, AreNumberedWithoutGaps) {
  make(3, true, true);
  EXPECT_EQ(numbers(), "||") << "not before init";
  EXPECT_EQ(manager_->step(1)->step_number(), 2);
  manager_->step(1)->set_visible(0);
  manager_->init();
  EXPECT_EQ(numbers(), "1||2");
  EXPECT_EQ(manager_->step(0)->step_number(), 1);
  EXPECT_EQ(manager_->step(1)->step_number(), 2) << "a hidden one keeps its own";
  EXPECT_EQ(manager_->step(2)->step_number(), 2);
  manager_->step(1)->set_visible(1);
  manager_->renumber_steps();
  EXPECT_EQ(numbers(), "1|2|3");
}

// Called once, when the text of a number display changes.
std::function<void()> at_the_next_text;
WNDPROC display_procedure = nullptr;
LRESULT CALLBACK notice_text(HWND window, UINT message, WPARAM w, LPARAM l) {
  if (message == WM_SETTEXT && at_the_next_text) std::exchange(at_the_next_text, nullptr)();
  return CallWindowProcA(display_procedure, window, message, w, l);
}

TEST_F(Steps, MayBeAddedWhileTheyAreNumbered) {
  make(2, false, true);
  display_procedure = reinterpret_cast<WNDPROC>(
      SetWindowLongPtrA(controls_.control(first_display), GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(notice_text)));
  at_the_next_text = [&] {
    for (int i = 0; i < 1000; ++i) add();
  };
  manager_->renumber_steps();
  ASSERT_EQ(manager_->get_step_count(), 1002);
  for (int i = 0; i < 1002; ++i) EXPECT_EQ(manager_->step(i)->step_number(), i + 1);
}

TEST_F(Steps, AreNotNumberedUnlessAsked) {
  make(2, false, true);
  manager_->init();
  EXPECT_EQ(numbers(), "|");
  EXPECT_EQ(manager_->step(1)->step_number(), -1);
}

TEST_F(Steps, SkipHiddenOnesOnlyWhereTheNextIsAskedFor) {
  make(4, false, true);
  EXPECT_EQ(manager_->get_next_step_idx(), 0) << "before the first";
  manager_->init();
  manager_->step(1)->set_visible(0);
  EXPECT_EQ(manager_->get_next_step_idx(), 2);
  manager_->next_step();
  EXPECT_EQ(manager_->get_active_step_idx(), 1) << "hidden or not";
  manager_->goto_step(3);
  EXPECT_EQ(manager_->get_next_step_idx(), -1);
  manager_->goto_step(2);
  manager_->step(3)->set_visible(0);
  EXPECT_EQ(manager_->get_next_step_idx(), -1);
}

TEST_F(Steps, AreNotThereBeyondTheLast) {
  make(2, false, true);
  EXPECT_NE(manager_->step(1), nullptr);
  EXPECT_EQ(manager_->step(manager_->get_step_count()), nullptr);
  EXPECT_EQ(manager_->step(-1), nullptr);
  EXPECT_EQ(manager_->step(1000000), nullptr);
}

// Kept for compatibility: callers see the index of the active step after the steps are deleted.
TEST_F(Steps, BeginAnewWhenTheyAreCleared) {
  make(3, true, true);
  manager_->init();
  manager_->goto_step(2);
  manager_->clear();
  EXPECT_EQ(manager_->get_step_count(), 0);
  EXPECT_EQ(manager_->get_active_step_idx(), 2);
  EXPECT_EQ(add()->step_number(), 1);
  EXPECT_EQ(manager_->get_active_step_idx(), 2);
  manager_->next_step();
  manager_->prev_step();
  EXPECT_EQ(manager_->get_active_step_idx(), 2) << "there is nowhere to go";
  manager_->init();
  EXPECT_EQ(manager_->get_active_step_idx(), 0);
  EXPECT_EQ(enabled(), "0");
}

TEST_F(Steps, MayBeNone) {
  make(0, true, true);
  manager_->init();
  manager_->renumber_steps();
  manager_->next_step();
  manager_->prev_step();
  for (const int idx : {-5, -1, 0, 1}) manager_->goto_step(idx);
  manager_->clear();
  EXPECT_EQ(manager_->get_active_step_idx(), -1);
  EXPECT_EQ(manager_->get_next_step_idx(), -1);
  EXPECT_EQ(manager_->step(0), nullptr);
}

TEST_F(Steps, CannotBeLeftForOneThatIsNotThere) {
  make(2, false, true);
  manager_->init();
  for (const int idx : {-1, 2, 1000000, -1000000}) manager_->goto_step(idx);
  EXPECT_EQ(manager_->get_active_step_idx(), 0);
  EXPECT_EQ(enabled(), "0");
}

TEST(StepsWithoutAWindow, TakeNoHarmFromNumbersThatMakeNoSense) {
  const HWND gone = CreateWindowA("STATIC", "", WS_POPUP, 0, 0, 9, 9, nullptr, nullptr, nullptr, nullptr);
  DestroyWindow(gone);
  for (const HWND parent : {gone, static_cast<HWND>(nullptr), reinterpret_cast<HWND>(~ULONG_PTR{0})}) {
    atlStepManager steps(parent, true);
    constexpr int count = 1000;
    for (int i = 0; i < count; ++i) {
      atlStepControlGroup* const step = steps.create_step();
      for (const unsigned id : {0u, 1u, 0x7FFFFFFFu, 0x80000000u, 0xFFFFFFFFu}) step->add_control(id);
      step->attach_number_display(0xFFFFFFFF);
    }
    steps.init();
    for (const int index : {INT_MIN, -1, count, INT_MAX}) {
      EXPECT_EQ(steps.step(index), nullptr);
      steps.goto_step(index);
      EXPECT_EQ(steps.get_active_step_idx(), 0);
    }
    steps.step(1)->set_step_number(INT_MIN);
    steps.step(1)->update();
    steps.step(2)->set_enabled(INT_MIN);
    EXPECT_EQ(steps.step(2)->enabled(), INT_MIN);
    steps.step(3)->set_visible(INT_MAX);
    EXPECT_EQ(steps.step(3)->visible(), INT_MAX);
    steps.goto_step(count - 1);
    steps.next_step();
    EXPECT_EQ(steps.get_active_step_idx(), count - 1);
    EXPECT_EQ(steps.get_next_step_idx(), -1);
    steps.clear();
    steps.prev_step();
    EXPECT_EQ(steps.get_step_count(), 0);
  }
}

TEST_F(Steps, GetTheParentOfWhenTheyAreMade) {
  atlStepManager manager;
  EXPECT_EQ(manager.create_step()->parent(), nullptr);
  manager.set_parent(controls_.parent());
  EXPECT_EQ(manager.create_step()->parent(), controls_.parent());
  EXPECT_EQ(manager.step(0)->parent(), nullptr);
}

TEST_F(Steps, TakeTheirDisplayWithThem) {
  make(1, false, true);
  manager_->step(0)->set_enabled(0);
  EXPECT_FALSE(controls_.enabled(first_display));
  manager_->step(0)->set_visible(0);
  EXPECT_FALSE(controls_.visible(first_display));
  manager_->step(0)->set_visible(1);
  EXPECT_TRUE(controls_.visible(first_display));
}

TEST_F(Steps, ShowTheirNumberWhenTheyAreUpdated) {
  make(1, false, true);
  atlStepControlGroup* step = manager_->step(0);
  step->set_step_number(-12);
  EXPECT_EQ(numbers(), "");
  step->update();
  EXPECT_EQ(numbers(), "-12");
  step->set_step_number(7);
  step->attach_number_display(0);
  step->update();
  EXPECT_EQ(numbers(), "-12");
  step->attach_number_display(999);
  step->update();
}

TEST_F(Steps, CanBeCopied) {
  make(2, true, true);
  atlStepControlGroup copy(*manager_->step(1));
  EXPECT_EQ(copy.step_number(), 2);
  EXPECT_EQ(copy.contains(2), 1);
  EXPECT_EQ(&(copy = *manager_->step(0)), &copy);
  EXPECT_EQ(copy.step_number(), 1);
  copy.update();
  EXPECT_EQ(numbers(), "1|") << "the display is copied too";
  EXPECT_EQ(manager_->get_step_count(), 2);
}

// Kept for compatibility: a copy of a manager shares the steps. The copy here is never destroyed.
TEST_F(Steps, AreSharedByACopyOfTheManager) {
  make(2, true, false);
  manager_->init();
  alignas(atlStepManager) static std::byte place[sizeof(atlStepManager)];
  auto* copy = new (place) atlStepManager(*manager_);
  EXPECT_EQ(copy->step(1), manager_->step(1));
  EXPECT_EQ(copy->get_active_step_idx(), 0);
  copy->next_step();
  EXPECT_EQ(enabled(), "0 1") << "it keeps completed steps as well";
  EXPECT_EQ(manager_->get_active_step_idx(), 0);
  EXPECT_EQ(copy->create_step()->step_number(), 3);
  EXPECT_EQ(manager_->get_step_count(), 2);
  delete copy->step(2);
}

TEST_F(Steps, AreSharedByAnAssignedManager) {
  make(2, true, false);
  manager_->init();
  // Neither is destroyed here: both have the same steps.
  alignas(atlStepManager) static std::byte place[sizeof(atlStepManager)];
  auto* other = new (place) atlStepManager(nullptr, false, true);
  EXPECT_EQ(&(*other = *manager_), other);
  EXPECT_EQ(other->get_step_count(), 2);
  EXPECT_EQ(other->step(1), manager_->step(1));
  other->next_step();
  EXPECT_EQ(enabled(), "0 1") << "it keeps completed steps as well";
}

// ---- against a model ---------------------------------------------------------------------------------------------

// A simple model of the steps: the enabled steps are computed one by one.
struct Model {
  struct Step {
    bool enabled = true, visible = true;
    int number = -1;
    std::string shown;
  };
  bool numbered, disable_completed;
  std::vector<Step> steps;
  int active = -1, next_number = 1;

  int count() const { return static_cast<int>(steps.size()); }
  Step& at(int i) { return steps[static_cast<std::size_t>(i)]; }
  void add() {
    steps.push_back({});
    if (numbered) steps.back().number = next_number++;
  }
  void go(int to) {
    if (to == active) return;
    for (int i = 0; i < count(); ++i) {
      const bool left_behind = active >= 0 && active <= i && i < to && disable_completed;
      const bool taken_back = to < i && i <= active;
      if (left_behind || taken_back) at(i).enabled = false;
    }
    at(to).enabled = true;
    active = to;
  }
  void renumber() {
    int number = 0;
    for (Step& step : steps)
      if (step.visible) step.number = ++number, step.shown = std::to_string(number);
  }
  void init() {
    if (numbered) renumber();
    int first = count();
    for (int i = count() - 1; i >= 0; --i) {
      at(i).enabled = false;
      if (at(i).visible) first = i;
    }
    if (first < count()) go(first);
  }
};

class RandomWalks : public Steps, public testing::WithParamInterface<unsigned> {};

TEST_P(RandomWalks, EndWhereTheModelEnds) {
  std::mt19937 random(GetParam());
  const auto below = [&](int limit) { return static_cast<int>(random() % static_cast<unsigned>(limit)); };
  const bool numbered = below(2), disable_completed = below(2);
  make(0, numbered, disable_completed);
  Model model{numbered, disable_completed, {}};
  std::string done;
  for (int i = 0; i < 200; ++i) {
    const int what = below(8), which = model.count() ? below(model.count()) : 0;
    done += std::to_string(what) + ":" + std::to_string(which) + " ";
    if ((what == 0 || !model.count()) && model.count() < most) model.add(), add();
    if (what == 1) model.init(), manager_->init();
    if (what == 2 && model.active >= 0 && model.active + 1 < model.count())
      model.go(model.active + 1), manager_->next_step();
    if (what == 3 && model.active > 0) model.go(model.active - 1), manager_->prev_step();
    if (what == 4) model.go(which), manager_->goto_step(which);
    if (what == 5) model.at(which).visible = false, manager_->step(which)->set_visible(0);
    if (what == 6) model.at(which).visible = true, manager_->step(which)->set_visible(1);
    if (what == 7) model.renumber(), manager_->renumber_steps();

    ASSERT_EQ(manager_->get_active_step_idx(), model.active) << done;
    int next = -1;
    for (int k = model.count() - 1; k > model.active; --k)
      if (model.at(k).visible) next = k;
    ASSERT_EQ(manager_->get_next_step_idx(), next) << done;
    for (int k = 0; k < model.count(); ++k) {
      const auto id = static_cast<unsigned>(k);
      ASSERT_EQ(controls_.enabled(id + 1), model.at(k).enabled) << k << " after " << done;
      ASSERT_EQ(controls_.enabled(first_display + id), model.at(k).enabled) << k << " after " << done;
      ASSERT_EQ(controls_.visible(id + 1), model.at(k).visible) << k << " after " << done;
      ASSERT_EQ(manager_->step(k)->step_number(), model.at(k).number) << k << " after " << done;
      ASSERT_EQ(controls_.text(first_display + id), model.at(k).shown) << k << " after " << done;
    }
  }
}

INSTANTIATE_TEST_SUITE_P(TwentyOfThem, RandomWalks, testing::Range(1u, 21u));

TEST(StepRounds, LeaveNothingBehind) {
  const Controls controls(3);
  expect_flat(1000, [&] {
    atlStepManager manager(controls.parent(), true);
    for (unsigned i = 0; i < 3; ++i) manager.create_step()->add_control(i + 1);
    manager.init();
    manager.next_step();
    manager.clear();
    manager.create_step();
  });
}

// ---- in a dialog, with the real mouse ------------------------------------------------------------------------------

class StepsDialog : public CDialogImpl<StepsDialog> {
 public:
  enum { IDD = IDD_STEPS };
  BEGIN_MSG_MAP(StepsDialog)
    MESSAGE_HANDLER(WM_INITDIALOG, OnInitDialog)
    COMMAND_ID_HANDLER(IDC_NEXT, OnNext)
    COMMAND_ID_HANDLER(IDC_BACK, OnBack)
  END_MSG_MAP()

  LRESULT OnInitDialog(UINT, WPARAM, LPARAM, BOOL&) {
    steps.set_parent(m_hWnd);
    const unsigned displays[] = {IDC_NUMBER_1, IDC_NUMBER_2, IDC_NUMBER_3};
    const std::vector<unsigned> controls[] = {{IDC_NAME}, {IDC_DEPTH}, {IDC_COLOR, IDC_ROUND}};
    for (int i = 0; i < 3; ++i) {
      atlStepControlGroup* step = steps.create_step();
      step->attach_number_display(displays[i]);
      for (const unsigned id : controls[i]) step->add_control(id);
    }
    steps.init();
    return TRUE;
  }
  LRESULT OnNext(WORD, WORD, HWND, BOOL&) {
    steps.next_step();
    return 0;
  }
  LRESULT OnBack(WORD, WORD, HWND, BOOL&) {
    steps.prev_step();
    return 0;
  }

  std::string enabled() const {
    std::string list;
    for (const int id : {IDC_NAME, IDC_DEPTH, IDC_COLOR, IDC_ROUND})
      if (GetDlgItem(id).IsWindowEnabled()) list += std::to_string(id - IDC_NAME);
    return list;
  }
  std::string number(int id) const {
    char text[20] = "";
    GetDlgItem(id).GetWindowText(text, sizeof text);
    return text;
  }

  atlStepManager steps{nullptr, true};
};

TEST(StepsOnScreen, LeadThroughADialog) {
  StepsDialog dialog;
  ASSERT_TRUE(dialog.Create(nullptr));
  park_mouse();
  ASSERT_TRUE(bring_to_front(dialog));
  EXPECT_EQ(dialog.number(IDC_NUMBER_1) + dialog.number(IDC_NUMBER_2) + dialog.number(IDC_NUMBER_3), "123");
  EXPECT_EQ(dialog.enabled(), "0");
  const auto click_on = [&](int id, const char* expected) {
    click(dialog.GetDlgItem(id));
    return pump_until([&] { return dialog.enabled() == expected; });
  };
  EXPECT_TRUE(click_on(IDC_NEXT, "1"));
  park_mouse();
  EXPECT_TRUE(Picture(dialog).save("step_manager", 2));
  EXPECT_TRUE(click_on(IDC_NEXT, "23"));
  EXPECT_TRUE(click_on(IDC_BACK, "1"));
  EXPECT_TRUE(click_on(IDC_BACK, "0"));
  park_mouse();
  dialog.DestroyWindow();
}

}  // namespace
