// Image lists: the pictures of a list control in their original colours, disabled and tinted, and an overlay picture.
#include <kexlib/imaging.h>

#include <gallery/page.h>
#include <gallery/resources.h>
#include <gallery/tour.h>

#include <iterator>

namespace {

enum { id_list = 100, id_done, id_count };

constexpr int picture_size = 32;
constexpr COLORREF mask = RGB(1, 2, 3);  // in none of the pictures
constexpr int tick = 9, overlay = 1;

constexpr struct {
  UINT bitmap;
  const char* name;
} documents[] = {{IDB_OPEN, "Open"}, {IDB_SAVE, "Save"}, {IDB_PRINT, "Print"}};
constexpr struct {
  kexImageType type;
  const char* name;
} looks[] = {{kexImageNormal, ""}, {kexImageDisabled, ", disabled"}, {kexImageTinted, ", tinted"}};

class ImageListPage : public gallery::Page {
 public:
  ImageListPage() = default;
  ImageListPage(const ImageListPage&) = delete;
  ImageListPage& operator=(const ImageListPage&) = delete;
  ~ImageListPage() override { images_.Destroy(); }

  BEGIN_MSG_MAP(ImageListPage)
    COMMAND_ID_HANDLER(id_done, OnDone)
  END_MSG_MAP()

 private:
  void add_controls() override {
    fill_images();
    constexpr DWORD style = WS_TABSTOP | WS_BORDER | LVS_ICON | LVS_SHAREIMAGELISTS | LVS_SINGLESEL | LVS_SHOWSELALWAYS;
    list_ = add(WC_LISTVIEW, "", style, id_list, 480, 270);
    list_.SendMessage(LVM_SETIMAGELIST, LVSIL_NORMAL, reinterpret_cast<LPARAM>(static_cast<HIMAGELIST>(images_)));
    list_.SendMessage(LVM_SETICONSPACING, 0, MAKELPARAM(150, 80));
    for (int image = 0; image < tick; ++image) insert(image);
    new_line();
    add(WC_BUTTON, "All of them are &done", BS_AUTOCHECKBOX | WS_TABSTOP, id_done, 160);
    new_line();
    CString count;
    count.Format("The list has %d pictures, the tick among them.", images_.GetImageCount());
    add(WC_STATIC, count, 0, id_count, 400);
  }

  void fill_images() {
    const HINSTANCE module = ATL::_AtlBaseModule.GetResourceInstance();
    images_.Create();
    for (const auto& look : looks)
      for (const auto& document : documents) images_.Add(document.bitmap, module, look.type);
    images_.Add(IDB_TICK, module, kexImageNormal);
    images_.SetOverlayImage(tick, overlay);
  }

  // One row of the list for each version.
  void insert(int image) {
    const size_t number = static_cast<size_t>(image);
    CString name = documents[number % std::size(documents)].name;
    name += looks[number / std::size(documents)].name;
    LVITEM item{};
    item.mask = LVIF_TEXT | LVIF_IMAGE;
    item.iItem = item.iImage = image;
    item.pszText = const_cast<char*>(name.GetString());
    list_.SendMessage(LVM_INSERTITEM, 0, reinterpret_cast<LPARAM>(&item));
  }

  LRESULT OnDone(WORD, WORD, HWND, BOOL&) {
    constexpr int all_items = -1;
    list_.SetItemState(all_items, is_checked(id_done) ? INDEXTOOVERLAYMASK(overlay) : 0, LVIS_OVERLAYMASK);
    return 0;
  }

  WTL::CListViewCtrl list_;
  kexWTLImageList images_{picture_size, mask};
};

void tour(gallery::Tour& user) {
  enum { normal, disabled = 3, tinted = 6 };
  const HWND list = user.control(id_list);
  // The colour of a pixel of a picture, which is centred in the icon rectangle of its item.
  const auto color = [&](int item, int x, int y) {
    RECT icon{LVIR_ICON, 0, 0, 0};
    SendMessageA(list, LVM_GETITEMRECT, static_cast<WPARAM>(item), reinterpret_cast<LPARAM>(&icon));
    return gallery::Tour::color_at(list, (icon.left + icon.right - picture_size) / 2 + x,
                                   (icon.top + icon.bottom - picture_size) / 2 + y);
  };
  constexpr POINT folder{18, 20}, tick_place{7, 29};
  const COLORREF paper = GetSysColor(COLOR_WINDOW);
  const auto done = [&](COLORREF expected) {
    return [=] { return color(normal, tick_place.x, tick_place.y) == expected; };
  };

  user.check_text(id_count, "The list has 10 pictures, the tick among them.");
  user.check("the folder has its colour", [&] { return color(normal, folder.x, folder.y) == RGB(248, 208, 96); });
  user.check("a disabled folder is grey", [&] {
    const COLORREF shown = color(disabled, folder.x, folder.y);
    return shown != paper && GetRValue(shown) == GetGValue(shown) && GetGValue(shown) == GetBValue(shown);
  });
  user.check("a tinted folder is blue", [&] {
    const COLORREF shown = color(tinted, folder.x, folder.y);
    return GetRValue(shown) == GetGValue(shown) && GetBValue(shown) > GetRValue(shown);
  });
  for (const int item : {normal, disabled, tinted})
    user.check("nothing is drawn where there was magenta", [&] { return color(item, 1, 1) == paper; });

  user.check("nothing is done yet", done(paper));
  user.click(id_done);
  user.check("the tick lies over the picture", done(RGB(30, 150, 50)));
  user.take_picture("image_list");
  user.click(id_done);
  user.check("the tick is gone", done(paper));
}

const gallery::Registration image_list{
    "imaging", "Image lists",
    "Pictures of the common controls, from bitmap resources: as they are, greyed, and tinted blue.",
    gallery::make<ImageListPage>, tour};

}  // namespace
