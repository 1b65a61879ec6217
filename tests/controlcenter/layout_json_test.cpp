#include "controlcenter/layout_json.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <stdexcept>

namespace plemora {
namespace {

TEST(LayoutJson, GivesBackWhatItWasParsedFrom) {
  const char* const texts[] = {
      "null",
      "true",
      "[]",
      "{}",
      R"("")",
      R"({"z":1,"a":2,"m":{"b":[],"a":{}}})",  // in this order
      "[0,-1,2,2.0,2.50,1e3,1E3,1.0e+03,-0,-0.0,0.1,1.10]",
      "[9223372036854775807,-9223372036854775808,18446744073709551615]",
      "[18446744073709551616,-9223372036854775809,123456789012345678901234567890]",
      "[3.141592653589793238462643383279502884,1e-400]",
      R"(["é","😀","\"\\\b\f\n\r\t",""])",
      R"({"":{"":[[[[null]]]]}})",
  };
  for (const char* text : texts) {
    EXPECT_EQ(layoutJsonText(parseLayoutJson(text)), text);
  }
  EXPECT_EQ(layoutJsonText(parseLayoutJson(" [ 1 , \"\\u00e9\\/\" ] ")), R"([1,"é/"])");
}

TEST(LayoutJson, RefusesWhatIsNoJsonInTheParsersWords) {
  for (const char* text :
       {"", "[", "[1,]", "{\"a\"}", "nul", "[1] 2", "\"\xff\"", "[01]", "{1:2}"}) {
    EXPECT_THROW(parseLayoutJson(text), LayoutJson::parse_error) << text;
  }
  EXPECT_THROW(parseLayoutJson("1e400"), LayoutJson::out_of_range);
}

TEST(LayoutJson, BoundsTheNesting) {
  const auto nested = [](int levels) {
    return std::string(static_cast<std::size_t>(levels), '[') +
           std::string(static_cast<std::size_t>(levels), ']');
  };
  const std::string deepest = nested(deepestLayoutNesting);
  EXPECT_EQ(layoutJsonText(parseLayoutJson(deepest)), deepest);
  EXPECT_THROW(parseLayoutJson(nested(deepestLayoutNesting + 1)), std::length_error);
  EXPECT_THROW(parseLayoutJson(std::string(1'000'000, '[')), std::length_error);
}

TEST(LayoutJson, TellsIntegersFromOtherNumbers) {
  const std::pair<const char*, std::optional<std::int64_t>> cases[] = {
      {"2", 2},
      {"-3", -3},
      {"9223372036854775807", 9223372036854775807},
      {"9223372036854775808", std::nullopt},
      {"2.0", std::nullopt},
      {"2e0", std::nullopt},
      {"true", std::nullopt},
      {"\"2\"", std::nullopt},
      {"null", std::nullopt},
  };
  for (const auto& [text, value] : cases) {
    const LayoutJson json = parseLayoutJson(text);
    EXPECT_EQ(layoutInteger(&json), value) << text;
  }
  EXPECT_EQ(layoutInteger(nullptr), std::nullopt);
}

}  // namespace
}  // namespace plemora
