// Text helpers: valid file names, texts in the user's language, and the bitness of a product.
#include <kexlib/text.h>

#include <atlcomcli.h>

#include <gallery/page.h>
#include <gallery/texts.h>
#include <gallery/tour.h>

namespace {

enum {
  id_name = 100,
  id_path_name,
  id_file_name,
  id_reference,
  id_look_up,
  id_text,
  id_source,
  id_product,
  id_bitness
};
constexpr int label_width = 170;

class TextHelpersPage : public gallery::Page {
 public:
  BEGIN_MSG_MAP(TextHelpersPage)
    COMMAND_HANDLER(id_name, EN_CHANGE, OnName)
    COMMAND_ID_HANDLER(id_look_up, OnLookUp)
    COMMAND_HANDLER(id_product, EN_CHANGE, OnProduct)
  END_MSG_MAP()

 private:
  void add_controls() override {
    constexpr DWORD input = WS_TABSTOP | WS_BORDER | ES_AUTOHSCROLL, output = input | ES_READONLY;
    add_label("A text", label_width);
    add(WC_EDIT, "", input, id_name, 300);
    new_line();
    add_label("as a path may be", label_width);
    add(WC_EDIT, "", output, id_path_name, 300);
    new_line();
    add_label("as a file's name may be", label_width);
    add(WC_EDIT, "", output, id_file_name, 300);
    new_line(24);
    add_label("A reference to a text", label_width);
    add(WC_EDIT, "{1}Gallery", input, id_reference, 300);
    add(WC_BUTTON, "&Look up", WS_TABSTOP, id_look_up, 90);
    new_line();
    add_label("gives", label_width);
    add(WC_EDIT, "", output, id_text, 300);
    new_line();
    take_place(label_width);
    add(WC_STATIC, "", 0, id_source, 400);
    new_line(24);
    add_label("A product", label_width);
    add(WC_EDIT, "", input, id_product, 300);
    new_line();
    add_label("with its bitness", label_width);
    add(WC_EDIT, "", output, id_bitness, 300);
    set_text(id_product, "kexlib gallery");
    set_text(id_name, "report: 1/2");
  }

  LRESULT OnName(WORD, WORD, HWND, BOOL&) {
    CString path = text_of(id_name), file = path;
    kex_replace_forbidden_symbols(path, '_');
    kex_replace_forbidden_symbols_strict(file, '_');
    set_text(id_path_name, path);
    set_text(id_file_name, file);
    return 0;
  }

  LRESULT OnLookUp(WORD, WORD, HWND, BOOL&) {
    const HINSTANCE texts = ::GetModuleHandle("gallery_texts.dll");
    ATL::CComBSTR text;
    const bool found =
        kexLocalizeString(texts, IDS_BASE, ATL::CComVariant(text_of(id_reference).GetString()), &text) == S_OK;
    set_text(id_text, CString(text));
    set_text(id_source, found ? "It comes from gallery_texts.dll." : "It is what the reference itself says.");
    return 0;
  }

  LRESULT OnProduct(WORD, WORD, HWND, BOOL&) {
    bzString text(text_of(id_product));
    kex_append_product_bitness(nullptr, text);
    set_text(id_bitness, text.c_str());
    return 0;
  }
};

void tour(gallery::Tour& user) {
  user.write(id_name, "C:\\a*b?\"c\"<d>|e/f");
  user.check_text(id_path_name, "C:\\a_b__c__d__e/f");
  user.check_text(id_file_name, "C__a_b__c__d__e_f");

  user.write(id_reference, "{99}Not there");
  user.click(id_look_up);
  user.check_text(id_text, "Not there");
  user.check_text(id_source, "It is what the reference itself says.");
  user.write(id_reference, "{1}Gallery");
  user.click(id_look_up);
  user.check_text(id_text, "kexlib gallery");
  user.check_text(id_source, "It comes from gallery_texts.dll.");

  user.write(id_product, "Drawing");
  user.check_text(id_bitness, "Drawing (64-bit)");
  user.take_picture("text_helpers");
}

const gallery::Registration text_helpers{
    "text", "Text helpers",
    "Names without the symbols that the file system forbids, texts in the user's language by reference, the bitness of "
    "a product.",
    gallery::make<TextHelpersPage>, tour};

}  // namespace
