#include <support/bench.h>

void measure_buffer();
void measure_pixel_effects();

int main() {
  measure_buffer();
  measure_pixel_effects();
  return bench::exit_status();
}
