// Tree iterators: walks through the items of a tree view, in range loops.
//
//     kexTreeIterSiblings siblings(tree, tree.GetChildItem(folder));
//     for (HTREEITEM item : siblings) ...
//
// A policy, derived from kexTreeIterNext, says how to get from one item to the next; kexTreeIterSiblings takes the
// siblings that follow an item. Others are a line: give the first item for null, and null after the last.
//
// Iterators keep a pointer to their policy, which must outlive them. Each step asks the tree: items that are inserted
// or removed during the walk are seen as the control tells of them at that moment, but the item that the walk stands on
// must not be removed before the step. A window that is destroyed ends the walk.
//
// Algorithms of the standard library that read each item once (std::distance, std::find, std::for_each) take them too;
// there is no `it++`.
//
// Threads. For the thread of the tree's window.
#ifndef KEXLIB_WINDOWTOOLS_TREE_ITERATORS_H
#define KEXLIB_WINDOWTOOLS_TREE_ITERATORS_H

#include <windows.h>

#include <commctrl.h>

#include <kexlib/export.h>

#include <cstddef>
#include <iterator>

class kexTreeIterator;

/// A policy: what follows what.
class KEXLIB_API kexTreeIterNext {
 public:
  /// Does nothing.
  kexTreeIterNext() = default;
  /// Nothing to copy.
  kexTreeIterNext(const kexTreeIterNext&) = default;
  /// Nothing to copy.
  kexTreeIterNext& operator=(const kexTreeIterNext&) = default;

  /// The first item of the walk for null, else the one that follows `item`; null where there is none.
  virtual HTREEITEM next(HTREEITEM item) = 0;

  /// Does nothing.
  virtual ~kexTreeIterNext();

  /// At the first item.
  kexTreeIterator begin();
  /// Behind the last item.
  kexTreeIterator end();
};

/// An item, and its siblings that follow it.
class KEXLIB_API kexTreeIterSiblings : public kexTreeIterNext {
 public:
  /// From `first` on, which belongs to the window `tree`; null for no items at all.
  kexTreeIterSiblings(HWND tree, HTREEITEM first);
  /// The same walk.
  kexTreeIterSiblings(const kexTreeIterSiblings&) = default;
  /// The same walk.
  kexTreeIterSiblings& operator=(const kexTreeIterSiblings&) = default;

 protected:
  /// The next sibling (TVM_GETNEXTITEM, TVGN_NEXT).
  HTREEITEM next(HTREEITEM item) override;

 private:
  HTREEITEM first_;
  HWND tree_;
};

/// A place in a walk.
class KEXLIB_API kexTreeIterator {
 public:
  using iterator_category = std::input_iterator_tag;  ///< for the standard library, like the four below
  using value_type = HTREEITEM;                       ///< what the walk gives
  using difference_type = std::ptrdiff_t;             ///< a number of steps
  using pointer = const HTREEITEM*;                   ///< not used
  using reference = HTREEITEM;                        ///< by value

  /// At an item of the walk of `next`, which is borrowed; null for its end.
  kexTreeIterator(kexTreeIterNext* next, HTREEITEM item);

  /// The item; null at the end.
  HTREEITEM operator*();

  /// Goes on to the next item, which the policy tells. Not at the end, where the policy would begin anew.
  kexTreeIterator& operator++();

  /// All ends are equal, whatever their policies. Other places are where they have the same item and the same policy
  /// object.
  bool operator==(const kexTreeIterator& other) const;
  /// The opposite.
  bool operator!=(const kexTreeIterator& other) const;

 private:
  kexTreeIterNext* next_;
  HTREEITEM item_;
};

/// As next.begin().
KEXLIB_API kexTreeIterator begin(kexTreeIterNext& next);
/// As next.end().
KEXLIB_API kexTreeIterator end(kexTreeIterNext& next);

#endif
