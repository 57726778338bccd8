// Every effect of the DIB, beside the original picture.
#include <kexlib/imaging.h>

#include <gallery/page.h>
#include <gallery/resources.h>
#include <gallery/tour.h>

#include <deque>
#include <iterator>
#include <string_view>

namespace {

constexpr int picture_size = 64;

// The identifiers of an effect's two pictures are these bases plus its index in the table of effects.
enum { id_blue = 100, id_red, id_violet, id_original = 200, id_result = 300 };

struct Tint {
  int id;
  const char* name;
  COLORREF dark, mid;
};
constexpr Tint tints[] = {{id_blue, "&Blue", RGB(0, 0, 80), RGB(40, 90, 200)},
                          {id_red, "&Red", RGB(70, 0, 0), RGB(210, 60, 40)},
                          {id_violet, "&Violet", RGB(50, 0, 60), RGB(150, 60, 180)}};
constexpr COLORREF white = RGB(255, 255, 255);

COLORREF face() { return GetSysColor(COLOR_BTNFACE); }

// The pictures and the colours that the effects use.
struct Ingredients {
  kexWTLDIB as_loaded, landscape, sign;
  const Tint* tint = tints;
};

// The effects, in the order of the page.
struct Effect {
  const char* name;
  void (*apply)(kexWTLDIB& picture, Ingredients& with);
};
constexpr Effect effects[] = {
    {"Made transparent", [](kexWTLDIB& picture, Ingredients& with) { picture.copy_from(&with.landscape); }},
    {"Tinted",
     [](kexWTLDIB& picture, Ingredients& with) {
       constexpr BYTE middle = 128;
       picture.Color3Tint(with.tint->dark, with.tint->mid, white, face(), middle);
     }},
    {"Insensitive", [](kexWTLDIB& picture, Ingredients&) { picture.insensitive(face()); }},
    {"Stippled", [](kexWTLDIB& picture, Ingredients&) { picture.cool_stipple(); }},
    {"Down", [](kexWTLDIB& picture, Ingredients&) { picture.down(); }},
    {"Merged with a sign", [](kexWTLDIB& picture, Ingredients& with) { picture.merge(with.sign); }},
    {"Button edge, raised", [](kexWTLDIB& picture, Ingredients&) { picture.draw_button_edge(1, face()); }},
    {"Button edge, sunken", [](kexWTLDIB& picture, Ingredients&) { picture.draw_button_edge(0, face()); }},
    {"Flat edge", [](kexWTLDIB& picture, Ingredients&) { picture.draw_button_flat(kexEdgeFlat, face()); }},
    {"Flat edge, raised", [](kexWTLDIB& picture, Ingredients&) { picture.draw_button_flat(kexEdgeRaised, face()); }},
    {"Flat edge, sunken", [](kexWTLDIB& picture, Ingredients&) { picture.draw_button_flat(kexEdgeSunken, face()); }},
    {"Filled", [](kexWTLDIB& picture, Ingredients& with) { picture.Fill(with.tint->mid); }},
};
constexpr int effect_count = std::size(effects);

// The index of an effect in the table. An unknown name does not compile.
consteval int effect(std::string_view name) {
  int place = 0;
  while (effects[place].name != name) ++place;
  return place;
}
constexpr int transparent = effect("Made transparent");

class DibPage : public gallery::Page {
 public:
  BEGIN_MSG_MAP(DibPage)
    COMMAND_RANGE_HANDLER(id_blue, id_violet, OnTint)
  END_MSG_MAP()

 private:
  void add_controls() override {
    const HINSTANCE module = ATL::_AtlBaseModule.GetResourceInstance();
    with_.as_loaded.load_bitmap(IDB_LANDSCAPE, module);
    with_.landscape.load_bitmap_transparent(IDB_LANDSCAPE, module, face());
    with_.sign.load_bitmap_transparent(IDB_SIGN, module, face());

    add_label("The colour of the tint and the filling:", 210);
    for (const Tint& tint : tints)
      add(WC_BUTTON, tint.name, BS_AUTORADIOBUTTON | (tint.id == id_blue ? WS_GROUP | WS_TABSTOP : 0), tint.id, 70);
    CheckRadioButton(m_hWnd, id_blue, id_violet, id_blue);
    constexpr int in_a_line = 4;
    for (int first = 0; first < effect_count; first += in_a_line) add_line(first, in_a_line);
    show_originals();
    show_results();
  }

  // The names, each with its two pictures below it.
  void add_line(int first, int count) {
    constexpr int space = 12;
    new_line(24);
    for (int i = first; i < first + count; ++i) {
      add(WC_STATIC, effects[i].name, WS_GROUP, -1, 2 * picture_size + gap, 16);
      take_place(space, 0);
    }
    new_line(4);
    for (int i = first; i < first + count; ++i) {
      for (const int id : {id_original, id_result})
        pictures_.emplace_back().get_static().Attach(add(WC_STATIC, "", SS_BITMAP, id + i, picture_size, picture_size));
      take_place(space, 0);
    }
  }

  void show(int picture, kexWTLDIB& what) {
    pictures_[static_cast<size_t>(picture)].set_internal_bitmap(what.detach_bitmap());
  }

