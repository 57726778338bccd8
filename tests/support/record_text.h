// Profile records as texts, for the tests of what is written.
#ifndef TESTS_SUPPORT_RECORD_TEXT_H
#define TESTS_SUPPORT_RECORD_TEXT_H

#include <diagnostics/profile_writer.h>
#include <support/c_library.h>

#include <cstdint>
#include <locale>
#include <memory>
#include <ostream>
#include <sstream>
#include <string>
#include <vector>

// A record that its destructor clears, as the library clears its own when it is unloaded.
struct OwnRecord : kexlib::ProfileRecord {
  ~OwnRecord() { clear(); }
};

class StringSink final : public kexlib::ByteSink {
 public:
  void write(std::string_view text) override { text_ += text; }
  const std::string& text() const { return text_; }

 private:
  std::string text_;
};

inline std::string written(const kexlib::ProfileRecord& record, double ticks_per_second = 1000) {
  StringSink sink;
  kexlib::write_profile(record, ticks_per_second, sink);
  return sink.text();
}

// The record in its simplest form: vectors, recursion, a stream. The library's must equal it byte for byte.
class SimpleRecord {
 public:
  void begin(std::uint32_t thread_id, const std::string& name, std::int64_t ticks) {
    Thread& thread = this->thread(thread_id);
    auto& siblings = thread.open.empty() ? thread.blocks : thread.open.back()->children;
    Block* block = nullptr;
    for (auto& sibling : siblings)
      if (sibling->name == name) block = sibling.get();
    if (!block) {
      siblings.push_back(std::make_unique<Block>());
      block = siblings.back().get();
      block->name = name;
    }
    block->intervals.push_back({ticks, 0});
    thread.open.push_back(block);
  }

  void end(std::uint32_t thread_id, std::int64_t ticks) {
    Thread& thread = this->thread(thread_id);
    if (thread.open.empty()) return;
    thread.open.back()->intervals.back().end = ticks;
    thread.open.pop_back();
  }

  void write(std::ostream& stream, double ticks_per_second) const {
    stream.imbue(std::locale::classic());
    stream << "var threads = [\n";
    for (const auto& thread : threads_) {
      stream << "{\n";
      write(stream, thread->blocks, "  ", ticks_per_second);
      stream << "  name: 'Thread " << thread->id << "'\n},\n";
    }
    stream << "]\n";
  }

  std::string text(double ticks_per_second) const {
    std::ostringstream stream;
    write(stream, ticks_per_second);
    return stream.str();
  }

 private:
  struct Block {
    std::string name;
    std::vector<kexlib::Interval> intervals;
    std::vector<std::unique_ptr<Block>> children;
  };

  struct Thread {
    std::uint32_t id;
    std::vector<std::unique_ptr<Block>> blocks;
    std::vector<Block*> open;
  };

  Thread& thread(std::uint32_t id) {
    for (auto& thread : threads_)
      if (thread->id == id) return *thread;
    threads_.push_back(std::make_unique<Thread>());
    threads_.back()->id = id;
    return *threads_.back();
  }

  static void write(std::ostream& stream, const std::vector<std::unique_ptr<Block>>& blocks, const std::string& indent,
                    double ticks_per_second) {
    if (blocks.empty()) return;
    stream << indent << "blocks: [\n";
    for (const auto& block : blocks) {
      stream << indent << "  {\n" << indent << "    name: '" << block->name << "',\n";
      write(stream, block->children, indent + "    ", ticks_per_second);
      stream << indent << "    time: [";
      for (const kexlib::Interval& interval : block->intervals)
        stream << "{b: " << milliseconds(interval.begin, ticks_per_second)
               << ", e: " << milliseconds(interval.end, ticks_per_second) << "},";
      stream << "]\n" << indent << "  },\n";
    }
    stream << indent << "],\n";
  }

  // As a stream prints them rightly, by the C library.
  static double milliseconds(std::int64_t ticks, double ticks_per_second) {
    return c_library::rightly_printed(static_cast<double>(ticks) * 1000.0 / ticks_per_second);
  }

  std::vector<std::unique_ptr<Thread>> threads_;
};

#endif
