// PNG on a worker thread: the user's drawing is encoded into a buffer. The page waits for the buffer and archives it.
#include <kexlib/imaging.h>

#include <gallery/page.h>
#include <gallery/tour.h>

#include <iterator>

namespace {

enum { id_canvas = 100, id_clear, id_encode, id_decoded, id_sizes };

constexpr int width = 300, height = 200;
constexpr char png_file[] = "drawing.png", archive_file[] = "drawing.archive";
constexpr COLORREF paper = RGB(255, 252, 240);
constexpr COLORREF inks[] = {RGB(200, 40, 40), RGB(40, 90, 200), RGB(30, 150, 50)};
constexpr int radius = 12;

// A picture to draw on.
class Drawing : public kexWTLDIB {
 public:
  void dot(int x, int y, COLORREF ink) {
    const HGDIOBJ brush = ::SelectObject(m_dc, ::GetStockObject(DC_BRUSH));
    const HGDIOBJ pen = ::SelectObject(m_dc, ::GetStockObject(NULL_PEN));
    ::SetDCBrushColor(m_dc, ink);
    ::Ellipse(m_dc, x - radius, y - radius, x + radius, y + radius);
    ::SelectObject(m_dc, pen);
    ::SelectObject(m_dc, brush);
  }
  void paint(WTL::CDC& to) { copy_to_dc(&to, 0, 0); }
  // Returns a copy for the encoder.
  std::unique_ptr<hnDuctImage> image() const { return std::unique_ptr<hnDuctImage>(rq_duct_image_from_dib(m_bitmap)); }
};

// The drawing area: a click draws a dot in the next colour; dragging draws a line of dots.
class Canvas : public ATL::CWindowImpl<Canvas> {
 public:
  DECLARE_WND_CLASS_EX("kexlib_gallery_canvas", 0, COLOR_WINDOW)

  void clear() {
    drawing_.Fill(paper);
    ink_ = 0;
    Invalidate(FALSE);
  }
  const Drawing& drawing() const { return drawing_; }

  BEGIN_MSG_MAP(Canvas)
    MESSAGE_HANDLER(WM_CREATE, OnCreate)
    MESSAGE_HANDLER(WM_PAINT, OnPaint)
    MESSAGE_HANDLER(WM_LBUTTONDOWN, OnPress)
    MESSAGE_HANDLER(WM_MOUSEMOVE, OnMove)
    MESSAGE_HANDLER(WM_LBUTTONUP, OnRelease)
  END_MSG_MAP()

 private:
  LRESULT OnCreate(UINT, WPARAM, LPARAM, BOOL&) {
    drawing_.create(width, height);
    clear();
    return 0;
  }
  LRESULT OnPaint(UINT, WPARAM, LPARAM, BOOL&) {
    WTL::CPaintDC dc(m_hWnd);
    drawing_.paint(dc);
    return 0;
  }
  LRESULT OnPress(UINT, WPARAM, LPARAM place, BOOL&) {
    SetCapture();
    dot(place);
    return 0;
  }
  LRESULT OnMove(UINT, WPARAM buttons, LPARAM place, BOOL&) {
    if ((buttons & MK_LBUTTON) && ::GetCapture() == m_hWnd) dot(place);
    return 0;
  }
  LRESULT OnRelease(UINT, WPARAM, LPARAM, BOOL&) {
    if (::GetCapture() != m_hWnd) return 0;
    ::ReleaseCapture();
    ink_ = (ink_ + 1) % std::size(inks);
    return 0;
  }
  void dot(LPARAM place) {
    drawing_.dot(static_cast<short>(LOWORD(place)), static_cast<short>(HIWORD(place)), inks[ink_]);
    Invalidate(FALSE);
  }

  Drawing drawing_;
  size_t ink_ = 0;
};

class PngThreadPage : public gallery::Page {
 public:
  BEGIN_MSG_MAP(PngThreadPage)
    COMMAND_ID_HANDLER(id_clear, OnClear)
    COMMAND_ID_HANDLER(id_encode, OnEncode)
    MESSAGE_HANDLER(WM_DESTROY, OnDestroy)
  END_MSG_MAP()

