// Image list: square pictures of the common controls, loaded from bitmap resources through kexWTLDIB.
//
//     kexWTLImageList list(16, RGB(0, 128, 128));             // a colour that is in no picture
//     list.Create();
//     list.Add(IDB_OPEN, instance, kexImageNormal);           // magenta becomes transparent
//     list.Add(IDB_OPEN, instance, kexImageDisabled);
//     toolbar.SetImageList(list);
//     ...
//     list.Destroy();
//
// Threads. For the user-interface thread.
#ifndef KEXLIB_IMAGING_IMAGE_LIST_H
#define KEXLIB_IMAGING_IMAGE_LIST_H

#include <kexlib/export.h>

#include <windows.h>

#include <commctrl.h>

/// How a picture looks in the list; any other value is as loaded.
enum kexImageType {
  kexImageNormal = 0,    ///< as loaded
  kexImageDisabled = 1,  ///< kexWTLDIB::insensitive: from the button shadow over the face to white
  kexImageTinted = 2     ///< from dark blue over blue to white
};

/// Holds an image list of 32 bits with a mask.
class KEXLIB_API kexWTLImageList {
 public:
  /// For pictures of `size` x `size` pixels. Where a picture has the mask colour, or magenta, it is transparent. There
  /// is no list before Create.
  kexWTLImageList(int size, DWORD mask_color);

  /// Does not destroy the list: that is for whoever has it in use, by Destroy.
  ~kexWTLImageList() = default;

  /// Makes the list (ImageList_Create). One that was there is forgotten, not destroyed.
  bool Create();

  /// Destroys the list (ImageList_Destroy). 0 if there is none, or if it cannot be destroyed.
  int Destroy();

  /// Adds a bitmap resource. False only if that cannot be loaded: a picture of another size than the list's is added
  /// with undefined contents, and without a list nothing is added.
  bool Add(UINT bitmap_id, HINSTANCE instance, kexImageType type);

  /// The number of pictures, 0 without a list.
  int GetImageCount() const;

  /// Whether there is no list.
  bool IsNull() const;

  /// Makes a picture an overlay, numbered from 1 (ImageList_SetOverlayImage).
  int SetOverlayImage(int image, int overlay);

  /// The list, which stays the object's.
  operator HIMAGELIST() const;

 protected:
  /// The number of pictures that there is room for at first.
  static int m_DefaultSize;

 private:
  HIMAGELIST m_handle = nullptr;
  int m_size;
  COLORREF m_mask_color;
};

#endif
