#include <support/bench.h>

void measure_window_by_name();

int main() {
  measure_window_by_name();
  return bench::exit_status();
}
