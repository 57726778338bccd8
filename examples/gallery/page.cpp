#include <gallery/page.h>

#include <algorithm>
#include <cstring>
#include <tuple>

namespace gallery {

namespace {

std::vector<PageEntry>& registered() {
  static std::vector<PageEntry> entries;
  return entries;
}

HFONT make_heading_font() {
  LOGFONT description{};
  ::GetObject(::GetStockObject(DEFAULT_GUI_FONT), sizeof description, &description);
  description.lfHeight = description.lfHeight * 3 / 2;
  description.lfWeight = FW_BOLD;
  return ::CreateFontIndirect(&description);
}

}  // namespace

CString text_of(HWND window) {
  const int length = ::GetWindowTextLength(window);
  CString text;
  ::GetWindowText(window, text.GetBuffer(length), length + 1);
  text.ReleaseBuffer();
  return text;
}

CString text_of_file(const CString& path) {
  constexpr DWORD most = 64 * 1024;
  const HANDLE file =
      ::CreateFile(path, GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr, OPEN_EXISTING, 0, nullptr);
  if (file == INVALID_HANDLE_VALUE) return {};
  std::string text(most, '\0');
  DWORD got = 0;
  if (!::ReadFile(file, text.data(), most, &got, nullptr)) got = 0;
  ::CloseHandle(file);
  return CString(text.data(), static_cast<int>(got));
}

Page::~Page() {
  if (heading_font_) ::DeleteObject(heading_font_);
}

bool Page::open(HWND parent, const char* title, const char* words) {
  RECT place;
  ::GetClientRect(parent, &place);
  if (!Create(parent, place, title, WS_CHILD | WS_VISIBLE | WS_CLIPCHILDREN, WS_EX_CONTROLPARENT)) return false;
  heading_font_ = make_heading_font();
  add(WC_STATIC, title, SS_NOPREFIX, -1, 600).SetFont(heading_font_);
  new_line(0);
  add(WC_STATIC, words, SS_NOPREFIX, -1, 600, 2 * 16);
  new_line();
  add_controls();
  return true;
}

ATL::CWindow Page::add(const char* window_class, const char* text, DWORD style, int id, int width, int height) {
  const RECT place = take_place(width, height);
  const HWND control = ::CreateWindowEx(0, window_class, text, WS_CHILD | WS_VISIBLE | style, place.left, place.top,
                                        width, height, m_hWnd, reinterpret_cast<HMENU>(static_cast<INT_PTR>(id)),
                                        ATL::_AtlBaseModule.GetModuleInstance(), nullptr);
  ATL::CWindow window(control);
  window.SetFont(static_cast<HFONT>(::GetStockObject(DEFAULT_GUI_FONT)));
  return window;
}

void Page::add_label(const char* text, int width) { add(WC_STATIC, text, SS_CENTERIMAGE, -1, width); }

void Page::new_line(int space) {
  next_ = {margin, line_bottom_ + space};
  line_bottom_ = next_.y;
}

RECT Page::take_place(int width, int height) {
  const RECT place{next_.x, next_.y, next_.x + width, next_.y + height};
  next_.x = place.right + gap;
  line_bottom_ = std::max(line_bottom_, static_cast<int>(place.bottom));
  return place;
}

CString Page::text_of(int id) const { return gallery::text_of(GetDlgItem(id)); }

const std::vector<PageEntry>& pages() {
  static const std::vector<PageEntry> sorted = [] {
    // In the order of the documentation's list of families.
    constexpr const char* families[] = {"diagnostics", "messageloop", "com",      "imaging",
                                        "text",        "windowtools", "controls", "dialogs"};
    const auto place = [&](const PageEntry& entry) {
      return std::find_if(std::begin(families), std::end(families),
                          [&](const char* family) { return std::strcmp(family, entry.family) == 0; });
    };
    std::vector<PageEntry> entries = registered();
    std::sort(entries.begin(), entries.end(), [&](const PageEntry& left, const PageEntry& right) {
      return std::tuple(place(left), std::string(left.title)) < std::tuple(place(right), std::string(right.title));
    });
    return entries;
  }();
  return sorted;
}

Registration::Registration(const char* family, const char* title, const char* words, std::unique_ptr<Page> (*make)(),
                           void (*tour)(Tour& user)) {
  registered().push_back({family, title, words, make, tour});
}

}  // namespace gallery
