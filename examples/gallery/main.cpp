// The gallery shows every unit of kexlib on a page of its own.
//
//     gallery                        opens the gallery
//     gallery --tour                 runs the tour of all pages; writes pictures and results to the current folder
//     gallery --tour --page TITLE    runs the tour of the pages whose title contains TITLE
//
// The exit status is 0 on success, 1 if a check of the tour failed, or 2 if the gallery cannot start.
#include <gallery/application.h>
#include <gallery/tour.h>

#include <cstdio>
#include <cstring>

int main(int count, char** arguments) {
  const bool with_tour = count > 1 && std::strcmp(arguments[1], "--tour") == 0;
  const bool of_some_pages = count == 4 && std::strcmp(arguments[2], "--page") == 0;
  if (count > 1 && !(with_tour && (count == 2 || of_some_pages))) {
    std::fprintf(stderr, "gallery: it knows the arguments --tour and --tour --page TITLE.\n");
    return gallery::cannot_start;
  }
  if (!with_tour) return gallery::run(nullptr);
  const char* const page = of_some_pages ? arguments[3] : "";
  return gallery::run([page](HWND frame) { return gallery::Tour(frame).run(page); });
}
