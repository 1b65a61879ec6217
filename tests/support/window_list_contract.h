#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <ostream>
#include <set>
#include <string>
#include <vector>

#include "platform/window_list.h"

// What every adapter of WindowList must do. Include it in one source of a test program, and
// instantiate it:
//   INSTANTIATE_TEST_SUITE_P(Mine, WindowListContract,
//                            testing::Values(WindowListWorldFactory{"mine", make}));

namespace plemora {

/// An adapter together with a window server. Other windows than those of the test may be on screen
/// too. Called on the main thread of the test.
class WindowListWorld {
 public:
  virtual ~WindowListWorld() = default;

  virtual WindowList& windowList() = 0;

  /// Shows a window in front of all others of its layer, and returns its number. bounds: y down
  /// from the top left corner of the main screen.
  virtual std::int64_t show(int layer, const Rect& bounds, double alpha) = 0;
  virtual void move(std::int64_t number, const Rect& bounds) = 0;
  virtual void hide(std::int64_t number) = 0;
  /// From now on the window server does not answer.
  virtual void silence() = 0;
  /// What the windows of show() belong to.
  virtual std::string ownerName() = 0;
  virtual std::int32_t ownerPid() = 0;
};

struct WindowListWorldFactory {
  std::string name;
  std::function<std::unique_ptr<WindowListWorld>()> make;
};

inline std::ostream& operator<<(std::ostream& out, const WindowListWorldFactory& factory) {
  return out << factory.name;
}

class WindowListContract : public testing::TestWithParam<WindowListWorldFactory> {
 protected:
  static constexpr Rect bounds{40, 60, 300, 200};

  void SetUp() override {
    world = GetParam().make();
    ASSERT_TRUE(world);
  }

  std::optional<WindowInfo> find(std::int64_t number) {
    const auto windows = world->windowList().onScreenWindows();
    const auto found = std::ranges::find(windows, number, &WindowInfo::number);
    return found == windows.end() ? std::nullopt : std::optional(*found);
  }

  /// Those of the given windows that are on screen, front to back.
  std::vector<std::int64_t> orderOf(const std::set<std::int64_t>& numbers) {
    std::vector<std::int64_t> order;
    for (const WindowInfo& window : world->windowList().onScreenWindows()) {
      if (numbers.contains(window.number)) {
        order.push_back(window.number);
      }
    }
    return order;
  }

  std::unique_ptr<WindowListWorld> world;
};

TEST_P(WindowListContract, TellsEverythingOfAWindow) {
  const std::int64_t number = world->show(3, bounds, 0.5);
  const auto window = find(number);
  ASSERT_TRUE(window);
  EXPECT_EQ(window->ownerPid, world->ownerPid());
  EXPECT_EQ(window->ownerName, world->ownerName());
  EXPECT_EQ(window->layer, 3);
  EXPECT_EQ(window->bounds, bounds);
  EXPECT_EQ(window->alpha, 0.5);

  // A part of it may be off the display.
  const Rect moved{-120, -20, 300, 200};
  world->move(number, moved);
  ASSERT_TRUE(find(number));
  EXPECT_EQ(find(number)->bounds, moved);
}

TEST_P(WindowListContract, ListsFrontToBackByLayerAndThenByOrder) {
  const auto back = world->show(0, bounds, 1);
  const auto high = world->show(101, bounds, 1);
  const auto front = world->show(0, bounds, 1);
  const auto status = world->show(statusWindowLevel, bounds, 1);
  EXPECT_EQ(orderOf({back, high, front, status}),
            (std::vector<std::int64_t>{high, status, front, back}));
}

TEST_P(WindowListContract, EveryWindowHasANumberOfItsOwn) {
  std::set<std::int64_t> shown;
  for (int i = 0; i < 5; ++i) {
    shown.insert(world->show(0, bounds, 1));
  }
  EXPECT_EQ(shown.size(), 5U);
  std::set<std::int64_t> listed;
  const auto windows = world->windowList().onScreenWindows();
  for (const WindowInfo& window : windows) {
    listed.insert(window.number);
  }
  EXPECT_EQ(listed.size(), windows.size());
}

TEST_P(WindowListContract, ListsWhatIsOnScreenAndNothingElse) {
  const auto first = world->show(0, bounds, 1);
  const auto second = world->show(0, bounds, 1);
  const auto before = world->windowList().onScreenWindows().size();
  world->hide(first);
  EXPECT_EQ(orderOf({first, second}), std::vector<std::int64_t>{second});
  EXPECT_EQ(world->windowList().onScreenWindows().size(), before - 1);
}

TEST_P(WindowListContract, IsEmptyWhenTheServerDoesNotAnswer) {
  world->show(0, bounds, 1);
  world->silence();
  EXPECT_TRUE(world->windowList().onScreenWindows().empty());
}

}  // namespace plemora
