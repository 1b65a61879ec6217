#include "skin/look/style_numbers.h"

#include <gmock/gmock.h>

#include <limits>
#include <string>

namespace plemora {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

TEST(StyleNumbersTest, TakesWholeDecimalNumbersOnly) {
  struct Case {
    std::string text;
    std::optional<double> expected;
  };
  for (const Case& each : std::vector<Case>{
           {"0", 0},       {"1.5", 1.5},     {"-0.25", -0.25},
           {"+2", 2},      {".5", 0.5},      {"5.", 5},
           {"1e2", 100},   {"1E-2", 0.01},   {"007", 7},
           {"", {}},       {"+", {}},        {"-", {}},
           {".", {}},      {"+-1", {}},      {"++1", {}},
           {"1,5", {}},    {"1.5.2", {}},    {" 1", {}},
           {"1 ", {}},     {"1\n", {}},      {std::string("1\0", 2), {}},
           {"1px", {}},    {"0x10", {}},     {"nan", {}},
           {"-inf", {}},   {"infinity", {}}, {"1e999", {}},
           {"\u0661", {}},
       }) {
    EXPECT_EQ(parseDouble(each.text), each.expected) << each.text;
    const auto single = parseFloat(each.text);
    EXPECT_EQ(single.has_value(), each.expected.has_value()) << each.text;
    EXPECT_EQ(single.value_or(0), static_cast<float>(each.expected.value_or(0))) << each.text;
  }
  // Rounded once, to 32 bits, and not by way of a double.
  EXPECT_EQ(parseFloat("1.00000017881393432617187499"), 1.00000011920928955078125F);
  EXPECT_EQ(parseFloat("1e39"), std::nullopt);
}

TEST(StyleNumbersTest, TakesWholeIntegersInRangeOnly) {
  struct Case {
    std::string text;
    std::optional<int> expected;
  };
  for (const Case& each : std::vector<Case>{
           {"0", 0},
           {"12", 12},
           {"+3", 3},
           {"-4", -4},
           {"2147483647", std::numeric_limits<int>::max()},
           {"-2147483648", std::numeric_limits<int>::min()},
           {"2147483648", {}},
           {"99999999999999999999", {}},
           {"", {}},
           {"+", {}},
           {"+-3", {}},
           {"1.0", {}},
           {"1e2", {}},
           {" 1", {}},
           {"1 ", {}},
       }) {
    EXPECT_EQ(parseInteger(each.text), each.expected) << each.text;
  }
}

TEST(StyleNumbersTest, CutsTextsAtSeparators) {
  EXPECT_THAT(splitText("a,b c,d", ','), ElementsAre("a", "b c", "d"));
  EXPECT_THAT(splitText(",,a,,b,", ','), ElementsAre("a", "b"));
  EXPECT_THAT(splitText("", ','), IsEmpty());
  EXPECT_THAT(splitText(",", ','), IsEmpty());
  const auto twice = splitPiece("a=b=c");
  EXPECT_EQ(twice.key, "a");
  EXPECT_EQ(twice.value, "b=c");
  EXPECT_EQ(splitPiece("a=").value, "");
  EXPECT_EQ(splitPiece("a").value, std::nullopt);
}

}  // namespace
}  // namespace plemora
