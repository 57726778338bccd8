// Registration-free COM: the classes below a folder, and an object of one of them, which is not registered.
#include <kexlib/com.h>

#include <gallery/page.h>
#include <gallery/pages/sample_component.h>
#include <gallery/tour.h>

#include <filesystem>

namespace {

enum { id_list = 100, id_classes, id_library, id_manifest, id_create, id_without, id_result };

// The interface of the controls that show digits.
constexpr GUID digits_interface = {0x5D0E8A60, 0x3C1B, 0x4B7A, {0x9E, 0x52, 0x6A, 0x1F, 0x0C, 0x7D, 0x2B, 0x01}};
constexpr char class_id[] = "{107BD0EE-6861-11CF-B28B-0000C0C14EA0}";

class RegistrationFreePage : public gallery::Page {
 public:
  BEGIN_MSG_MAP(RegistrationFreePage)
    COMMAND_ID_HANDLER(id_list, OnList)
    COMMAND_ID_HANDLER(id_create, OnCreate)
    COMMAND_ID_HANDLER(id_without, OnCreate)
  END_MSG_MAP()

 private:
  static constexpr DWORD shown = WS_TABSTOP | WS_BORDER | ES_READONLY | ES_AUTOHSCROLL;

  void add_controls() override {
    add(WC_BUTTON, "&List", WS_TABSTOP, id_list, 130);
    add_label("the classes below the folder of components:", 300);
    new_line();
    add_label("Class", 130);
    add(WC_EDIT, "", shown, id_classes, 450);
    new_line();
    add_label("Type library", 130);
    add(WC_EDIT, "", shown, id_library, 450);
    new_line();
    add_label("Manifest", 130);
    add(WC_EDIT, "", shown, id_manifest, 450);
    new_line(24);
    add(WC_BUTTON, "&Create", WS_TABSTOP | WS_DISABLED, id_create, 130);
    add(WC_BUTTON, "&Without manifest", WS_TABSTOP | WS_DISABLED, id_without, 130);
    new_line();
    add(WC_STATIC, "", 0, id_result, 580);
  }

  LRESULT OnList(WORD, WORD, HWND, BOOL&) {
    const std::string folder = gallery::components_folder();
    const auto classes = reg_free_list_classes(digits_interface, folder.c_str(), "*.dll");
    if (classes.empty()) {
      set_text(id_result, "There is no component here.");
      return 0;
    }
    class_ = *classes.begin();
    kexGUID braced(kexWithBraces);
    braced = class_;
    set_text(id_classes, kexGUID(class_).get_str());
    const std::string library = reg_free_find_tlb(class_, folder.c_str(), "*.dll");
    set_text(id_library, library.c_str());
    manifest_ = reg_free_manifest_path(folder.c_str(), library.c_str());
    set_text(id_manifest, manifest_.c_str());
    GetDlgItem(id_create).EnableWindow(TRUE);
    GetDlgItem(id_without).EnableWindow(TRUE);
    return 0;
  }

  LRESULT OnCreate(WORD, WORD id, HWND, BOOL&) {
    ATL::CComPtr<IUnknown> object;
    const std::string folder = gallery::components_folder();
    const long result = reg_free_co_create(class_, folder.c_str(), id == id_create ? manifest_.c_str() : "",
                                           CLSCTX_INPROC_SERVER, &object);
    CString text;
    if (object)
      text = "The object is there, and goes again.";
    else
      text.Format("There is none: 0x%08X%s", static_cast<unsigned>(result),
                  result == REGDB_E_CLASSNOTREG ? ", the class is not registered." : "");
    set_text(id_result, text);
    return 0;
  }

  GUID class_{};
  std::string manifest_;
};

void tour(gallery::Tour& user) {
  user.click(id_list);
  user.check_text(id_classes, std::string(class_id).substr(1, 36));
  const std::string folder = gallery::components_folder();
  user.check("the type library is found",
             [&] { return std::filesystem::path(user.text(id_library)).filename() == "digit_control.dll"; });
  user.check_text(id_manifest, folder + "\\digit_control.manifest");
  user.click(id_without);
  user.check_text(id_result, "There is none: 0x80040154, the class is not registered.");
  user.click(id_create);
  user.check_text(id_result, "The object is there, and goes again.");
  user.take_picture("registration_free");
}

const gallery::Registration registration_free{
    "com", "Registration-free COM",
    "The classes that the type libraries below a folder describe, and objects of them that are made by a manifest.",
    gallery::make<RegistrationFreePage>, tour};

}  // namespace
