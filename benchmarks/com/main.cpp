#include <support/bench.h>

void measure_guid_order();

int main() {
  measure_guid_order();
  return bench::exit_status();
}
