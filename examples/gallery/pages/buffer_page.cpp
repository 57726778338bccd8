// The byte buffer: the user fills and closes it; a reader on another thread waits until it is closed and writes a file.
#include <kexlib/imaging/buffer.h>

#include <gallery/page.h>
#include <gallery/tour.h>

#include <thread>

namespace {

enum { id_text = 100, id_write, id_close, id_new, id_state, id_reader, id_archive };

constexpr char file[] = "buffer.txt";
constexpr UINT message_read = WM_APP;

class BufferPage : public gallery::Page {
 public:
  BEGIN_MSG_MAP(BufferPage)
    COMMAND_ID_HANDLER(id_write, OnWrite)
    COMMAND_ID_HANDLER(id_close, OnClose)
    COMMAND_ID_HANDLER(id_new, OnNew)
    MESSAGE_HANDLER(message_read, OnRead)
    MESSAGE_HANDLER(WM_DESTROY, OnDestroy)
  END_MSG_MAP()

 private:
  void add_controls() override {
    constexpr int label = 80, wide = 460, button = 100;
    add_label("&Text:", label);
    add(WC_EDIT, "one,", WS_TABSTOP | WS_BORDER | ES_AUTOHSCROLL, id_text, 200);
    new_line();
    take_place(label);
    add(WC_BUTTON, "&Write", WS_TABSTOP, id_write, button);
    add(WC_BUTTON, "&Close", WS_TABSTOP, id_close, button);
    add(WC_BUTTON, "&New buffer", WS_TABSTOP, id_new, button);
    new_line(24);
    for (const auto& [name, id] : {std::pair{"Buffer:", id_state}, {"Reader:", id_reader}, {"Archive:", id_archive}}) {
      add_label(name, label);
      add(WC_STATIC, "", SS_NOPREFIX | SS_CENTERIMAGE, id, wide);
      new_line();
    }
    begin();
  }

  // Creates a buffer, and a reader that waits until it is closed.
  void begin() {
    buffer_ = kexBuffer_create();
    reader_ = std::thread([buffer = buffer_, page = m_hWnd] {
      buffer->write_to_file(file);  // waits until the buffer is closed
      ::PostMessage(page, message_read, 0, 0);
    });
    show_state();
    set_text(id_reader, "Waits until the buffer is closed.");
    set_text(id_archive, "");
  }

  // The reader waits without a time-out: the buffer must be closed before the thread is joined.
  void end() {
    buffer_->close();
    reader_.join();
  }

  void show_state() {
    CString state;
    state.Format("%s, size() is %llu.", buffer_->is_closed() ? "Closed" : "Open", buffer_->size());
    set_text(id_state, state);
  }

  void show_archive() {
    CMemFile memory;
    CArchive archive(&memory, CArchive::store);
    buffer_->serialize(archive);
    archive.Close();
    memory.SeekToBegin();
    CString bytes;
    for (BYTE byte = 0; memory.Read(&byte, 1) == 1;) {
      CString text;
      text.Format("%02X ", byte);
      bytes += text;
    }
    set_text(id_archive, bytes);
  }

  LRESULT OnWrite(WORD, WORD, HWND, BOOL&) {
    const CString text = text_of(id_text);
    if (!buffer_->is_closed()) buffer_->write(text.GetString(), static_cast<unsigned>(text.GetLength()));
    show_state();
    return 0;
  }

  LRESULT OnClose(WORD, WORD, HWND, BOOL&) {
    buffer_->close();
    show_state();
    show_archive();
    return 0;
  }

  LRESULT OnNew(WORD, WORD, HWND, BOOL&) {
    end();
    begin();
    return 0;
  }

  LRESULT OnRead(UINT, WPARAM, LPARAM, BOOL&) {
    // The message of the previous buffer's reader may arrive late.
    if (buffer_->is_closed()) set_text(id_reader, "Has written the file: " + gallery::text_of_file(file));
    return 0;
  }

  LRESULT OnDestroy(UINT, WPARAM, LPARAM, BOOL& handled) {
    end();
    handled = FALSE;
    return 0;
  }

  std::shared_ptr<kexBuffer> buffer_;
  std::thread reader_;
};

void tour(gallery::Tour& user) {
  user.check_text(id_state, "Open, size() is 0.");
  user.click(id_write);
  user.write(id_text, "two");
  user.click(id_write);
  user.check_text(id_state, "Open, size() is 0.");
  user.check_text(id_reader, "Waits until the buffer is closed.");
  user.click(id_close);
  user.check_text(id_state, "Closed, size() is 7.");
  user.check_text(id_reader, "Has written the file: one,two");
  user.check_text(id_archive, "07 00 00 00 6F 6E 65 2C 74 77 6F ");
  user.take_picture("buffer");
  user.click(id_new);
  user.check_text(id_state, "Open, size() is 0.");
  user.check_text(id_reader, "Waits until the buffer is closed.");
  user.click(id_close);
  user.check_text(id_state, "Closed, size() is 0.");
  user.check_text(id_archive, "00 00 00 00 ");
  user.tell_of_file(file);
}

const gallery::Registration buffer{
    "imaging", "Byte buffer",
    "One thread writes bytes and closes the buffer. Others wait until it is closed, and read it.",
    gallery::make<BufferPage>, tour};

}  // namespace
