#include <support/bench.h>

void measure_window_by_name();
void measure_cell_text();

int main() {
  measure_window_by_name();
  measure_cell_text();
  return bench::exit_status();
}
