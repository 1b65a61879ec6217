// Whether the module that the program draws over its tiles looks like the system's own.

#include <gtest/gtest.h>

#include <string>
#include <string_view>
#include <tuple>

#include "main/stage/skin_stage.h"

namespace plemora {
namespace {

/// What is accepted, in levels of 255. 3 is what nobody sees. What lies above it the styles cannot
/// reach: the seam holds the rims of the system's tiles, blurred once more; hard colours run into
/// each other there; and a desktop of fine lines is blurred twice where the system blurs it once.
struct Accepted {
  std::string_view wallpaper;
  double seam;
  double edges;
  double inside;
};

constexpr Accepted accepted[] = {
    {"photograph", 3.4, 3.5, 1},  {"gradient", 3.9, 3.5, 0.9}, {"plain", 4.2, 4, 1.1},
    {"black", 5.6, 5.3, 0.8},     {"white", 3.2, 3.4, 1.1},    {"noisy", 4.6, 4.8, 3.6},
    {"saturated", 6.5, 6.7, 3.6}, {"text", 4.1, 4.2, 5.3},
};

struct LikenessTest : testing::TestWithParam<std::tuple<const char*, bool>> {};

TEST_P(LikenessTest, OfTheModuleIsThatOfTheSystems) {
  const auto [system, isDark] = GetParam();
  for (const Accepted& limit : accepted) {
    for (const double scale : {1.0, 2.0}) {
      const SkinDesktop desktop{.system = system,
                                .isDark = isDark,
                                .scale = scale,
                                .wallpaper = *stageWallpaperNamed(limit.wallpaper)};
      const QImage theirs = SkinStage(desktop, SkinStage::Module::systems).picture();
      const QImage ours = SkinStage(desktop, SkinStage::Module::programs).picture();
      ASSERT_EQ(theirs.size(), ours.size());
      ASSERT_NE(theirs, ours) << "nothing is drawn over the tiles, or they are the system's";
      const SkinDifference found = SkinStage::difference(theirs, ours, scale);
      SCOPED_TRACE(std::string(limit.wallpaper) + " at " + std::to_string(scale));
      EXPECT_LE(found.seam, limit.seam);
      EXPECT_LE(found.edges, limit.edges);
      EXPECT_LE(found.inside, limit.inside);
      EXPECT_LE(found.around, 1.6) << "two tiles throw two shadows";
    }
  }
}

TEST(Likeness, IsLessWithoutABubbleSet) {
  SkinDesktop desktop{.wallpaper = StageWallpaper::photograph};
  const QImage theirs = SkinStage(desktop, SkinStage::Module::systems).picture();
  const auto edges = [&] {
    const QImage ours = SkinStage(desktop, SkinStage::Module::programs).picture();
    return SkinStage::difference(theirs, ours, desktop.scale).edges;
  };
  const double with = edges();
  desktop.hasBubbles = false;
  EXPECT_LT(with, 0.6 * edges());
}

TEST(Likeness, HoldsForHeadphonesToo) {
  const SkinDesktop desktop{.isHeadphones = true};
  const QImage theirs = SkinStage(desktop, SkinStage::Module::systems).picture();
  const QImage ours = SkinStage(desktop, SkinStage::Module::programs).picture();
  const QImage speakers = SkinStage({}, SkinStage::Module::programs).picture();
  EXPECT_LE(SkinStage::difference(theirs, ours, desktop.scale).inside, 1);
  EXPECT_GT(SkinStage::difference(speakers, ours, desktop.scale).inside, 2);
}

INSTANTIATE_TEST_SUITE_P(, LikenessTest,
                         testing::Combine(testing::Values("26.1", "26.4", "27.0"),
                                          testing::Bool()));

}  // namespace
}  // namespace plemora