  void show_originals() {
    for (int i = 0; i < effect_count; ++i) {
      kexWTLDIB original;
      original.copy_from(i == transparent ? &with_.as_loaded : &with_.landscape);
      show(2 * i, original);
    }
  }

  void show_results() {
    for (int i = 0; i < effect_count; ++i) {
      kexWTLDIB result;
      result.copy_from(&with_.landscape);
      effects[i].apply(result, with_);
      show(2 * i + 1, result);
    }
  }

  LRESULT OnTint(WORD code, WORD id, HWND, BOOL&) {
    if (code != BN_CLICKED) return 0;
    with_.tint = &tints[id - id_blue];
    show_results();
    return 0;
  }

  Ingredients with_;
  std::deque<wbzStaticBitmapTemplate<WTL::CStatic>> pictures_;
};

void tour(gallery::Tour& user) {
  const auto original = [&](int place, int x, int y) {
    return gallery::Tour::color_at(user.control(id_original + place), x, y);
  };
  const auto result = [&](int place, int x, int y) {
    return gallery::Tour::color_at(user.control(id_result + place), x, y);
  };
  const auto shows = [&](const std::string& promise, int place, int x, int y, COLORREF color) {
    user.check(promise, [&] { return result(place, x, y) == color; });
  };
  constexpr COLORREF black = RGB(0, 0, 0), grey = RGB(128, 128, 128), magenta = RGB(255, 0, 255);
  constexpr POINT corner{2, 2}, mountain{20, 36}, snow{24, 22}, outline{31, 1};
  constexpr int middle = picture_size / 2, end = picture_size - 1;
  constexpr int tinted = effect("Tinted"), insensitive = effect("Insensitive"), filled = effect("Filled");
  constexpr int stippled = effect("Stippled"), down = effect("Down"), merged = effect("Merged with a sign");
  constexpr int raised = effect("Button edge, raised"), sunken = effect("Button edge, sunken");
  constexpr int flat = effect("Flat edge"), flat_raised = effect("Flat edge, raised");
  constexpr int flat_sunken = effect("Flat edge, sunken");
  const COLORREF light = GetSysColor(COLOR_BTNHIGHLIGHT), shadow = GetSysColor(COLOR_BTNSHADOW);

  user.check("the picture has magenta around it", [&] { return original(transparent, corner.x, corner.y) == magenta; });
  shows("magenta becomes the face", transparent, corner.x, corner.y, face());
  shows("the mountain stays", transparent, mountain.x, mountain.y, grey);

  for (const Tint& tint : {tints[1], tints[2], tints[0]}) {
    user.click(tint.id);
    shows("a medium grey is tinted in the chosen colour", tinted, mountain.x, mountain.y, tint.mid);
    shows("black is tinted dark", tinted, outline.x, outline.y, tint.dark);
    user.check("white is tinted nearly white", [&] {  // white is one step above the end of the ramp
      const COLORREF shown = result(tinted, snow.x, snow.y);
      constexpr int nearly = 250;
      return GetRValue(shown) > nearly && GetGValue(shown) > nearly && GetBValue(shown) > nearly;
    });
    shows("what is to be skipped is not tinted", tinted, corner.x, corner.y, face());
    shows("the filling has the chosen colour", filled, corner.x, corner.y, tint.mid);
  }

  shows("black is insensitive in the shadow's colour", insensitive, outline.x, outline.y, shadow);
  shows("what lies behind is not insensitive", insensitive, corner.x, corner.y, face());
  user.check("every other pixel of the face is light", [&] {
    const COLORREF one = result(stippled, 4, 4), next = result(stippled, 5, 4);
    return (one == face() && next == light) || (one == light && next == face());
  });
  shows("other colours are not stippled", stippled, mountain.x, mountain.y, grey);
  user.check("the outline moves right and down", [&] {
    return result(down, outline.x + 1, outline.y + 1) == black && original(down, outline.x, outline.y) == black &&
           original(down, outline.x + 1, outline.y + 3) != black;
  });
  shows("the sign lies over the picture", merged, 45, 36, RGB(200, 20, 30));
  shows("beside the sign the picture stays", merged, mountain.x, mountain.y, grey);

  shows("a raised edge is white above", raised, middle, 0, white);
  shows("a raised edge is black below", raised, middle, end, black);
  shows("a sunken edge is black above", sunken, middle, 0, black);
  shows("a sunken edge is white below", sunken, middle, end, white);
  shows("a flat edge is the face", flat, middle, 0, face());
  shows("a raised flat edge is light above", flat_raised, middle, 0, light);
  shows("a raised flat edge has its shadow below", flat_raised, middle, end, shadow);
  shows("a sunken flat edge has its shadow above", flat_sunken, middle, 0, shadow);
  shows("a sunken flat edge is light below", flat_sunken, middle, end, light);
  user.take_picture("dib");
}

const gallery::Registration dib{"imaging", "DIB effects",
                                "A picture of 32 bits a pixel, and what owner-drawn buttons make of it.",
                                gallery::make<DibPage>, tour};

}  // namespace
