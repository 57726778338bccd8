// The special text of an object's identifier, in each code page.
#include <kexlib/text/test_object_id.h>

#include <support/locale_matrix.h>

namespace {

using TestObjectIdLocales = LocaleMatrix;

TEST_P(TestObjectIdLocales, ReadTheSpecialText) {
  kexTestObjectID id(code_page().narrow);
  id.put_id(CComVariant(code_page().wide));
  EXPECT_TRUE(id.is_special_value());
  id.put_id(CComVariant((std::wstring(code_page().wide) + L"x").c_str()));
  EXPECT_FALSE(id.is_special_value());
}

INSTANTIATE_LOCALE_MATRIX(TestObjectIdLocales);

}  // namespace
