#include "main/process/ending_signals.h"

#include <fcntl.h>
#include <unistd.h>

#include <array>
#include <atomic>
#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <utility>

namespace plemora {

namespace {

constexpr std::array endingSignals = {SIGTERM, SIGINT, SIGHUP};

// The handler writes, the main loop reads. Kept open: a late signal must find a pipe.
int pipeEnds[2] = {-1, -1};

std::atomic<const char*> nextToEnd = "the main loop";
static_assert(std::atomic<const char*>::is_always_lock_free);
volatile std::sig_atomic_t isEndingBound = 0;

void say(const char* text) {
  [[maybe_unused]] const auto written = write(STDERR_FILENO, text, std::strlen(text));
}

void onTimeOver(int) {
  say("plemora: did not end in time and leaves undone: ");
  say(nextToEnd.load());
  say("\n");
  _exit(EXIT_FAILURE);
}

void onEndingSignal(int) {
  const int before = errno;
  boundEnding();
  const char byte = 0;
  // A full pipe means that the main loop will wake up anyway.
  [[maybe_unused]] const auto written = write(pipeEnds[1], &byte, 1);
  errno = before;
}

}  // namespace

void boundEnding() {
  if (isEndingBound == 0) {
    isEndingBound = 1;
    struct sigaction action = {};
    action.sa_handler = onTimeOver;
    sigaction(SIGALRM, &action, nullptr);
    alarm(endingBound);
  }
}

void noteEnding(const char* what) {
  nextToEnd = what;
}

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
