#include <support/bench.h>

void measure_buffer();
void measure_pixel_effects();
void measure_png();

int main() {
  measure_buffer();
  measure_pixel_effects();
  measure_png();
  return bench::exit_status();
}
