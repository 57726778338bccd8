#include <support/bench.h>

void measure_blocks();
void measure_record();
void measure_trace_line();

int main() {
  measure_blocks();
  measure_record();
  measure_trace_line();
  return bench::exit_status();
}
