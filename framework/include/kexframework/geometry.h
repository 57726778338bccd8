// The text of CSize, CPoint and CRect, for the namespace around the #include. There is no guard: MFC and ATL have these
// classes at global scope, and WTL up to version 9 had its own in WTL.

// A width and a height.
class CSize : public SIZE {
 public:
  CSize() noexcept : SIZE{} {}
  CSize(int width, int height) noexcept {
    cx = width;
    cy = height;
  }
  CSize(SIZE size) noexcept : SIZE(size) {}

  bool operator==(SIZE other) const noexcept { return cx == other.cx && cy == other.cy; }
  bool operator!=(SIZE other) const noexcept { return !(*this == other); }
};

// A point, in pixels.
class CPoint : public POINT {
 public:
  CPoint() noexcept : POINT{} {}
  CPoint(int left, int top) noexcept : POINT{left, top} {}
  CPoint(POINT point) noexcept : POINT(point) {}

  bool operator==(POINT other) const noexcept { return x == other.x && y == other.y; }
  bool operator!=(POINT other) const noexcept { return !(*this == other); }
};

// A rectangle. The right and bottom edges are exclusive.
class CRect : public RECT {
 public:
  CRect() noexcept : RECT{} {}
  CRect(int leftEdge, int topEdge, int rightEdge, int bottomEdge) noexcept
      : RECT{leftEdge, topEdge, rightEdge, bottomEdge} {}
  CRect(const RECT& rect) noexcept : RECT(rect) {}
  CRect(POINT place, SIZE size) noexcept : RECT{place.x, place.y, place.x + size.cx, place.y + size.cy} {}

  operator LPRECT() noexcept { return this; }
  operator LPCRECT() const noexcept { return this; }

  int Width() const noexcept { return right - left; }
  int Height() const noexcept { return bottom - top; }
  CSize Size() const noexcept { return {Width(), Height()}; }
  // Rounded towards the top left.
  CPoint CenterPoint() const noexcept {
    return {static_cast<int>(left) + Width() / 2, static_cast<int>(top) + Height() / 2};
  }
  // NOLINTNEXTLINE(clang-analyzer-core.CallAndMessage): the analyzer loses sight of a CPoint's base
  BOOL PtInRect(POINT point) const noexcept { return ::PtInRect(this, point); }

  // Moves each edge outwards; a negative distance moves it inwards.
  void InflateRect(int x, int y) noexcept { ::InflateRect(this, x, y); }
  void DeflateRect(int x, int y) noexcept { ::InflateRect(this, -x, -y); }
  void OffsetRect(int x, int y) noexcept { ::OffsetRect(this, x, y); }

  bool operator==(const RECT& other) const noexcept { return ::EqualRect(this, &other); }
  bool operator!=(const RECT& other) const noexcept { return !(*this == other); }
};
