// DIB: a picture of 32 bits a pixel with the effects that owner-drawn buttons need.
//
//     kexWTLDIB picture;
//     if (picture.load_bitmap_transparent(IDB_OPEN, instance, GetSysColor(COLOR_BTNFACE))) {   // replaces magenta
//       picture.draw_button_edge(1, GetSysColor(COLOR_BTNFACE));
//       ...
//       picture.get_bitmap(&bitmap);                                     // into a bitmap of the same size
//     }
//
// Pixels. A pixel is 0x00RRGGBB; its top byte is unused. A COLORREF (0x00BBGGRR) becomes a pixel by exchanging red and
// blue. The bottom row is first in memory. Magenta, 0xFF00FF, is the key colour: it marks transparent pixels.
//
// The picture is a DIB section that stays selected into a device context that the object owns.
//
// Errors. int results are 1 for success and 0 for failure. If a bitmap cannot be read, the object has no picture
// afterwards; if a resource cannot be loaded, the previous picture stays. Without a picture the effects do nothing.
// Nothing is thrown.
//
// Threads. Use an object on one thread at a time.
#ifndef KEXLIB_IMAGING_DIB_H
#define KEXLIB_IMAGING_DIB_H

#include <kexlib/export.h>
#include <kexlib/windows.h>
#include <kexlib/wtl_geometry.h>

#include <atlbase.h>
#include <atlapp.h>
#include <atlgdi.h>

/// The style of draw_button_flat; any other value means kexEdgeFlat.
enum kexWTLDIBEdgeStyle {
  kexEdgeFlat = 0,    ///< the face colour on all sides
  kexEdgeRaised = 1,  ///< highlight at the top and left, shadow at the bottom and right
  kexEdgeSunken = 2   ///< shadow at the top and left, highlight at the bottom and right
};

/// A picture of 32 bits a pixel.
class KEXLIB_API kexWTLDIB {
 public:
  /// Creates the device context (CreateCompatibleDC). There is no picture yet.
  kexWTLDIB();

  /// Copies the handles: the copy shares the device context and the bitmap with its source, and both destructors
  /// release them. Use copy_from to make a second picture. Kept for compatibility: callers hand a picture on by a copy
  /// and clear the handles of the source.
  kexWTLDIB(const kexWTLDIB& other) = default;
  /// Copies the handles in the same way. Does not release what this object held before.
  kexWTLDIB& operator=(const kexWTLDIB& other);

  /// Deletes the picture and the device context.
  virtual ~kexWTLDIB();

  /// Creates a new picture with a size in pixels and deletes the previous one. The contents are unspecified
  /// (CreateDIBSection). Fails if the size is below 1 x 1 or takes 2 GB or more, or if the system fails.
  int create(int width, int height);

  /// Detaches the bitmap and returns it; the caller deletes it. Null if there is no picture.
  HBITMAP detach_bitmap();

  /// The size in pixels; (0, 0) without a picture.
  const WTL::CSize& GetSize() const;

  /// Whether every pixel had the key colour when it was last replaced.
  int is_blank() const;

  /// Sets all pixels to one colour.
  void Fill(COLORREF color);

  /// Copies the size and the pixels of a bitmap, which the caller keeps and which must not be selected into a device
  /// context (GetDIBits). The thread's last error decides on success, not the result of GetDIBits; it is restored
  /// afterwards.
  int set_bitmap(WTL::CBitmapT<true>* bitmap);

  /// Copies the pixels to a bitmap of the same size, which must not be selected into a device context (SetDIBits).
  /// Fails if the size differs.
  int get_bitmap(WTL::CBitmapT<true>* bitmap);

  /// As set_bitmap, and replaces the key colour with the system's button face colour. The bitmap is always deleted.
  int set_bitmap_transparent(HBITMAP bitmap);

