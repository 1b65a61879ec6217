#include "adapters/linux/pipewire/sink_identity.h"

#include <gtest/gtest.h>

#include <cmath>

namespace plemora {
namespace {

CardRecord cardWith(PropertyMap properties) {
  return {std::move(properties), {}};
}

TEST(SinkIdentityTest, TransportFollowsCardBusAndRoute) {
  struct Case {
    const char* what;
    PropertyMap sink;
    PropertyMap card;
    RouteRecord route;
    FourCharCode expected;
  };
  const RouteRecord speaker{0, 0, "analog-output-speaker", "speaker", {}};
  const RouteRecord hdmi{0, 0, "hdmi-output-0", "hdmi", {}};
  const Case cases[] = {
      {"laptop",
       {},
       {{"device.api", "alsa"}, {"device.bus", "pci"}},
       speaker,
       kAudioDeviceTransportTypeBuiltIn},
      {"phone", {}, {{"device.api", "alsa"}}, speaker, kAudioDeviceTransportTypeBuiltIn},
      {"display by route",
       {},
       {{"device.api", "alsa"}, {"device.bus", "pci"}},
       hdmi,
       kAudioDeviceTransportTypeHDMI},
      {"display by path",
       {{"api.alsa.path", "hdmi:0,1"}},
       {{"device.api", "alsa"}, {"device.bus", "pci"}},
       {},
       kAudioDeviceTransportTypeHDMI},
      {"DisplayPort",
       {},
       {{"device.api", "alsa"}},
       {0, 0, "DisplayPort 1", "", {}},
       kAudioDeviceTransportTypeDisplayPort},
      {"USB interface",
       {},
       {{"device.api", "alsa"}, {"device.bus", "usb"}},
       speaker,
       kAudioDeviceTransportTypeUSB},
      {"headset",
       {{"api.bluez5.profile", "a2dp-sink"}},
       {{"device.api", "bluez5"}},
       {},
       kAudioDeviceTransportTypeBluetooth},
      {"LE earbuds",
       {{"api.bluez5.profile", "bap-sink"}},
       {{"device.api", "bluez5"}},
       {},
       kAudioDeviceTransportTypeBluetoothLE},
      {"AirPlay speaker",
       {{"node.name", "raop_sink.Kitchen.local"}, {"node.virtual", "true"}},
       {},
       {},
       kAudioDeviceTransportTypeAirPlay},
      {"null sink",
       {{"factory.name", "support.null-audio-sink"}},
       {},
       {},
       kAudioDeviceTransportTypeVirtual},
      {"module of the pulse server",
       {{"pulse.module.id", "7"}},
       {},
       {},
       kAudioDeviceTransportTypeVirtual},
      {"unheard-of", {{"node.name", "x"}}, {}, {}, kAudioDeviceTransportTypeUnknown},
  };
  for (const Case& given : cases) {
    const CardRecord card = cardWith(given.card);
    EXPECT_EQ(transportOf(given.sink, given.card.empty() ? nullptr : &card, &given.route),
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
