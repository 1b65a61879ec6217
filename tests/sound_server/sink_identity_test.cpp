#include "adapters/linux/pipewire/sink_identity.h"

#include <gtest/gtest.h>

#include <sstream>
#include <string>

namespace plemora {
namespace {

/// Of "KEY=VALUE KEY=VALUE".
PropertyMap properties(const std::string& text) {
  PropertyMap map;
  std::istringstream words(text);
  for (std::string word; words >> word;) {
    map[word.substr(0, word.find('='))] = word.substr(word.find('=') + 1);
  }
  return map;
}

TEST(SinkIdentityTest, TransportFollowsCardBusAndRoute) {
  struct Case {
    const char* what;
    const char* sink;
    const char* card;
    RouteRecord route;
    FourCharCode expected;
  };
  const char* const pci = "device.api=alsa device.bus=pci";
  const char* const usb = "device.api=alsa device.bus=usb";
  const char* const bluez = "device.api=bluez5";
  const RouteRecord none{};
  const RouteRecord speaker{0, 0, "analog-output-speaker", "speaker", {}};
  const RouteRecord hdmi{0, 0, "hdmi-output-0", "hdmi", {}};
  const RouteRecord port{0, 0, "DisplayPort 1", "", {}};
  const Case cases[] = {
      {"laptop", "", pci, speaker, kAudioDeviceTransportTypeBuiltIn},
      {"phone", "", "device.api=alsa", speaker, kAudioDeviceTransportTypeBuiltIn},
      {"display by route", "", pci, hdmi, kAudioDeviceTransportTypeHDMI},
      {"by path", "api.alsa.path=hdmi:0,1", pci, none, kAudioDeviceTransportTypeHDMI},
      {"DisplayPort", "", "device.api=alsa", port, kAudioDeviceTransportTypeDisplayPort},
      {"USB interface", "", usb, speaker, kAudioDeviceTransportTypeUSB},
      {"headset", "api.bluez5.profile=a2dp-sink", bluez, none, kAudioDeviceTransportTypeBluetooth},
      {"buds", "api.bluez5.profile=bap-sink", bluez, none, kAudioDeviceTransportTypeBluetoothLE},
      {"AirPlay speaker", "node.name=raop_sink.Kitchen.local node.virtual=true", "", none,
       kAudioDeviceTransportTypeAirPlay},
      {"null sink", "factory.name=support.null-audio-sink", "", none,
       kAudioDeviceTransportTypeVirtual},
      {"pulse module", "pulse.module.id=7", "", none, kAudioDeviceTransportTypeVirtual},
      {"unheard-of", "node.name=x", "", none, kAudioDeviceTransportTypeUnknown},
  };
  for (const Case& given : cases) {
    const CardRecord card{properties(given.card), {}};
    EXPECT_EQ(transportOf(properties(given.sink), *given.card == 0 ? nullptr : &card, &given.route),
              given.expected)
        << given.what;
  }
}

TEST(SinkIdentityTest, DataSourceComesFromTheActiveRoute) {
  const auto sourceOf = [](const char* name, const char* type) {
    const RouteRecord route{0, 0, name, type, {}};
    return dataSourceOf(&route);
  };
  EXPECT_EQ(sourceOf("analog-output-headphones", "headphones"), kAudioDataSourceHeadphones);
  EXPECT_EQ(sourceOf("[Out] Headphones", ""), kAudioDataSourceHeadphones);
  EXPECT_EQ(sourceOf("analog-output-speaker", "speaker"), kAudioDataSourceInternalSpeaker);
  EXPECT_EQ(sourceOf("analog-output-lineout", "line"), std::nullopt);
  EXPECT_EQ(dataSourceOf(nullptr), std::nullopt);
}

TEST(SinkIdentityTest, ASinkFindsItsRouteByTheProfileDevice) {
  CardRecord card;
  card.routes = {{0, 1, "one", "", {}}, {1, 4, "four", "", {}}};
  const auto nameOf = [&](const char* device) -> std::string {
    const RouteRecord* route = routeOf({{"card.profile.device", device}}, &card);
    return route == nullptr ? "" : route->name;
  };
  EXPECT_EQ(nameOf("4"), "four");
  EXPECT_EQ(nameOf("2"), "");
  EXPECT_EQ(nameOf("4x"), "");
  EXPECT_EQ(routeOf({}, &card), nullptr);
  EXPECT_EQ(routeOf({{"card.profile.device", "4"}}, nullptr), nullptr);
}

TEST(SinkIdentityTest, SliderIsCubicAndKeepsTheBalance) {
  EXPECT_FLOAT_EQ(sliderOf({{0.125f, 0.125f}, false}), 0.5f);
  EXPECT_FLOAT_EQ(sliderOf({{0.001f, 1.0f}, false}), 1.0f);
  EXPECT_FLOAT_EQ(sliderOf({{8.0f}, false}), 1.0f) << "amplified beyond the slider's end";
  EXPECT_EQ(sliderOf({}), 0.0f);

  const VolumeState half = withSlider({{1.0f, 0.5f}, true}, 0.5f);
  EXPECT_FLOAT_EQ(half.channelVolumes[0], 0.125f);
  EXPECT_FLOAT_EQ(half.channelVolumes[1], 0.0625f);
  EXPECT_TRUE(half.muted) << "muting is not the slider's business";
  const VolumeState fromSilence = withSlider({{0.0f, 0.0f}, false}, 1.0f);
  EXPECT_EQ(fromSilence.channelVolumes, (std::vector<float>{1.0f, 1.0f}));
}

}  // namespace
}  // namespace plemora
