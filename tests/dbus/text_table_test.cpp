#include "main/ctl/text_table.h"

#include <gtest/gtest.h>

namespace plemora {
namespace {

TEST(TextTable, MeasuresColumnsNotBytes) {
  struct Case {
    const char* text;
    int width;
  };
  const Case cases[] = {
      {"", 0},        {"abc", 3}, {"Übergröße", 9}, {"音楽", 4},
      {"e\u0301", 1}, {"🎵", 2},   {"\xff", 1},      {"a\xc3", 2},
  };
  for (const Case& expected : cases) {
    EXPECT_EQ(displayWidth(expected.text), expected.width) << expected.text;
  }
}

TEST(TextTable, ReplacesWhatCouldUpsetATerminal) {
  struct Case {
    std::string_view text;
    const char* shown;
  };
  const Case cases[] = {
      {"Käse 音楽 🎵", "Käse 音楽 🎵"},
      {"a\x1b[31mb", "a\uFFFD[31mb"},
      {"a\nb\tc\x7f", "a\uFFFDb\uFFFDc\uFFFD"},
      {"a\u202Eb\u2066", "a\uFFFDb\uFFFD"},              // reorder the text around them
      {"\xc0\xaf", "\uFFFD\uFFFD"},                      // overlong
      {"\xed\xa0\x80", "\uFFFD\uFFFD\uFFFD"},            // a surrogate
      {"\xf4\x90\x80\x80", "\uFFFD\uFFFD\uFFFD\uFFFD"},  // beyond the last character
      {"ab\xe9", "ab\uFFFD"},                            // cut off
      {"\u0085x", "\uFFFDx"},                            // a control character of two bytes
  };
  for (const Case& expected : cases) {
    EXPECT_EQ(printable(expected.text), expected.shown);
  }
}

TEST(TextTable, CutsAtColumnsAndMarksTheCut) {
  EXPECT_EQ(fitted("abcdef", 6), "abcdef");
  EXPECT_EQ(fitted("abcdef", 4), "abc…");
  EXPECT_EQ(fitted("音楽音楽", 4), "音…") << "a wide character does not fit half";
  EXPECT_EQ(fitted("abc", 1), "…");
  EXPECT_EQ(fitted("abc", 0), "");
}

TEST(TextTable, KeepsEveryLineWithinTheTerminal) {
  TextTable table;
  table.rows = {{{"A very long name of an app"}, {"40%"}, {"some.identifier"}},
                {{"x"}, {"1%"}, {"id"}}};
  for (int width = 1; width < 60; ++width) {
    const std::string text = table.text(false, width);
    for (std::size_t start = 0; start < text.size();) {
      const std::size_t end = text.find('\n', start);
      EXPECT_LE(displayWidth(text.substr(start, end - start)), width) << width;
      start = end + 1;
    }
  }
  EXPECT_EQ(table.text(false, 40),
            "A very long name …  40%  some.identifier\n"
            "x                   1%   id\n")
      << "the first column gives way first";
}

TEST(TextTable, ColoursOnlyWhenAsked) {
  TextTable table;
  table.rows = {{{"muted", CellStyle::warning}, {"", CellStyle::faint}}};
  EXPECT_EQ(table.text(false), "muted\n");
  EXPECT_EQ(table.text(true), "\x1b[33mmuted\x1b[0m\n");
}

}  // namespace
}  // namespace plemora
