#include <kexlib/windowtools/combo_list_utils.h>

#include <afx.h>

#include <cstring>

namespace {

// Null where there is no such room.
char* buffer_of(CStringA& text, int room) {
  try {
    return text.GetBuffer(room);
  } catch (CException* exception) {
    exception->Delete();
    return nullptr;
  }
}

// The length that the control tells, and a text in the buffer that ends, at its end if not before. The buffer has room
// for the terminator beyond `room`.
int read(const WTL::CListViewCtrlT<ATL::CWindow>& list, int item, int subitem, char* buffer, int room) {
  buffer[0] = 0;  // for a window that does not answer
  const int length = list.GetItemText(item, subitem, buffer, room);
  buffer[room] = 0;
  return length;
}

// A text that fills the buffer may have been cut.
bool is_whole(int length, int room) { return length < room - 1; }

}  // namespace

void kexWTLComboBoxUtils::populate(const std::vector<CStringA>& items) {
  combo_.ResetContent();
  for (const CStringA& item : items) combo_.AddString(item);
}

CStringA kexWTLListViewCtrlUtils::get_item_text(int item, int subitem) {
  constexpr int short_room = 256;
  char short_text[short_room + 1];  // no more than one allocation for most texts, and just as large as they are
  const bool is_short = is_whole(read(list_, item, subitem, short_text, short_room), short_room);
  CStringA text(short_text, static_cast<int>(std::strlen(short_text)));
  if (is_short) return text;
  for (int room = 2 * short_room; char* const buffer = buffer_of(text, room); room *= 2)
    if (is_whole(read(list_, item, subitem, buffer, room), room)) break;
  text.ReleaseBuffer();
  return text;
}

std::vector<int> kexWTLListViewCtrlUtils::get_selection() {
  std::vector<int> rows;
  if (!list_.IsWindow()) return rows;  // it would be answered 0, which is a row
  // Each row comes after the one before: a window that is destroyed meanwhile answers 0 for ever.
  for (int last = -1, row; (row = list_.GetNextItem(last, LVNI_SELECTED)) > last; last = row) rows.push_back(row);
  return rows;
}
