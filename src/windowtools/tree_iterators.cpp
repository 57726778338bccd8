#include <kexlib/windowtools/tree_iterators.h>

kexTreeIterNext::~kexTreeIterNext() = default;

kexTreeIterator kexTreeIterNext::begin() { return {this, next(nullptr)}; }

kexTreeIterator kexTreeIterNext::end() { return {this, nullptr}; }

kexTreeIterSiblings::kexTreeIterSiblings(HWND tree, HTREEITEM first) : first_(first), tree_(tree) {}

HTREEITEM kexTreeIterSiblings::next(HTREEITEM item) {
  if (!item) return first_;
  return reinterpret_cast<HTREEITEM>(SendMessageA(tree_, TVM_GETNEXTITEM, TVGN_NEXT, reinterpret_cast<LPARAM>(item)));
}

kexTreeIterator::kexTreeIterator(kexTreeIterNext* next, HTREEITEM item) : next_(next), item_(item) {}

HTREEITEM kexTreeIterator::operator*() { return item_; }

kexTreeIterator& kexTreeIterator::operator++() {
  item_ = next_->next(item_);
  return *this;
}

bool kexTreeIterator::operator==(const kexTreeIterator& other) const {
  // By design the ends are compared before the policies: a loop stops at the end of any policy.
  if (!item_ && !other.item_) return true;
  return item_ == other.item_ && next_ == other.next_;
}

bool kexTreeIterator::operator!=(const kexTreeIterator& other) const { return !(*this == other); }

kexTreeIterator begin(kexTreeIterNext& next) { return next.begin(); }

kexTreeIterator end(kexTreeIterNext& next) { return next.end(); }
