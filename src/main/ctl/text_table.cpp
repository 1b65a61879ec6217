#include "main/ctl/text_table.h"

#include <algorithm>
#include <clocale>
#include <cstdint>
#include <cwchar>

namespace plemora {

namespace {

constexpr char32_t invalid = 0xFFFD;
constexpr int smallestFirstColumn = 12;

// Takes one character off the front of a text that is not empty. A byte that begins no valid
// sequence gives `invalid` and is taken alone.
char32_t takeCharacter(std::string_view& text) {
  const auto byte = [&](std::size_t i) { return static_cast<unsigned char>(text[i]); };
  const unsigned char first = byte(0);
  const std::size_t length = first < 0x80   ? 1
                             : first < 0xC2 ? 0
                             : first < 0xE0 ? 2
                             : first < 0xF0 ? 3
                             : first < 0xF5 ? 4
                                            : 0;
  char32_t character = length == 1 ? first : first & (0xFF >> (length + 1));
  bool valid = length > 0 && length <= text.size();
  for (std::size_t i = 1; valid && i < length; ++i) {
    valid = (byte(i) & 0xC0) == 0x80;
    character = character << 6 | (byte(i) & 0x3F);
  }
  static constexpr char32_t smallest[] = {0, 0, 0x80, 0x800, 0x10000};
  valid = valid && character >= smallest[length] && character <= 0x10FFFF &&
          (character < 0xD800 || character > 0xDFFF);
  text.remove_prefix(valid ? length : 1);
  return valid ? character : invalid;
}

// Width by the C library's tables, whatever the locale of the process is.
int characterWidth(char32_t character) {
  static const locale_t utf8 = newlocale(LC_CTYPE_MASK, "C.UTF-8", nullptr);
  if (utf8 == nullptr) {
    return 1;
  }
  const locale_t before = uselocale(utf8);
  const int width = wcwidth(static_cast<wchar_t>(character));
  uselocale(before);
  return width;  // negative: not printable
}

// Characters that reorder or hide what stands around them.
bool isDeceptive(char32_t c) {
  return (c >= 0x202A && c <= 0x202E) || (c >= 0x2066 && c <= 0x2069) || c == 0x2028 || c == 0x2029;
}

}  // namespace

std::string printable(std::string_view text) {
  std::string result;
  while (!text.empty()) {
    const std::string_view before = text;
    const char32_t character = takeCharacter(text);
    const bool isShown =
        character != invalid && characterWidth(character) >= 0 && !isDeceptive(character);
    result += isShown ? before.substr(0, before.size() - text.size()) : "\uFFFD";
  }
  return result;
}

int displayWidth(std::string_view text) {
  int width = 0;
  while (!text.empty()) {
    width += std::max(0, characterWidth(takeCharacter(text)));
  }
  return width;
}

std::string fitted(std::string_view text, int width) {
  if (displayWidth(text) <= width) {
    return std::string(text);
  }
  std::string result;
  int used = 0;
  while (!text.empty()) {
    const std::string_view before = text;
    const int next = std::max(0, characterWidth(takeCharacter(text)));
    if (used + next > width - 1) {
      break;
    }
    used += next;
    result += before.substr(0, before.size() - text.size());
  }
  return width > 0 ? result + "…" : result;
}

std::string styled(std::string_view text, CellStyle style, bool colour) {
  static constexpr std::string_view starts[] = {"", "\x1b[1m", "\x1b[2m", "\x1b[33m"};
  if (!colour || style == CellStyle::plain || text.empty()) {
    return std::string(text);
  }
  return std::string(starts[static_cast<std::size_t>(style)]) + std::string(text) + "\x1b[0m";
}

std::string TextTable::text(bool colour, int width) const {
  std::vector<int> widths;
  for (const auto& row : rows) {
    widths.resize(std::max(widths.size(), row.size()));
    for (std::size_t i = 0; i < row.size(); ++i) {
      widths[i] = std::max(widths[i], displayWidth(row[i].text));
    }
  }
  int total = 2 * std::max(0, static_cast<int>(widths.size()) - 1);
  for (const int columnWidth : widths) {
    total += columnWidth;
  }
  if (width > 0 && total > width) {
    widths[0] = std::max(std::min(widths[0], smallestFirstColumn), widths[0] - (total - width));
  }
  std::string result;
  for (const auto& row : rows) {
    std::string line;
    int used = 0;  // columns of the line that are taken, gaps not yet written included
    int gap = 0;
    for (std::size_t i = 0; i < row.size(); ++i) {
      std::string cell = fitted(row[i].text, widths[i]);
      const int padding = widths[i] - displayWidth(cell);
      gap += row[i].rightAligned ? padding : 0;
      const int room = width > 0 ? width - used - gap : displayWidth(cell);
      cell = fitted(cell, room);
      if (!cell.empty()) {
        line.append(static_cast<std::size_t>(gap), ' ');
        line += styled(cell, row[i].style, colour);
        used += gap + displayWidth(cell);
        gap = 0;
      }
      gap += row[i].rightAligned ? 2 : padding + 2;
    }
    result += line + "\n";
  }
  return result;
}

}  // namespace plemora
