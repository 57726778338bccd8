// The gallery shows what is in kexlib, a page for each unit.
//
//     gallery                        opens it
//     gallery --tour                 goes through all pages by itself, and writes what it sees into the current folder
//     gallery --tour --page TITLE    the same for those pages only that have this in their title
//
// The exit status is 0, 1 where the tour saw something that was not as promised, or 2 where it cannot start.
#include <application.h>
#include <tour.h>

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
