#include "support/child_process.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstring>
#include <stdexcept>
#include <utility>

#include "support/wait.h"

namespace plemora::rig {

namespace {

std::vector<std::string> mergedEnvironment(const std::vector<std::string>& changes) {
  std::vector<std::string> merged;
  const auto keyOf = [](const std::string& entry) { return entry.substr(0, entry.find('=')); };
  for (char** entry = environ; *entry != nullptr; ++entry) {
    bool replaced = false;
    for (const auto& change : changes) {
      replaced = replaced || keyOf(*entry) == keyOf(change);
    }
    if (!replaced) {
      merged.emplace_back(*entry);
    }
  }
  for (const auto& change : changes) {
    if (change.find('=') != std::string::npos) {
      merged.push_back(change);
    }
  }
  return merged;
}

std::vector<char*> pointers(std::vector<std::string>& texts) {
  std::vector<char*> result;
  for (auto& text : texts) {
    result.push_back(text.data());
  }
  result.push_back(nullptr);
  return result;
}

}  // namespace

ChildProcess::ChildProcess(const ChildOptions& options) {
  // Everything is prepared before the fork: between fork and exec a process with threads may only
  // make plain system calls.
  auto arguments = options.arguments;
  auto environment = mergedEnvironment(options.environment);
  auto argv = pointers(arguments);
  auto envp = pointers(environment);
  int in[2] = {-1, -1};
  int out[2] = {-1, -1};
  if (options.readable && (pipe2(in, O_CLOEXEC) != 0 || pipe2(out, O_CLOEXEC) != 0)) {
    throw std::runtime_error("no pipes for " + arguments.at(0));
  }
  const int log = options.logFile.empty() ? -1
                                          : open(options.logFile.c_str(),
                                                 O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, 0600);
  const int nothing = open("/dev/null", O_RDONLY | O_CLOEXEC);
  const pid_t parent = getpid();
  pid_ = fork();
  if (pid_ == 0) {
    setpgid(0, 0);
    prctl(PR_SET_PDEATHSIG, SIGKILL);
    if (getppid() != parent) {
      _exit(127);
    }
    sigset_t none;
    sigemptyset(&none);
    sigprocmask(SIG_SETMASK, &none, nullptr);
    dup2(options.readable ? in[0] : nothing, STDIN_FILENO);
    if (log >= 0) {
      dup2(log, STDERR_FILENO);
      dup2(log, STDOUT_FILENO);
    }
    if (options.readable) {
      dup2(out[1], STDOUT_FILENO);
    }
    execvpe(argv[0], argv.data(), envp.data());
    _exit(127);
  }
  for (const int fd : {in[0], out[1], log, nothing}) {
    if (fd >= 0) {
      close(fd);
    }
  }
  input_ = in[1];
  output_ = out[0];
  if (pid_ < 0) {
    throw std::runtime_error("cannot start " + arguments.at(0) + ": " + std::strerror(errno));
  }
  setpgid(pid_, pid_);
}

ChildProcess::~ChildProcess() {
  ::kill(-pid_, SIGKILL);
  wait(5);
  for (const int fd : {input_, output_}) {
    if (fd >= 0) {
      close(fd);
    }
  }
}

bool ChildProcess::running() {
  return !wait(0).has_value();
}

void ChildProcess::signal(int number) {
  if (!status_) {
    ::kill(pid_, number);
  }
}

std::optional<int> ChildProcess::wait(double seconds) {
  eventually(seconds, [this] {
    int status = 0;
    if (!status_ && waitpid(pid_, &status, WNOHANG) == pid_) {
      status_ = WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
    }
    return status_.has_value();
  });
  return status_;
}

void ChildProcess::stop() {
  signal(SIGTERM);
  signal(SIGCONT);
  wait(1);
  ::kill(-pid_, SIGKILL);
  wait(5);
}

void ChildProcess::kill() {
  signal(SIGKILL);
  wait(5);
}

bool ChildProcess::writeLine(const std::string& line) {
  const std::string text = line + "\n";
  // A child that has ended must not end us.
  const auto old = std::signal(SIGPIPE, SIG_IGN);
  const bool written = write(input_, text.data(), text.size()) == static_cast<ssize_t>(text.size());
  std::signal(SIGPIPE, old);
  return written;
}

bool ChildProcess::fill(double seconds) {
  pollfd wanted{output_, POLLIN, 0};
  if (ended_ || poll(&wanted, 1, static_cast<int>(seconds * 1000)) <= 0) {
    return false;
  }
  char bytes[4096];
  const ssize_t count = read(output_, bytes, sizeof bytes);
  if (count <= 0) {
    ended_ = true;
    return false;
  }
  buffer_.append(bytes, static_cast<std::size_t>(count));
  return true;
}

std::optional<std::string> ChildProcess::readLine(double seconds) {
  std::size_t end = buffer_.find('\n');
  while (end == std::string::npos) {
    if (!fill(seconds)) {
      return std::nullopt;
    }
    end = buffer_.find('\n');
  }
  std::string line = buffer_.substr(0, end);
  buffer_.erase(0, end + 1);
  return line;
}

std::string ChildProcess::readAll(double seconds) {
  const auto deadline = std::chrono::steady_clock::now() + std::chrono::duration<double>(seconds);
  while (!ended_ && std::chrono::steady_clock::now() < deadline) {
    fill(0.05);
  }
  return std::exchange(buffer_, {});
}

}  // namespace plemora::rig
