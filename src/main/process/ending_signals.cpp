#include "main/process/ending_signals.h"

#include <fcntl.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <csignal>
#include <utility>

namespace plemora {

namespace {

constexpr std::array endingSignals = {SIGTERM, SIGINT, SIGHUP};

// The handler writes, the main loop reads. Kept open: a late signal must find a pipe.
int pipeEnds[2] = {-1, -1};

void onEndingSignal(int) {
  const int before = errno;
  const char byte = 0;
  // A full pipe means that the main loop will wake up anyway.
  [[maybe_unused]] const auto written = write(pipeEnds[1], &byte, 1);
  errno = before;
}

}  // namespace

EndingSignals::EndingSignals(std::function<void()> onSignal) {
  if (pipeEnds[0] < 0 && pipe2(pipeEnds, O_CLOEXEC | O_NONBLOCK) != 0) {
    return;  // no descriptors left: signals keep their default effect, which ends the program too
  }
  notifier_ = std::make_unique<QSocketNotifier>(pipeEnds[0], QSocketNotifier::Read);
  QObject::connect(notifier_.get(), &QSocketNotifier::activated, [call = std::move(onSignal)] {
    char bytes[16];
    while (read(pipeEnds[0], bytes, sizeof bytes) > 0) {
    }
    call();
  });
  struct sigaction action = {};
  action.sa_handler = onEndingSignal;
  action.sa_flags = SA_RESTART;
  for (const int number : endingSignals) {
    struct sigaction before = {};
    sigaction(number, nullptr, &before);
    if (number != SIGHUP || before.sa_handler != SIG_IGN) {
      sigaction(number, &action, nullptr);
    }
  }
}

EndingSignals::~EndingSignals() {
  for (const int number : endingSignals) {
    struct sigaction before = {};
    sigaction(number, nullptr, &before);
    if (before.sa_handler == onEndingSignal) {
      std::signal(number, SIG_DFL);
    }
  }
}

}  // namespace plemora
