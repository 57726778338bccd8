// Digit control: the members of an ActiveX control that shows numbers as digits, and those of its font.
//
//     kexDigitOCX digits;                                            // a member of its parent's class
//     if (!digits.Create("", WS_CHILD | WS_VISIBLE, place, parent, IDC_DIGITS, nullptr, 0, nullptr)) return;
//     digits.initialise();                                           // in Tahoma, not bold
//     digits.SetNbLines(2);
//     digits.SetValue(0, 12.5);
//     kexOleFont font = digits.GetFont();
//     font.SetItalic(1);
//
// The control is not part of this library: it is found by its class identifier, in the registry or through a manifest
// that is in force. What its properties mean (the units of Gap and Interligne, say) is the control's to tell. Each
// member is one call through IDispatch, with a fixed identifier and automation type.
//
// Errors. An exception of the control is thrown as MFC's COleDispatchException, every other failure as COleException.
// Before a control is created nothing is called, and results are 0 or empty. Texts are in the thread's ANSI code page.
//
// Threads. A control belongs to the thread that created it, with COM initialised.
#ifndef KEXLIB_COM_DIGIT_CONTROL_H
#define KEXLIB_COM_DIGIT_CONTROL_H

#include <afxwin.h>

#include <afxdisp.h>
#include <atlstr.h>

#include <kexlib/export.h>

/// An OLE font object (IFontDisp).
class KEXLIB_API kexOleFont : public COleDispatchDriver {
 public:
  /// Without a font.
  kexOleFont() = default;

  /// Takes over the caller's reference, and releases it at the end.
  kexOleFont(IDispatch* dispatch);

  /// Has a reference of its own to the same font.
  kexOleFont(const kexOleFont& other) = default;

  /// Lets go of its font, and has a reference of its own to the other's.
  kexOleFont& operator=(const kexOleFont& other) = default;

  /// The face name.
  CStringA GetName();

  /// Sets it.
  void SetName(const char* value);

  /// The height, in points, as a currency value: ten thousandths.
  CY GetSize();

  /// Sets it.
  void SetSize(const CY& value);

  /// Whether it is bold: 1 or 0.
  int GetBold();

  /// Sets it.
  void SetBold(int value);

  /// Whether it is italic.
  int GetItalic();

  /// Sets it.
  void SetItalic(int value);

  /// Whether it is underlined.
  int GetUnderline();

  /// Sets it.
  void SetUnderline(int value);

  /// Whether it is struck through.
  int GetStrikethrough();

  /// Sets it.
  void SetStrikethrough(int value);

  /// The weight, 0 to 1000: 400 is regular, 700 bold.
  short GetWeight();

  /// Sets it.
  void SetWeight(short value);

  /// The character set, as in LOGFONT.
  short GetCharset();

  /// Sets it.
  void SetCharset(short value);
};

/// The control in a child window, and its properties and methods.
class KEXLIB_API kexDigitOCX : public CWnd {
  DECLARE_DYNCREATE(kexDigitOCX)

 public:
  /// Without a control.
  kexDigitOCX() = default;

  /// Destroys the window, and with it the control.
  ~kexDigitOCX() override = default;

  /// The control's class, {107BD0EE-6861-11CF-B28B-0000C0C14EA0}.
  const GUID& GetClsid() const;

  /// Makes the control (CWnd::CreateControl) with `style` at `rect` in `parent`. window_name becomes its Caption or
  /// Text; class_name and context are not used. False where the control is not installed, or where there is one
  /// already.
  int Create(const char* class_name, const char* window_name, unsigned long style, const RECT& rect, CWnd* parent,
             unsigned int id, CCreateContext* context = nullptr) override;

  /// The same with the control's state from a file, a stream or with `storage` a compound file (null: it begins anew),
  /// and the key of a licensed control, a BSTR (null: none).
  int Create(const char* window_name, unsigned long style, const RECT& rect, CWnd* parent, unsigned int id,
             CFile* persist, int storage, wchar_t* last);

