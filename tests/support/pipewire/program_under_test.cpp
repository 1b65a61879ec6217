#include "support/pipewire/program_under_test.h"

#include <ctime>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <nlohmann/json.hpp>
#include <stdexcept>
#include <utility>

#include "support/pipewire/private_session.h"
#include "support/wait.h"

namespace plemora::rig {

namespace {

namespace fs = std::filesystem;

const std::string programs = PLEMORA_BIN_DIR;

std::string procPath(pid_t pid, const std::string& entry) {
  return "/proc/" + std::to_string(pid) + "/" + entry;
}

std::size_t entriesIn(const std::string& folder) {
  return static_cast<std::size_t>(
      std::distance(fs::directory_iterator(folder), fs::directory_iterator()));
}

std::size_t statusNumber(const std::string& file, const std::string& key) {
  std::ifstream status(file);
  for (std::string line; std::getline(status, line);) {
    if (line.starts_with(key + ":")) {
      return std::stoul(line.substr(key.size() + 1));
    }
  }
  return 0;
}

}  // namespace

ProgramUnderTest::ProgramUnderTest(PrivateSession& session, std::vector<std::string> arguments,
                                   std::vector<std::string> desktop)
    : session_(session), arguments_(std::move(arguments)), desktop_(std::move(desktop)) {
  start();
}

void ProgramUnderTest::start() {
  ChildOptions options;
  options.arguments = {programs + "/plemora"};
  if (desktop_.empty()) {
    options.arguments.emplace_back("--no-ui");
  }
  options.arguments.insert(options.arguments.end(), arguments_.begin(), arguments_.end());
  options.environment = session_.environment();
  options.environment.insert(options.environment.end(), desktop_.begin(), desktop_.end());
  options.logFile = session_.directory() + "/plemora.log";
  process_.reset();
  process_ = std::make_unique<ChildProcess>(options);
  const bool ready =
      eventually(10, [&] { return !process_->running() || control({"devices"}).status == 0; });
  if (!ready || !process_->running()) {
    throw std::runtime_error("plemora did not come up:\n" + session_.logs());
  }
}

ControlResult ProgramUnderTest::control(const std::vector<std::string>& arguments) {
  ChildOptions options;
  options.arguments = {programs + "/plemoractl"};
  options.arguments.insert(options.arguments.end(), arguments.begin(), arguments.end());
  options.environment = session_.environment();
  options.logFile = session_.directory() + "/plemoractl.log";
  options.readable = true;
  ChildProcess child(options);
  ControlResult result;
  result.output = child.readAll(10);
  result.status = child.wait(1).value_or(-1);
  return result;
}

std::string ProgramUnderTest::must(const std::vector<std::string>& arguments) {
  auto result = control(arguments);
  if (result.status != 0) {
    std::string line = "plemoractl";
    for (const auto& argument : arguments) {
      line += " " + argument;
    }
    throw std::runtime_error(line + " ended with " + std::to_string(result.status) + "\n" +
                             result.output + session_.logs());
  }
  return result.output;
}

std::vector<AppRow> ProgramUnderTest::apps() {
  const auto textOf = [](const nlohmann::json& value) {
    return value.is_string() ? value.get<std::string>() : std::string();
  };
  std::vector<AppRow> rows;
  const auto result = control({"list", "--json"});
  // While the sound server is away there are none.
  if (result.status == 0) {
    for (const auto& row : nlohmann::json::parse(result.output)) {
      rows.push_back({textOf(row.at("id")), textOf(row.at("name")), row.at("playing").get<bool>(),
                      row.at("volume").get<double>(), row.at("muted").get<bool>(),
                      textOf(row.at("output")), row.at("routed").get<bool>()});
    }
  }
  return rows;
}

std::optional<AppRow> ProgramUnderTest::waitForApp(const std::string& name, double seconds) {
  std::optional<AppRow> found;
  eventually(seconds, [&] {
    for (const auto& row : apps()) {
      if ((row.name == name || row.id == name) && row.playing) {
        found = row;
      }
    }
    return found.has_value();
  });
  return found;
}

std::size_t ProgramUnderTest::openFiles() const {
  return entriesIn(procPath(process_->pid(), "fd"));
}

std::size_t ProgramUnderTest::threads() const {
  return entriesIn(procPath(process_->pid(), "task"));
}

std::size_t ProgramUnderTest::residentKiB() const {
  return residentKiBOf(process_->pid());
}

std::size_t ProgramUnderTest::wakeUps() const {
  std::size_t sum = 0;
  for (const auto& task : fs::directory_iterator(procPath(process_->pid(), "task"))) {
    sum += statusNumber(task.path() / "status", "voluntary_ctxt_switches");
  }
  return sum;
}

std::size_t residentKiBOf(pid_t pid) {
  return statusNumber(procPath(pid, "status"), "VmRSS");
}

double cpuMilliseconds(pid_t pid) {
  // The clock counts nanoseconds, where /proc counts ticks of 10 ms.
  clockid_t clock = 0;
  timespec time{};
  if (clock_getcpuclockid(pid, &clock) != 0 || clock_gettime(clock, &time) != 0) {
    return 0;
  }
  return static_cast<double>(time.tv_sec) * 1e3 + static_cast<double>(time.tv_nsec) / 1e6;
}

}  // namespace plemora::rig
