#include "adapters/files/property_list_preferences.h"
#include "adapters/stage/memory_preferences.h"
#include "base/property_list.h"
#include "support/faulty_disk.h"
#include "support/preferences_contract.h"
#include "support/temporary_folder.h"

namespace plemora {
namespace {

namespace fs = std::filesystem;

struct MemoryWorld : PreferencesWorld {
  std::shared_ptr<PreferenceStore> store = std::make_shared<PreferenceStore>();
  std::unique_ptr<Preferences> program() override {
    return std::make_unique<MemoryPreferences>(store);
  }
};

struct FileWorld : PreferencesWorld {
  TemporaryFolder folder;
  std::unique_ptr<Preferences> program() override {
    return std::make_unique<PropertyListPreferences>(folder.path() / "new", "host");
  }
};

using Worlds = testing::Types<MemoryWorld, FileWorld>;
INSTANTIATE_TYPED_TEST_SUITE_P(Of, PreferencesContract, Worlds);

class PreferenceFiles : public testing::Test {
 protected:
  static constexpr const char* domain = "org.example.domain";

  TemporaryFolder folder;
  fs::path anyHost = folder.path() / "org.example.domain.plist";
  fs::path byHost = folder.path() / "ByHost/org.example.domain.3d12.plist";
  PropertyListPreferences preferences{folder.path(), "3d12"};
};

TEST_F(PreferenceFiles, HaveTheNamesAndTheFormOfTheSystems) {
  preferences.setValue("any", true, domain, PreferenceHost::any);
  preferences.setValue("current", PreferenceData{"x"}, domain, PreferenceHost::current);
  ASSERT_TRUE(preferences.appSynchronize(domain));
  EXPECT_THAT(readFile(anyHost), testing::StartsWith("bplist00"));
  EXPECT_EQ(PropertyList::parse(readFile(anyHost)).member("any")->asBoolean(), true);
  EXPECT_EQ(PropertyList::parse(readFile(byHost)).member("current")->asData(), "x");
  EXPECT_EQ(std::distance(fs::directory_iterator(folder.path()), {}), 2) << "nothing else is left";
}

TEST_F(PreferenceFiles, KeepWhatIsNotSet) {
  PropertyList before;
  before.setMember("z", PropertyList::array({PropertyList::uid(7), PropertyList::real(2)}));
  before.setMember("key", PropertyList::integer(1));
  before.setMember("date", PropertyList::parse("<plist><date>2026-01-01T00:00:00Z</date></plist>"));
  before.setMember("a", PropertyList());
  writeFile(anyHost, before.binary());
  for (const char* odd : {"z", "date", "a"}) {
    EXPECT_EQ(preferences.value(odd, domain, PreferenceHost::any),
              PreferenceValue(OtherPreference{}));
    preferences.setValue(odd, OtherPreference{}, domain, PreferenceHost::any);
  }
  preferences.setValue("key", std::int64_t{2}, domain, PreferenceHost::any);
  preferences.setValue("new", true, domain, PreferenceHost::any);
  ASSERT_TRUE(preferences.synchronize(domain, PreferenceHost::any));
  before.setMember("key", PropertyList::integer(2));
  before.setMember("new", PropertyList::boolean(true));
  EXPECT_EQ(readFile(anyHost), before.binary());
}

TEST_F(PreferenceFiles, MayBeInXmlBeforeTheyAreWritten) {
  PropertyList before;
  before.setMember("key", PropertyList::data("x"));
  writeFile(anyHost, before.xml());
  EXPECT_EQ(preferences.value("key", domain, PreferenceHost::any),
            PreferenceValue(PreferenceData{"x"}));
  EXPECT_TRUE(preferences.synchronize(domain, PreferenceHost::any));
  EXPECT_EQ(readFile(anyHost), before.xml()) << "nothing was set";
}

TEST_F(PreferenceFiles, ThatCannotBeUnderstoodAreLeftAlone) {
  const std::string whole = [] {
    PropertyList list;
    list.setMember("key", PropertyList::boolean(true));
    return list.binary();
  }();
  const std::string odd[] = {"", "no list", whole.substr(0, whole.size() - 1),
                             PropertyList::array().binary()};
  for (const std::string& content : odd) {
    writeFile(anyHost, content);
    PropertyListPreferences fresh(folder.path(), "3d12");
    EXPECT_EQ(fresh.value("key", domain, PreferenceHost::any), std::nullopt);
    EXPECT_FALSE(fresh.synchronize(domain, PreferenceHost::any));
    fresh.setValue("key", true, domain, PreferenceHost::any);
    EXPECT_FALSE(fresh.synchronize(domain, PreferenceHost::any));
    EXPECT_EQ(readFile(anyHost), content);
    EXPECT_EQ(fresh.value("key", domain, PreferenceHost::any), PreferenceValue(true))
        << "it waits for the file to be mended";
    writeFile(anyHost, whole);
    EXPECT_TRUE(fresh.synchronize(domain, PreferenceHost::any));
  }
  fs::remove(anyHost);
  fs::create_directories(anyHost);
  EXPECT_FALSE(preferences.synchronize(domain, PreferenceHost::any));
}

TEST_F(PreferenceFiles, RefuseATextThatIsNone) {
  preferences.setValue("key", std::string("\xff"), domain, PreferenceHost::any);
  EXPECT_FALSE(preferences.synchronize(domain, PreferenceHost::any));
  preferences.setValue("key", std::string("text"), domain, PreferenceHost::any);
  EXPECT_TRUE(preferences.synchronize(domain, PreferenceHost::any));
}

TEST_F(PreferenceFiles, FollowLinks) {
  writeFile(folder.path() / "elsewhere/real.plist", PropertyList().binary());
  fs::create_symlink("elsewhere/real.plist", anyHost);
  preferences.setValue("key", true, domain, PreferenceHost::any);
  ASSERT_TRUE(preferences.synchronize(domain, PreferenceHost::any));
  EXPECT_TRUE(fs::is_symlink(anyHost));
  EXPECT_TRUE(PropertyList::parse(readFile(folder.path() / "elsewhere/real.plist")).member("key"));
}

TEST(PreferenceDisk, HasTheOldOrTheNewValueAfterAnyFailureOrCrash) {
  const auto open = [](const std::shared_ptr<FaultyDisk>& disk) {
    return PropertyListPreferences("/p", "host", disk);
  };
  for (const bool crashes : {false, true}) {
    for (int call = 1; call < 12; ++call) {
      const auto disk = std::make_shared<FaultyDisk>();
      PropertyListPreferences first = open(disk);
      first.setValue("key", std::int64_t{1}, "d", PreferenceHost::any);
      ASSERT_TRUE(first.synchronize("d", PreferenceHost::any));
      first.setValue("key", std::int64_t{2}, "d", PreferenceHost::any);
      disk->failFrom(call, crashes ? 1000 : 1);
      const bool isStored = first.synchronize("d", PreferenceHost::any);
      disk->failFrom(1, 0);
      if (crashes) {
        disk->crash();
      }
      PropertyListPreferences second = open(disk);
      const auto value = second.value("key", "d", PreferenceHost::any);
      EXPECT_TRUE(value == PreferenceValue(std::int64_t{2}) ||
                  (!isStored && value == PreferenceValue(std::int64_t{1})))
          << "call " << call;
      EXPECT_TRUE(first.synchronize("d", PreferenceHost::any)) << "what was set waits on";
      EXPECT_EQ(second.value("key", "d", PreferenceHost::any), PreferenceValue(std::int64_t{2}));
    }
  }
}

}  // namespace
}  // namespace plemora
