#include <kexlib/windowtools/combo_list_utils.h>

#include <cstring>

namespace {

// Null if there is not enough memory.
char* buffer_of(CStringA& text, int room) {
  try {
    return text.GetBuffer(room);
  } catch (CException* exception) {
    exception->Delete();
    return nullptr;
  }
}

// Returns the length that the control reports. The control need not terminate the text: the buffer has one character
// more than `room` for that.
//
// The system's call, not that of the control's class, which asserts the window first: here the system looks for it, and
// answers 0 if it is gone. noexcept as that one is: no exception of a window procedure passes through the system.
int read(HWND list, int item, int subitem, char* buffer, int room) noexcept {
  buffer[0] = 0;  // in case the window does not reply
  LVITEMA cell{};
  cell.iSubItem = subitem;
  cell.pszText = buffer;
  cell.cchTextMax = room;
  const LRESULT length =
      SendMessageA(list, LVM_GETITEMTEXTA, static_cast<WPARAM>(item), reinterpret_cast<LPARAM>(&cell));
  buffer[room] = 0;
  return static_cast<int>(length);
}

// A text that fills the buffer may have been truncated.
bool is_whole(int length, int room) { return length < room - 1; }

}  // namespace

void kexWTLComboBoxUtils::populate(const std::vector<CStringA>& items) {
  if (!combo_.IsWindow()) return;
  combo_.ResetContent();
  for (const CStringA& item : items) combo_.AddString(item);
}

CStringA kexWTLListViewCtrlUtils::get_item_text(int item, int subitem) {
  constexpr int short_room = 256;
  char short_text[short_room + 1];  // most texts then need one allocation of their exact size
  const bool is_short = is_whole(read(list_, item, subitem, short_text, short_room), short_room);
  CStringA text;
  const int length = static_cast<int>(std::strlen(short_text));
  char* const whole = buffer_of(text, length);
  if (!whole) return text;
  std::memcpy(whole, short_text, static_cast<size_t>(length));
  text.ReleaseBufferSetLength(length);
  if (is_short) return text;
  for (int room = 2 * short_room; char* const buffer = buffer_of(text, room); room *= 2)
    if (is_whole(read(list_, item, subitem, buffer, room), room)) break;
  text.ReleaseBuffer();
  return text;
}

std::vector<int> kexWTLListViewCtrlUtils::get_selection() {
  std::vector<int> rows;
  // The window may be destroyed meanwhile; the answer to the message that destroys it is 0, which is a row.
  for (int last = -1; list_.IsWindow();) {
    const int row = list_.GetNextItem(last, LVNI_SELECTED);
    if (row <= last) break;
    rows.push_back(last = row);
  }
  return rows;
}
