// The profiler: work in named blocks on two threads, recorded while Record > Profile is checked.
#include <kexlib/diagnostics.h>

#include <gallery/page.h>
#include <gallery/tour.h>

#include <thread>

namespace {

enum { id_work = 100, id_show, id_record };

// Not a kexProfileScope, which would switch profiling on: on this page, the menu does.
class Block {
 public:
  explicit Block(const char* name) { kex_begin_block(name); }
  Block(const Block&) = delete;
  Block& operator=(const Block&) = delete;
  ~Block() { kex_end_block(); }
};

double sum_of_terms(int count) {
  double sum = 0;
  for (int i = 1; i <= count; ++i) sum += 1.0 / i / i;
  return sum;
}

double load() {
  constexpr int parts = 3, terms = 200'000;
  const Block block("load");
  double sum = 0;
  for (int part = 0; part < parts; ++part) {
    const Block inner("parse");
    sum += sum_of_terms(terms);
  }
  const Block last("check");
  return sum + sum_of_terms(terms);
}

class ProfilerPage : public gallery::Page {
 public:
  BEGIN_MSG_MAP(ProfilerPage)
    COMMAND_ID_HANDLER(id_work, OnWork)
    COMMAND_ID_HANDLER(id_show, OnShow)
  END_MSG_MAP()

 private:
  void add_controls() override {
    add_label("Check Record > Profile, let some work be done, and uncheck it again: that writes profiler.js.", 600);
    new_line();
    add(WC_BUTTON, "&Do some work", WS_TABSTOP, id_work, 120);
    add(WC_BUTTON, "&Show the record", WS_TABSTOP, id_show, 120);
    new_line();
    add(WC_EDIT, "", WS_TABSTOP | WS_BORDER | WS_VSCROLL | ES_READONLY | ES_MULTILINE, id_record, 600, 280);
  }

  LRESULT OnWork(WORD, WORD, HWND, BOOL&) {
    const Block block("work");
    double background = 0;
    std::thread worker([&background] {
      const Block outermost("background");
      background = load();
    });
    const double foreground = load();
    worker.join();  // the record must not be written while other calls run
    set_text(id_record, foreground == background ? "Both threads are done." : "The threads differ.");
    return 0;
  }

  LRESULT OnShow(WORD, WORD, HWND, BOOL&) {
    const CString record = gallery::text_of_file("profiler.js");
    set_text(id_record, record.GetLength() ? record : CString("There is no record yet."));
    return 0;
  }
};

int count_of(const std::string& part, const std::string& text) {
  int count = 0;
  for (size_t at = text.find(part); at != std::string::npos; at = text.find(part, at + 1)) ++count;
  return count;
}

void tour(gallery::Tour& user) {
  const auto record = [&] { return user.text(id_record); };
  user.click(id_work);
  user.check_text(id_record, "Both threads are done.");
  user.choose_from_menu('R', 'P');
  user.click(id_work);
  user.check_text(id_record, "Both threads are done.");
  user.choose_from_menu('R', 'P');
  user.click(id_show);
  user.check("the record has two threads", [&] { return count_of("name: 'Thread ", record()) == 2; });
  user.check("each of them has its own block, and those of the work in it", [&] {
    return count_of("name: 'work'", record()) == 1 && count_of("name: 'background'", record()) == 1 &&
           count_of("name: 'parse'", record()) == 2 && count_of("name: 'check'", record()) == 2;
  });
  user.check("what was done before the switch is not in it", [&] { return count_of("{b: ", record()) == 2 * 6; });
  user.take_picture("profiler");
  user.tell_of_file("profiler.js");
}

const gallery::Registration profiler{
    "diagnostics", "Profiler",
    "Times named blocks of work, thread by thread, and writes them as a script for a viewer page.",
    gallery::make<ProfilerPage>, tour};

}  // namespace
