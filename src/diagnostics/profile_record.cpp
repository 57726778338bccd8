#include <diagnostics/profile_record.h>

#include <algorithm>
#include <bit>
#include <new>

namespace kexlib {

Arena::~Arena() {
  while (newest_) ::operator delete(std::exchange(newest_, newest_->previous));
}

void Arena::add_slab(std::size_t size) {
  const std::size_t slab_size = std::max(next_slab_size_, sizeof(Slab) + size);
  char* const memory = static_cast<char*>(::operator new(slab_size));
  newest_ = new (memory) Slab{newest_};
  next_ = memory + sizeof(Slab);
  end_ = memory + slab_size;
  next_slab_size_ = std::min(next_slab_size_ * 2, largest_slab);
  size_ += slab_size;
}

void BlockIndex::add(std::uint64_t hash, Block* block, Arena& arena) {
  if ((count_ + 1) * 4 > capacity_ * 3) grow(arena);
  put({hash, block});
  ++count_;
}

void BlockIndex::grow(Arena& arena) {
  const std::size_t capacity = std::max<std::size_t>(8, capacity_ * 2);
  Slot* const slots = static_cast<Slot*>(arena.allocate(capacity * sizeof(Slot)));
  std::fill_n(slots, capacity, Slot{});
  const Slot* const old_slots = std::exchange(slots_, slots);
  const std::size_t old_capacity = std::exchange(capacity_, capacity);
  shift_ = 64 - std::countr_zero(capacity);
  for (std::size_t i = 0; i < old_capacity; ++i)
    if (old_slots[i].block) put(old_slots[i]);
}

void BlockIndex::put(Slot slot) {
  const std::size_t mask = capacity_ - 1;
  std::size_t at = home(slot.hash);
  while (slots_[at].block) at = (at + 1) & mask;
  slots_[at] = slot;
}

Block& Block::find_or_add_child(std::string_view name, Arena& arena) {
  const std::uint64_t hash = BlockIndex::hash(name);
  Block* const found = children_.find(hash, name);
  return found ? *found : add_child(hash, name, arena);
}

Block& Block::add_child(std::uint64_t hash, std::string_view name, Arena& arena) {
  char* const memory = static_cast<char*>(arena.allocate(sizeof(Block) + name.size()));
  char* const text = memory + sizeof(Block);
  std::copy(name.begin(), name.end(), text);
  Block* const block = new (memory) Block(this, {text, name.size()});
  children_.add(hash, block, arena);
  (newest_child_ ? newest_child_->next_sibling_ : first_child_).set(block);
  newest_child_ = block;
  return *block;
}

void Block::add_chunk(Arena& arena) {
  const std::uint32_t capacity = newest_chunk_ ? std::min(newest_chunk_->capacity * 2, IntervalChunk::largest_capacity)
                                               : IntervalChunk::first_capacity;
  void* const memory = arena.allocate(sizeof(IntervalChunk) + capacity * sizeof(Interval));
  IntervalChunk* const chunk = new (memory) IntervalChunk(capacity);
  (newest_chunk_ ? newest_chunk_->next : first_chunk_).set(chunk);
  newest_chunk_ = chunk;
}

ThreadRecord& ProfileRecord::add_thread(std::uint32_t id, std::atomic<ThreadRecord*>* place, Way way) {
  ThreadRecord* const record = new ThreadRecord(id);
  ThreadRecord* taken_by = nullptr;
  while (!place->compare_exchange_strong(taken_by, record, std::memory_order_acq_rel)) {
    place = &taken_by->branches_[way.next(taken_by->branches_.size())];
    taken_by = nullptr;
  }
  append(*record);
  return *record;
}

void ProfileRecord::append(ThreadRecord& record) {
  ThreadRecord* last = near_last_.load(std::memory_order_acquire);
  std::atomic<ThreadRecord*>* end = last ? &last->next_ : &first_;
  last = nullptr;
  while (!end->compare_exchange_strong(last, &record, std::memory_order_acq_rel)) {
    end = &last->next_;
    last = nullptr;
  }
  near_last_.store(&record, std::memory_order_release);
}

std::size_t ProfileRecord::memory() const {
  std::size_t size = 0;
  for (const ThreadRecord* thread = first_thread(); thread; thread = thread->next()) size += thread->memory();
  return size;
}

void ProfileRecord::clear() {
  ThreadRecord* thread = first_.exchange(nullptr);
  near_last_.store(nullptr, std::memory_order_relaxed);
  for (auto& root : roots_) root.store(nullptr, std::memory_order_relaxed);
  while (thread) delete std::exchange(thread, thread->next_.load(std::memory_order_relaxed));
}

}  // namespace kexlib
