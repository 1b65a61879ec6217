#pragma once

#include <QSocketNotifier>
#include <functional>
#include <memory>

namespace plemora {

/// From the first moment that the program is to end, what it does in order has this long. After
/// that it ends all the same: the sound server puts every app back by itself, and settings are
/// replaced whole or not at all.
inline constexpr unsigned endingBound = 2;  // seconds

/// Begins that time; again: no effect. Any thread, also in a signal handler.
void boundEnding();
/// What is next to end, for the message that it was left undone. It stays valid for ever.
void noteEnding(const char* what);

/// Turns SIGTERM, SIGINT and SIGHUP into a call on the main thread, so that the program can end in
/// order, and begins its time. One at a time in a process; needs a QCoreApplication. A SIGHUP that
/// the program was started to ignore (nohup) stays ignored.
class EndingSignals {
 public:
  explicit EndingSignals(std::function<void()> onSignal);
  /// The signals have their default effect again.
  ~EndingSignals();
  EndingSignals(const EndingSignals&) = delete;
  EndingSignals& operator=(const EndingSignals&) = delete;

 private:
  std::unique_ptr<QSocketNotifier> notifier_;
};

}  // namespace plemora
