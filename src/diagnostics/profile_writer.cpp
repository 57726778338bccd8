#include <diagnostics/profile_writer.h>
#include <diagnostics/six_digits.h>

#include <algorithm>
#include <charconv>
#include <cstring>

namespace kexlib {
namespace {

// Gathers small pieces of text into large ones.
class TextBuffer {
 public:
  explicit TextBuffer(ByteSink& sink) : sink_(sink) {}

  void append(std::string_view text) {
    if (text.size() > room()) {
      flush();
      if (text.size() > sizeof buffer_) return sink_.write(text);
    }
    std::memcpy(next_, text.data(), text.size());
    next_ += text.size();
  }

  void append_spaces(std::size_t count) {
    while (count > 0) {
      if (room() == 0) flush();
      const std::size_t part = std::min(count, room());
      std::memset(next_, ' ', part);
      next_ += part;
      count -= part;
    }
  }

  void append_unsigned(std::uint32_t number) {
    reserve(10);
    next_ = std::to_chars(next_, buffer_ + sizeof buffer_, number).ptr;
  }

  void append_interval(double begin, double end) {
    reserve(2 * six_digits_size + 16);
    append_literal("{b: ");
    next_ = write_six_digits(next_, begin);
    append_literal(", e: ");
    next_ = write_six_digits(next_, end);
    append_literal("},");
  }

  void flush() {
    sink_.write({buffer_, static_cast<std::size_t>(next_ - buffer_)});
    next_ = buffer_;
  }

 private:
  std::size_t room() const { return static_cast<std::size_t>(buffer_ + sizeof buffer_ - next_); }

  void reserve(std::size_t size) {
    if (size > room()) flush();
  }

  template <std::size_t size>
  void append_literal(const char (&text)[size]) {
    std::memcpy(next_, text, size - 1);
    next_ += size - 1;
  }

  ByteSink& sink_;
  char buffer_[32 * 1024];  // on the stack: at the end of a process the heap may be locked for ever
  char* next_ = buffer_;
};

class ProfileWriter {
 public:
  ProfileWriter(double ticks_per_second, ByteSink& sink) : text_(sink), ticks_per_second_(ticks_per_second) {}

  void write(const ProfileRecord& record) {
    text_.append("var threads = [\n");
    for (const ThreadRecord* thread = record.first_thread(); thread; thread = thread->next()) write_thread(*thread);
    text_.append("]\n");
    text_.flush();
  }

 private:
  void write_thread(const ThreadRecord& thread) {
    text_.append("{\n");
    if (const Block* const first = thread.first_block()) write_blocks(*first);
    text_.append("  name: 'Thread ");
    text_.append_unsigned(thread.id());
    text_.append("'\n},\n");
  }

  // A list of blocks with all their descendants: down to the first child, else on to the next sibling, else up.
  void write_blocks(const Block& first) {
    std::size_t indent = 2;
    const Block* const parent = first.parent();
    const Block* block = &first;
    begin_list(indent);
    for (;;) {
      begin_block(*block, indent);
      if (const Block* const child = block->first_child()) {
        indent += 4;
        begin_list(indent);
        block = child;
        continue;
      }
      end_block(*block, indent);
      while (!block->next_sibling()) {
        end_list(indent);
        block = block->parent();
        if (block == parent) return;
        indent -= 4;
        end_block(*block, indent);
      }
      block = block->next_sibling();
    }
  }

  void begin_list(std::size_t indent) { line(indent, "blocks: [\n"); }

  void end_list(std::size_t indent) { line(indent, "],\n"); }

  void begin_block(const Block& block, std::size_t indent) {
    line(indent, "  {\n");
    line(indent, "    name: '");
    text_.append(block.name());  // by design without escaping: readers use names unchanged
    text_.append("',\n");
  }

  void end_block(const Block& block, std::size_t indent) {
    line(indent, "    time: [");
    for (const IntervalChunk* chunk = block.first_chunk(); chunk; chunk = chunk->next.get()) {
      const Interval* const intervals = chunk->intervals();
      for (std::uint32_t i = 0, count = chunk->count.get(); i < count; ++i)
        text_.append_interval(milliseconds(intervals[i].begin), milliseconds(intervals[i].end));
    }
    text_.append("]\n");
    line(indent, "  },\n");
  }

  void line(std::size_t indent, std::string_view text) {
    text_.append_spaces(indent);
    text_.append(text);
  }

  // Multiplied first: the other order results in other digits.
  double milliseconds(std::int64_t ticks) const { return static_cast<double>(ticks) * 1000.0 / ticks_per_second_; }

  TextBuffer text_;
  const double ticks_per_second_;
};

}  // namespace

void write_profile(const ProfileRecord& record, double ticks_per_second, ByteSink& sink) {
  ProfileWriter(ticks_per_second, sink).write(record);
}

}  // namespace kexlib
