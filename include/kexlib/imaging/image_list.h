// Image list: square pictures for the common controls, loaded from bitmap resources through kexWTLDIB.
//
//     kexWTLImageList list(16, RGB(0, 128, 128));             // a colour that no picture has
//     list.Create();
//     list.Add(IDB_OPEN, instance, kexImageNormal);           // magenta becomes transparent
//     list.Add(IDB_OPEN, instance, kexImageDisabled);
//     toolbar.SetImageList(list);
//     ...
//     list.Destroy();
//
// Threads. Use it on the user-interface thread.
#ifndef KEXLIB_IMAGING_IMAGE_LIST_H
#define KEXLIB_IMAGING_IMAGE_LIST_H

#include <kexlib/export.h>
#include <kexlib/windows.h>

#include <commctrl.h>

/// The look of a picture in the list; any other value means kexImageNormal.
enum kexImageType {
  kexImageNormal = 0,    ///< as loaded
  kexImageDisabled = 1,  ///< kexWTLDIB::insensitive: from the button shadow over the face to white
  kexImageTinted = 2     ///< from dark blue over blue to white
};

/// Holds an image list of 32 bits a pixel with a mask.
class KEXLIB_API kexWTLImageList {
 public:
  /// Sets the size of the pictures, `size` x `size` pixels, and the mask colour. Pixels of the mask colour and magenta
  /// pixels are transparent. There is no list before Create.
  kexWTLImageList(int size, DWORD mask_color);

  /// Does not destroy the list, which controls may still use: call Destroy.
  ~kexWTLImageList() = default;

  /// Creates the list (ImageList_Create). A previous list is not destroyed.
  bool Create();

  /// Destroys the list (ImageList_Destroy). 0 if there is no list or it cannot be destroyed.
  int Destroy();

  /// Adds a bitmap resource. False only if the resource cannot be loaded. A picture of another size than the list's is
  /// added with undefined contents; without a list nothing is added, and the result is true.
  ///   bitmap_id  the number of the resource
  ///   instance   the module that contains it
  ///   type       the look of the picture
  bool Add(UINT bitmap_id, HINSTANCE instance, kexImageType type);

  /// The number of pictures; 0 without a list.
  int GetImageCount() const;

  /// Whether there is no list.
  bool IsNull() const;

  /// Makes a picture an overlay, numbered from 1 (ImageList_SetOverlayImage).
  int SetOverlayImage(int image, int overlay);

  /// The handle of the list; null before Create.
  operator HIMAGELIST() const;

 protected:
  /// The initial capacity of a new list.
  static int m_DefaultSize;

 private:
  HIMAGELIST m_handle = nullptr;
  int m_size;
  COLORREF m_mask_color;
};

#endif
