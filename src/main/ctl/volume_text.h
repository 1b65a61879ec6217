#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace plemora {

/// A volume as typed by the user: an absolute position, or a change of it.
struct VolumeRequest {
  double value = 0;  ///< absolute: 0...1; relative: -1...1
  bool isRelative = false;

  /// The position that results from the present one, within 0...1.
  double appliedTo(double present) const;

  bool operator==(const VolumeRequest&) const = default;
};

/// Reads "40%", "0.4" (a fraction; 1 is full), and "+5%", "-5%", "+0.05" (changes). The decimal
/// point is a point in every locale. None when the text is anything else, with what is wrong with
/// it in problem.
std::optional<VolumeRequest> parseVolume(std::string_view text, std::string& problem);

/// "40%". Only exactly 0 reads "0%" and only exactly 1 reads "100%".
std::string percentText(double volume);

/// The level of a peak relative to full scale: "-6.0 dB"; "-inf dB" for silence.
std::string decibelText(double peak);

/// A bar of that many columns from -60 dB to 0 dB, filled up with blanks; eighths of a block when
/// the terminal shows UTF-8, else '#'.
std::string levelBar(double peak, int width, bool utf8);

}  // namespace plemora
