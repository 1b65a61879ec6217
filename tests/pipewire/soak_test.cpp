// A hundred streams of twenty apps come and go while volumes move. PLEMORA_LONG=1 makes it
// ten minutes.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <random>

#include "support/pipewire/player.h"
#include "support/pipewire/private_session.h"
#include "support/pipewire/program_under_test.h"
#include "support/pipewire/sink_recorder.h"
#include "support/wait.h"

namespace plemora::rig {
namespace {

constexpr int appCount = 20;
constexpr int streamsOfEach = 5;
constexpr float each = 1.0f / 1024;

/// One app: its player, the numbers of its open streams, and its volume in steps of 25 %.
struct App {
  std::unique_ptr<TonePlayer> player;
  std::vector<int> open;
  int steps = 4;

  float level() const {
    const float gain = static_cast<float>(steps * steps) / 16.0f;
    return each * gain * static_cast<float>(open.size());
  }
};

class Soak : public testing::Test {
 protected:
  Soak() {
    session.createSinks();
    plemora = std::make_unique<ProgramUnderTest>(session);
    for (int i = 0; i < appCount; ++i) {
      apps.push_back(start(i));
    }
    for (auto& app : apps) {
      EXPECT_TRUE(app.player->waitUntilStreaming());
    }
  }

  App start(int number) {
    App app;
    app.player = std::make_unique<TonePlayer>(
        session, ToneOptions{.name = nameOf(number),
                             .signal = Signal::constant(static_cast<double>(each)),
                             .streams = streamsOfEach});
    for (int stream = 0; stream < streamsOfEach; ++stream) {
      app.open.push_back(stream);
    }
    return app;
  }

  /// Two digits: no name is the beginning of another.
  static std::string nameOf(int number) { return "soak" + std::to_string(10 + number); }

  void setVolume(int number, int steps) {
    const auto result =
        plemora->control({"volume", nameOf(number), std::to_string(steps * 25) + "%"});
    // An app that has just gone, or just come, has no row yet.
    if (result.status == 0) {
      apps[static_cast<std::size_t>(number)].steps = steps;
    }
  }

  void shake(std::mt19937& random) {
    const int number = static_cast<int>(random() % appCount);
    auto& app = apps[static_cast<std::size_t>(number)];
    switch (random() % 6) {
      case 0:
        if (!app.open.empty()) {
          app.player->close(app.open.back());
          app.open.pop_back();
        }
        break;
      case 1:
        if (app.open.size() < streamsOfEach) {
          app.open.push_back(app.player->open());
        }
        break;
      case 2: {
        const int steps = app.steps;
        app = start(number);
        app.steps = steps;
        break;
      }
      case 3:
        for (const int stream : app.open) {
          app.player->pause(stream);
          app.player->resume(stream);
        }
        break;
      default:
        setVolume(number, static_cast<int>(random() % 5));
    }
  }

  PrivateSession session;
  std::unique_ptr<ProgramUnderTest> plemora;
  std::vector<App> apps;
};

TEST_F(Soak, EveryAppIsRightAtTheEnd) {
  const char* wantsLong = std::getenv("PLEMORA_LONG");
  const double seconds = wantsLong != nullptr && *wantsLong == '1' ? 600 : 10;
  // Everything on once: what a program keeps for good it has by then.
  for (int number = 0; number < appCount; ++number) {
    ASSERT_TRUE(plemora->waitForApp(nameOf(number)));
    setVolume(number, 2);
  }
  const std::size_t filesBefore = plemora->openFiles();
  const std::size_t threadsBefore = plemora->threads();
  const std::size_t memoryBefore = plemora->residentKiB();

  std::mt19937 random(20260701);
  const auto end = std::chrono::steady_clock::now() + std::chrono::duration<double>(seconds);
  int shakes = 0;
  auto nextReport = std::chrono::steady_clock::now() + std::chrono::minutes(1);
  while (std::chrono::steady_clock::now() < end) {
    shake(random);
    ++shakes;
    if (std::chrono::steady_clock::now() >= nextReport) {
      nextReport += std::chrono::minutes(1);
      std::printf("%d changes; files %zu, threads %zu, memory %zu KiB\n", shakes,
                  plemora->openFiles(), plemora->threads(), plemora->residentKiB());
      std::fflush(stdout);
    }
    ASSERT_TRUE(plemora->process().running()) << session.logs();
  }

  for (int number = 0; number < appCount; ++number) {
    auto& app = apps[static_cast<std::size_t>(number)];
    while (app.open.size() < streamsOfEach) {
      app.open.push_back(app.player->open());
    }
    EXPECT_TRUE(plemora->waitForApp(nameOf(number))) << nameOf(number);
    setVolume(number, 1 + number % 4);
    EXPECT_EQ(app.steps, 1 + number % 4);
  }
  SinkRecorder recorder(session, "first");
  const auto hears = [&](float value) {
    return eventually(20, [&] { return std::abs(recorder.next(1)[0].back() - value) < 1e-6f; });
  };
  float sum = 0;
  for (const auto& app : apps) {
    sum += app.level();
  }
  EXPECT_TRUE(hears(sum)) << recorder.next(1)[0].back() << " instead of " << sum;
  // All together may be right by two that are wrong: each one's share shows when it is muted.
  for (int number = 0; number < appCount; ++number) {
    plemora->must({"mute", nameOf(number)});
    const float rest = sum - apps[static_cast<std::size_t>(number)].level();
    EXPECT_TRUE(hears(rest)) << recorder.next(1)[0].back() / each << " instead of " << rest / each
                             << " without " << nameOf(number);
    plemora->must({"unmute", nameOf(number)});
    ASSERT_TRUE(hears(sum));
  }
  const std::size_t files = plemora->openFiles();
  const std::size_t threads = plemora->threads();
  const std::size_t memory = plemora->residentKiB();
  std::printf("%d changes in %.0f s; files %zu -> %zu, threads %zu -> %zu, memory %zu -> %zu KiB\n",
              shakes, seconds, filesBefore, files, threadsBefore, threads, memoryBefore, memory);
  EXPECT_EQ(threads, threadsBefore);
  EXPECT_LE(files, filesBefore + 8);
  if (!isSanitized) {
    EXPECT_LE(memory, memoryBefore + 6000);
  }
}

}  // namespace
}  // namespace plemora::rig
