#include "main/ctl/volume_text.h"

#include <gtest/gtest.h>

#include <cmath>

#include "main/ctl/text_table.h"

namespace plemora {
namespace {

TEST(VolumeText, ReadsPercentagesFractionsAndChanges) {
  struct Case {
    const char* text;
    double value;
    bool isRelative;
  };
  const Case cases[] = {
      {"40%", 0.4, false}, {"0%", 0, false},     {"100%", 1, false},    {"12.5%", 0.125, false},
      {"0.4", 0.4, false}, {".5", 0.5, false},   {"1", 1, false},       {"0", 0, false},
      {"+5%", 0.05, true}, {"-5%", -0.05, true}, {"+0.05", 0.05, true}, {"-100%", -1, true},
  };
  for (const Case& expected : cases) {
    std::string problem;
    const auto request = parseVolume(expected.text, problem);
    ASSERT_TRUE(request) << expected.text << ": " << problem;
    EXPECT_DOUBLE_EQ(request->value, expected.value) << expected.text;
    EXPECT_EQ(request->isRelative, expected.isRelative) << expected.text;
  }
}

TEST(VolumeText, RefusesEverythingElseAndSaysWhatToWrite) {
  const char* cases[] = {"",     "%",    "+",   "-",     "+%",  "40",    "101%", "1.1",
                         "40 %", "4O%",  "0,4", "nan",   "inf", "1e-1",  "0x1",  "--5%",
                         "+-5%", "40%%", ".",   "1.2.3", "+40", "-101%", " 40%", "40% "};
  for (const char* text : cases) {
    std::string problem;
    EXPECT_FALSE(parseVolume(text, problem)) << text;
    EXPECT_NE(problem.find("\"" + std::string(text) + "\""), std::string::npos) << problem;
    EXPECT_NE(problem.find('%'), std::string::npos) << problem;
  }
}

TEST(VolumeText, AChangeStopsAtTheEnds) {
  EXPECT_DOUBLE_EQ((VolumeRequest{0.05, true}.appliedTo(0.98)), 1);
  EXPECT_DOUBLE_EQ((VolumeRequest{-0.05, true}.appliedTo(0.02)), 0);
  EXPECT_DOUBLE_EQ((VolumeRequest{-0.05, true}.appliedTo(0.5)), 0.45);
  EXPECT_DOUBLE_EQ((VolumeRequest{0.3, false}.appliedTo(0.9)), 0.3);
}

TEST(VolumeText, OnlyTheEndsReadAsTheEnds) {
  EXPECT_EQ(percentText(0), "0%");
  EXPECT_EQ(percentText(0.001), "1%");
  EXPECT_EQ(percentText(0.4), "40%");
  EXPECT_EQ(percentText(0.999), "99%");
  EXPECT_EQ(percentText(1), "100%");
}

TEST(VolumeText, LevelsAreInDecibels) {
  EXPECT_EQ(decibelText(1), "0.0 dB");
  EXPECT_EQ(decibelText(0.5), "-6.0 dB");
  EXPECT_EQ(decibelText(0.9999), "0.0 dB") << "not -0.0";
  EXPECT_EQ(decibelText(2), "6.0 dB");
  EXPECT_EQ(decibelText(0), "-inf dB");
}

TEST(VolumeText, BarsHaveTheirWidthAtEveryLevel) {
  EXPECT_EQ(levelBar(1, 4, true), "████");
  EXPECT_EQ(levelBar(4, 4, true), "████") << "above full scale";
  EXPECT_EQ(levelBar(0, 4, true), "    ");
  EXPECT_EQ(levelBar(0.0001, 4, true), "    ") << "below the scale";
  EXPECT_EQ(levelBar(0.0316227766, 4, true), "██  ") << "-30 dB";
  EXPECT_EQ(levelBar(0.0316227766, 4, false), "##  ");
  for (double decibels = -70; decibels < 6; decibels += 0.37) {
    const double peak = std::pow(10, decibels / 20);
    EXPECT_EQ(displayWidth(levelBar(peak, 24, true)), 24) << decibels;
    EXPECT_EQ(levelBar(peak, 24, false).size(), 24u) << decibels;
  }
}

}  // namespace
}  // namespace plemora
