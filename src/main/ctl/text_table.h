#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace plemora {

/// The text with everything that could upset a terminal (control characters, bytes that are no
/// UTF-8) replaced by U+FFFD.
std::string printable(std::string_view text);

/// How many columns of a terminal the UTF-8 text takes: wide characters count 2, combining ones 0.
int displayWidth(std::string_view text);

/// The text cut down to that many columns, with an ellipsis as its last one if anything was cut.
std::string fitted(std::string_view text, int width);

enum class CellStyle { plain, strong, faint, warning };

struct TableCell {
  std::string text;
  CellStyle style = CellStyle::plain;
  bool rightAligned = false;
};

/// Lays rows out in columns two blanks apart. The first row is the head. Lines end without
/// trailing blanks and with a newline.
struct TextTable {
  std::vector<std::vector<TableCell>> rows;

  /// With colour the styles become terminal sequences. A width above 0 (columns of the terminal)
  /// cuts every line down to it, the first column first, down to 12 columns.
  std::string text(bool colour, int width = 0) const;
};

/// The text in a style, or as it is without colour.
std::string styled(std::string_view text, CellStyle style, bool colour);

}  // namespace plemora
