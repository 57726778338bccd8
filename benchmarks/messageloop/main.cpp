#include <support/bench.h>

void measure_message_pumping();
void measure_event_round_trip();
void measure_ten_thousand_timers();

int main() {
  measure_message_pumping();
  measure_event_round_trip();
  measure_ten_thousand_timers();
  return bench::exit_status();
}
