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

TEST(MemoryDefaultsTest, ConvertsNothingButTheWordsForABool) {
  MemoryDefaults defaults;
  defaults.setBoolean("flag", false);
  defaults.setString("yes", "true");
  defaults.setString("no", "0");
  defaults.setString("word", "perhaps");
  defaults.setData("data", std::string("\0x", 2));
  EXPECT_EQ(defaults.boolean("flag"), false);
  EXPECT_EQ(defaults.boolean("yes"), true);
  EXPECT_EQ(defaults.boolean("no"), false);
  EXPECT_EQ(defaults.boolean("word"), std::nullopt);
  EXPECT_EQ(defaults.boolean("data"), std::nullopt);
  EXPECT_EQ(defaults.string("flag"), std::nullopt);
  EXPECT_EQ(defaults.string("data"), std::nullopt);
  EXPECT_EQ(defaults.data("word"), std::nullopt);
  EXPECT_EQ(defaults.data("data"), std::string("\0x", 2));
  EXPECT_EQ(defaults.data("missing"), std::nullopt);
}

}  // namespace
}  // namespace plemora
