#include <support/bench.h>

void measure_guid_order();
void measure_type_library_scan();

int main() {
  measure_guid_order();
  measure_type_library_scan();
  return bench::exit_status();
}
