#pragma once

#include <string>
#include <vector>

#include "base/log.h"

namespace plemora {

/// Keeps the messages of the log while it lives.
class LogKeeper {
 public:
  LogKeeper() {
    before_ = setLogHandler([this](const LogRecord& record) {
      records.push_back({record.level, std::string(record.category), std::string(record.message)});
    });
  }
  ~LogKeeper() { setLogHandler(before_); }

  struct Record {
    LogLevel level;
    std::string category, message;
  };
  std::vector<Record> records;

  std::vector<std::string> messages(LogLevel level) const {
    std::vector<std::string> result;
    for (const auto& record : records) {
      if (record.level == level) {
        result.push_back(record.message);
      }
    }
    return result;
  }

 private:
  LogHandler before_;
};

}  // namespace plemora