  /// Loads a bitmap resource of any depth, by its number (LoadBitmapA).
  int load_bitmap(UINT id, HINSTANCE instance);
  /// Loads it by its name.
  int load_bitmap(const char* name, HINSTANCE instance);

  /// As load_bitmap, and replaces the key colour with `substitute`.
  int load_bitmap_transparent(UINT id, HINSTANCE instance, COLORREF substitute);
  /// Loads it by its name.
  int load_bitmap_transparent(const char* name, HINSTANCE instance, COLORREF substitute);

  /// Loads a bitmap file (LoadImageA) and replaces the key colour with `substitute`. If the file cannot be loaded, the
  /// object has no picture afterwards.
  int LoadBitmapFromFile(const char* path, COLORREF substitute);

  /// Copies the size and the pixels of another picture. Null is ignored.
  void copy_from(kexWTLDIB* source);

  /// Maps one pixel to a ramp of three colours by its luminance, (77 R + 151 G + 28 B) / 256. Colors between are
  /// interpolated.
  ///   pixel  0x00RRGGBB, as the result
  ///   dark   the colour of luminance 0
  ///   mid    the colour of its own luminance; black has luminance 0
  ///   light  the colour that luminance 256 would have
  static DWORD TintColor(DWORD pixel, COLORREF dark, COLORREF mid, COLORREF light);

  /// Maps all pixels to the ramp. Top bytes do not change.
  ///   dark, mid, light  as for TintColor. A black `mid` is replaced by grey (128, 128, 128). With any other `mid` of
  ///                     luminance 0 and a threshold of 0, no pixel changes
  ///   skip              pixels of this colour do not change
  ///   threshold         the luminance that becomes `mid`; 0 stands for the luminance of `mid`
  void Color3Tint(COLORREF dark, COLORREF mid, COLORREF light, COLORREF skip, BYTE threshold);

  /// Makes the picture look disabled: Color3Tint from the system's button shadow over its button face to white.
  void insensitive(COLORREF skip);

  /// Sets every other pixel of the system's button face colour to its highlight colour. A margin does not change: two
  /// columns on each side, one row at the bottom, two at the top. A picture less than five pixels wide does not change.
  void cool_stipple();

  /// Makes the picture look pressed: moves it one pixel to the right and down. The top row and the left column do not
  /// change.
  void down();

  /// Copies the pixels of another picture of the same size, except those that equal the system's button face colour in
  /// all 32 bits. Use square pictures. If w > h, only the square of h x h pixels at the left is copied; if h > w, only
  /// the first (w - 1) * w + h pixels in memory, which are at the bottom: 272 of 512 at 16 x 32. Kept for
  /// compatibility.
  void merge(const kexWTLDIB& other);

  /// Draws an edge of two pixels in white, grey, black and `face`: sunken if `raised` is 0, else raised.
  void draw_button_edge(int raised, COLORREF face);

  /// Draws an edge of two pixels in `face` and the system's button colours.
  void draw_button_flat(kexWTLDIBEdgeStyle style, COLORREF face);

 protected:
  /// Deletes the picture. The result is 1.
  int destroy();

  /// Replaces the key colour with another colour, whose top byte is 0, and sets the result of is_blank.
  void UpdateSubstituteBits(COLORREF substitute);

  /// Draws the picture with its upper left corner at (x, y) (SetDIBitsToDevice).
  void copy_to_dc(WTL::CDCT<true>* dc, int x, int y);

  int m_state = 0;                 ///< 0: key not replaced yet; 1: every pixel was the key; 2: another pixel
  WTL::CDCHandle m_dc;             ///< owned
  DWORD* m_bits = nullptr;         ///< the pixels; null without a picture
  BITMAPINFO m_bmi{};              ///< describes them
  HBITMAP m_bitmap = nullptr;      ///< owned; null without a picture
  WTL::CSize m_size;               ///< in pixels
  HBITMAP m_old_bitmap = nullptr;  ///< the initial bitmap of m_dc
};

#endif
