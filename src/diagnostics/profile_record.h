// The record of a profiling run: for each thread a tree of named blocks with the intervals in which each was open.
//
// It uses no platform call and no lock. Each thread changes only its own ThreadRecord. Two rules make that safe:
//
// - A new thread's record is published by compare-and-swap, so threads may start at any time.
// - A field that its owner writes and the writer of the record reads is Published: at the end of a process Windows
//   kills the other threads at any point, and the record that is then written must be consistent. So every object is
//   complete before the store that makes it reachable.
#ifndef KEXLIB_DIAGNOSTICS_PROFILE_RECORD_H
#define KEXLIB_DIAGNOSTICS_PROFILE_RECORD_H

#include <array>
#include <atomic>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string_view>
#include <utility>

namespace kexlib {

// A field that one thread sets and another may read at any instant. On x86-64 it costs as much as a plain field.
template <class T>
class Published {
 public:
  T get() const { return value_.load(std::memory_order_acquire); }
  void set(T value) { value_.store(value, std::memory_order_release); }

 private:
  std::atomic<T> value_{};
};

// Memory of one thread's record: allocated piece by piece, freed as a whole. An append costs no call of the heap, and
// discarding a million intervals costs a few.
class Arena {
 public:
  Arena() = default;
  ~Arena();
  Arena(const Arena&) = delete;
  Arena& operator=(const Arena&) = delete;

  // `size` bytes, aligned for every type, not initialised. Throws std::bad_alloc.
  void* allocate(std::size_t size) {
    size = (size + alignment - 1) / alignment * alignment;
    if (size > static_cast<std::size_t>(end_ - next_)) add_slab(size);
    return std::exchange(next_, next_ + size);
  }

  // The memory allocated from the heap, in bytes.
  std::size_t size() const { return size_; }

 private:
  static constexpr std::size_t alignment = 16;
  static constexpr std::size_t largest_slab = std::size_t{64} * 1024;

  struct alignas(alignment) Slab {
    Slab* previous;
  };

  void add_slab(std::size_t size);

  char* next_ = nullptr;
  char* end_ = nullptr;
  Slab* newest_ = nullptr;
  std::size_t next_slab_size_ = 2048;
  std::size_t size_ = 0;
};

// One opening of a block, in ticks since the run's time base.
struct Interval {
  std::int64_t begin;
  std::int64_t end;  // 0 while the block is open
};

// Some intervals of a block, in the order of their beginning; a full chunk is followed by one twice as large, up to a
// size of which sixteen fill a slab of the arena.
struct IntervalChunk {
  static constexpr std::uint32_t first_capacity = 2;
  static constexpr std::uint32_t largest_capacity = 254;

  explicit IntervalChunk(std::uint32_t intervals) : capacity(intervals) {}
  Interval* intervals() { return reinterpret_cast<Interval*>(this + 1); }
  const Interval* intervals() const { return reinterpret_cast<const Interval*>(this + 1); }

  Published<IntervalChunk*> next;
  const std::uint32_t capacity;
  Published<std::uint32_t> count;
};

class Block;

// Finds a block among its siblings: open addressing over hash and pointer. Only the owner thread uses it.
class BlockIndex {
 public:
  Block* find(std::uint64_t hash, std::string_view name) const;
  void add(std::uint64_t hash, Block* block, Arena& arena);

  static std::uint64_t hash(std::string_view name);

 private:
  struct Slot {
    std::uint64_t hash;
    Block* block;  // null: free
  };

  void grow(Arena& arena);
  void put(Slot slot);

  // Where a search begins: at the high bits of the hash, which every byte of a name affects.
  std::size_t home(std::uint64_t hash) const { return static_cast<std::size_t>(hash >> shift_); }

  Slot* slots_ = nullptr;
  std::size_t capacity_ = 0;  // a power of two; 0 before the first growth
  std::size_t count_ = 0;
  int shift_ = 64;  // by which a hash becomes a number below the capacity
};

// A name under one parent. The top-level blocks of a thread have its root as parent.
class Block {
 public:
  Block(Block* parent, std::string_view name) : parent_(parent), name_(name) {}
  Block(const Block&) = delete;
  Block& operator=(const Block&) = delete;

