#pragma once

namespace plemora {

/// How the detail panel moves: where it is after so many seconds of a phase, 0 at its start and 1
/// at its end, and what of it is to be seen on the way.
struct DetailMotion {
  /// From here on a movement is over.
  static constexpr double arrival = 0.998;

  static double expanding(double elapsed);
  static double collapsing(double elapsed);
  static double resizing(double elapsed);

  /// Of the window that fades away.
  static double fadingAlpha(double elapsed);

  /// Of the two contents, which fade into each other. The progress is that of the growing panel, or
  /// with a minus sign (-0 included) that of the shrinking one: its content hurries away, and the
  /// module returns only when that is half gone.
  static double moduleAlpha(double progress);
  static double detailAlpha(double progress);
  /// How much of the way to the open panel is behind it.
  static double grown(double progress);
};

}  // namespace plemora
