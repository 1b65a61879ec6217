#include "base/published.h"

#include <gtest/gtest.h>

#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace plemora {
namespace {

using Log = std::vector<std::string>;

TEST(Published, TellsObserversInOrderAfterStoring) {
  Published<int> number(1);
  Log log;
  const auto observe = [&](const std::string& name) {
    return number.subscribe([&log, &number, name](int value) {
      EXPECT_EQ(number.get(), value);
      log.push_back(name + std::to_string(value));
    });
  };
  const auto a = observe("a");
  const auto b = observe("b");
  EXPECT_TRUE(log.empty());
  number.set(2);
  number.set(2);  // an equal value is an assignment too
  EXPECT_EQ(log, (Log{"a2", "b2", "a2", "b2"}));
}

TEST(Published, ObserversMayComeAndGoDuringANotification) {
  Published<int> number;
  Log log;
  std::optional<Subscription> first;
  std::optional<Subscription> second;
  std::optional<Subscription> third;
  first = number.subscribe([&](int) {
    log.push_back("first");
    second.reset();  // not yet called in this round
    first.reset();   // itself
    third = number.subscribe([&](int) { log.push_back("third"); });
  });
  second = number.subscribe([&](int) { log.push_back("second"); });
  number.set(1);
  EXPECT_EQ(log, Log{"first"});
  number.set(2);
  EXPECT_EQ(log, (Log{"first", "third"}));
}

TEST(Published, AnAssignmentDuringANotificationReachesEverybodyLast) {
  Published<int> number;
  std::vector<int> seenByFirst;
  std::vector<int> seenByLast;
  const auto first = number.subscribe([&](int value) {
    seenByFirst.push_back(value);
    if (value == 1) {
      number.set(2);
    }
  });
  const auto last = number.subscribe([&](int value) { seenByLast.push_back(value); });
  number.set(1);
  EXPECT_EQ(number.get(), 2);
  EXPECT_EQ(seenByFirst, (std::vector{1, 2}));
  ASSERT_FALSE(seenByLast.empty());
  EXPECT_EQ(seenByLast.back(), 2);
}

TEST(Published, MayBeDestroyedByAnObserverAndOutlivedByASubscription) {
  auto text = std::make_unique<Published<std::string>>("old");
  int calls = 0;
  auto first = text->subscribe([&](const std::string&) {
    ++calls;
    text.reset();
  });
  auto second = text->subscribe([&](const std::string&) { ++calls; });
  text->set("new");
  EXPECT_FALSE(text);
  EXPECT_EQ(calls, 1);
  second = Subscription();
}

TEST(Published, ASubscriptionHoldsWhatItsObserverHoldsAndNoLonger) {
  Published<int> number;
  const auto held = std::make_shared<int>(0);
  {
    Subscription inner;
    {
      auto subscription = number.subscribe([held](int value) { *held += value; });
      inner = std::move(subscription);
    }
    number.set(3);
    EXPECT_EQ(held.use_count(), 2);
  }
  number.set(4);
  EXPECT_EQ(*held, 3);
  EXPECT_EQ(held.use_count(), 1);
}

TEST(Published, ChangesOfAProjectionSkipRepeatsAndTheFirstValue) {
  Published<std::vector<std::string>> names(std::vector<std::string>{"a"});
  std::vector<std::size_t> sizes;
  const auto subscription =
      names.subscribeToChanges([](const auto& value) { return value.size(); },
                               [&](std::size_t size) { sizes.push_back(size); });
  names.set({"b"});
  names.set({"a", "b"});
  names.set({"b", "a"});
  names.set({});
  EXPECT_EQ(sizes, (std::vector<std::size_t>{2, 0}));
}

}  // namespace
}  // namespace plemora