  Block* parent() const { return parent_; }
  std::string_view name() const { return name_; }
  const Block* first_child() const { return first_child_.get(); }
  const Block* next_sibling() const { return next_sibling_.get(); }
  const IntervalChunk* first_chunk() const { return first_chunk_.get(); }

  // The child of that name, created if there is none. Most blocks recur in their order, so the one that followed the
  // last child before is tried first.
  Block& child(std::string_view name, Arena& arena);

  void open(std::int64_t begin, Arena& arena) {
    if (!newest_chunk_ || newest_chunk_->count.get() == newest_chunk_->capacity) add_chunk(arena);
    const std::uint32_t count = newest_chunk_->count.get();
    newest_chunk_->intervals()[count] = {begin, 0};
    newest_chunk_->count.set(count + 1);
  }

  // Ends the interval that was opened last; one must have been opened.
  void close(std::int64_t end) { newest_chunk_->intervals()[newest_chunk_->count.get() - 1].end = end; }

 private:
  Block& find_or_add_child(std::string_view name, Arena& arena);
  Block& add_child(std::uint64_t hash, std::string_view name, Arena& arena);
  void add_chunk(Arena& arena);

  Block* const parent_;
  const std::string_view name_;  // the bytes lie in the arena
  BlockIndex children_;
  IntervalChunk* newest_chunk_ = nullptr;
  Block* newest_child_ = nullptr;
  Block* last_child_ = nullptr;  // the one that was asked for last
  Block* follower_ = nullptr;    // the sibling that was asked for after this one
  Published<Block*> first_child_;
  Published<Block*> next_sibling_;
  Published<IntervalChunk*> first_chunk_;
};

// The record of one thread. Aligned so that two threads never write to one cache line.
class alignas(64) ThreadRecord {
 public:
  explicit ThreadRecord(std::uint32_t id) : id_(id) {}
  ThreadRecord(const ThreadRecord&) = delete;
  ThreadRecord& operator=(const ThreadRecord&) = delete;

  std::uint32_t id() const { return id_; }
  const Block* first_block() const { return root_.first_child(); }
  const ThreadRecord* next() const { return next_.load(std::memory_order_acquire); }
  std::size_t memory() const { return sizeof *this + arena_.size(); }

  void begin(std::string_view name, std::int64_t ticks) {
    Block& block = current_->child(name, arena_);
    block.open(ticks, arena_);
    current_ = &block;
  }

  void end(std::int64_t ticks) {
    if (current_ == &root_) return;
    current_->close(ticks);
    current_ = current_->parent();
  }

 private:
  friend class ProfileRecord;

  const std::uint32_t id_;
  Arena arena_;
  Block root_{nullptr, {}};
  Block* current_ = &root_;
  std::array<std::atomic<ThreadRecord*>, 4> branches_{};  // where other ids of the search tree are
  std::atomic<ThreadRecord*> next_{};
};

// All threads of a run, found by id, walked in the order of their first call.
//
// They are found in a digital search tree: each record on the way to an id takes some of its bits, so no way is longer
// than an id has bits, and a new record is a leaf, which one compare-and-swap puts into an empty place.
class ProfileRecord {
 public:
  constexpr ProfileRecord() = default;
  ~ProfileRecord() = default;  // does not free: see clear()
  ProfileRecord(const ProfileRecord&) = delete;
  ProfileRecord& operator=(const ProfileRecord&) = delete;

  // The record of the thread `id`, created if there is none. Call it on that thread.
  ThreadRecord& thread(std::uint32_t id) {
    Way way(id);
    std::atomic<ThreadRecord*>* place = &roots_[way.next(root_count)];
    while (ThreadRecord* const record = place->load(std::memory_order_acquire)) {
      if (record->id_ == id) return *record;
      place = &record->branches_[way.next(record->branches_.size())];
    }
    return add_thread(id, place, way);
  }

  const ThreadRecord* first_thread() const { return first_.load(std::memory_order_acquire); }

