#pragma once

#include <gtest/gtest.h>

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <ostream>
#include <set>
#include <string>
#include <variant>
#include <vector>

#include "platform/accessibility.h"

// What every adapter of Accessibility must do. Include it in one source of a test program, and
// instantiate it:
//   INSTANTIATE_TEST_SUITE_P(Mine, AccessibilityContract,
//                            testing::Values(AccessibilityWorldFactory{"mine", make}));

namespace plemora {

/// An adapter together with an application that it looks at. The application has at least one
/// window, with elements in it, one of which is a button. Called on the main thread of the test.
class AccessibilityWorld {
 public:
  virtual ~AccessibilityWorld() = default;

  virtual Accessibility& accessibility() = 0;
  virtual void setTrusted(bool isTrusted) = 0;

  virtual std::int32_t pid() = 0;
  /// Whether an element is the button that counts its presses.
  virtual bool isButton(AccessibilityElement& element) = 0;
  virtual int presses() = 0;
  virtual void endApplication() = 0;
};

struct AccessibilityWorldFactory {
  std::string name;
  std::function<std::unique_ptr<AccessibilityWorld>()> make;
};

inline std::ostream& operator<<(std::ostream& out, const AccessibilityWorldFactory& factory) {
  return out << factory.name;
}

class AccessibilityContract : public testing::TestWithParam<AccessibilityWorldFactory> {
 protected:
  static constexpr std::int32_t nobody = 0x7ffffff0;
  static constexpr int deepest = 20;

  void SetUp() override {
    world = GetParam().make();
    ASSERT_TRUE(world);
    world->setTrusted(true);
  }

  AccessibilityElementPointer application() {
    return world->accessibility().application(world->pid());
  }

  static std::vector<AccessibilityElementPointer> listed(AccessibilityElement& element,
                                                         const std::string& attribute) {
    const auto value = element.attribute(attribute);
    const auto* list =
        value ? std::get_if<std::vector<AccessibilityElementPointer>>(&*value) : nullptr;
    return list != nullptr ? *list : std::vector<AccessibilityElementPointer>();
  }

  static void collect(const std::vector<AccessibilityElementPointer>& elements, int depth,
                      std::vector<AccessibilityElementPointer>& all) {
    ASSERT_LE(depth, deepest) << "the tree has no end";
    for (const auto& element : elements) {
      ASSERT_NE(element, nullptr);
      all.push_back(element);
      collect(listed(*element, "AXChildren"), depth + 1, all);
    }
  }

  /// Everything in the application's windows, in reading order.
  std::vector<AccessibilityElementPointer> everything() {
    std::vector<AccessibilityElementPointer> all;
    collect(listed(*application(), "AXWindows"), 0, all);
    return all;
  }

  AccessibilityElementPointer button() {
    for (const auto& element : everything()) {
      if (world->isButton(*element)) {
        return element;
      }
    }
    return nullptr;
  }

  /// Whether nothing can be learnt from it nor done with it.
  static bool isSilent(AccessibilityElement& element) {
    for (const char* name : {"AXRole", "AXIdentifier", "AXPosition", "AXSize", "AXChildren",
                             "AXWindows", "AXExtrasMenuBar"}) {
      if (element.attribute(name)) {
        return false;
      }
    }
    return !element.perform("AXPress");
  }

  std::unique_ptr<AccessibilityWorld> world;
};

TEST_P(AccessibilityContract, ShowsTheWindowsOfAnApplicationDownToTheirLeaves) {
  const auto all = everything();
  ASSERT_GE(all.size(), 2U);
  for (const auto& element : all) {
    const auto role = element->attribute("AXRole");
    ASSERT_TRUE(role);
    const auto* text = std::get_if<std::string>(&*role);
    ASSERT_NE(text, nullptr);
    EXPECT_TRUE(text->starts_with("AX")) << *text;

    const auto position = element->attribute("AXPosition");
    const auto size = element->attribute("AXSize");
    EXPECT_EQ(position.has_value(), size.has_value()) << *text;
    if (position && size) {
      EXPECT_TRUE(std::holds_alternative<Point>(*position)) << *text;
      const auto* extent = std::get_if<Size>(&*size);
      ASSERT_NE(extent, nullptr) << *text;
      EXPECT_GE(extent->width, 0) << *text;
      EXPECT_GE(extent->height, 0) << *text;
    }
    EXPECT_EQ(element->attribute("AXNobodyHasThis"), std::nullopt) << *text;
    EXPECT_FALSE(element->perform("AXNobodyDoesThis")) << *text;
  }
}

TEST_P(AccessibilityContract, PressesAButton) {
  const auto pressed = button();
  ASSERT_NE(pressed, nullptr);
  EXPECT_EQ(world->presses(), 0);
  EXPECT_TRUE(pressed->perform("AXPress"));
  EXPECT_EQ(world->presses(), 1);
  EXPECT_FALSE(pressed->perform("AXNobodyDoesThis"));
  EXPECT_EQ(world->presses(), 1);
}

TEST_P(AccessibilityContract, SaysNothingWithoutTrustAlsoThroughElementsGotBefore) {
  const auto root = application();
  const auto held = button();
  ASSERT_NE(held, nullptr);
  world->setTrusted(false);
  EXPECT_FALSE(world->accessibility().isTrusted());
  EXPECT_TRUE(isSilent(*root));
  EXPECT_TRUE(isSilent(*held));
  const auto fresh = application();
  ASSERT_NE(fresh, nullptr);
  EXPECT_TRUE(isSilent(*fresh));
  EXPECT_EQ(world->presses(), 0);

  world->setTrusted(true);
  EXPECT_TRUE(world->accessibility().isTrusted());
  EXPECT_NE(held->attribute("AXRole"), std::nullopt);
  EXPECT_NE(button(), nullptr);
}

TEST_P(AccessibilityContract, GivesAnElementForEveryProcessThereIsOrIsNot) {
  for (const std::int32_t pid : {nobody, 0, -1}) {
    const auto element = world->accessibility().application(pid);
    ASSERT_NE(element, nullptr) << pid;
    EXPECT_TRUE(isSilent(*element)) << pid;
  }
}

TEST_P(AccessibilityContract, ElementsOutliveTheirApplication) {
  const auto root = application();
  const auto all = everything();
  ASSERT_FALSE(all.empty());
  world->endApplication();
  EXPECT_TRUE(isSilent(*root));
  for (const auto& element : all) {
    EXPECT_TRUE(isSilent(*element));
  }
  EXPECT_TRUE(everything().empty());
}

TEST_P(AccessibilityContract, ElementsOutliveTheAdapter) {
  const auto held = button();
  ASSERT_NE(held, nullptr);
  world.reset();
  // What it says now is its own affair, as long as it can be asked.
  held->attribute("AXChildren");
  held->perform("AXPress");
}

}  // namespace plemora
