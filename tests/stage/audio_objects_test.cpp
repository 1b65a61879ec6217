#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <utility>
#include <vector>

#include "adapters/stage/simulated_hal.h"
#include "adapters/stage/virtual_clock.h"
#include "adapters/stage/virtual_main_queue.h"
#include "audio/objects/audio_listener_token.h"
#include "audio/objects/audio_object.h"
#include "platform/audio_constants.h"

namespace plemora {
namespace {

constexpr auto global = kAudioObjectPropertyScopeGlobal;

// A list of ids whose size and contents need not agree.
class OddProperties : public AudioProperties {
 public:
  OSStatus sizeStatus = noErr, dataStatus = noErr;
  std::size_t reportedSize = 0, returnedSize = 0;
  bool hasText = true;

  OSStatus dataSize(AudioObjectID, const AudioObjectPropertyAddress&, std::size_t& size) override {
    size = reportedSize;
    return sizeStatus;
  }
  OSStatus data(AudioObjectID, const AudioObjectPropertyAddress&, std::size_t& size,
                void* value) override {
    for (std::size_t i = 0; i < size; ++i) {
      static_cast<unsigned char*>(value)[i] =
          static_cast<unsigned char>(i % 4 == 0 ? i / 4 + 1 : 0);
    }
    size = returnedSize;
    return dataStatus;
  }
  OSStatus string(AudioObjectID, const AudioObjectPropertyAddress&,
                  std::optional<std::string>& value) override {
    if (hasText) {
      value = "text";
    }
    return dataStatus;
  }
  OSStatus setData(AudioObjectID, const AudioObjectPropertyAddress&, std::size_t,
                   const void*) override {
    return dataStatus;
  }
  std::optional<bool> isSettable(AudioObjectID, const AudioObjectPropertyAddress&) override {
    return std::nullopt;
  }
  OSStatus addListener(AudioObjectID, const AudioObjectPropertyAddress&,
                       std::weak_ptr<AudioListenerBlock>) override {
    return dataStatus;
  }
  OSStatus removeListener(AudioObjectID, const AudioObjectPropertyAddress&,
                          const std::shared_ptr<AudioListenerBlock>&) override {
    ++removals;
    return dataStatus;
  }
  int removals = 0;
};

TEST(AudioObjects, ArraysAreWhatWasReallyRead) {
  struct Case {
    std::string what;
    OSStatus sizeStatus, dataStatus;
    std::size_t reported, returned;
    std::vector<AudioObjectID> expected;
  };
  for (const Case& each : std::vector<Case>{
           {"two", noErr, noErr, 8, 8, {1, 2}},
           {"no size", kAudioHardwareBadObjectError, noErr, 8, 8, {}},
           {"empty", noErr, noErr, 0, 0, {}},
           {"no data", noErr, kAudioHardwareBadObjectError, 8, 8, {}},
           {"shrunk", noErr, noErr, 12, 4, {1}},
           {"shrunk to less than a word", noErr, noErr, 12, 3, {}},
           {"shrunk to nothing", noErr, noErr, 12, 0, {}},
           {"a partial word", noErr, noErr, 11, 11, {1, 2}},
           {"less than a word", noErr, noErr, 2, 2, {}},
       }) {
    OddProperties properties;
    properties.sizeStatus = each.sizeStatus;
    properties.dataStatus = each.dataStatus;
    properties.reportedSize = each.reported;
    properties.returnedSize = each.returned;
    EXPECT_EQ(AudioObject(properties, 7).getArray(kAudioHardwarePropertyDevices, global),
              each.expected)
        << each.what;
  }
}

TEST(AudioObjects, ValuesTextsAndListenersNeedASuccessfulCall) {
  OddProperties properties;
  const AudioObject object(properties, 7);
  EXPECT_EQ(object.getString(kAudioObjectPropertyName, global), "text");
  EXPECT_EQ(object.readValue<std::uint32_t>(kAudioDevicePropertyMute, global), 1U);
  properties.hasText = false;
  EXPECT_EQ(object.getString(kAudioObjectPropertyName, global), std::nullopt);
  properties.hasText = true;
  properties.dataStatus = kAudioHardwareUnspecifiedError;
  EXPECT_EQ(object.getString(kAudioObjectPropertyName, global), std::nullopt);
  EXPECT_EQ(object.readValue<std::uint32_t>(kAudioDevicePropertyMute, global), std::nullopt);
  EXPECT_EQ(object.write(kAudioDevicePropertyMute, global, 1U), kAudioHardwareUnspecifiedError);
  EXPECT_FALSE(listen(properties, 7, kAudioDevicePropertyMute, global, 0, [] {}));
  EXPECT_EQ(properties.removals, 0);
}

TEST(AudioObjects, TokensRegisterAndUnregisterOnceHoweverTheyMove) {
  VirtualClock clock;
  VirtualMainQueue main(clock);
  SimulatedHal hal(main);
  int calls = 0;
  const auto held = std::make_shared<int>(0);
  const auto make = [&] {
    return *listen(hal, kAudioObjectSystemObject, kAudioHardwarePropertyDevices, global, 0,
                   [&calls, held] { ++calls; });
  };
  std::vector<AudioListenerToken> tokens;
  for (int i = 0; i < 3; ++i) {
    tokens.push_back(make());  // grows, and so moves
  }
  EXPECT_EQ(hal.liveListeners(), 3);
  tokens[0] = std::move(tokens[1]);
  EXPECT_EQ(hal.liveListeners(), 2);
  EXPECT_EQ(tokens[0].object(), kAudioObjectSystemObject);
  EXPECT_EQ(tokens[0].address().mSelector, kAudioHardwarePropertyDevices);
  hal.addDevice({.uid = "device"});
  main.drain();
  EXPECT_EQ(calls, 2);
  tokens.clear();
  EXPECT_EQ(hal.liveListeners(), 0);
  EXPECT_EQ(held.use_count(), 1);
  EXPECT_EQ(hal.faults().calls(HalCall::removeListener), 3);
}

}  // namespace
}  // namespace plemora