 private:
  void add_controls() override {
    constexpr int space = 16;
    add(WC_STATIC, "Draw with the mouse:", 0, -1, width, 16);
    take_place(space, 0);
    add(WC_STATIC, "What the file holds:", 0, -1, width, 16);
    new_line(4);
    RECT place = take_place(width, height);
    canvas_.Create(m_hWnd, place, nullptr, WS_CHILD | WS_VISIBLE, 0, static_cast<UINT>(id_canvas));
    take_place(space, 0);
    decoded_.get_static().Attach(add(WC_STATIC, "", SS_BITMAP, id_decoded, width, height));
    new_line();
    add(WC_BUTTON, "&Encode", WS_TABSTOP, id_encode, 100);
    add(WC_BUTTON, "&Clear", WS_TABSTOP, id_clear, 100);
    new_line(16);
    add(WC_STATIC, "", 0, id_sizes, 500, 4 * 16);
  }

  LRESULT OnClear(WORD, WORD, HWND, BOOL&) {
    canvas_.clear();
    decoded_.SetBitmap(nullptr);
    set_text(id_sizes, "");
    return 0;
  }

  LRESULT OnEncode(WORD, WORD, HWND, BOOL&) {
    const auto buffer = kexBuffer_create();
    kexPNGGenerationThread worker(canvas_.drawing().image(), png_file, buffer);
    worker.Resume();
    const bool is_stored = store(*buffer);
    worker.Join(INFINITE);
    decoded_.set_bitmap_from_file(png_file);
    if (is_stored)
      show_sizes(buffer->size());
    else
      set_text(id_sizes, "The archive could not be written.");
    return 0;
  }

  // Waits until the buffer is closed. Returns false if it cannot be stored.
  static bool store(kexBuffer& buffer) try {
    CFile file(archive_file, CFile::modeCreate | CFile::modeWrite);
    CArchive archive(&file, CArchive::store);
    buffer.serialize(archive);
    archive.Close();
    return true;
  } catch (CException* failure) {
    failure->Delete();
    return false;
  }

  void show_sizes(unsigned __int64 encoded) {
    CFile file(archive_file, CFile::modeRead);
    CArchive archive(&file, CArchive::load);
    const auto loaded = kexBuffer::create_from_archive(archive);
    CString sizes;
    sizes.Format(
        "%d x %d pixels: %d bytes\r\nas PNG: %llu bytes\r\nin the archive: %llu bytes\r\nout of it: %llu bytes", width,
        height, width * height * 4, encoded, file.GetLength(), loaded->size());
    set_text(id_sizes, sizes);
  }

  // The destructor would not delete a copy that the control still shows.
  LRESULT OnDestroy(UINT, WPARAM, LPARAM, BOOL& handled) {
    decoded_.SetBitmap(nullptr);
    handled = FALSE;
    return 0;
  }

  Canvas canvas_;
  wbzStaticBitmapTemplate<WTL::CStatic> decoded_;
};

unsigned long long size_of_file(const char* path) {
  WIN32_FILE_ATTRIBUTE_DATA data{};
  GetFileAttributesExA(path, GetFileExInfoStandard, &data);
  return data.nFileSizeLow;
}

void tour(gallery::Tour& user) {
  constexpr POINT places[] = {{60, 60}, {150, 120}, {240, 70}};
  const auto color = [&](int id, POINT place) { return gallery::Tour::color_at(user.control(id), place.x, place.y); };

  user.click(id_clear);
  for (const POINT place : places) user.click(user.control(id_canvas), place.x, place.y);
  for (size_t i = 0; i < std::size(places); ++i)
    user.check("each click leaves a dot, in the next colour", [&] { return color(id_canvas, places[i]) == inks[i]; });

  user.click(id_encode);
  user.wait_until("the sizes", [&] { return !user.text(id_sizes).empty(); });
  for (size_t i = 0; i < std::size(places); ++i)
    user.check("the file has the dot", [&] { return color(id_decoded, places[i]) == inks[i]; });
  user.check("the file has the paper", [&] { return color(id_decoded, {2, 2}) == paper; });

  const unsigned long long bytes = size_of_file(png_file);
  CString sizes;
  sizes.Format(
      "300 x 200 pixels: 240000 bytes\r\nas PNG: %llu bytes\r\nin the archive: %llu bytes\r\nout of it: %llu bytes",
      bytes, bytes + sizeof(DWORD), bytes);
  user.check_text(id_sizes, sizes.GetString());
  user.check("a PNG of three dots is small", [&] { return bytes > 0 && bytes < 10'000; });
  user.check("the archive is the length and the bytes",
             [&] { return size_of_file(archive_file) == bytes + sizeof(DWORD); });
  user.take_picture("png_thread");
  user.tell_of_file(png_file);
  user.tell_of_file(archive_file);
}

const gallery::Registration png_thread{
    "imaging", "PNG on a thread",
    "A worker thread encodes a picture into a buffer and a file. Others wait for the buffer, and archive it.",
    gallery::make<PngThreadPage>, tour};

}  // namespace
