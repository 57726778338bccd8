#include <support/bench.h>

void measure_number_text();

int main() {
  measure_number_text();
  return bench::exit_status();
}
