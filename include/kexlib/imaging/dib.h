// DIB: a picture of 32 bits a pixel with the effects that owner-drawn buttons need.
//
//     kexWTLDIB picture;
//     if (picture.load_bitmap_transparent(IDB_OPEN, instance, GetSysColor(COLOR_BTNFACE))) {   // magenta becomes the
//     face
//       picture.draw_button_edge(1, GetSysColor(COLOR_BTNFACE));
//       ...
//       picture.get_bitmap(&bitmap);                                     // into a bitmap of the same size
//     }
//
// Pixels. A pixel is 0x00RRGGBB, the top byte is nobody's; a COLORREF (0x00BBGGRR) becomes one by exchanging red and
// blue. The bottom row comes first in memory. Magenta, 0xFF00FF, is the key: it marks what is transparent.
//
// The picture is a DIB section, selected for good into a device context of its own.
//
// Errors. int results are 1 for success and 0 for failure. A bitmap that cannot be taken over leaves no picture; a
// resource that is not there leaves the picture that was. Without a picture the effects do nothing. Nothing is thrown.
//
// Threads. An object belongs to one thread at a time.
#ifndef KEXLIB_IMAGING_DIB_H
#define KEXLIB_IMAGING_DIB_H

#include <kexlib/export.h>

#include <atlbase.h>

#include <atlapp.h>
#include <atlgdi.h>
#include <atlmisc.h>

/// How draw_button_flat draws; any other value is flat.
enum kexWTLDIBEdgeStyle {
  kexEdgeFlat = 0,    ///< the face all around
  kexEdgeRaised = 1,  ///< light above and on the left, shadow below and on the right
  kexEdgeSunken = 2   ///< the other way round
};

/// A picture.
class KEXLIB_API kexWTLDIB {
 public:
  /// No picture, but a device context (CreateCompatibleDC).
  kexWTLDIB();

  /// A copy shares the device context and the bitmap with its source, and both release them in the end: it is for
  /// handing on what the source then forgets, no second picture. That is what copy_from makes.
  kexWTLDIB(const kexWTLDIB& other) = default;
  /// The same; what this object held before is not released.
  kexWTLDIB& operator=(const kexWTLDIB& other);

  /// Deletes the picture and the device context.
  virtual ~kexWTLDIB();

  /// A new picture, in pixels, instead of the one that was there; its contents are whatever the system gives
  /// (CreateDIBSection). 0 for a size below 1 x 1 or of 2 GB and more, or if the system refuses.
  int create(int width, int height);

  /// Hands out the picture's bitmap, null if there is none: the caller deletes it.
  HBITMAP detach_bitmap();

  /// In pixels; (0, 0) without a picture.
  const WTL::CSize& GetSize() const;

  /// Whether the key was all that there was when it was last replaced.
  int is_blank() const;

  /// All pixels become one colour.
  void Fill(COLORREF color);

  /// Takes over the size and the pixels of a bitmap, which stays the caller's and must not be selected into a device
  /// context (GetDIBits). Whether that worked is told by the thread's last error, which is as before afterwards.
  int set_bitmap(WTL::CBitmapT<true>* bitmap);

  /// Copies the pixels into a bitmap of the same size that is selected nowhere (SetDIBits). 0 for another size.
  int get_bitmap(WTL::CBitmapT<true>* bitmap);

  /// set_bitmap, with the key becoming the system's button face colour. The bitmap is deleted, come what may.
  int set_bitmap_transparent(HBITMAP bitmap);

  /// Loads a bitmap resource of any depth (LoadBitmapA).
  int load_bitmap(UINT id, HINSTANCE instance);
  /// The same, by name.
  int load_bitmap(const char* name, HINSTANCE instance);

  /// load_bitmap, with the key becoming `substitute`.
  int load_bitmap_transparent(UINT id, HINSTANCE instance, COLORREF substitute);
  /// The same, by name.
  int load_bitmap_transparent(const char* name, HINSTANCE instance, COLORREF substitute);

  /// Loads a bitmap file (LoadImageA), with the key becoming `substitute`. A file that cannot be loaded leaves no
  /// picture.
  int LoadBitmapFromFile(const char* path, COLORREF substitute);

  /// Takes over the size and the pixels of another picture. Null is ignored.
  void copy_from(kexWTLDIB* source);

  /// One pixel on the ramp of three colours, by its luminance (77 R + 151 G + 28 B) / 256: `mid` stands at its own
  /// luminance, and what is between is interpolated. The pixel and the result are 0x00RRGGBB. A black `mid` stands
  /// at 0.
  static DWORD TintColor(DWORD pixel, COLORREF dark, COLORREF mid, COLORREF light);

  /// All pixels but those of the colour `skip` on the ramp; top bytes stay. `threshold` is the luminance where `mid`
  /// stands, 0 for its own. A black `mid` is taken as grey (128, 128, 128); one that is nearly black, with luminance 0,
  /// changes nothing.
  void Color3Tint(COLORREF dark, COLORREF mid, COLORREF light, COLORREF skip, BYTE threshold);

  /// The look of what is disabled: from the system's button shadow over its face to white.
  void insensitive(COLORREF skip);

  /// Every other pixel of the system's button face colour becomes its highlight colour, but for a margin: two columns
  /// on either side, one row at the bottom, two at the top. A picture less than five pixels wide stays.
  void cool_stipple();

  /// The look of what is pressed: one pixel to the right and down. The top row and the left column stay as well.
  void down();

  /// Lays a picture of the same size over this one; pixels that equal the system's button face colour in all 32 bits
  /// are transparent. Of a wide picture only a square of its height at the left is laid over, of a high one all but
  /// the end of its last rows.
  void merge(const kexWTLDIB& other);

  /// An edge of two pixels in white, grey and black: raised, or with 0 sunken.
  void draw_button_edge(int raised, COLORREF face);

  /// An edge of two pixels in the system's colours.
  void draw_button_flat(kexWTLDIBEdgeStyle style, COLORREF face);

 protected:
  /// Deletes the picture; always 1.
  int destroy();

  /// The key becomes a colour, with the top byte 0; is_blank then tells whether there was nothing else.
  void UpdateSubstituteBits(COLORREF substitute);

  /// Draws the picture with its upper left corner at a place (SetDIBitsToDevice).
  void copy_to_dc(WTL::CDCT<true>* dc, int x, int y);

  int m_state = 0;                 ///< 0: no key was replaced yet; 1: there was nothing but the key; 2: there was
  WTL::CDCHandle m_dc;             ///< owned
  DWORD* m_bits = nullptr;         ///< the pixels; null without a picture
  BITMAPINFO m_bmi{};              ///< describes them
  HBITMAP m_bitmap = nullptr;      ///< owned; null without a picture
  WTL::CSize m_size;               ///< in pixels
  HBITMAP m_old_bitmap = nullptr;  ///< what was selected into m_dc at first
};

#endif
