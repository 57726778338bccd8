// GUIDs: generated at the first read access, as text with and without braces, and sorted.
#include <kexlib/com.h>

#include <gallery/page.h>
#include <gallery/tour.h>

#include <set>

namespace {

enum { id_make = 100, id_braced, id_plain, id_sort, id_sorted };

class GuidPage : public gallery::Page {
 public:
  BEGIN_MSG_MAP(GuidPage)
    COMMAND_ID_HANDLER(id_make, OnMake)
    COMMAND_ID_HANDLER(id_sort, OnSort)
  END_MSG_MAP()

 private:
  void add_controls() override {
    add(WC_BUTTON, "&Make one", WS_TABSTOP, id_make, 120);
    add(WC_EDIT, "", WS_TABSTOP | WS_BORDER | ES_READONLY, id_braced, 300);
    new_line();
    take_place(120);
    add(WC_EDIT, "", WS_TABSTOP | WS_BORDER | ES_READONLY, id_plain, 300);
    new_line(24);
    add(WC_BUTTON, "&Sort three", WS_TABSTOP, id_sort, 120);
    add(WC_EDIT, "", WS_TABSTOP | WS_BORDER | ES_READONLY | ES_MULTILINE, id_sorted, 300, 56);
  }

  LRESULT OnMake(WORD, WORD, HWND, BOOL&) {
    const kexGUID braced(kexWithBraces);
    set_text(id_braced, braced.get_str());  // generates the value
    set_text(id_plain, kexGUID(braced.get_GUID()).get_str());
    return 0;
  }

  // The order is that of the sixteen bytes in memory, not of the texts.
  LRESULT OnSort(WORD, WORD, HWND, BOOL&) {
    std::set<GUID, kexLessGUID> sorted;
    for (const char* text : {"00000100-0000-0000-0000-000000000000", "00000002-0000-0000-0000-000000000000",
                             "00000001-0000-0000-0000-000000000000"})
      sorted.insert(kexGUID(CString(text)).get_GUID());
    CString lines;
    for (const GUID& guid : sorted) lines += kexGUID(guid).get_str() + "\r\n";
    set_text(id_sorted, lines);
    return 0;
  }
};

void tour(gallery::Tour& user) {
  user.click(id_make);
  user.check("a GUID with braces has 38 characters",
             [&] { return user.text(id_braced).size() == 38 && user.text(id_braced).front() == '{'; });
  user.check("the same without braces", [&] { return '{' + user.text(id_plain) + '}' == user.text(id_braced); });
  user.click(id_sort);
  user.check_text(id_sorted,
                  "00000100-0000-0000-0000-000000000000\r\n00000001-0000-0000-0000-000000000000\r\n"
                  "00000002-0000-0000-0000-000000000000\r\n");
  user.take_picture("guid");
}

const gallery::Registration guid{
    "com", "GUIDs",
    "A GUID gets its value when it is first read. Its text may have braces; its order is that of its bytes.",
    gallery::make<GuidPage>, tour};

}  // namespace
