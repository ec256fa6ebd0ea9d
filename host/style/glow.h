#pragma once

namespace diagram::style {

/// A colour with red, green, blue and alpha components, each from 0 to 1.
struct Color {
  /// Makes a colour from its four components (alpha 1 unless given). Values are kept as given.
  Color(double red, double green, double blue, double alpha = 1.0)
      : red(red), green(green), blue(blue), alpha(alpha) {}

  double red;
  double green;
  double blue;
  double alpha;

  bool operator==(const Color&) const = default;
};

/// The glow effect value: a halo of `color` drawn around an element. `size` is the width of the
/// halo in pixels; `inner` draws it inside the element's outline instead of outside; `strength`
/// scales its opacity (1 is full). A plain value: copy it freely, from any thread.
struct Glow {
  /// Makes a glow from a colour, a size, the inner flag and a strength, in that order.
  Glow(const Color& color, int size, bool inner, double strength)
      : color(color), size(size), inner(inner), strength(strength) {}

  Color color;
  int size;
  bool inner;
  double strength;

  bool operator==(const Glow&) const = default;
};

}  // namespace diagram::style
