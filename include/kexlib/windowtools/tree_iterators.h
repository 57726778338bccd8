// Tree iterators: range loops over the items of a tree view.
//
//     kexTreeIterSiblings siblings(tree, tree.GetChildItem(folder));
//     for (HTREEITEM item : siblings) ...
//
// A policy, derived from kexTreeIterNext, defines the order; kexTreeIterSiblings walks the siblings that follow an
// item. Your own policy overrides `next`: it returns the first item for null, and null after the last.
//
// Iterators keep a pointer to their policy, which must outlive them. Each step queries the control, so items that are
// inserted or removed during the walk are seen as the control reports them. The current item must not be removed before
// the step. A destroyed window ends the walk.
//
// Algorithms of the standard library that read each item once (std::distance, std::find, std::for_each) accept the
// iterators. There is no postfix `++`.
//
// Threads. Call on the thread of the tree's window.
#ifndef KEXLIB_WINDOWTOOLS_TREE_ITERATORS_H
#define KEXLIB_WINDOWTOOLS_TREE_ITERATORS_H

#include <kexlib/export.h>
#include <kexlib/windows.h>

#include <commctrl.h>

#include <cstddef>
#include <iterator>

class kexTreeIterator;

/// A policy: the order of a walk.
class KEXLIB_API kexTreeIterNext {
 public:
  /// Does nothing.
  kexTreeIterNext() = default;
  /// Nothing to copy.
  kexTreeIterNext(const kexTreeIterNext&) = default;
  /// Nothing to copy.
  kexTreeIterNext& operator=(const kexTreeIterNext&) = default;

  /// The first item of the walk for null, otherwise the item after `item`; null at the end.
  virtual HTREEITEM next(HTREEITEM item) = 0;

  /// Does nothing.
  virtual ~kexTreeIterNext();

  /// An iterator at the first item.
  kexTreeIterator begin();
  /// The end of the walk.
  kexTreeIterator end();
};

/// An item and the siblings that follow it.
class KEXLIB_API kexTreeIterSiblings : public kexTreeIterNext {
 public:
  /// Begins with `first`, an item of the control `tree`; if it is null, the walk is empty.
  kexTreeIterSiblings(HWND tree, HTREEITEM first);
  /// Copies both.
  kexTreeIterSiblings(const kexTreeIterSiblings&) = default;
  /// Copies both.
  kexTreeIterSiblings& operator=(const kexTreeIterSiblings&) = default;

 protected:
  /// The next sibling (TVM_GETNEXTITEM, TVGN_NEXT).
  HTREEITEM next(HTREEITEM item) override;

 private:
  HTREEITEM first_;
  HWND tree_;
};

/// A position in a walk.
class KEXLIB_API kexTreeIterator {
 public:
  using iterator_category = std::input_iterator_tag;  ///< for the standard library, like the four below
  using value_type = HTREEITEM;                       ///< the items
  using difference_type = std::ptrdiff_t;             ///< a number of steps
  using pointer = const HTREEITEM*;                   ///< not used
  using reference = HTREEITEM;                        ///< by value

  /// A position at `item` in the walk of `next`, which is borrowed; null is the end.
  kexTreeIterator(kexTreeIterNext* next, HTREEITEM item);

  /// The item; null at the end.
  HTREEITEM operator*();

  /// Moves to the next item of the policy. At the end it must not be called: the walk would begin again.
  kexTreeIterator& operator++();

  /// All ends are equal, whatever their policies. Other positions are equal if item and policy object are the same.
  bool operator==(const kexTreeIterator& other) const;
  /// The negation.
  bool operator!=(const kexTreeIterator& other) const;

 private:
  kexTreeIterNext* next_;
  HTREEITEM item_;
};

/// Returns next.begin().
KEXLIB_API kexTreeIterator begin(kexTreeIterNext& next);
/// Returns next.end().
KEXLIB_API kexTreeIterator end(kexTreeIterNext& next);

#endif
