// The wrappers of the system's controls, with real controls.
#include <gtest/gtest.h>

#include <atlbase.h>
#include <atlapp.h>
#include <atlctrls.h>
#include <atlmisc.h>

#include <support/resource_counts.h>

#include <string>

namespace {

class Parent : public CWindowImpl<Parent, CWindow, CFrameWinTraits> {
 public:
  BEGIN_MSG_MAP(Parent)
    COMMAND_CODE_HANDLER(BN_CLICKED, OnClicked)
  END_MSG_MAP()
  LRESULT OnClicked(WORD, WORD id, HWND, BOOL&) {
    clicked = id;
    return 0;
  }
  WORD clicked = 0;
};

class Controls : public testing::Test {
 protected:
  void SetUp() override {
    INITCOMMONCONTROLSEX classes{sizeof classes, ICC_STANDARD_CLASSES | ICC_LISTVIEW_CLASSES | ICC_TREEVIEW_CLASSES};
    InitCommonControlsEx(&classes);
    RECT place{0, 0, 300, 300};
    ASSERT_TRUE(parent.Create(nullptr, place));
  }
  void TearDown() override { parent.DestroyWindow(); }

  template <typename Control>
  void make(Control& control, DWORD style = 0) {
    RECT place{10, 10, 110, 110};
    ASSERT_TRUE(control.Create(parent, place, "", WS_CHILD | style, 0, 17U));
    char name[64];
    GetClassName(control, name, sizeof name);
    EXPECT_STRCASEEQ(name, Control::GetWndClassName());
    EXPECT_EQ(control.GetDlgCtrlID(), 17);
  }

