// Digit control: the members of an ActiveX control that shows numbers as digits, and those of its font.
//
//     OleInitialize(nullptr);                                        // or AfxOleInit; once, when the thread begins
//
//     kexDigitOCX digits;                                            // a member of its parent's class
//     if (!digits.Create("", WS_CHILD | WS_VISIBLE, place, parent, IDC_DIGITS, nullptr, 0, nullptr)) return;
//     digits.initialise();                                           // in Tahoma, not bold
//     digits.SetNbLines(2);
//     digits.SetValue(0, 12.5);
//     kexOleFont font = digits.GetFont();
//     font.SetItalic(1);
//
// The control is not part of this library. It is found by its class identifier, in the registry or through an active
// manifest. The control defines what its properties mean, for example the units of Gap and Interligne. Each member
// makes one IDispatch call, with a fixed identifier and automation type.
//
// Create calls AfxEnableControlContainer, without which MFC's CreateControl reads through a null pointer. A program
// with a control container manager of its own (COccManager) installs it again after Create.
//
// Errors. An exception of the control is thrown as MFC's COleDispatchException, every other failure as COleException.
// Without a control, members call nothing and return 0 or an empty result; a debug build of Microsoft's MFC asserts
// first. Texts are in the thread's ANSI code page.
//
// Threads. Use a control on the thread that created it, with COM initialised.
#ifndef KEXLIB_COM_DIGIT_CONTROL_H
#define KEXLIB_COM_DIGIT_CONTROL_H

#include <kexlib/export.h>
#include <kexlib/framework.h>

#include <afxdisp.h>

/// An OLE font object (IFontDisp).
class KEXLIB_API kexOleFont : public COleDispatchDriver {
 public:
  /// Without a font.
  kexOleFont() = default;

  /// Takes ownership of the caller's reference; the destructor releases it.
  kexOleFont(IDispatch* dispatch);

  /// Adds a reference to the same font.
  kexOleFont(const kexOleFont& other) = default;

  /// Releases its font and adds a reference to the other's font.
  kexOleFont& operator=(const kexOleFont& other) = default;

  /// The face name.
  CStringA GetName();
  void SetName(const char* value);

  /// The height in points, as a currency value (units of 1/10000).
  CY GetSize();
  void SetSize(const CY& value);

  /// Whether it is bold: 1 or 0.
  int GetBold();
  void SetBold(int value);

  /// Whether it is italic.
  int GetItalic();
  void SetItalic(int value);

  /// Whether it is underlined.
  int GetUnderline();
  void SetUnderline(int value);

  /// Whether it is struck through.
  int GetStrikethrough();
  void SetStrikethrough(int value);

  /// The weight, 0 to 1000: 400 is regular, 700 bold.
  short GetWeight();
  void SetWeight(short value);

  /// The character set, as in LOGFONT.
  short GetCharset();
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

  /// Creates the control (CWnd::CreateControl) with `style` at `rect` in `parent`. window_name becomes its Caption or
  /// Text; class_name and context are ignored. Returns 0 if the control is not installed, or if this object
  /// already has one.
  int Create(const char* class_name, const char* window_name, unsigned long style, const RECT& rect, CWnd* parent,
             unsigned int id, CCreateContext* context = nullptr) override;

  /// As above, with a state and a licence.
  ///
  /// persist: the control's state, a stream or, if `storage` is not 0, a compound file; null for the initial state.
  /// last: the licence key, a BSTR; null for none.
  int Create(const char* window_name, unsigned long style, const RECT& rect, CWnd* parent, unsigned int id,
             CFile* persist, int storage, wchar_t* last);

  /// Sets the control's font to Tahoma, not bold.
  void initialise();

  /// How the border is drawn: 0 flat, 1 raised or sunken.
  short GetAppearance();
  void SetAppearance(short value);

  /// The background's colour.
  unsigned long GetBackColor();
  void SetBackColor(unsigned long value);

  /// The border: 0 none.
  short GetBorderStyle();
  void SetBorderStyle(short value);

  /// Whether the control determines its own size.
  int GetDimAuto();
  void SetDimAuto(int value);

  /// Whether the digits are shown.
  int GetDisplay();
  void SetDisplay(int value);

  /// Whether digits that are off are shown, in the mask's colour.
  int GetDisplayMask();
  void SetDisplayMask(int value);

  /// Whether titles are shown.
  int GetDisplayTitles();
  void SetDisplayTitles(int value);

  /// Whether the control accepts input.
  int GetEnabled();
  void SetEnabled(int value);

  /// The colour of the digits.
  unsigned long GetForeColor();
  void SetForeColor(unsigned long value);

  /// The gap between digits.
  short GetGap();
  void SetGap(short value);

  /// The gap between lines.
  short GetInterligne();
  void SetInterligne(short value);

  /// Whether there is a border inside.
  int GetInternalBorder();
  void SetInternalBorder(int value);

  /// The colour of digits that are off.
  unsigned long GetMaskColor();
  void SetMaskColor(unsigned long value);

  /// The number of digits of a line.
  short GetNbDigits();
  void SetNbDigits(short value);

  /// The number of lines, one for each value.
  short GetNbLines();
  void SetNbLines(short value);

  /// The colour of a value above the bounds.
  unsigned long GetOverflowColor();
  void SetOverflowColor(unsigned long value);

  /// The number of decimals.
  short GetPrecision();
  void SetPrecision(short value);

  /// The kind of display.
  short GetType();
  void SetType(short value);

  /// The colour of a value below the bounds.
  unsigned long GetUnderflowColor();
  void SetUnderflowColor(unsigned long value);

  /// The upper bound of values.
  double GetUpperBound();
  void SetUpperBound(double value);

  /// The control's font. GetFont's result releases it; SetFont passes it by reference (DISPATCH_PROPERTYPUTREF).
  kexOleFont GetFont();
  void SetFont(IDispatch* font);

  /// The control's text. Setting null sets the empty text.
  CStringA GetText();
  void SetText(const char* text);

  /// The value of a line.
  double GetValue(short index);
  void SetValue(short index, double value);

  /// The title of a line.
  CStringA GetTitle(short index);
  void SetTitle(short index, const char* title);

  /// Shows the control's About box.
  void AboutBox();

  /// Sets the bounds of the values.
  void SetBounds(double first, double second);

  /// Calls SetDelta of the control.
  void SetDelta(double first, double second, double third, double fourth);

  /// Calls SetPoint of the control.
  void SetPoint(double first, double second, double third);

  /// Makes the control calculate its best size.
  void CalculateOptimizeSize();

  /// Whether the digits flash.
  void SetFlashing(int flashing);

  /// Makes the control fit its font's size to its own size.
  void CalculateFontSizeToFit();

  /// The best width for a height.
  short GetOptimalWidth(long height);

  /// The best font size for a height.
  CY GetOptimalFontSize(long height);

  /// The best width for a height in a font size. The control declares the height as a 16-bit integer, so 70000 arrives
  /// as 4464.
  short GetOptimalWidth2(long height, CY size);
};

#endif
