#include <support/bench.h>

void measure_bitmap_button();
void measure_control_groups();
void measure_number_text();
void measure_numeric_edit_box();

int main() {
  measure_number_text();
  measure_numeric_edit_box();
  measure_bitmap_button();
  measure_control_groups();
  return bench::exit_status();
}