  Parent parent;
};

TEST_F(Controls, Button) {
  CButton button;
  make(button, BS_AUTOCHECKBOX);
  EXPECT_EQ(button.GetCheck(), BST_UNCHECKED);
  button.SetCheck(BST_CHECKED);
  EXPECT_EQ(button.GetCheck(), BST_CHECKED);
  EXPECT_EQ(button.GetState() & BST_PUSHED, 0u);
  button.SendMessage(BM_SETSTATE, TRUE);
  EXPECT_EQ(button.GetState() & BST_PUSHED, UINT{BST_PUSHED});
  button.SendMessage(BM_SETSTATE, FALSE);
  button.SendMessage(BM_CLICK);
  EXPECT_EQ(parent.clicked, 17);
  EXPECT_EQ(button.GetCheck(), BST_UNCHECKED);
}

TEST_F(Controls, Edit) {
  CEdit edit;
  make(edit);
  edit.SetWindowText("hello world");
  char line[260] = {};
  EXPECT_EQ(edit.GetLine(0, line, sizeof line), 11);
  EXPECT_STREQ(line, "hello world");

  char little[8] = "???????";
  EXPECT_EQ(edit.GetLine(0, little, 5), 5);
  EXPECT_EQ(std::string(little, 6), "hello?") << "no terminator, and nothing beyond the room";
}

TEST_F(Controls, StaticShowsABitmapAndGivesTheOneOfBeforeBack) {
  CStatic picture;
  make(picture, SS_BITMAP);
  EXPECT_EQ(picture.GetBitmap(), nullptr);
  CBitmap first(CreateBitmap(4, 4, 1, 24, nullptr)), second(CreateBitmap(4, 4, 1, 24, nullptr));
  EXPECT_EQ(picture.SetBitmap(first), nullptr);
  EXPECT_EQ(picture.GetBitmap(), first.m_hBitmap);
  EXPECT_EQ(picture.SetBitmap(second), first.m_hBitmap);
  EXPECT_EQ(picture.SetBitmap(nullptr), second.m_hBitmap);
}

TEST_F(Controls, ComboBox) {
  CComboBox combo;
  make(combo, CBS_DROPDOWNLIST | WS_VSCROLL);
  EXPECT_EQ(combo.GetCount(), 0);
  EXPECT_EQ(combo.GetCurSel(), CB_ERR);
  EXPECT_EQ(combo.AddString("one"), 0);
  EXPECT_EQ(combo.AddString("three"), 1);
  EXPECT_EQ(combo.GetCount(), 2);
  char text[10];
  EXPECT_EQ(combo.GetLBTextLen(1), 5);
  EXPECT_EQ(combo.GetLBText(1, text), 5);
  EXPECT_STREQ(text, "three");
  EXPECT_EQ(combo.GetLBTextLen(2), CB_ERR);
  EXPECT_EQ(combo.SetCurSel(1), 1);
  EXPECT_EQ(combo.GetCurSel(), 1);
  EXPECT_GT(combo.GetItemHeight(0), 0);
  EXPECT_EQ(combo.GetItemHeight(-1), combo.SendMessage(CB_GETITEMHEIGHT, static_cast<WPARAM>(-1)));
  EXPECT_EQ(combo.SetDroppedWidth(300), 300);
  EXPECT_EQ(combo.GetDroppedWidth(), 300);
  combo.ResetContent();
  EXPECT_EQ(combo.GetCount(), 0);
}

TEST_F(Controls, ListView) {
  CListViewCtrl list;
  make(list, LVS_REPORT);
  EXPECT_EQ(list.InsertColumn(0, "Name", LVCFMT_LEFT, 120), 0);
  EXPECT_EQ(list.InsertColumn(1, "Size", LVCFMT_RIGHT, 60, 1), 1);
  LVCOLUMN column{};
  column.mask = LVCF_FMT | LVCF_WIDTH;
  ASSERT_TRUE(list.GetColumn(1, &column));
  EXPECT_EQ(column.fmt & LVCFMT_JUSTIFYMASK, LVCFMT_RIGHT);
  EXPECT_EQ(column.cx, 60);
  column.mask = LVCF_WIDTH;
  column.cx = 77;
  EXPECT_TRUE(list.SetColumn(1, &column));
  column.cx = 0;
  ASSERT_TRUE(list.GetColumn(1, &column));
  EXPECT_EQ(column.cx, 77);
  EXPECT_FALSE(list.GetColumn(9, &column));

  for (int i = 0; i < 4; ++i) EXPECT_EQ(list.InsertItem(i, ("row " + std::to_string(i)).c_str()), i);
  EXPECT_EQ(list.GetItemCount(), 4);
  EXPECT_TRUE(list.SetItemText(2, 1, "large"));
  char text[20];
  EXPECT_EQ(list.GetItemText(2, 1, text, sizeof text), 5);
  EXPECT_STREQ(text, "large");
  EXPECT_EQ(list.GetItemText(2, 0, text, sizeof text), 5);
  EXPECT_STREQ(text, "row 2");

  EXPECT_EQ(list.GetNextItem(-1, LVNI_SELECTED), -1);
  EXPECT_TRUE(list.SetItemState(1, LVIS_SELECTED, LVIS_SELECTED));
  EXPECT_TRUE(list.SetItemState(3, LVIS_SELECTED, LVIS_SELECTED));
  EXPECT_EQ(list.GetNextItem(-1, LVNI_SELECTED), 1);
  EXPECT_EQ(list.GetNextItem(1, LVNI_SELECTED), 3);
  EXPECT_EQ(list.GetNextItem(3, LVNI_SELECTED), -1);

  EXPECT_TRUE(list.DeleteAllItems());
  EXPECT_EQ(list.GetItemCount(), 0);
}

TEST_F(Controls, TreeView) {
  CTreeViewCtrl tree;
  make(tree);
  EXPECT_EQ(tree.GetRootItem(), nullptr);
  HTREEITEM root = tree.InsertItem("root", TVI_ROOT, TVI_LAST);
  HTREEITEM second = tree.InsertItem("second", root, TVI_LAST);
  HTREEITEM first = tree.InsertItem("first", root, TVI_FIRST);
  EXPECT_EQ(tree.GetRootItem(), root);
  EXPECT_EQ(tree.GetChildItem(root), first);
  EXPECT_EQ(tree.GetNextSiblingItem(first), second);
  EXPECT_EQ(tree.GetNextSiblingItem(second), nullptr);
  EXPECT_EQ(tree.GetNextItem(second, TVGN_PARENT), root);
  char text[20];
  EXPECT_TRUE(tree.GetItemText(second, text, sizeof text));
  EXPECT_STREQ(text, "second");
  EXPECT_TRUE(tree.DeleteItem(second));
  EXPECT_EQ(tree.GetNextSiblingItem(first), nullptr);
}

TEST_F(Controls, ToolTip) {
  CToolTipCtrl tip;
  ASSERT_TRUE(tip.Create(parent, nullptr, nullptr, WS_POPUP));
  EXPECT_EQ(tip.GetToolCount(), 0);
  char text[] = "first", other[] = "other";
  CToolInfo tool(0, parent, 5, nullptr, text);
  EXPECT_EQ(tool.hwnd, parent.m_hWnd);
  EXPECT_EQ(tool.uId, 5u);
  CRect client;
  parent.GetClientRect(client);
  EXPECT_EQ(CRect(tool.rect), client);
  EXPECT_TRUE(tip.AddTool(tool));
  EXPECT_EQ(tip.GetToolCount(), 1);

  auto shown = [&] {
    char buffer[80] = {};
    CToolInfo question(0, parent, 5, nullptr, buffer);
    tip.SendMessage(TTM_GETTEXT, sizeof buffer, reinterpret_cast<LPARAM>(&question));
    return std::string(buffer);
  };
  EXPECT_EQ(shown(), "first");
  tool.lpszText = other;
  tip.DelTool(tool);
  EXPECT_EQ(tip.GetToolCount(), 0);
  EXPECT_TRUE(tip.AddTool(tool));
  EXPECT_EQ(shown(), "other");
  tip.SetDelayTime(TTDT_INITIAL, 30);
  EXPECT_EQ(tip.SendMessage(TTM_GETDELAYTIME, TTDT_INITIAL), 30);
  tip.DestroyWindow();
}

TEST_F(Controls, AToolWithoutAnIdentifierIsTheWholeWindow) {
  CButton button;
  make(button);
  CRect part(1, 2, 3, 4);
  CToolInfo whole(TTF_CENTERTIP, button, 0, part, nullptr, 9);
  EXPECT_EQ(whole.uFlags, UINT{TTF_CENTERTIP | TTF_IDISHWND});
  EXPECT_EQ(whole.hwnd, parent.m_hWnd);
  EXPECT_EQ(whole.uId, reinterpret_cast<UINT_PTR>(button.m_hWnd));
  EXPECT_EQ(whole.lParam, 9);
  CToolInfo piece(0, button, 1, part);
  EXPECT_EQ(CRect(piece.rect), part);
  EXPECT_EQ(piece.lpszText, LPSTR_TEXTCALLBACK);
}

TEST_F(Controls, AWrapperMayNameAnyWindow) {
  CButton button;
  make(button, BS_CHECKBOX);
  CButton same = button.m_hWnd;
  same.SetCheck(BST_CHECKED);
  EXPECT_EQ(button.GetCheck(), BST_CHECKED);
}

HBITMAP square(COLORREF color) {
  CClientDC screen(nullptr);
  HBITMAP bitmap = CreateCompatibleBitmap(screen, 16, 16);
  CDC memory;
  memory.CreateCompatibleDC();
  HBITMAP original = memory.SelectBitmap(bitmap);
  memory.FillSolidRect(CRect(0, 0, 16, 16), color);
  memory.FillSolidRect(CRect(0, 0, 8, 16), RGB(255, 0, 255));
  memory.SelectBitmap(original);
  return bitmap;
}

TEST(ImageList, HoldsPicturesAndDrawsThem) {
  CImageListT<true> images;
  EXPECT_TRUE(images.IsNull());
  ASSERT_TRUE(images.Create(16, 16, ILC_COLOR32 | ILC_MASK, 2, 2));
  int width = 0, height = 0;
  EXPECT_TRUE(images.GetIconSize(width, height));
  EXPECT_EQ(width, 16);
  EXPECT_EQ(height, 16);

  CBitmap green(square(RGB(0, 255, 0))), same(square(RGB(0, 255, 0)));
  EXPECT_EQ(images.Add(green), 0);
  EXPECT_EQ(images.Add(same, RGB(255, 0, 255)), 1);
  EXPECT_EQ(images.GetImageCount(), 2);
  EXPECT_TRUE(images.SetOverlayImage(1, 1));

  CDC canvas;
  canvas.CreateCompatibleDC();
  CBitmap target(square(RGB(0, 0, 255)));
  HBITMAP original = canvas.SelectBitmap(target);
  auto color = [&](int image, int x) {
    canvas.FillSolidRect(CRect(0, 0, 16, 16), RGB(0, 0, 255));
    EXPECT_TRUE(images.Draw(canvas, image, 0, 0, ILD_NORMAL));
    return canvas.GetPixel(x, 5);
  };
  EXPECT_EQ(color(0, 3), RGB(255, 0, 255));
  EXPECT_EQ(color(0, 12), RGB(0, 255, 0));
  EXPECT_EQ(color(1, 3), RGB(0, 0, 255)) << "the mask's colour is not drawn";
  EXPECT_EQ(color(1, 12), RGB(0, 255, 0));
  EXPECT_FALSE(images.Draw(canvas, 2, 0, 0, ILD_NORMAL));
  canvas.SelectBitmap(original);

  EXPECT_TRUE(images.Destroy());
  EXPECT_FALSE(images.Destroy());
  EXPECT_TRUE(images.IsNull());
}

TEST(ImageList, GoesWithItsOwnerOnly) {
  auto make = [] { return ImageList_Create(16, 16, ILC_COLOR32, 1, 1); };
  auto round = [&] {
    CImageListT<true> owner(make());
    owner = make();
    owner = owner.m_hImageList;
    CImageList handle(make());
    CImageList copy = handle;
    EXPECT_EQ(copy.m_hImageList, handle.m_hImageList);
    owner.Attach(copy.Detach());
    EXPECT_EQ(ImageList_GetImageCount(owner), 0);
  };
  round();
  ResourceCounts before;
  for (int i = 0; i < 100; ++i) round();
  EXPECT_EQ(ResourceCounts(), before);
}

}  // namespace
