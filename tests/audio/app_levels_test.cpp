#include "audio/app_levels.h"

#include <gmock/gmock.h>

#include <clocale>
#include <nlohmann/json.hpp>

#include "adapters/stage/memory_defaults.h"
#include "audio/audio_world.h"

namespace plemora {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

TEST(AppLevelsFormat, reads_back_what_it_writes) {
  const Levels levels{
      {"com.example.Player", {0.5f, false, "usb-1"}},
      {"com.example.Quiet", {0.3f, true, std::nullopt}},
      {"org.example.Tönchen \"1\"\n", {0.0f, false, ""}},
      {"tiny", {1e-30f, false, std::nullopt}},
  };
  EXPECT_EQ(parseAppLevels(serialiseAppLevels(levels)), levels);
}

TEST(AppLevelsFormat, writes_plain_short_numbers_and_no_absent_output) {
  EXPECT_EQ(serialiseAppLevels({{"com.example.Player", {0.3f, false, std::nullopt}}}),
            R"({"com.example.Player":{"volume":0.3,"muted":false}})");
  EXPECT_EQ(serialiseAppLevels({{"a", {1.0f, true, "usb"}}}),
            R"({"a":{"volume":1.0,"muted":true,"output":"usb"}})");
  EXPECT_EQ(serialiseAppLevels({}), "{}");
}

TEST(AppLevelsFormat, tells_readable_from_unreadable_bytes) {
  const std::string deep(200, '[');
  const std::string deepEnd(200, ']');
  struct Case {
    std::string bytes;
    std::optional<Levels> levels;
  };
  const Case cases[] = {
      {"{}", Levels{}},
      {R"({"a":{"muted":true,"volume":0.25}})", Levels{{"a", {0.25f, true, std::nullopt}}}},
      {R"({"a":{"volume":1,"muted":false,"output":null}})", Levels{{"a", {}}}},
      {R"({"a":{"volume":7,"muted":false},"b":{"volume":-1e300,"muted":false}})",
       Levels{{"a", {1.0f, false, {}}}, {"b", {0.0f, false, {}}}}},
      {"", {}},
      {"null", {}},
      {"[]", {}},
      {R"({"a":{"volume":0.5,"muted":false})", {}},
      {R"({"a":{"volume":0.5}})", {}},
      {R"({"a":{"muted":false}})", {}},
      {R"({"a":{"volume":"0.5","muted":false}})", {}},
      {R"({"a":{"volume":true,"muted":false}})", {}},
      {R"({"a":{"volume":0.5,"muted":0}})", {}},
      {R"({"a":{"volume":0.5,"muted":false,"output":1}})", {}},
      {R"({"a":{"volume":1e999,"muted":false}})", {}},
      {R"({"a":0.5})", {}},
      {"{\"\xff\":{\"volume\":0.5,\"muted\":false}}", {}},
      {"{\"a\":{\"volume\":0.5,\"muted\":false,\"x\":" + deep + deepEnd + "}}", {}},
  };
  for (const Case& c : cases) {
    EXPECT_EQ(parseAppLevels(c.bytes), c.levels) << c.bytes;
  }
}

// Every way of cutting or damaging a stored value gives levels or nothing, never anything else.
TEST(AppLevelsFormat, survives_damaged_bytes) {
  const std::string good =
      serialiseAppLevels({{"com.example.Player", {0.5f, false, "usb"}}, {"b", {0.25f, true, {}}}});
  for (std::size_t at = 0; at < good.size(); ++at) {
    EXPECT_EQ(parseAppLevels(good.substr(0, at)), std::nullopt) << "cut at " << at;
    for (const char byte : {'\0', '"', '}', '9', '\x80', ','}) {
      std::string damaged = good;
      damaged[at] = byte;
      if (const auto levels = parseAppLevels(damaged)) {
        EXPECT_EQ(parseAppLevels(serialiseAppLevels(*levels, damaged)), levels);
      }
    }
  }
}

TEST(AppLevelsFormat, carries_unknown_members_over) {
  const std::string previous =
      R"({"a":{"volume":0.5,"muted":false,"output":"x","balance":-0.25,"later":{"b":[1]}},)"
      R"("gone":{"volume":1.0,"muted":false,"note":"n"}})";
  Levels levels = *parseAppLevels(previous);
  levels.erase("gone");
  levels["a"].volume = 0.75f;
  levels["a"].output.reset();
  EXPECT_EQ(serialiseAppLevels(levels, previous),
            R"({"a":{"volume":0.75,"muted":false,"balance":-0.25,"later":{"b":[1]}}})");
}

TEST(AppLevelsFormat, one_odd_name_does_not_keep_the_rest_from_being_stored) {
  const auto levels =
      parseAppLevels(serialiseAppLevels({{"bad\xff", {0.5f, false, "\xfe"}}, {"good", {}}}));
  ASSERT_TRUE(levels);
  EXPECT_EQ(levels->size(), 2u);
  EXPECT_TRUE(levels->contains("good"));
}

struct AppLevelsTest : testing::Test {
  LogKeeper log;
  MemoryDefaults defaults;
  AppLevels store{defaults};
};

TEST_F(AppLevelsTest, read_a_text_written_by_hand) {
  defaults.setString("appLevels", R"({"a":{"volume":0.5,"muted":false}})");
  EXPECT_EQ(store.load(), (Levels{{"a", {0.5f, false, {}}}}));
}

TEST_F(AppLevelsTest, set_unreadable_bytes_aside_before_overwriting_them) {
  defaults.setData("appLevels", "{broken");
  EXPECT_THAT(store.load(), IsEmpty());
  EXPECT_THAT(log.messages(LogLevel::warning), ElementsAre(HasSubstr("\"appLevels\"")));
  EXPECT_FALSE(defaults.data("appLevels.unreadable")) << "reading alone changes nothing";
  EXPECT_EQ(defaults.data("appLevels"), "{broken");

  store.save({{"a", {}}});
  EXPECT_EQ(defaults.data("appLevels.unreadable"), "{broken");
  EXPECT_THAT(log.messages(LogLevel::warning),
              ElementsAre(testing::_, HasSubstr("\"appLevels.unreadable\"")));
  store.save({{"a", {0.5f, false, {}}}});
  EXPECT_EQ(log.records.size(), 2u) << "once is enough";

  // Nothing kept earlier is overwritten either.
  defaults.setData("appLevels", "[broken again");
  store.save({});
  EXPECT_EQ(defaults.data("appLevels.unreadable"), "{broken");
  EXPECT_EQ(defaults.data("appLevels.unreadable.2"), "[broken again");
  defaults.setData("appLevels", "{broken");
  store.save({});
  EXPECT_FALSE(defaults.data("appLevels.unreadable.3")) << "those bytes are kept already";
}

}  // namespace
}  // namespace plemora
