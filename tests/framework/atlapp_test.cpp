// The message loop of WTL.
#include <gtest/gtest.h>

#include <atlbase.h>
#include <atlapp.h>

#include <functional>
#include <string>
#include <thread>

namespace {

struct Filter : CMessageFilter {
  explicit Filter(std::function<BOOL(MSG*)> what) : see(std::move(what)) {}
  BOOL PreTranslateMessage(MSG* message) override { return see(message); }
  std::function<BOOL(MSG*)> see;
};

struct Idle : CIdleHandler {
  explicit Idle(std::function<void()> what) : act(std::move(what)) {}
  BOOL OnIdle() override {
    act();
    return TRUE;  // ignored
  }
  std::function<void()> act;
};

// A message-only window that records its messages.
class Target : public CWindowImpl<Target> {
 public:
  BEGIN_MSG_MAP(Target)
    MESSAGE_RANGE_HANDLER(WM_USER, WM_USER + 99, OnUser)
    MESSAGE_HANDLER(WM_CHAR, OnChar)
  END_MSG_MAP()
  LRESULT OnUser(UINT message, WPARAM, LPARAM, BOOL&) {
    log += std::to_string(message - WM_USER) + ' ';
    return 0;
  }
  LRESULT OnChar(UINT, WPARAM character, LPARAM, BOOL&) {
    log += static_cast<char>(character);
    return 0;
  }
  std::string log;
};

class MessageLoop : public testing::Test {
 protected:
  void SetUp() override { ASSERT_TRUE(target.Create(HWND_MESSAGE, nullptr, nullptr, WS_POPUP)); }
  void TearDown() override { target.DestroyWindow(); }

  // Runs the loop with these messages.
  int run(std::initializer_list<UINT> messages, int exit_code = 0) {
    for (UINT message : messages) target.PostMessage(message);
    ::PostMessage(target, WM_CLOSE, 0, 0);
    Filter quit([&](MSG* message) -> BOOL {
      if (message->message == WM_CLOSE) PostQuitMessage(exit_code);
      return message->message == WM_CLOSE;
    });
    loop.AddMessageFilter(&quit);
    int result = loop.Run();
    loop.RemoveMessageFilter(&quit);
    return result;
  }

