#pragma once

#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "platform/user_defaults.h"

namespace plemora {

/// An adapter of UserDefaults, and what every one of them must do.
struct DefaultsKind {
  const char* name;
  /// With nothing stored yet; arguments: of the launch.
  std::function<std::unique_ptr<UserDefaults>(const std::vector<std::string>&)> make;
};

class DefaultsContract : public testing::TestWithParam<DefaultsKind> {};

TEST_P(DefaultsContract, ReturnsWhatWasStored) {
  const std::string bytes("\x00\xff{\"\n", 5);
  const auto defaults = GetParam().make({});
  EXPECT_EQ(defaults->boolean("flag"), std::nullopt);
  EXPECT_EQ(defaults->string("text"), std::nullopt);
  EXPECT_EQ(defaults->data("bytes"), std::nullopt);
  defaults->setBoolean("flag", false);
  defaults->setString("text", "grüß \"dich\"\n");
  defaults->setData("bytes", bytes);
  EXPECT_EQ(defaults->boolean("flag"), false);
  EXPECT_EQ(defaults->string("text"), "grüß \"dich\"\n");
  EXPECT_EQ(defaults->data("bytes"), bytes);
  EXPECT_EQ(defaults->string("flag"), std::nullopt);
  EXPECT_EQ(defaults->boolean("text"), std::nullopt);
  defaults->setString("flag", "YES");
  EXPECT_EQ(defaults->boolean("flag"), true);
  defaults->setString("flag", "1.0");
  EXPECT_EQ(defaults->boolean("flag"), std::nullopt);
  defaults->remove("bytes");
  EXPECT_EQ(defaults->data("bytes"), std::nullopt);
}

TEST_P(DefaultsContract, LaunchArgumentsLieOnTopAndAreNotStored) {
  const auto defaults = GetParam().make({"--log-levels", "-demo", R"({"apps":[]})", "file", "-flag",
                                         "true", "-look", "-flat", "no", "-last"});
  EXPECT_EQ(defaults->string("demo"), R"({"apps":[]})");
  EXPECT_EQ(defaults->data("demo"), std::nullopt);
  EXPECT_EQ(defaults->boolean("flag"), true);
  EXPECT_EQ(defaults->string("look"), std::nullopt);
  EXPECT_EQ(defaults->boolean("flat"), false);
  EXPECT_EQ(defaults->string("last"), std::nullopt);
  EXPECT_EQ(defaults->string("-log-levels"), std::nullopt);
  defaults->setString("demo", "stored");
  EXPECT_EQ(defaults->string("demo"), R"({"apps":[]})");
  EXPECT_EQ(GetParam().make({})->string("demo").value_or("stored"), "stored");
}

}  // namespace plemora
