#include "adapters/stage/scripted_hosted_view.h"
#include "stage_desktop/desk.h"

namespace plemora {

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

/// A view that keeps what reaches it.
class Client : public ScriptedHostedView, public StageWindowClient {
 public:
  std::vector<StagePointerEvent> pointers;
  std::vector<StageScrollEvent> scrolls;
  std::vector<StageKeyEvent> keys;

  void pointer(const StagePointerEvent& event) override { pointers.push_back(event); }
  void scroll(const StageScrollEvent& event) override { scrolls.push_back(event); }
  void key(const StageKeyEvent& event) override { keys.push_back(event); }

  std::vector<StagePointerEvent::Phase> takePhases() {
    std::vector<StagePointerEvent::Phase> phases;
    for (const StagePointerEvent& event : std::exchange(pointers, {})) {
      phases.push_back(event.phase);
    }
    return phases;
  }
};

using Phase = StagePointerEvent::Phase;

class Input : public Desk {
 protected:
  std::shared_ptr<Client> clientIn(PanelWindow& window) {
    auto client = std::make_shared<Client>();
    window.surface().setContent(client);
    return client;
  }

  StageWindow* windowAt(const Point& location) {
    const auto hit = desktop->windowServer.hit(location);
    return hit && hit->kind == StageWindowKind::program ? std::get<StageWindow*>(hit->model)
                                                        : nullptr;
  }
};

TEST_F(Input, FindsTheFrontmostWindowThatTakesThePointer) {
  const Rect frame{100, 100, 200, 200};
  const Point inside{150, 150};
  const auto low = showPanel(frame, 3);
  const auto high = showPanel(frame, 5);
  EXPECT_EQ(windowAt(inside), high.get());
  low->order(WindowOrder::front);
  EXPECT_EQ(windowAt(inside), high.get()) << "the level counts first";
  const auto beside = showPanel(frame, 5);
  EXPECT_EQ(windowAt(inside), beside.get()) << "then who came forward last";
  high->order(WindowOrder::frontRegardless);
  EXPECT_EQ(windowAt(inside), high.get());
  const auto through = showPanel(frame, 9, true);
  EXPECT_EQ(windowAt(inside), high.get()) << "clicks go through it";
  const auto clear = showPanel(frame, 9);
  clear->setAlpha(0);
  EXPECT_EQ(windowAt(inside), high.get()) << "nobody sees it";
  high->order(WindowOrder::out);
  EXPECT_EQ(windowAt(inside), beside.get());
  // The edges at the minimum belong to a window, those at the maximum do not.
  EXPECT_EQ(windowAt({100, 100}), beside.get());
  EXPECT_EQ(windowAt({300, 150}), nullptr);
  EXPECT_EQ(windowAt({150, 300}), nullptr);
  // A press brings a window forward among its level.
  const auto covered = showPanel({250, 100, 100, 100}, 5);
  EXPECT_EQ(windowAt({260, 150}), covered.get());
  desktop->click(inside);
  EXPECT_EQ(windowAt({260, 150}), beside.get());
  // The list says the same, with y down.
  const auto all = windowsOf(StageWindowKind::program);
  ASSERT_EQ(all.size(), 5U);
  EXPECT_EQ(all[0].bounds, (Rect{100, 600, 200, 200}));
  EXPECT_EQ(all[4].layer, 3);
}

TEST_F(Input, TakesPressesToTheProgramPastItsLocalMonitors) {
  const auto window = showPanel({100, 100, 200, 200});
  const auto client = clientIn(*window);
  std::vector<InputEvent> global;
  std::vector<InputEvent> local;
  bool isSwallowed = false;
  const unsigned all = leftMouseDownMask | leftMouseUpMask | rightMouseDownMask;
  const auto globalMonitor =
      desktop->input.monitorGlobal(all, [&](const InputEvent& event) { global.push_back(event); });
  const auto localMonitor = desktop->input.monitorLocal(all, [&](const InputEvent& event) {
    local.push_back(event);
    return isSwallowed;
  });

  desktop->click({150, 280});
  EXPECT_THAT(global, IsEmpty());
  ASSERT_EQ(local.size(), 2U);
  EXPECT_EQ(local[0].type, InputEventType::leftMouseDown);
  EXPECT_EQ(local[0].location, (Point{150, 280}));
  EXPECT_EQ(local[1].type, InputEventType::leftMouseUp);
  ASSERT_EQ(client->pointers.size(), 3U);
  EXPECT_EQ(client->pointers[1].position, (Point{50, 20})) << "y down from the top left corner";
  EXPECT_THAT(client->takePhases(), ElementsAre(Phase::moved, Phase::pressed, Phase::released));

  isSwallowed = true;
  desktop->click({150, 280}, StageButton::right);
  desktop->click({150, 280});
  desktop->drag({150, 280}, {170, 280}, 0.05);
  EXPECT_THAT(client->takePhases(), ElementsAre(Phase::moved, Phase::moved, Phase::moved))
      << "nor what follows a press that was swallowed";

  local.clear();
  desktop->click({20, 500});
  desktop->click({20, 500}, StageButton::right);
  EXPECT_THAT(local, IsEmpty());
  ASSERT_EQ(global.size(), 3U);
  EXPECT_EQ(global[2].type, InputEventType::rightMouseDown);
}

TEST_F(Input, AWindowThatGoesInItsMonitorGetsNoPress) {
  auto window = showPanel({100, 100, 200, 200});
  const auto client = clientIn(*window);
  const auto monitor = desktop->input.monitorLocal(leftMouseDownMask, [&](const InputEvent&) {
    window.reset();
    return false;
  });
  desktop->click({150, 150});
  EXPECT_THAT(client->takePhases(), ElementsAre(Phase::moved));
}

TEST_F(Input, OfTheViewsOfAWindowTheTopmostThatIsSeenGetsIt) {
  const auto window = showPanel({100, 100, 200, 200});
  const auto low = std::make_shared<Client>();
  const auto high = std::make_shared<Client>();
  const auto show = [&](double alpha) {
    window->surface().setContents({{low, {}, 1}, {high, {0, 0, 100, 40}, alpha}});
  };
  window->surface().setContainer({50, 50, 100, 100}, 10);
  show(1);
  const Point inHigh{160, 240};
  const Point inLow{160, 190};
  desktop->movePointer(inHigh);
  ASSERT_EQ(high->pointers.size(), 1U);
  EXPECT_EQ(high->pointers[0].position, (Point{10, 10}));
  desktop->movePointer(inLow);
  ASSERT_EQ(low->pointers.size(), 1U);
  EXPECT_EQ(low->pointers[0].position, (Point{10, 60}));
  EXPECT_THAT(high->takePhases(), ElementsAre(Phase::moved, Phase::left));
  desktop->movePointer({110, 290});
  EXPECT_THAT(low->takePhases(), ElementsAre(Phase::moved, Phase::left)) << "beside the container";
  desktop->movePointer({600, 600});

  desktop->drag(inHigh, inLow, 0.05);
  EXPECT_EQ(high->pointers.back().position, (Point{10, 60}));
  EXPECT_THAT(high->takePhases(), ElementsAre(Phase::moved, Phase::pressed, Phase::dragged,
                                              Phase::dragged, Phase::dragged, Phase::released));
  EXPECT_THAT(low->takePhases(), IsEmpty()) << "a drag stays with the view that it began in";

  desktop->type("a");
  EXPECT_EQ(high->keys.size(), 2U);
  show(0.4);
  desktop->movePointer(inHigh);
  desktop->scroll(inHigh, 0, 12, 1);
  desktop->type("a");
  EXPECT_EQ(high->keys.size(), 2U);
  EXPECT_EQ(low->keys.size(), 2U);
  EXPECT_EQ(low->scrolls.size(), 1U);
  EXPECT_THAT(high->takePhases(), ElementsAre(Phase::left));
  EXPECT_THAT(low->takePhases(), ElementsAre(Phase::moved, Phase::moved));
  window->surface().setContent(low);
  desktop->movePointer({160, 242});
  EXPECT_EQ(low->pointers.back().position, (Point{10, 8}));
}

TEST_F(Input, KeysGoToWhoeverClaimedTheKeyboardLast) {
  const auto window = showPanel({100, 100, 200, 200});
  const auto client = clientIn(*window);
  int local = 0;
  int global = 0;
  const auto localMonitor = desktop->input.monitorLocal(keyDownMask, [&](const InputEvent& event) {
    ++local;
    return event.keyCode == escapeKeyCode;
  });
  const auto globalMonitor =
      desktop->input.monitorGlobal(keyDownMask, [&](const InputEvent&) { ++global; });

  desktop->type("a");
  EXPECT_EQ(std::pair(local, global), std::pair(0, 1))
      << "a window in front need not have the keys";
  window->order(WindowOrder::keyAndFront);
  desktop->type("é!");
  ASSERT_EQ(client->keys.size(), 4U);
  EXPECT_EQ(client->keys[0].text, "é");
  EXPECT_TRUE(client->keys[0].isDown);
  EXPECT_FALSE(client->keys[1].isDown);
  desktop->key(escapeKeyCode);
  EXPECT_EQ(std::pair(local, global), std::pair(3, 1));

  openCenter();
  desktop->key(escapeKeyCode);
  EXPECT_FALSE(center().isOpen());
  EXPECT_EQ(std::pair(local, global), std::pair(3, 2));
  desktop->key(escapeKeyCode);
  EXPECT_EQ(local, 4) << "the keyboard is the program's again";
  window->order(WindowOrder::out);
  desktop->key(escapeKeyCode);
  EXPECT_EQ(global, 3);
}

}  // namespace

}  // namespace plemora