  Target target;
  CMessageLoop loop;
};

TEST_F(MessageLoop, DispatchesUntilTheQuitMessageAndReturnsItsCode) {
  EXPECT_EQ(run({WM_USER + 1, WM_USER + 2}, 42), 42);
  EXPECT_EQ(target.log, "1 2 ");
}

TEST_F(MessageLoop, TranslatesKeys) {
  target.PostMessage(WM_KEYDOWN, 'A', 0x001E0001);
  run({});
  EXPECT_EQ(target.log, "a");
}

TEST_F(MessageLoop, AsksTheFilterThatWasAddedLastFirst) {
  std::string order;
  auto note = [&](char name) {
    return [&order, name](MSG* message) -> BOOL {
      if (message->message == WM_USER) order += name;
      return FALSE;
    };
  };
  Filter a(note('a')), b(note('b')), c(note('c'));
  loop.AddMessageFilter(&a);
  loop.AddMessageFilter(&b);
  loop.AddMessageFilter(&c);
  EXPECT_TRUE(loop.RemoveMessageFilter(&b));
  EXPECT_FALSE(loop.RemoveMessageFilter(&b));
  run({WM_USER});
  EXPECT_EQ(order, "ca");
}

TEST_F(MessageLoop, AMessageThatAFilterDealtWithGoesNoFurther) {
  bool asked = false;
  Filter below([&](MSG* message) -> BOOL {
    asked |= message->message == WM_USER;
    return FALSE;
  });
  Filter takes([](MSG* message) -> BOOL { return message->message == WM_USER; });
  loop.AddMessageFilter(&below);
  loop.AddMessageFilter(&takes);
  run({WM_USER, WM_USER + 1});
  EXPECT_FALSE(asked);
  EXPECT_EQ(target.log, "1 ");
}

TEST_F(MessageLoop, AFilterMayRemoveItself) {
  std::string order;
  auto note = [&](MSG* message, char name) {
    if (message->message == WM_USER) order += name;
    return FALSE;
  };
  Filter first([&](MSG* message) -> BOOL { return note(message, '1'); });
  Filter once([&](MSG* message) -> BOOL { return loop.RemoveMessageFilter(&once), note(message, '2'); });
  Filter last([&](MSG* message) -> BOOL { return note(message, '3'); });
  for (Filter* filter : {&first, &once, &last}) loop.AddMessageFilter(filter);
  run({WM_USER, WM_USER});
  EXPECT_EQ(order, "32131");
}

TEST_F(MessageLoop, AnIdleHandlerMayRemoveItself) {
  std::string order;
  Idle once([&] {
    order += "1";
    loop.RemoveIdleHandler(&once);
  });
  Idle always([&] { order += "2"; });
  loop.AddIdleHandler(&once);
  loop.AddIdleHandler(&always);
  loop.OnIdle(0);
  loop.OnIdle(0);
  EXPECT_EQ(order, "122");
}

TEST_F(MessageLoop, IsIdleOnceWhenNoMessageIsWaiting) {
  std::string order;
  Idle first([&] { order += "1"; }), second([&] {
    order += "2";
    target.PostMessage(WM_CLOSE);
  });
  loop.AddIdleHandler(&first);
  loop.AddIdleHandler(&second);
  Filter quit([&](MSG* message) -> BOOL {
    if (message->message == WM_CLOSE) PostQuitMessage(0);
    return message->message == WM_CLOSE;
  });
  loop.AddMessageFilter(&quit);
  target.PostMessage(WM_USER);
  loop.Run();
  EXPECT_EQ(target.log, "0 ") << "messages go before idleness";
  EXPECT_EQ(order, "12");
}

TEST_F(MessageLoop, IsNotIdleAgainAfterMessagesThatComeByThemselves) {
  std::string order;
  Idle idle([&] { order += "idle "; });
  loop.AddIdleHandler(&idle);
  Filter note([&](MSG* message) -> BOOL {
    switch (message->message) {
      case WM_USER:
        order += "user ";
        return TRUE;
      case WM_MOUSEMOVE:
        order += "move ";
        target.SetTimer(1, 50);  // no message until then, but the loop is not idle
        return TRUE;
      case WM_TIMER:
        order += "timer ";
        PostQuitMessage(0);
        return TRUE;
      default:
        return FALSE;
    }
  });
  loop.AddMessageFilter(&note);
  target.PostMessage(WM_USER);
  Idle move([&, moved = false]() mutable {
    if (!moved) target.PostMessage(WM_MOUSEMOVE);
    moved = true;
  });
  loop.AddIdleHandler(&move);
  loop.Run();
  EXPECT_EQ(order, "user idle move timer ");
}

TEST(MessageLoopOf, IdleMessages) {
  auto ends_idleness = [](UINT number) {
    MSG message{nullptr, number, 0, 0, 0, {}};
    return CMessageLoop::IsIdleMessage(&message);
  };
  for (UINT number : {UINT{WM_MOUSEMOVE}, UINT{WM_NCMOUSEMOVE}, UINT{WM_PAINT}, 0x0118u})
    EXPECT_FALSE(ends_idleness(number)) << number;
  for (UINT number : {UINT{WM_TIMER}, UINT{WM_KEYDOWN}, UINT{WM_LBUTTONDOWN}, UINT{WM_USER}})
    EXPECT_TRUE(ends_idleness(number)) << number;
}

TEST(MessageLoopOf, ItsOwnIdlenessGoesOnAsLongAsItIsAskedFor) {
  struct Loop : CMessageLoop {
    BOOL OnIdle(int count) override {
      counts.push_back(count);
      if (count < 2) return TRUE;
      PostQuitMessage(7);
      return FALSE;
    }
    std::vector<int> counts;
  } loop;
  EXPECT_EQ(loop.Run(), 7);
  EXPECT_EQ(loop.counts, (std::vector<int>{0, 1, 2}));
}

TEST(AppModule, KnowsItsModuleAndTheLoopOfEachThread) {
  CAppModule module;
  EXPECT_EQ(module.Init(nullptr, GetModuleHandle(nullptr)), S_OK);
  EXPECT_EQ(module.GetModuleInstance(), GetModuleHandle(nullptr));
  EXPECT_EQ(module.GetResourceInstance(), GetModuleHandle(nullptr));
  EXPECT_EQ(module.GetMessageLoop(), nullptr);

  CMessageLoop loop, other;
  EXPECT_TRUE(module.AddMessageLoop(&loop));
  EXPECT_FALSE(module.AddMessageLoop(&other)) << "a thread has one";
  EXPECT_EQ(module.GetMessageLoop(), &loop);
  std::thread([&, here = GetCurrentThreadId()] {
    EXPECT_EQ(module.GetMessageLoop(), nullptr);
    EXPECT_TRUE(module.AddMessageLoop(&other));
    EXPECT_EQ(module.GetMessageLoop(), &other);
    EXPECT_EQ(module.GetMessageLoop(here), &loop);
    EXPECT_TRUE(module.RemoveMessageLoop());
  }).join();
  EXPECT_TRUE(module.RemoveMessageLoop());
  EXPECT_FALSE(module.RemoveMessageLoop());
  EXPECT_EQ(module.GetMessageLoop(), nullptr);
  module.Term();
  EXPECT_EQ(module.GetModuleInstance(), nullptr);
}

}  // namespace