  /// Sets the control's font to Tahoma, not bold.
  void initialise();

  /// How the border is drawn: 0 flat, 1 raised or sunken.
  short GetAppearance();

  /// Sets it.
  void SetAppearance(short value);

  /// The background's colour.
  unsigned long GetBackColor();

  /// Sets it.
  void SetBackColor(unsigned long value);

  /// The border: 0 none.
  short GetBorderStyle();

  /// Sets it.
  void SetBorderStyle(short value);

  /// Whether the control finds its own size.
  int GetDimAuto();

  /// Sets it.
  void SetDimAuto(int value);

  /// Whether the digits are shown.
  int GetDisplay();

  /// Sets it.
  void SetDisplay(int value);

  /// Whether digits that are off are shown, in the mask's colour.
  int GetDisplayMask();

  /// Sets it.
  void SetDisplayMask(int value);

  /// Whether titles are shown.
  int GetDisplayTitles();

  /// Sets it.
  void SetDisplayTitles(int value);

  /// Whether the control takes input.
  int GetEnabled();

  /// Sets it.
  void SetEnabled(int value);

  /// The digits' colour.
  unsigned long GetForeColor();

  /// Sets it.
  void SetForeColor(unsigned long value);

  /// The gap between digits.
  short GetGap();

  /// Sets it.
  void SetGap(short value);

  /// The gap between lines.
  short GetInterligne();

  /// Sets it.
  void SetInterligne(short value);

  /// Whether there is a border inside.
  int GetInternalBorder();

  /// Sets it.
  void SetInternalBorder(int value);

  /// The colour of digits that are off.
  unsigned long GetMaskColor();

  /// Sets it.
  void SetMaskColor(unsigned long value);

  /// The number of digits of a line.
  short GetNbDigits();

  /// Sets it.
  void SetNbDigits(short value);

  /// The number of lines, one for each value.
  short GetNbLines();

  /// Sets it.
  void SetNbLines(short value);

  /// The colour of a value above the bounds.
  unsigned long GetOverflowColor();

  /// Sets it.
  void SetOverflowColor(unsigned long value);

  /// The number of decimals.
  short GetPrecision();

  /// Sets it.
  void SetPrecision(short value);

  /// The kind of display.
  short GetType();

  /// Sets it.
  void SetType(short value);

  /// The colour of a value below the bounds.
  unsigned long GetUnderflowColor();

  /// Sets it.
  void SetUnderflowColor(unsigned long value);

  /// The upper bound of values.
  double GetUpperBound();

  /// Sets it.
  void SetUpperBound(double value);

  /// The control's font, with a reference that the result gives back.
  kexOleFont GetFont();

  /// Sets the font, by reference.
  void SetFont(IDispatch* font);

  /// The control's text.
  CStringA GetText();

  /// Sets it; null is the empty text.
  void SetText(const char* text);

  /// The value of a line.
  double GetValue(short index);

  /// Sets it.
  void SetValue(short index, double value);

  /// The title of a line.
  CStringA GetTitle(short index);

  /// Sets it.
  void SetTitle(short index, const char* title);

  /// Shows the control's own box.
  void AboutBox();

  /// Sets the bounds of the values.
  void SetBounds(double first, double second);

  /// Calls SetDelta of the control.
  void SetDelta(double first, double second, double third, double fourth);

  /// Calls SetPoint of the control.
  void SetPoint(double first, double second, double third);

  /// Lets the control reckon its best size.
  void CalculateOptimizeSize();

  /// Whether the digits flash.
  void SetFlashing(int flashing);

  /// Lets the control choose its font's size by its own.
  void CalculateFontSizeToFit();

  /// The width that goes with a height.
  short GetOptimalWidth(long height);

  /// The font size that goes with a height.
  CY GetOptimalFontSize(long height);

  /// The width that goes with a height in a font size. Only the low sixteen bits of the height reach the control.
  short GetOptimalWidth2(long height, CY size);
};

#endif
