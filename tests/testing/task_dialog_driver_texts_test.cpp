// Texts that a dialog draws itself: they are read as a screen reader reads them.
#include <gtest/gtest.h>

#include <kexlib/testing/counting_object.h>
#include <kexlib/testing/task_dialog_driver.h>

#include <oleacc.h>

#include <string>
#include <utility>
#include <vector>

namespace {

using kexlib::testing::CountingObject;
using kexlib::testing::ShownTaskDialog;

// What a window tells about itself. Its elements are texts, and objects with more of them.
class Accessible : public CountingObject<IAccessible> {
 public:
  struct Element {
    LONG role;
    const wchar_t* name;
    Accessible* object = nullptr;
  };
  explicit Accessible(std::vector<Element> elements) : elements_(std::move(elements)) {}

  STDMETHODIMP get_accChildCount(LONG* count) override {
    *count = static_cast<LONG>(elements_.size());
    return S_OK;
  }
  STDMETHODIMP get_accChild(VARIANT child, IDispatch** object) override {
    *object = child.lVal == CHILDID_SELF ? nullptr : element(child).object;
    if (!*object) return S_FALSE;
    (*object)->AddRef();
    return S_OK;
  }
  STDMETHODIMP get_accName(VARIANT child, BSTR* name) override {
    *name = child.lVal == CHILDID_SELF || !element(child).name ? nullptr : SysAllocString(element(child).name);
    return *name ? S_OK : S_FALSE;
  }
  STDMETHODIMP get_accRole(VARIANT child, VARIANT* role) override {
    role->vt = VT_I4;
    role->lVal = child.lVal == CHILDID_SELF ? ROLE_SYSTEM_CLIENT : element(child).role;
    return S_OK;
  }

  STDMETHODIMP get_accParent(IDispatch**) override { return E_NOTIMPL; }
  STDMETHODIMP get_accValue(VARIANT, BSTR*) override { return E_NOTIMPL; }
  STDMETHODIMP get_accDescription(VARIANT, BSTR*) override { return E_NOTIMPL; }
  STDMETHODIMP get_accState(VARIANT, VARIANT*) override { return E_NOTIMPL; }
  STDMETHODIMP get_accHelp(VARIANT, BSTR*) override { return E_NOTIMPL; }
  STDMETHODIMP get_accHelpTopic(BSTR*, VARIANT, LONG*) override { return E_NOTIMPL; }
  STDMETHODIMP get_accKeyboardShortcut(VARIANT, BSTR*) override { return E_NOTIMPL; }
  STDMETHODIMP get_accFocus(VARIANT*) override { return E_NOTIMPL; }
  STDMETHODIMP get_accSelection(VARIANT*) override { return E_NOTIMPL; }
  STDMETHODIMP get_accDefaultAction(VARIANT, BSTR*) override { return E_NOTIMPL; }
  STDMETHODIMP accSelect(LONG, VARIANT) override { return E_NOTIMPL; }
  STDMETHODIMP accLocation(LONG*, LONG*, LONG*, LONG*, VARIANT) override { return E_NOTIMPL; }
  STDMETHODIMP accNavigate(LONG, VARIANT, VARIANT*) override { return E_NOTIMPL; }
  STDMETHODIMP accHitTest(LONG, LONG, VARIANT*) override { return E_NOTIMPL; }
  STDMETHODIMP accDoDefaultAction(VARIANT) override { return E_NOTIMPL; }
  STDMETHODIMP put_accName(VARIANT, BSTR) override { return E_NOTIMPL; }
  STDMETHODIMP put_accValue(VARIANT, BSTR) override { return E_NOTIMPL; }
  STDMETHODIMP GetTypeInfoCount(UINT*) override { return E_NOTIMPL; }
  STDMETHODIMP GetTypeInfo(UINT, LCID, ITypeInfo**) override { return E_NOTIMPL; }
  STDMETHODIMP GetIDsOfNames(REFIID, LPOLESTR*, UINT, LCID, DISPID*) override { return E_NOTIMPL; }
  STDMETHODIMP Invoke(DISPID, REFIID, LCID, WORD, DISPPARAMS*, VARIANT*, EXCEPINFO*, UINT*) override {
    return E_NOTIMPL;
  }

