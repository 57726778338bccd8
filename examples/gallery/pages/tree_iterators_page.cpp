// Tree iterators: range loops over the items of a tree view, in the order of a policy.
#include <kexlib/windowtools.h>

#include <gallery/page.h>
#include <gallery/tour.h>

#include <algorithm>
#include <string>

namespace {

enum { id_tree = 100, id_siblings, id_all, id_items, id_result };

// All descendants of an item, parents before their children.
class DepthFirst : public kexTreeIterNext {
 public:
  explicit DepthFirst(WTL::CTreeViewCtrl tree) : tree_(tree) {}

 protected:
  HTREEITEM next(HTREEITEM item) override {
    if (!item) return tree_.GetRootItem();
    if (const HTREEITEM child = tree_.GetChildItem(item)) return child;
    for (; item; item = tree_.GetNextItem(item, TVGN_PARENT))
      if (const HTREEITEM sibling = tree_.GetNextSiblingItem(item)) return sibling;
    return nullptr;
  }

 private:
  WTL::CTreeViewCtrl tree_;
};

class TreeIteratorsPage : public gallery::Page {
 public:
  BEGIN_MSG_MAP(TreeIteratorsPage)
    COMMAND_ID_HANDLER(id_siblings, OnSiblings)
    COMMAND_ID_HANDLER(id_all, OnAll)
  END_MSG_MAP()

 private:
  void add_controls() override {
    tree_ = add(WC_TREEVIEW, "",
                WS_TABSTOP | WS_BORDER | TVS_HASBUTTONS | TVS_HASLINES | TVS_LINESATROOT | TVS_SHOWSELALWAYS, id_tree,
                260, 240);
    add(WC_EDIT, "", WS_TABSTOP | WS_BORDER | ES_READONLY | ES_MULTILINE, id_items, 260, 240);
    new_line();
    add(WC_BUTTON, "Selected item and &siblings", WS_TABSTOP, id_siblings, 180);
    add(WC_BUTTON, "&All items", WS_TABSTOP, id_all, 100);
    add(WC_STATIC, "", SS_CENTERIMAGE, id_result, 200);

    const HTREEITEM fruit = insert("Fruit", TVI_ROOT), berries = insert("Berries", fruit);
    for (const char* name : {"Currant", "Gooseberry"}) insert(name, berries);
    insert("Apple", fruit);
    insert("Pear", fruit);
    insert("Leek", insert("Vegetables", TVI_ROOT));
    DepthFirst all(tree_);
    for (HTREEITEM item : all) tree_.SendMessage(TVM_EXPAND, TVE_EXPAND, reinterpret_cast<LPARAM>(item));
    tree_.SendMessage(TVM_SELECTITEM, TVGN_CARET, reinterpret_cast<LPARAM>(berries));
  }

  HTREEITEM insert(const char* text, HTREEITEM parent) { return tree_.InsertItem(text, parent, TVI_LAST); }

  LRESULT OnSiblings(WORD, WORD, HWND, BOOL&) {
    kexTreeIterSiblings siblings(tree_, tree_.GetNextItem(nullptr, TVGN_CARET));
    list(siblings);
    return 0;
  }

  LRESULT OnAll(WORD, WORD, HWND, BOOL&) {
    DepthFirst all(tree_);
    list(all);
    return 0;
  }

  void list(kexTreeIterNext& way) {
    CString lines;
    for (HTREEITEM item : way) {
      char text[100];
      if (tree_.GetItemText(item, text, sizeof text)) lines += CString(text) + "\r\n";
    }
    set_text(id_items, lines);
    // The algorithms of the standard library accept the iterators too.
    set_text(id_result, ("Items: " + std::to_string(std::distance(way.begin(), way.end()))).c_str());
  }

  WTL::CTreeViewCtrl tree_;
};

void tour(gallery::Tour& user) {
  user.click(id_all);
  user.check_text(id_items, "Fruit\r\nBerries\r\nCurrant\r\nGooseberry\r\nApple\r\nPear\r\nVegetables\r\nLeek\r\n");
  user.check_text(id_result, "Items: 8");

  // Selects the second item, which two siblings follow, with the keyboard.
  user.click(id_tree);
  user.press(VK_HOME);
  user.press(VK_DOWN);
  user.click(id_siblings);
  user.check_text(id_items, "Berries\r\nApple\r\nPear\r\n");
  user.check_text(id_result, "Items: 3");
  user.take_picture("tree_iterators");

  user.click(id_tree);
  user.press(VK_END);
  user.click(id_siblings);
  user.check_text(id_items, "Leek\r\n");
  user.check_text(id_result, "Items: 1");
}

const gallery::Registration tree_iterators{"windowtools", "Tree iterators",
                                           "Range loops over the items of a tree view: along the siblings of one, or "
                                           "any way that a policy of one's own tells.",
                                           gallery::make<TreeIteratorsPage>, tour};

}  // namespace
