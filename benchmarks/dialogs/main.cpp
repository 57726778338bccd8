#include <support/bench.h>

void measure_task_dialog();

int main() {
  measure_task_dialog();
  return bench::exit_status();
}
