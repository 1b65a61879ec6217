#include "base/text.h"

#include <gtest/gtest.h>

#include <clocale>
#include <string>
#include <utility>
#include <vector>

#include "base/four_char_code.h"

namespace plemora {
namespace {

class Text : public testing::Test {
 protected:
  void SetUp() override { ASSERT_TRUE(std::setlocale(LC_ALL, "C.UTF-8")); }
  void TearDown() override { std::setlocale(LC_ALL, "C"); }
};

const std::string broken = "\xff\xfe-A";

TEST_F(Text, LowersLettersOfTheLocaleAndKeepsBytesThatAreNoText) {
  const std::vector<std::pair<std::string, std::string>> cases = {
      {"", ""},
      {"AirPods MAX", "airpods max"},
      {"Écouteurs de ZOÉ", "écouteurs de zoé"},
      {"ЗВУК", "звук"},
      {"耳机 A", "耳机 a"},
      {broken, "\xff\xfe-a"},
      {std::string("A\0B", 3), std::string("a\0b", 3)},
      {"É cut: \xc3", "É cut: \xc3"},  // half a character: nothing but ASCII is lowered
  };
  for (const auto& [text, expected] : cases) {
    EXPECT_EQ(lowercased(text), expected) << text;
  }
}

TEST_F(Text, LowersAsciiInAnyLocale) {
  std::setlocale(LC_ALL, "C");
  EXPECT_EQ(lowercased("HomePod Mini"), "homepod mini");
}

TEST_F(Text, ComparesWithoutRegardToCase) {
  EXPECT_TRUE(localizedCaseInsensitiveLess("alpha", "Beta"));
  EXPECT_FALSE(localizedCaseInsensitiveLess("Beta", "alpha"));
  EXPECT_FALSE(localizedCaseInsensitiveLess("Éa", "éA"));
  EXPECT_FALSE(localizedCaseInsensitiveLess("éA", "Éa"));
}

TEST_F(Text, OrdersAnythingStrictly) {
  const std::vector<std::string> samples = {
      "", "a", "B", "ab", "é", "Zz", "耳机", broken, "\xff", "\xc3", std::string("a\0b", 3), "\xf0",
      // By bytes alone the last would lie between the other two, the wrong way round.
      "ê", "Ë", "Ð\xff"};
  for (const auto& a : samples) {
    EXPECT_FALSE(localizedCaseInsensitiveLess(a, a));
    for (const auto& b : samples) {
      EXPECT_FALSE(localizedCaseInsensitiveLess(a, b) && localizedCaseInsensitiveLess(b, a));
      for (const auto& c : samples) {
        if (localizedCaseInsensitiveLess(a, b) && localizedCaseInsensitiveLess(b, c)) {
          EXPECT_TRUE(localizedCaseInsensitiveLess(a, c)) << a << " " << b << " " << c;
        }
      }
    }
  }
}

TEST(FourCharCodes, AreDescribedAsTextWhenTheyAreText) {
  EXPECT_EQ(fourCharCode("glob"), 0x676c6f62U);
  EXPECT_EQ(describeFourCharCode(fourCharCode("uid ")), "'uid '");
  EXPECT_EQ(describeFourCharCode(0), "0");
  EXPECT_EQ(describeFourCharCode(static_cast<FourCharCode>(-50)), "-50");
  EXPECT_EQ(describeFourCharCode(fourCharCode("ab\x7f"
                                              "c")),
            std::to_string(0x61627f63));
  EXPECT_EQ(describeFourCharCode(0xff676c6f),
            std::to_string(static_cast<std::int32_t>(0xff676c6f)));
}

}  // namespace
}  // namespace plemora
