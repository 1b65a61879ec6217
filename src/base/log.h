#pragma once

#include <functional>
#include <string>
#include <string_view>

namespace plemora {

enum class LogLevel { debug, info, notice, warning, error };

/// Subsystem of every message of this program.
inline constexpr std::string_view logSubsystem = "com.quorvane.mixer";

struct LogRecord {
  LogLevel level;
  std::string_view category;  ///< area, such as "levels"; may be empty
  std::string_view message;   ///< one line, UTF-8, without a newline
};

/// Where messages go. Called on any thread but the real-time ones, one call at a time.
using LogHandler = std::function<void(const LogRecord&)>;

/// Replaces the handler and returns the one before. Without a handler messages are dropped.
LogHandler setLogHandler(LogHandler handler);

/// A named area of the log; a value, free to copy. Never used on a real-time thread.
class Logger {
 public:
  /// The category must be a literal or outlive every use.
  explicit constexpr Logger(std::string_view category) : category_(category) {}

  void debug(std::string_view message) const { write(LogLevel::debug, message); }
  void info(std::string_view message) const { write(LogLevel::info, message); }
  void notice(std::string_view message) const { write(LogLevel::notice, message); }
  void warning(std::string_view message) const { write(LogLevel::warning, message); }
  void error(std::string_view message) const { write(LogLevel::error, message); }

 private:
  void write(LogLevel level, std::string_view message) const;

  std::string_view category_;
};

}  // namespace plemora
