#include "audio/tap_levels.h"

#include <algorithm>
#include <map>
#include <utility>

#include "base/log.h"
#include "base/text.h"

namespace plemora {

namespace {

constexpr Logger logger("levels");

struct Peaks {
  float input = 0.0f;
  float output = 0.0f;
};

}  // namespace

class TapLevels::Watch {
 public:
  std::map<std::string, Peaks> peaks;  ///< by tap, since this watcher's last reading
  double interval = 0;
  Watcher watcher;
  Timer timer;  ///< none while no tap runs
};

struct TapLevels::Shared {
  Source source;
  std::vector<std::weak_ptr<Watch>> watches;

  /// Takes the peaks from the taps and puts them to every watcher's account.
  std::vector<TapLevel> read() {
    auto levels = source();
    std::erase_if(watches, [](const auto& watch) { return watch.expired(); });
    for (const auto& weak : watches) {
      const auto watch = weak.lock();
      std::map<std::string, Peaks> peaks;
      for (const TapLevel& level : levels) {
        const auto before = watch->peaks.find(level.id);
        const Peaks seen = before == watch->peaks.end() ? Peaks{} : before->second;
        peaks[level.id] = {std::max(seen.input, level.inputPeak),
                           std::max(seen.output, level.peak)};
      }
      watch->peaks = std::move(peaks);
    }
    return levels;
  }

  /// The running taps with what this watcher has not seen yet.
  std::vector<TapLevel> readFor(Watch& watch) {
    auto levels = read();
    for (TapLevel& level : levels) {
      const Peaks peaks = std::exchange(watch.peaks[level.id], {});
      level.inputPeak = peaks.input;
      level.peak = peaks.output;
    }
    return levels;
  }
};

TapLevels::TapLevels(MainQueue& mainQueue, Source source)
    : mainQueue_(mainQueue), shared_(std::make_shared<Shared>(Shared{std::move(source), {}})) {}

TapLevels::~TapLevels() = default;

std::shared_ptr<TapLevels::Watch> TapLevels::watch(double interval, Watcher watcher) {
  shared_->read();  // what came before belongs to the others
  auto watch = std::make_shared<Watch>();
  watch->interval = interval;
  watch->watcher = std::move(watcher);
  run(watch);
  shared_->watches.push_back(watch);
  return watch;
}

void TapLevels::run(const std::shared_ptr<Watch>& watch) {
  watch->timer = mainQueue_.every(watch->interval,
                                  [shared = std::weak_ptr(shared_), weak = std::weak_ptr(watch)] {
                                    const auto levels = shared.lock();
                                    const auto self = weak.lock();
                                    if (!levels || !self) {
                                      return;
                                    }
                                    const auto reading = levels->readFor(*self);
                                    if (reading.empty()) {
                                      self->timer.reset();
                                    }
                                    self->watcher(reading);
                                  });
}

void TapLevels::tapStarted() {
  for (const auto& weak : shared_->watches) {
    const auto watch = weak.lock();
    if (watch && !watch->timer) {
      run(watch);
    }
  }
}

void TapLevels::startLog() {
  log_ = watch(logInterval, [](const std::vector<TapLevel>& levels) {
    for (const TapLevel& level : levels) {
      logger.info(level.id + " gain " + fixedPoint(level.gain) + " in " +
                  fixedPoint(level.inputPeak) + " out " + fixedPoint(level.peak));
    }
  });
}

}  // namespace plemora
