#include <kexlib/text/text_helpers.h>

#include <mbctype.h>
#include <mbstring.h>

#include <support/byte_blocks.h>
#include <support/widened.h>

#include <cstdlib>
#include <string_view>

using namespace kexlib;

namespace {

constexpr std::string_view not_in_paths = "*?\"<>|";
constexpr std::string_view not_in_names = "*?\"<>|/\\:";

bool contains(std::string_view characters, char character) { return characters.find(character) != characters.npos; }

// Sixteen characters at a time, without branches: the time depends on the length only.
void replace_bytes(char* text, std::size_t length, std::string_view characters, char replacement) {
  const __m128i replacements = _mm_set1_epi8(replacement);
  std::size_t i = 0;
  for (; i + byte_block_size <= length; i += byte_block_size) {
    const __m128i block = byte_block_at(text + i), found = among(characters, block);
    _mm_storeu_si128(reinterpret_cast<__m128i*>(text + i),
                     _mm_or_si128(_mm_and_si128(found, replacements), _mm_andnot_si128(found, block)));
  }
  for (; i < length; ++i)
    if (contains(characters, text[i])) text[i] = replacement;
}

void replace_characters(char* text, int length, std::string_view characters, char replacement) {
  for (int i = 0; i < length; ++i) {
    if (_ismbblead(static_cast<unsigned char>(text[i])))
      ++i;
    else if (contains(characters, text[i]))
      text[i] = replacement;
  }
}

bool has_double_bytes(UINT code_page) {
  CPINFO info;
  return code_page && GetCPInfo(code_page, &info) && info.MaxCharSize > 1;
}

void replace(CString& text, std::string_view characters, char replacement) {
  if (has_double_bytes(static_cast<UINT>(_getmbcp())))
    return replace_characters(text.GetBuffer(), text.GetLength(), characters, replacement);
  const auto length = static_cast<std::size_t>(text.GetLength());
  const std::size_t allowed = length_before(characters, {text.GetString(), length});
  // A text without forbidden characters is not written, so it stays shared with its copies.
  if (allowed < length) replace_bytes(text.GetBuffer() + allowed, length - allowed, characters, replacement);
}

// The resource that a text refers to, and the text after the reference.
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
  // By design other types that contain these bits count too: callers see the result of VariantCopyInd.
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
    if (SUCCEEDED(copied)) return kexLocalizeString(resources, baseId, copy, result);
    VariantInit(&copy);  // a failure may leave a shallow copy, which must not be cleared
    return copied;
  }

  Reference reference{-1, "** Error **"};
  if (value.vt == VT_BSTR) reference = read_reference(CString(value.bstrVal));
  CString loaded;
  if (reference.offset >= 0 && loaded.LoadString(resources, baseId + static_cast<UINT>(reference.offset))) {
    *result = widened(loaded).Detach();
    return S_OK;
  }
  *result = widened(reference.own_text).Detach();
  return S_FALSE;
}
