#define _WTL_NO_AUTOMATIC_NAMESPACE
#include <gtest/gtest.h>

#include <kexlib/windowtools/tree_iterators.h>

#include <atlbase.h>
#include <atlapp.h>
#include <atlctrls.h>

#include <algorithm>
#include <vector>

namespace {

using Items = std::vector<HTREEITEM>;

class TreeIterators : public testing::Test {
 protected:
  TreeIterators() {
    tree_ = CreateWindowA(WC_TREEVIEWA, "", WS_POPUP, 0, 0, 100, 100, nullptr, nullptr, nullptr, nullptr);
    root_ = add(TVI_ROOT);
    for (HTREEITEM& child : children_) child = add(root_);
    add(children_[0]);
    last_root_ = add(TVI_ROOT);
  }
  ~TreeIterators() override { DestroyWindow(tree_); }

  HTREEITEM add(HTREEITEM parent, HTREEITEM after = TVI_LAST) { return tree_.InsertItem("item", parent, after); }

  static Items walk(kexTreeIterNext& policy) {
    Items items;
    for (HTREEITEM item : policy) items.push_back(item);
    return items;
  }

  WTL::CTreeViewCtrlT<ATL::CWindow> tree_;
  HTREEITEM root_;
  HTREEITEM last_root_;
  HTREEITEM children_[3];
};

TEST_F(TreeIterators, WalkTheSiblingsFromTheFirstOneOn) {
  kexTreeIterSiblings all(tree_, children_[0]);
  EXPECT_EQ(walk(all), (Items{children_[0], children_[1], children_[2]}));
  kexTreeIterSiblings from_second(tree_, children_[1]);
  EXPECT_EQ(walk(from_second), (Items{children_[1], children_[2]}));
  kexTreeIterSiblings roots(tree_, root_);
  EXPECT_EQ(walk(roots), (Items{root_, last_root_}));
  EXPECT_EQ(walk(all).size(), 3u);  // again, from the beginning
}

TEST_F(TreeIterators, WalkNothingFromNull) {
  kexTreeIterSiblings nothing(tree_, nullptr);
  EXPECT_EQ(walk(nothing), Items{});
  EXPECT_TRUE(nothing.begin() == nothing.end());
}

TEST_F(TreeIterators, SeeItemsThatAreInsertedDuringTheWalk) {
  kexTreeIterSiblings siblings(tree_, children_[0]);
  Items items;
  HTREEITEM between = nullptr;
  for (HTREEITEM item : siblings) {
    if (item == children_[1]) {
      between = add(root_, children_[1]);
      add(root_, TVI_FIRST);
    }
    items.push_back(item);
  }
  EXPECT_EQ(items, (Items{children_[0], children_[1], between, children_[2]}));
}

TEST_F(TreeIterators, MissItemsThatAreRemovedDuringTheWalk) {
  kexTreeIterSiblings siblings(tree_, children_[0]);
  Items items;
  for (HTREEITEM item : siblings) {
    if (item == children_[0]) tree_.DeleteItem(children_[1]);
    items.push_back(item);
  }
  EXPECT_EQ(items, (Items{children_[0], children_[2]}));
}

TEST_F(TreeIterators, EndWhenTheTreeIsDestroyed) {
  kexTreeIterSiblings siblings(tree_, children_[0]);
  Items items;
  for (HTREEITEM item : siblings) {
    DestroyWindow(tree_);
    items.push_back(item);
  }
  EXPECT_EQ(items, Items{children_[0]});
}

TEST_F(TreeIterators, AreEqualAtTheEndWhateverTheirPolicies) {
  kexTreeIterSiblings one(tree_, children_[0]);
  kexTreeIterSiblings other(tree_, children_[0]);
  EXPECT_TRUE(one.end() == other.end());
  EXPECT_FALSE(one.end() != other.end());
  EXPECT_TRUE(kexTreeIterator(nullptr, nullptr) == one.end());
  int steps = 0;
  for (kexTreeIterator it = one.begin(); it != other.end(); ++it) ++steps;
  EXPECT_EQ(steps, 3);
}

TEST_F(TreeIterators, AreEqualAtAnItemOnlyWithTheSamePolicyObject) {
  kexTreeIterSiblings one(tree_, children_[0]);
  kexTreeIterSiblings same(one);
  EXPECT_TRUE(one.begin() == one.begin());
  EXPECT_FALSE(one.begin() != one.begin());
  EXPECT_FALSE(one.begin() == same.begin());
  EXPECT_TRUE(one.begin() != same.begin());
  EXPECT_FALSE(one.begin() == ++one.begin());
  EXPECT_FALSE(one.begin() == one.end());
  EXPECT_FALSE(one.end() == one.begin());
}

TEST_F(TreeIterators, GiveTheirItemAndTheirOwnReferenceWhenTheyStep) {
  kexTreeIterSiblings siblings(tree_, children_[0]);
  kexTreeIterator it = siblings.begin();
  EXPECT_EQ(*it, children_[0]);
  EXPECT_EQ(&++it, &it);
  EXPECT_EQ(*it, children_[1]);
  kexTreeIterator copy(it);
  ++it;
  EXPECT_EQ(*copy, children_[1]);
  copy = it;
  EXPECT_EQ(*copy, children_[2]);
  EXPECT_EQ(*++copy, nullptr);
}

TEST_F(TreeIterators, AreGivenByFreeFunctionsToo) {
  kexTreeIterSiblings siblings(tree_, children_[1]);
  EXPECT_TRUE(begin(siblings) == siblings.begin());
  EXPECT_TRUE(end(siblings) == siblings.end());
  EXPECT_EQ(*begin(siblings), children_[1]);
}

TEST_F(TreeIterators, WorkInAlgorithms) {
  kexTreeIterSiblings siblings(tree_, children_[0]);
  EXPECT_EQ(std::distance(siblings.begin(), siblings.end()), 3);
  EXPECT_TRUE(std::find(siblings.begin(), siblings.end(), children_[1]) == ++siblings.begin());
  EXPECT_TRUE(std::find(siblings.begin(), siblings.end(), root_) == siblings.end());
  EXPECT_EQ(std::count(siblings.begin(), siblings.end(), children_[2]), 1);
  EXPECT_EQ(Items(siblings.begin(), siblings.end()), (Items{children_[0], children_[1], children_[2]}));
}

TEST_F(TreeIterators, CopyTheirPolicies) {
  kexTreeIterSiblings one(tree_, children_[1]);
  kexTreeIterSiblings other(nullptr, nullptr);
  other = one;
  EXPECT_EQ(walk(other), (Items{children_[1], children_[2]}));
}

// The definitions that an application adds.
class Children : public kexTreeIterNext {
 public:
  Children(WTL::CTreeViewCtrlT<ATL::CWindow> tree, HTREEITEM parent) : tree_(tree), parent_(parent) {}
  HTREEITEM next(HTREEITEM item) override {
    return item ? tree_.GetNextSiblingItem(item) : tree_.GetChildItem(parent_);
  }

 private:
  WTL::CTreeViewCtrlT<ATL::CWindow> tree_;
  HTREEITEM parent_;
};

TEST_F(TreeIterators, WalkAsAPolicyOfTheApplicationSays) {
  Children children(tree_, root_);
  EXPECT_EQ(walk(children), (Items{children_[0], children_[1], children_[2]}));
  Children none(tree_, children_[2]);
  EXPECT_EQ(walk(none), Items{});
}

}  // namespace
