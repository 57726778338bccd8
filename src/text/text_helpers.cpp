#include <kexlib/text/text_helpers.h>

#include <mbctype.h>
#include <mbstring.h>

#include <atlbase.h>
#include <module/widened.h>

#include <cstdlib>

using namespace kexlib;

namespace {

// Which characters are to go, by their code.
struct Characters {
  explicit constexpr Characters(const char* characters) {
    for (; *characters; ++characters) has[static_cast<unsigned char>(*characters)] = true;
  }
  bool contain(char character) const { return has[static_cast<unsigned char>(character)]; }

  bool has[256] = {};
};

constexpr Characters not_in_paths("*?\"<>|");
constexpr Characters not_in_names("*?\"<>|/\\:");

// In one pass, and with a buffer of one's own only where there is something to write.
void replace(CString& text, const Characters& forbidden, char replacement) {
  const int length = text.GetLength();
  const char* const read = text;
  const bool double_bytes = _getmbcp() != 0;
  char* written = nullptr;
  for (int i = 0; i < length; ++i) {
    if (double_bytes && _ismbblead(static_cast<unsigned char>(read[i])) && i + 1 < length) {
      ++i;
    } else if (forbidden.contain(read[i])) {
      if (!written) written = text.GetBuffer();
      written[i] = replacement;
    }
  }
}

// What a text refers to, and what it says itself.
struct Reference {
  long offset = -1;
  CString own_text;
};

Reference read_reference(const CString& text) {
  const int end = text.GetLength() >= 3 && text[0] == '{' ? text.Find('}') : -1;
  if (end < 0) return {-1, text};
  const char* const digits = text.GetString() + 1;
  char* after = nullptr;
  const long offset = std::strtol(digits, &after, 10);
  return {after == digits ? -1 : offset, text.Mid(end + 1)};
}

bool is_reference_to_variant(VARTYPE type) {
  // Some other types have these bits too; a copy that is no reference does them no harm.
  constexpr VARTYPE bits = VT_BYREF | VT_VARIANT;
  return (type & bits) == bits;
}

}  // namespace

void kex_replace_forbidden_symbols(CString& text, char replacement) { replace(text, not_in_paths, replacement); }

void kex_replace_forbidden_symbols_strict(CString& text, char replacement) { replace(text, not_in_names, replacement); }

void kex_append_product_bitness(void*, bzString& text) { text << " (64-bit)"; }

long kexLocalizeString(HINSTANCE resources, UINT baseId, VARIANT value, wchar_t** result) {
  if (!result) return E_POINTER;
  if (is_reference_to_variant(value.vt)) {
    CComVariant copy;
    const HRESULT copied = VariantCopyInd(&copy, &value);
    return FAILED(copied) ? copied : kexLocalizeString(resources, baseId, copy, result);
  }

  Reference reference{-1, "** Error **"};
  if (value.vt == VT_BSTR) reference = read_reference(CString(value.bstrVal));
  CString loaded;
  if (reference.offset >= 0 && loaded.LoadString(resources, baseId + static_cast<UINT>(reference.offset))) {
    *result = module::widened(loaded);
    return S_OK;
  }
  *result = module::widened(reference.own_text);
  return S_FALSE;
}
