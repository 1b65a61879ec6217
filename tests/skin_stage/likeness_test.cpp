// Whether the module that the program draws over its tiles looks like the system's own.

#include <gtest/gtest.h>

#include <string>
#include <string_view>
#include <tuple>

#include "main/stage/skin_stage.h"

namespace plemora {
namespace {

/// What is accepted, in levels of 255. 3 is what nobody sees. What lies above it the styles cannot
/// reach: the edges, and the seam's, hold the rims of the system's tiles and the desktop beside
/// them, blurred once more; and a desktop of hard edges is blurred twice where the system blurs it
/// once.
struct Accepted {
  std::string_view wallpaper;
  double seam;
  double edges;
  double inside;
};

constexpr Accepted accepted[] = {
    {"photograph", 3, 5, 1.2},  {"gradient", 3.7, 4.2, 1}, {"plain", 4.3, 5, 1.2},
    {"black", 5.3, 6.4, 0.9},   {"white", 3.2, 7.5, 1.3},  {"noisy", 4.3, 5.3, 3.6},
    {"saturated", 6.6, 8, 3.7}, {"text", 4, 7.8, 5.4},
};

struct Likeness : testing::TestWithParam<std::tuple<const char*, bool>> {};

TEST_P(Likeness, OfTheModuleIsThatOfTheSystems) {
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

INSTANTIATE_TEST_SUITE_P(, Likeness,
                         testing::Combine(testing::Values("26.1", "26.4", "27.0"),
                                          testing::Bool()));

}  // namespace
}  // namespace plemora