  // Memory in use, in bytes.
  std::size_t memory() const;

  // Discards everything. No other thread may be using the record. The destructor does not call it: at the end of a
  // process a killed thread may have left the heap inconsistent, and the system frees the memory.
  void clear();

 private:
  static constexpr std::size_t root_count = 1024;

  // The turns on the way to an id. Windows' thread ids are multiples of four, so the two lowest bits come last.
  class Way {
   public:
    explicit Way(std::uint32_t id) : bits_(std::rotr(id, 2)) {}
    std::size_t next(std::size_t branches) {
      const std::size_t branch = bits_ % branches;
      bits_ /= static_cast<std::uint32_t>(branches);
      return branch;
    }

   private:
    std::uint32_t bits_;
  };

  ThreadRecord& add_thread(std::uint32_t id, std::atomic<ThreadRecord*>* place, Way way);
  void append(ThreadRecord& record);

  std::array<std::atomic<ThreadRecord*>, root_count> roots_{};
  std::atomic<ThreadRecord*> first_{};
  std::atomic<ThreadRecord*> near_last_{};  // the last one, but for those that are being appended
};

namespace bytes {

// Up to eight bytes as a number; equal numbers for equal bytes of equal `size`.
inline std::uint64_t load(const char* data, std::size_t size) {
  const auto read = [&](auto part, std::size_t at) {
    std::memcpy(&part, data + at, sizeof part);
    return std::uint64_t{part};
  };
  if (size >= 8) return read(std::uint64_t{}, 0);
  if (size >= 4) return read(std::uint32_t{}, 0) << 32 | read(std::uint32_t{}, size - 4);
  if (size == 0) return 0;
  return read(std::uint8_t{}, 0) << 16 | read(std::uint8_t{}, size / 2) << 8 | read(std::uint8_t{}, size - 1);
}

// Names are short: this is quicker than a call of memcmp.
inline bool equal(std::string_view a, std::string_view b) {
  if (a.size() != b.size()) return false;
  const char* p = a.data();
  const char* q = b.data();
  const std::size_t size = a.size();
  if (size < 8) return load(p, size) == load(q, size);
  for (std::size_t at = 0; at + 8 < size; at += 8)
    if (load(p + at, 8) != load(q + at, 8)) return false;
  return load(p + size - 8, 8) == load(q + size - 8, 8);
}

// Spreads a number over all bits of another one. The multiplier is 2^64 divided by the golden ratio; it carries each
// bit to the higher ones, the shift carries those back.
inline std::uint64_t mix(std::uint64_t value) {
  value *= 0x9E3779B97F4A7C15;
  return value ^ value >> 32;
}

}  // namespace bytes

inline std::uint64_t BlockIndex::hash(std::string_view name) {
  const char* const data = name.data();
  const std::size_t size = name.size();
  std::uint64_t hash = bytes::mix(size);
  if (size < 8) return bytes::mix(hash ^ bytes::load(data, size));
  for (std::size_t at = 0; at + 8 < size; at += 8) hash = bytes::mix(hash ^ bytes::load(data + at, 8));
  return bytes::mix(hash ^ bytes::load(data + size - 8, 8));
}

inline Block* BlockIndex::find(std::uint64_t hash, std::string_view name) const {
  if (capacity_ == 0) return nullptr;
  const std::size_t mask = capacity_ - 1;
  for (std::size_t at = home(hash);; at = (at + 1) & mask) {
    const Slot& slot = slots_[at];
    if (!slot.block) return nullptr;
    if (slot.hash == hash && bytes::equal(slot.block->name(), name)) return slot.block;
  }
}

inline Block& Block::child(std::string_view name, Arena& arena) {
  Block* const expected = last_child_ ? last_child_->follower_ : nullptr;
  if (expected && bytes::equal(expected->name(), name)) return *(last_child_ = expected);
  Block& child = find_or_add_child(name, arena);
  if (last_child_) last_child_->follower_ = &child;
  return *(last_child_ = &child);
}

}  // namespace kexlib

#endif
