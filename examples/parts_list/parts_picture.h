// A chart of the parts: a bar for each, as long as the part.
#ifndef PARTS_LIST_PARTS_PICTURE_H
#define PARTS_LIST_PARTS_PICTURE_H

#include <kexlib/imaging.h>

#include <parts_list/parts.h>

#include <memory>
#include <vector>

namespace parts_list {

class PartsPicture : public kexWTLDIB {
 public:
  // Draws the parts on a new bitmap of this size, in pixels; without parts, an empty sheet.
  void draw(const std::vector<Part>& parts, int width, int height);

  void show(WTL::CDC& dc) { copy_to_dc(&dc, 0, 0); }

  // A copy for the encoder; null without memory. kexWTLDIB keeps its bitmap to itself and to its derived classes.
  std::unique_ptr<hnDuctImage> image() const;

 private:
  void draw_bar(const Part& part, RECT bar);
};

}  // namespace parts_list

#endif