 protected:
  void* find_interface(REFIID id) override {
    return id == IID_IDispatch ? static_cast<IDispatch*>(this) : CountingObject::find_interface(id);
  }

 private:
  const Element& element(const VARIANT& child) const { return elements_.at(static_cast<std::size_t>(child.lVal) - 1); }

  std::vector<Element> elements_;
};

// A window that draws all itself, as the system's task dialog does.
class DrawingWindow {
 public:
  explicit DrawingWindow(Accessible& content) : content_(content) {
    WNDCLASSA drawing{};
    drawing.lpfnWndProc = DefWindowProcA;
    drawing.hInstance = GetModuleHandleA(nullptr);
    drawing.lpszClassName = "DirectUIHWND";
    RegisterClassA(&drawing);
    SetWindowLongPtrA(window_, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(this));
    SetWindowLongPtrA(window_, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(&procedure));
    CreateWindowA("DirectUIHWND", "", WS_CHILD, 0, 0, 9, 9, window_, nullptr, drawing.hInstance, nullptr);
  }
  DrawingWindow(const DrawingWindow&) = delete;
  DrawingWindow& operator=(const DrawingWindow&) = delete;
  ~DrawingWindow() { DestroyWindow(window_); }
  HWND window() const { return window_; }

 private:
  static LRESULT CALLBACK procedure(HWND window, UINT message, WPARAM wparam, LPARAM lparam) {
    if (message == WM_GETOBJECT && static_cast<LONG>(lparam) == OBJID_CLIENT) {
      const auto result_of = reinterpret_cast<decltype(&LresultFromObject)>(
          reinterpret_cast<void*>(GetProcAddress(LoadLibraryA("oleacc.dll"), "LresultFromObject")));
      return result_of(__uuidof(IAccessible), wparam,
                       &reinterpret_cast<DrawingWindow*>(GetWindowLongPtrA(window, GWLP_USERDATA))->content_);
    }
    return DefWindowProcA(window, message, wparam, lparam);
  }

  Accessible& content_;
  const HWND window_ =
      CreateWindowA("STATIC", "drawn", WS_POPUP | WS_VISIBLE, 0, 0, 99, 99, nullptr, nullptr, nullptr, nullptr);
};

TEST(TestingTaskDialogDriverTexts, AreReadWhereTheDialogDrawsThem) {
  ASSERT_EQ(CoInitialize(nullptr), S_OK);
  {
    Accessible deepest({{ROLE_SYSTEM_STATICTEXT, L"Footer"}});
    Accessible inner({{ROLE_SYSTEM_STATICTEXT, L"Content"}, {ROLE_SYSTEM_CLIENT, nullptr, &deepest}});
    Accessible outer({{ROLE_SYSTEM_STATICTEXT, L"Instruction"},
                      {ROLE_SYSTEM_PUSHBUTTON, L"Close"},
                      {ROLE_SYSTEM_STATICTEXT, L""},
                      {ROLE_SYSTEM_CLIENT, nullptr, &inner}});
    {
      const DrawingWindow dialog(outer);
      EXPECT_EQ(ShownTaskDialog(dialog.window()).texts(),
                (std::vector<std::wstring>{L"Instruction", L"Content", L"Footer"}));
    }
    for (const Accessible* const object : {&outer, &inner, &deepest}) {
      EXPECT_GT(object->added(), 0);
      EXPECT_EQ(object->problem(), "");
    }
  }
  CoUninitialize();
}

TEST(TestingTaskDialogDriverTexts, AreNoneWhereTheDialogTellsNothing) {
  Accessible empty({});
  const DrawingWindow dialog(empty);
  EXPECT_EQ(ShownTaskDialog(dialog.window()).texts(), std::vector<std::wstring>{});
}

}  // namespace
