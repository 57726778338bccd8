// Text helpers: valid file names, the bitness of a product, and localised texts.
//
//     CString name = "report: 1/2";
//     kex_replace_forbidden_symbols_strict(name, '_');            // "report_ 1_2"
//
//     CComBSTR text;
//     kexLocalizeString(resources, IDS_BASE, CComVariant(L"{12}Open file"), &text);
//     // the string IDS_BASE + 12 if the module has it, otherwise "Open file"
//
// Narrow texts are in the ANSI code page; running out of memory throws MFC's memory exception. Any thread.
#ifndef KEXLIB_TEXT_TEXT_HELPERS_H
#define KEXLIB_TEXT_TEXT_HELPERS_H

#include <kexlib/export.h>
#include <kexlib/framework.h>

#include <bzbase/string.h>

/// Replaces each of * ? " < > | in the text, which a path may not contain, by `replacement`. The length does not
/// change. Control characters, and dots and blanks at the end, are not replaced. Trail bytes of double-byte characters
/// are not replaced; the code page is that of the C run-time library (_setmbcp).
KEXLIB_API void kex_replace_forbidden_symbols(CString& text, char replacement);

/// The same, and / \ : too, which a file name may not contain.
KEXLIB_API void kex_replace_forbidden_symbols_strict(CString& text, char replacement);

/// Appends " (64-bit)" to the text, on every call. The first argument is ignored.
KEXLIB_API void kex_append_product_bitness(void* context, bzString& text);

/// Localises a text that may begin with a reference to a string resource, "{N}".
///
/// resources: the module with the string table.
/// baseId: added to N; the sum is the identifier of the string (LoadString).
/// value: the text. A type with the bits of VT_BYREF | VT_VARIANT, such as a reference to a VARIANT, is followed
///   (VariantCopyInd); a BSTR by reference is not.
/// result: receives the text, which the caller frees (SysFreeString). Its previous content is not freed.
///
/// Returns S_OK if `*result` is the string resource. Returns S_FALSE otherwise; `*result` is then
/// - the text after the "}", if there is no such resource or N is not a number or negative,
/// - the whole text, if it has no reference or has less than three characters,
/// - "** Error **", if the value is not a text (VT_BSTR).
///
/// Returns the failure of VariantCopyInd with `*result` unchanged, and E_POINTER if `result` is null.
KEXLIB_API long kexLocalizeString(HINSTANCE resources, UINT baseId, VARIANT value, wchar_t** result);

#endif
