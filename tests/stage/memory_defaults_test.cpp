#include "adapters/stage/memory_defaults.h"

#include <gtest/gtest.h>

namespace plemora {
namespace {

TEST(MemoryDefaultsTest, LaunchArgumentsLieOnTopAndAreNeverStored) {
  MemoryDefaults defaults({"--log-levels", "-demo", "{}", "-soundReplaced", "YES", "-flag",
                           "--open", "stray", "-last"});
  defaults.setString("demo", "stored");
  EXPECT_EQ(defaults.string("demo"), "{}");
  EXPECT_EQ(defaults.boolean("soundReplaced"), true);
  for (const auto* key : {"-log-levels", "log-levels", "flag", "-open", "stray", "last"}) {
    EXPECT_EQ(defaults.string(key), std::nullopt) << key;
  }
  defaults.remove("demo");
  EXPECT_EQ(defaults.string("demo"), "{}");
  EXPECT_EQ(defaults.writes(), 2);
}

}  // namespace
}  // namespace plemora
