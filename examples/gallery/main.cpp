// The gallery shows what is in kexlib, a page for each unit.
//
//     gallery                        opens it
//     gallery --tour                 goes through all pages by itself, and writes what it sees into the current folder
//     gallery --tour --page TITLE    the same for those pages only that have this in their title
//
// The exit status is 0, 1 where the tour saw something that was not as promised, or 2 where it cannot start.
#include <frame.h>
#include <tour.h>

#include <cstdio>
#include <cstring>
#include <thread>

namespace {

constexpr int not_as_promised = 1, cannot_start = 2;

WTL::CAppModule module_state;

int refuse(const char* why) {
  std::fprintf(stderr, "gallery: %s\n", why);
  return cannot_start;
}

bool can_write_here() {
  const HANDLE file =
      CreateFileA("gallery.tmp", GENERIC_WRITE, 0, nullptr, CREATE_NEW, FILE_FLAG_DELETE_ON_CLOSE, nullptr);
  if (file == INVALID_HANDLE_VALUE) return false;
  CloseHandle(file);
  return true;
}

// `page` is null where there is to be no tour.
int run(HINSTANCE texts, const char* page) {
  gallery::Frame frame;
  WTL::CMessageLoop loop;
  module_state.AddMessageLoop(&loop);
  loop.AddMessageFilter(&frame);
  loop.AddIdleHandler(&frame);
  if (!frame.open(texts)) return refuse("there is no display to open a window on.");

  bool as_promised = true;
  std::thread user;
  if (page)
    user = std::thread([&, window = frame.m_hWnd] {
      as_promised = gallery::Tour(window).run(page);
      PostMessageA(window, WM_CLOSE, 0, 0);
      if (!as_promised) ExitProcess(not_as_promised);  // a dialog may be open that nobody closes any more
    });
  loop.Run();
  if (user.joinable()) user.join();
  module_state.RemoveMessageLoop();
  return as_promised ? 0 : not_as_promised;
}

}  // namespace

int main(int count, char** arguments) {
  const bool with_tour = count > 1 && std::strcmp(arguments[1], "--tour") == 0;
  const bool of_some_pages = count == 4 && std::strcmp(arguments[2], "--page") == 0;
  if (count > 1 && !(with_tour && (count == 2 || of_some_pages)))
    return refuse("it knows the arguments --tour and --tour --page TITLE.");
  const char* const page = of_some_pages ? arguments[3] : with_tour ? "" : nullptr;
  const HINSTANCE texts = LoadLibraryA("gallery_strings.dll");
  if (!texts) return refuse("gallery_strings.dll, which has its texts, is missing.");
  if (!can_write_here()) return refuse("the current folder cannot be written to.");

  OleInitialize(nullptr);
  module_state.Init(nullptr, GetModuleHandleA(nullptr));
  const int status = run(texts, page);
  module_state.Term();
  OleUninitialize();
  return status;
}
