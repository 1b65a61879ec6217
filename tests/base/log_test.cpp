#include "base/log.h"

#include <gtest/gtest.h>

#include <string>
#include <thread>
#include <vector>

namespace plemora {
namespace {

TEST(Log, HandsMessagesToTheLatestHandlerOneAtATime) {
  const Logger logger("levels");
  int older = 0;
  const auto original = setLogHandler([&](const LogRecord&) { ++older; });
  std::vector<std::string> lines;
  setLogHandler([&](const LogRecord& record) {
    lines.push_back(std::string(record.category) + ":" + std::string(record.message));
  });
  std::vector<std::thread> threads;
  for (int i = 0; i < 4; ++i) {
    threads.emplace_back([&] {
      for (int n = 0; n < 100; ++n) {
        logger.info("x");
      }
    });
  }
  for (auto& thread : threads) {
    thread.join();
  }
  setLogHandler({});
  logger.error("dropped");
  EXPECT_EQ(older, 0);
  EXPECT_EQ(lines, std::vector<std::string>(400, "levels:x"));
  setLogHandler(original);
}

}  // namespace
}  // namespace plemora
