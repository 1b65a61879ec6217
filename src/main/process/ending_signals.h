#pragma once

#include <QSocketNotifier>
#include <functional>
#include <memory>

namespace plemora {

/// Turns SIGTERM, SIGINT and SIGHUP into a call on the main thread, so that the program can end in
/// order. One at a time in a process; needs a QCoreApplication. A SIGHUP that the program was
/// started to ignore (nohup) stays ignored.
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
