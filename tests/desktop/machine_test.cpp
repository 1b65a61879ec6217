#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <set>
#include <string>

#include "adapters/linux/desktop/console_log.h"
#include "adapters/linux/desktop/linux_system_info.h"
#include "adapters/linux/desktop/system_clock.h"
#include "fake_desktop.h"

namespace plemora {

namespace {

TEST(LinuxSystemInfo, ModelComesFromTheFirmwareOrTheDeviceTree) {
  TemporaryFolder root;
  LinuxSystemInfo info(root.path());
  EXPECT_EQ(info.hardwareModel(), std::nullopt);
  writeFile(root.path() / "sys/firmware/devicetree/base/model", std::string("Example Board\0", 14));
  EXPECT_EQ(info.hardwareModel(), "Example Board");
  writeFile(root.path() / "sys/class/dmi/id/product_name", "Laptop 14 \n");
  EXPECT_EQ(info.hardwareModel(), "Laptop 14");
}

TEST(LinuxSystemInfo, OnlyABatteryOfTheMachineCounts) {
  TemporaryFolder root;
  LinuxSystemInfo info(root.path());
  const auto supplies = root.path() / "sys/class/power_supply";
  EXPECT_FALSE(info.hasInternalBattery());
  writeFile(supplies / "AC/type", "Mains\n");
  writeFile(supplies / "mouse/type", "Battery\n");
  writeFile(supplies / "mouse/scope", "Device\n");
  writeFile(supplies / "BAT1/type", "Battery\n");
  writeFile(supplies / "BAT1/present", "0\n");
  EXPECT_FALSE(info.hasInternalBattery());
  writeFile(supplies / "BAT0/type", "Battery\n");
  EXPECT_TRUE(info.hasInternalBattery());
}

TEST(SystemClock, MakesUuidsOfVersionFour) {
  SystemClock clock;
  std::set<std::string> seen;
  for (int i = 0; i < 100; ++i) {
    const std::string uuid = clock.makeUUID();
    EXPECT_THAT(uuid, testing::MatchesRegex(
                          "[0-9A-F]{8}-[0-9A-F]{4}-4[0-9A-F]{3}-[89AB][0-9A-F]{3}-[0-9A-F]{12}"));
    seen.insert(uuid);
  }
  EXPECT_EQ(seen.size(), 100U);
}

TEST(ConsoleLog, WritesForTheJournalAndForPeople) {
  EXPECT_EQ(journalLine({LogLevel::warning, "levels", "too loud"}), "<4>levels: too loud");
  EXPECT_EQ(journalLine({LogLevel::debug, "", "x"}), "<7>x");
  const WallTime time{std::chrono::milliseconds(1700000000123)};
  EXPECT_THAT(terminalLine({LogLevel::error, "settings", "lost"}, time),
              testing::MatchesRegex("[0-9]{2}:[0-9]{2}:20\\.123 error settings: lost"));
}

}  // namespace

}  // namespace plemora
