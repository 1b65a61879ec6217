#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <limits>
#include <memory>

#include "platform/preferences.h"

namespace plemora {

/// What every adapter of Preferences must do. A world derives from this and gives programs that
/// share one machine.
class PreferencesWorld {
 public:
  virtual ~PreferencesWorld() = default;

  /// The preferences as a program that starts now has them.
  virtual std::unique_ptr<Preferences> program() = 0;
};

template <class World>
class PreferencesContract : public testing::Test {
 protected:
  static constexpr const char* domain = "org.example.domain";
  static constexpr auto any = PreferenceHost::any;
  static constexpr auto current = PreferenceHost::current;

  World world;
  std::unique_ptr<Preferences> here = world.program();
  std::unique_ptr<Preferences> there = world.program();
};

TYPED_TEST_SUITE_P(PreferencesContract);

TYPED_TEST_P(PreferencesContract, StoresValuesOfEveryKind) {
  const PreferenceValue values[] = {
      true,
      false,
      std::int64_t{0},
      std::numeric_limits<std::int64_t>::min(),
      std::numeric_limits<std::int64_t>::max(),
      0.1,
      2.0,
      std::string(),
      std::string("é\n<&>"),
      PreferenceData{},
      PreferenceData{std::string("\0\xff[{}]", 6)},
      PreferenceData{std::string(100'000, 'x')},
  };
  for (const PreferenceValue& value : values) {
    this->here->setValue("key", value, this->domain, this->any);
    EXPECT_EQ(this->here->value("key", this->domain, this->any), value);
    ASSERT_TRUE(this->here->synchronize(this->domain, this->any));
    EXPECT_EQ(this->here->value("key", this->domain, this->any), value);
    this->there->synchronize(this->domain, this->any);
    EXPECT_EQ(this->there->value("key", this->domain, this->any), value);
    EXPECT_EQ(this->world.program()->value("key", this->domain, this->any), value);
  }
}

TYPED_TEST_P(PreferencesContract, KeepsHostsDomainsAndKeysApart) {
  this->here->setValue("key", std::string("any"), this->domain, this->any);
  this->here->setValue("key", std::string("current"), this->domain, this->current);
  this->here->setValue("other", std::string("key"), this->domain, this->current);
  this->here->setValue("key", std::string("domain"), "org.example", this->current);
  ASSERT_TRUE(this->here->appSynchronize(this->domain));
  ASSERT_TRUE(this->here->appSynchronize("org.example"));
  const auto fresh = this->world.program();
  EXPECT_EQ(fresh->value("key", this->domain, this->any), PreferenceValue("any"));
  EXPECT_EQ(fresh->value("key", this->domain, this->current), PreferenceValue("current"));
  EXPECT_EQ(fresh->value("other", this->domain, this->any), std::nullopt);
  EXPECT_EQ(fresh->value("other", this->domain, this->current), PreferenceValue("key"));
  EXPECT_EQ(fresh->value("key", "org.example", this->any), std::nullopt);
  EXPECT_EQ(fresh->value("key", "org.example", this->current), PreferenceValue("domain"));
}

TYPED_TEST_P(PreferencesContract, ShowsOthersWhatIsSynchronizedAlone) {
  this->here->setValue("key", true, this->domain, this->any);
  this->there->synchronize(this->domain, this->any);
  EXPECT_EQ(this->there->value("key", this->domain, this->any), std::nullopt);
  this->here->synchronize(this->domain, this->current);
  EXPECT_EQ(this->world.program()->value("key", this->domain, this->any), std::nullopt);
  this->here.reset();
  EXPECT_EQ(this->world.program()->value("key", this->domain, this->any), std::nullopt);
}

TYPED_TEST_P(PreferencesContract, MergesWhatTwoProgramsStore) {
  this->here->setValue("mine", true, this->domain, this->any);
  this->here->setValue("both", std::int64_t{1}, this->domain, this->any);
  this->there->setValue("yours", true, this->domain, this->any);
  this->there->setValue("both", std::int64_t{2}, this->domain, this->any);
  ASSERT_TRUE(this->here->synchronize(this->domain, this->any));
  ASSERT_TRUE(this->there->synchronize(this->domain, this->any));
  ASSERT_TRUE(this->here->synchronize(this->domain, this->any));
  for (const char* key : {"mine", "yours"}) {
    EXPECT_EQ(this->here->value(key, this->domain, this->any), PreferenceValue(true)) << key;
  }
  EXPECT_EQ(this->here->value("both", this->domain, this->any), PreferenceValue(std::int64_t{2}));
}

TYPED_TEST_P(PreferencesContract, RemovesAKey) {
  this->here->setValue("key", true, this->domain, this->any);
  this->here->setValue("kept", true, this->domain, this->any);
  ASSERT_TRUE(this->here->synchronize(this->domain, this->any));
  this->here->setValue("key", std::nullopt, this->domain, this->any);
  EXPECT_EQ(this->here->value("key", this->domain, this->any), std::nullopt);
  EXPECT_EQ(this->world.program()->value("key", this->domain, this->any), PreferenceValue(true));
  ASSERT_TRUE(this->here->synchronize(this->domain, this->any));
  EXPECT_EQ(this->world.program()->value("key", this->domain, this->any), std::nullopt);
  EXPECT_EQ(this->world.program()->value("kept", this->domain, this->any), PreferenceValue(true));
}

TYPED_TEST_P(PreferencesContract, AnAppSeesThisMachinesValueFirst) {
  EXPECT_EQ(this->here->appValue("key", this->domain), std::nullopt);
  this->here->setValue("key", std::string("any"), this->domain, this->any);
  EXPECT_EQ(this->here->appValue("key", this->domain), PreferenceValue("any"));
  this->here->setValue("key", std::string("current"), this->domain, this->current);
  EXPECT_EQ(this->here->appValue("key", this->domain), PreferenceValue("current"));
  ASSERT_TRUE(this->here->appSynchronize(this->domain));
  EXPECT_EQ(this->world.program()->appValue("key", this->domain), PreferenceValue("current"));
}

TYPED_TEST_P(PreferencesContract, SynchronizesWhatIsNotThere) {
  EXPECT_TRUE(this->here->synchronize("org.example.nothing", this->any));
  EXPECT_TRUE(this->here->appSynchronize("org.example.nothing"));
  EXPECT_EQ(this->here->value("key", "org.example.nothing", this->any), std::nullopt);
}

REGISTER_TYPED_TEST_SUITE_P(PreferencesContract, StoresValuesOfEveryKind,
                            KeepsHostsDomainsAndKeysApart, ShowsOthersWhatIsSynchronizedAlone,
                            MergesWhatTwoProgramsStore, RemovesAKey,
                            AnAppSeesThisMachinesValueFirst, SynchronizesWhatIsNotThere);

}  // namespace plemora
