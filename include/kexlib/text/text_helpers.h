// Text helpers: names that the file system takes, the bitness of a product, and texts in the user's language.
//
//     CString name = "report: 1/2";
//     kex_replace_forbidden_symbols_strict(name, '_');            // "report_ 1_2"
//
//     CComBSTR text;
//     kexLocalizeString(resources, IDS_BASE, CComVariant(L"{12}Open file"), &text);
//     // the string IDS_BASE + 12 if the module has it, "Open file" if not
//
// Narrow texts are in the ANSI code page; running out of memory throws MFC's memory exception. Any thread.
#ifndef KEXLIB_TEXT_TEXT_HELPERS_H
#define KEXLIB_TEXT_TEXT_HELPERS_H

#include <atlstr.h>
#include <bzbase/string.h>

#include <kexlib/export.h>

/// Puts `replacement` in the place of each of * ? " < > | in the text: what a whole path may not contain. The length
/// stays; control characters, and dots and blanks at the end, stay too. Second bytes of double-byte characters, of the
/// code page that the C run-time library has set (_setmbcp), are no characters of their own.
KEXLIB_API void kex_replace_forbidden_symbols(CString& text, char replacement);

/// The same, and each of / \ : too: what a file name may not contain.
KEXLIB_API void kex_replace_forbidden_symbols_strict(CString& text, char replacement);

/// Appends " (64-bit)" to the text, each time. The first argument is not read.
KEXLIB_API void kex_append_product_bitness(void* context, bzString& text);

/// Gives a text that may begin with a reference to a string resource, "{N}", in `*result`, for the caller to free
/// (SysFreeString).
///
/// S_OK: `*result` is the string resource baseId + N of the module (LoadString). S_FALSE: there is no such resource,
/// and it is what follows the "}"; or there is no reference, and it is the whole text; or the value is no text
/// (VT_BSTR), and it is "** Error **". N is a decimal number; a negative one, or none, loads nothing. Text of less than
/// three characters is no reference. A VARIANT by reference is looked through (VariantCopyInd, whose failure is
/// returned with
/// `*result` untouched); a BSTR by reference is no text. E_POINTER for a null `result`. What `*result` held is not
/// freed.
KEXLIB_API long kexLocalizeString(HINSTANCE resources, UINT baseId, VARIANT value, wchar_t** result);

#endif
