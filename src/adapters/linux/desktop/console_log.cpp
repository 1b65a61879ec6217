#include "adapters/linux/desktop/console_log.h"

#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <ctime>

namespace plemora {

namespace {

struct LevelName {
  char priority;
  const char* name;
};

LevelName nameOf(LogLevel level) {
  static constexpr std::array<LevelName, 5> names = {
      {{'7', "debug"}, {'6', "info"}, {'5', "notice"}, {'4', "warning"}, {'3', "error"}}};
  return names[static_cast<std::size_t>(level)];
}

std::string body(const LogRecord& record) {
  std::string text;
  if (!record.category.empty()) {
    text.append(record.category).append(": ");
  }
  return text.append(record.message);
}

/// Whether the journal reads standard error: JOURNAL_STREAM names the device and inode that it
/// gave us, which a redirection changes.
bool journalReadsStandardError() {
  const char* stream = std::getenv("JOURNAL_STREAM");
  struct stat status {};
  return stream != nullptr && fstat(STDERR_FILENO, &status) == 0 &&
         stream == std::to_string(status.st_dev) + ":" + std::to_string(status.st_ino);
}

void writeLine(std::string line) {
  line += '\n';
  // One call, so that lines of several processes on one terminal stay whole. There is nobody to
  // tell when it fails.
  [[maybe_unused]] const auto written = write(STDERR_FILENO, line.data(), line.size());
}

}  // namespace

std::string journalLine(const LogRecord& record) {
  return std::string("<") + nameOf(record.level).priority + ">" + body(record);
}

std::string terminalLine(const LogRecord& record, WallTime time) {
  const auto sinceEpoch = time.time_since_epoch();
  const std::time_t seconds = std::chrono::floor<std::chrono::seconds>(sinceEpoch).count();
  const auto milliseconds =
      std::chrono::floor<std::chrono::milliseconds>(sinceEpoch).count() - seconds * 1000;
  std::tm local{};
  localtime_r(&seconds, &local);
  char clock[32];
  std::snprintf(clock, sizeof clock, "%02d:%02d:%02d.%03d ", local.tm_hour, local.tm_min,
                local.tm_sec, static_cast<int>(milliseconds));
  return clock + std::string(nameOf(record.level).name) + " " + body(record);
}

LogHandler makeConsoleLog(LogLevel least) {
  const bool journal = journalReadsStandardError();
  return [least, journal](const LogRecord& record) {
    if (record.level >= least) {
      writeLine(journal ? journalLine(record)
                        : terminalLine(record, std::chrono::system_clock::now()));
    }
  };
}

}  // namespace plemora
