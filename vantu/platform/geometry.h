#pragma once
// Plain geometry and colour records shared by the UI ports.

namespace vantu {

struct Point {
  double x = 0;
  double y = 0;
  bool operator==(const Point&) const = default;
};

struct Size {
  double width = 0;
  double height = 0;
  bool operator==(const Size&) const = default;
};

struct Rect {
  double x = 0;
  double y = 0;
  double width = 0;
  double height = 0;
  bool operator==(const Rect&) const = default;
};

struct EdgeInsets {
  double top = 0;
  double left = 0;
  double bottom = 0;
  double right = 0;
  bool operator==(const EdgeInsets&) const = default;
};

/// Components in 0...1.
struct Color {
  double red = 0;
  double green = 0;
  double blue = 0;
  double alpha = 1;
  bool operator==(const Color&) const = default;
};

}  // namespace vantu
