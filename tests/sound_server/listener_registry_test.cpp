#include "adapters/linux/pipewire/listener_registry.h"

#include <gtest/gtest.h>

#include "adapters/stage/virtual_clock.h"
#include "adapters/stage/virtual_main_queue.h"

namespace plemora {
namespace {

constexpr AudioObjectPropertyAddress devices{kAudioHardwarePropertyDevices,
                                             kAudioObjectPropertyScopeGlobal, 0};
constexpr AudioObjectPropertyAddress processes{kAudioHardwarePropertyProcessObjectList,
                                               kAudioObjectPropertyScopeGlobal, 0};

class ListenerRegistryTest : public testing::Test {
 protected:
  std::shared_ptr<AudioListenerBlock> listenTo(const AudioObjectPropertyAddress& address,
                                               std::function<void()> work) {
    auto block = std::make_shared<AudioListenerBlock>([work](auto) { work(); });
    registry->add(1, address, block);
    return block;
  }
  void change(const AudioObjectPropertyAddress& address) {
    const ObjectChange changed{1, address};
    registry->post({&changed, 1});
  }

  VirtualClock clock;
  VirtualMainQueue queue{clock};
  std::unique_ptr<ListenerRegistry> registry = std::make_unique<ListenerRegistry>(queue);
};

TEST_F(ListenerRegistryTest, TellsEachListenerOncePerTurnOfTheMainQueue) {
  int deviceCalls = 0;
  int processCalls = 0;
  const auto first = listenTo(devices, [&] { ++deviceCalls; });
  const auto second = listenTo(processes, [&] { ++processCalls; });
  for (int i = 0; i < 1000; ++i) {
    change(devices);
  }
  EXPECT_EQ(deviceCalls, 0) << "never on the thread that saw the change";
  queue.drain();
  EXPECT_EQ(deviceCalls, 1);
  EXPECT_EQ(processCalls, 0);
  change(devices);
  queue.drain();
  EXPECT_EQ(deviceCalls, 2);
}

TEST_F(ListenerRegistryTest, AListenerThatIsDroppedOnTheWayIsNotCalled) {
  int calls = 0;
  auto other = listenTo(devices, [&] { ++calls; });
  std::shared_ptr<AudioListenerBlock> removed;
  const auto dropper = listenTo(devices, [&] { ++calls; });
  removed = listenTo(devices, [&] { ++calls; });
  change(devices);
  other.reset();
  registry->remove(1, devices, removed);
  queue.drain();
  EXPECT_EQ(calls, 1);
  change(devices);
  registry.reset();
  queue.drain();
  EXPECT_EQ(calls, 1) << "nor is any once the registry is gone";
}

}  // namespace
}  // namespace plemora
