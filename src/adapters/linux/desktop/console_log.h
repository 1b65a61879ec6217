#pragma once

#include <string>

#include "base/log.h"
#include "platform/clock.h"

namespace plemora {

/// Writes messages of at least that level to standard error: for the journal, when it reads that
/// stream (JOURNAL_STREAM), with the priority in front, else with time, level and category.
LogHandler makeConsoleLog(LogLevel least = LogLevel::info);

/// "<4>levels: message": the journal takes the number in front as the priority.
std::string journalLine(const LogRecord& record);

/// "14:02:07.123 warning levels: message", in local time.
std::string terminalLine(const LogRecord& record, WallTime time);

}  // namespace plemora
