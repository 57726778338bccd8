#include <kexlib/messageloop/message_wait.h>

#include <windows.h>

#include <support/bench.h>

#include <thread>

namespace {

constexpr int messages = 250;
constexpr UINT ordinary = WM_APP, last = WM_APP + 1;

HANDLE last_was_handled;

LRESULT CALLBACK procedure(HWND window, UINT message, WPARAM w, LPARAM l) {
  if (message == last) SetEvent(last_was_handled);
  return DefWindowProcA(window, message, w, l);
}

HWND make_window() {
  WNDCLASSA description{};
  description.lpfnWndProc = &procedure;
  description.hInstance = GetModuleHandleA(nullptr);
  description.lpszClassName = "message_wait_bench";
  RegisterClassA(&description);
  return bench::made(
      CreateWindowA("message_wait_bench", "", 0, 0, 0, 0, 0, HWND_MESSAGE, nullptr, description.hInstance, nullptr));
}

// The time of one message, without the time to post it.
template <class Pump>
double each_message(HWND window, Pump&& pump) {
  for (int i = 1; i < messages; ++i) PostMessageA(window, ordinary, 0, 0);
  PostMessageA(window, last, 0, 0);
  return bench::nanoseconds_each(1, pump) / messages;
}

void dispatch(const MSG& message) {
  TranslateMessage(&message);
  DispatchMessageA(&message);
}

void measure_message_pumping() {
  const HWND window = make_window();
  last_was_handled = CreateEventA(nullptr, FALSE, FALSE, nullptr);

  bench::Comparison with_object("one posted message while waiting for an object", 75);
  with_object.add("library", [&] {
    return each_message(window, [] { SafeWaitWithMessageLoop(1, &last_was_handled, INFINITE, FALSE, nullptr); });
  });
  with_object.add("poll, peek, dispatch", [&] {
    return each_message(window, [] {
      MSG message;
      while (WaitForMultipleObjects(1, &last_was_handled, FALSE, 0) == WAIT_TIMEOUT)
        if (PeekMessageA(&message, nullptr, 0, 0, PM_REMOVE)) dispatch(message);
    });
  });
  with_object.run();
  bench::at_most(1.10, with_object.ratio("library", "poll, peek, dispatch"),
                 {.name = "a message while waiting for an object",
                  .compared = "SafeWaitWithMessageLoop, of the time of a loop of poll, PeekMessage and DispatchMessage",
                  .reason = "a loop by hand with the same promise: the object is looked at before each message"});

  bench::Comparison without("one posted message without objects", 75);
  without.add("library", [&] {
    return each_message(window, [] {
      PostQuitMessage(0);
      MSG quit;
      SafeWaitWithMessageLoop(0, nullptr, INFINITE, FALSE, &quit);
    });
  });
  without.add("peek, dispatch", [&] {
    return each_message(window, [] {
      PostQuitMessage(0);
      MSG message;
      while (PeekMessageA(&message, nullptr, 0, 0, PM_REMOVE) && message.message != WM_QUIT) dispatch(message);
    });
  });
  without.run();
  bench::at_most(1.10, without.ratio("library", "peek, dispatch"),
                 {.name = "a message without objects",
                  .compared = "SafeWaitWithMessageLoop, of the time of a loop of PeekMessage and DispatchMessage",
                  .reason = "the usual loop by hand that empties the queue"});

  CloseHandle(last_was_handled);
  DestroyWindow(window);
}

void measure_event_round_trip() {
  constexpr int trips = 50;
  const HANDLE request = CreateEventA(nullptr, FALSE, FALSE, nullptr);
  const HANDLE answer = CreateEventA(nullptr, FALSE, FALSE, nullptr);
  const HANDLE end = CreateEventA(nullptr, FALSE, FALSE, nullptr);
  std::thread other([&] {
    const HANDLE handles[] = {end, request};
    while (WaitForMultipleObjects(2, handles, FALSE, INFINITE) == WAIT_OBJECT_0 + 1) SetEvent(answer);
  });

  bench::Comparison trip("to another thread and back, by events", 75);
  trip.add("library", [&] {
    return bench::nanoseconds_each(trips, [&] {
      SetEvent(request);
      SafeWaitWithMessageLoop(1, &answer, INFINITE, FALSE, nullptr);
    });
  });
  trip.add("MsgWaitForMultipleObjects", [&] {
    return bench::nanoseconds_each(trips, [&] {
      SetEvent(request);
      MsgWaitForMultipleObjects(1, &answer, FALSE, INFINITE, QS_ALLINPUT);
    });
  });
  trip.run();
  bench::at_most(1.15, trip.ratio("library", "MsgWaitForMultipleObjects"),
                 {.name = "to another thread and back",
                  .compared = "SafeWaitWithMessageLoop for an event, of the time of MsgWaitForMultipleObjects",
                  .reason = "the call of the system that waits for an object and for messages"});

  SetEvent(end);
  other.join();
  for (const HANDLE event : {request, answer, end}) CloseHandle(event);
}

const bench::Benchmark message_pumping_benchmark("messages", measure_message_pumping);
const bench::Benchmark event_round_trip_benchmark("event round trip", measure_event_round_trip);

}  // namespace
