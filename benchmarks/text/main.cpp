#include <support/bench.h>

void measure_forbidden_symbols();
void measure_tip_name();
void measure_walk();

int main() {
  measure_forbidden_symbols();
  measure_tip_name();
  measure_walk();
  return bench::exit_status();
}
