#include "devices/device_symbols.h"

#include <gtest/gtest.h>

#include <optional>
#include <string>
#include <vector>

#include "adapters/stage/scripted_system_info.h"
#include "adapters/stage/simulated_hal.h"
#include "adapters/stage/virtual_clock.h"
#include "adapters/stage/virtual_main_queue.h"
#include "platform/audio_constants.h"

namespace plemora {
namespace {

class DeviceSymbolsTest : public testing::Test {
 protected:
  VirtualClock clock;
  VirtualMainQueue main{clock};
  SimulatedHal hal{main};
  ScriptedSystemInfo system;
};

TEST_F(DeviceSymbolsTest, TheFirstRuleThatMatchesWins) {
  constexpr auto builtIn = kAudioDeviceTransportTypeBuiltIn;
  constexpr auto bluetooth = kAudioDeviceTransportTypeBluetooth;
  constexpr auto bluetoothLE = kAudioDeviceTransportTypeBluetoothLE;
  constexpr auto airPlay = kAudioDeviceTransportTypeAirPlay;
  constexpr auto usb = kAudioDeviceTransportTypeUSB;
  constexpr auto hdmi = kAudioDeviceTransportTypeHDMI;
  struct Case {
    std::string name;
    FourCharCode transport;
    std::string expected;
    std::optional<FourCharCode> dataSource;
  };
  system.model = "Macmini9,1";
  DeviceSymbols symbols(hal, system);
  for (const Case& each : std::vector<Case>{
           {"Ann's AirPods Max", bluetooth, "airpodsmax", {}},
           {"AIRPODS PRO", airPlay, "airpodspro", {}},
           {"AirPods", bluetoothLE, "airpods", {}},
           {"AirPods Professional Speaker", bluetooth, "airpodspro", {}},
           {"Beats Speaker", bluetooth, "beats.headphones", {}},
           {"Kitchen HomePod mac", airPlay, "homepod.fill", {}},
           {"Apple TV", airPlay, "appletv.fill", {}},
           {"Apple TV", hdmi, "appletv.fill", {}},
           {"AirPods", builtIn, "airpods", kAudioDataSourceHeadphones},
           {"Ann's iMac", airPlay, "display", {}},
           {"Kitchen", airPlay, "airplay.audio", {}},
           {"Party Speaker", bluetooth, "hifispeaker.fill", {}},
           {"Party Speaker", bluetoothLE, "hifispeaker.fill", {}},
           {"WH-1000", bluetooth, "headphones", {}},
           {"Mac", bluetoothLE, "headphones", {}},
           {"Output", builtIn, "headphones", kAudioDataSourceHeadphones},
           {"External Headphones", builtIn, "headphones", kAudioDataSourceInternalSpeaker},
           {"External Headphones", builtIn, "headphones", {}},
           {"Speakers", builtIn, "macmini.fill", kAudioDataSourceInternalSpeaker},
           {"Speakers", builtIn, "macmini.fill", {}},
           {"LG", kAudioDeviceTransportTypeDisplayPort, "display", {}},
           {"TV", hdmi, "display", {}},
           {"Dock", kAudioDeviceTransportTypeThunderbolt, "speaker.wave.2.fill", {}},
           {"USB Speaker", usb, "speaker.wave.2.fill", {}},
           {"Headphone amp", usb, "speaker.wave.2.fill", kAudioDataSourceHeadphones},
           {"", kAudioDeviceTransportTypeUnknown, "speaker.wave.2.fill", {}},
       }) {
    const auto device = hal.addDevice({.uid = each.name, .dataSource = each.dataSource});
    EXPECT_EQ(symbols.symbol(device, each.name, each.transport), each.expected)
        << each.name << " " << describeFourCharCode(each.transport);
  }
  // A device that has gone still gets the icon of its kind.
  EXPECT_EQ(symbols.symbol(4711, "Speakers", builtIn), "macmini.fill");
}

TEST_F(DeviceSymbolsTest, BuiltInSpeakersLookLikeTheMachine) {
  struct Case {
    std::optional<std::string> model;
    bool battery;
    std::string expected;
  };
  for (const Case& each : std::vector<Case>{
           {"Macmini9,1", true, "laptopcomputer"},
           {"Macmini9,1", false, "macmini.fill"},
           {"Mac14,3", false, "macmini.fill"},
           {"Mac14,12", false, "macmini.fill"},
           {"MAC16,10", false, "macmini.fill"},
           {"Mac16,11", false, "macmini.fill"},
           {"Mac14,2", false, "speaker.wave.2.fill"},
           {"XMac14,3", false, "speaker.wave.2.fill"},
           {"iMac21,1", false, "desktopcomputer"},
           {"MacBookPro18,3", false, "laptopcomputer"},
           {"MacPro7,1", false, "macstudio.fill"},
           {"Mac Studio", false, "macstudio.fill"},
           {"", false, "speaker.wave.2.fill"},
           {std::nullopt, false, "speaker.wave.2.fill"},
       }) {
    system.model = each.model;
    system.battery = each.battery;
    EXPECT_EQ(DeviceSymbols(hal, system).builtInSymbol(), each.expected)
        << each.model.value_or("none");
  }
}

}  // namespace
}  // namespace plemora
