#include <functional>

#include "stage_desktop/desk.h"

namespace plemora {

namespace {

using Elements = std::vector<AccessibilityElementPointer>;

template <typename T>
std::optional<T> read(AccessibilityElement& element, const std::string& name) {
  const auto value = element.attribute(name);
  const T* typed = value ? std::get_if<T>(&*value) : nullptr;
  return typed == nullptr ? std::nullopt : std::optional(*typed);
}

std::string text(AccessibilityElement& element, const std::string& name) {
  return read<std::string>(element, name).value_or("");
}

std::optional<Rect> frameOf(AccessibilityElement& element) {
  const auto origin = read<Point>(element, "AXPosition");
  const auto size = read<Size>(element, "AXSize");
  return origin && size ? std::optional(Rect{origin->x, origin->y, size->width, size->height})
                        : std::nullopt;
}

class ControlCenterElements : public Desk {
 protected:
  AccessibilityElementPointer application() {
    return desktop->accessibility.application(center().pid());
  }

  static void walk(AccessibilityElement& element, const std::string& list, Elements& found) {
    for (const auto& child : read<Elements>(element, list).value_or(Elements())) {
      found.push_back(child);
      walk(*child, "AXChildren", found);
    }
  }

  Elements everything() {
    Elements found;
    walk(*application(), "AXWindows", found);
    return found;
  }

  AccessibilityElementPointer find(const std::string& identifier) {
    for (const auto& element : everything()) {
      if (text(*element, "AXIdentifier") == identifier) {
        return element;
      }
    }
    return nullptr;
  }

  /// The lowest button without an identifier.
  AccessibilityElementPointer editButton() {
    AccessibilityElementPointer lowest;
    double top = -1;
    for (const auto& element : everything()) {
      const auto frame = frameOf(*element);
      if (text(*element, "AXRole") == "AXButton" && !element->attribute("AXIdentifier") && frame &&
          frame->minY() > top) {
        lowest = element;
        top = frame->minY();
      }
    }
    return lowest;
  }

  AccessibilityElementPointer menuItem() {
    const auto bar = read<AccessibilityElementPointer>(*application(), "AXExtrasMenuBar");
    if (bar) {
      for (const auto& item : read<Elements>(**bar, "AXChildren").value_or(Elements())) {
        if (text(*item, "AXIdentifier") == "com.apple.menuextra.controlcenter") {
          return item;
        }
      }
    }
    return nullptr;
  }
};

TEST_F(ControlCenterElements, StandWhereTheirThingsAreDrawn) {
  const auto icon = desktop->menuBar.extra("com.apple.menuextra.controlcenter");
  ASSERT_NE(menuItem(), nullptr);
  EXPECT_EQ(frameOf(*menuItem()), desktop->space.flipped(icon->frame));
  EXPECT_TRUE(everything().empty()) << "it is closed";

  ASSERT_TRUE(menuItem()->perform("AXPress"));
  desktop->advance(0.5);
  ASSERT_TRUE(center().isOpen());
  const auto windows = read<Elements>(*application(), "AXWindows").value();
  ASSERT_EQ(windows.size(), 1U);
  EXPECT_EQ(frameOf(*windows[0]), windowsOf(StageWindowKind::controlCenter)[0].bounds);
  for (const StageTile& tile : center().grid().tiles()) {
    if (!tile.module.empty()) {
      const auto element = find("com.apple.controlcenter.module." + tile.module);
      ASSERT_NE(element, nullptr) << tile.module;
      EXPECT_EQ(frameOf(*element), desktop->space.flipped(center().panel().tile(tile)));
    }
  }
  const auto slider = find("slider-Sound");
  ASSERT_NE(slider, nullptr);
  desktop->plug({.uid = "out", .volume = 0.5F});
  EXPECT_EQ(read<double>(*slider, "AXValue"), 0.5);
}

/// Opens Control Center by its element, looks at everything, and presses its edit button twice.
TEST_F(ControlCenterElements, AreSafeToUseWhateverVanishesAtWhateverStep) {
  const std::vector<std::function<void()>> misfortunes{
      [this] { center().kill(); },
      [this] { desktop->accessibility.setTrusted(false); },
      [this] { center().close(); },
      [this] { desktop->screens.set({}); },
  };
  for (std::size_t kind = 0; kind < misfortunes.size(); ++kind) {
    int steps = 1;  // of a run in which nothing happens
    for (int at = 0; at <= steps; at += 7) {
      begin();
      desktop->accessibility.setBeforeCall([&, at](int call) {
        if (call == at) {
          misfortunes[kind]();
        }
      });
      if (const auto item = menuItem()) {
        item->perform("AXPress");
      }
      if (const auto button = editButton()) {
        button->perform("AXPress");
        button->perform("AXPress");
      }
      if (at == 0) {
        steps = desktop->accessibility.calls();
      }
      EXPECT_FALSE(center().isEditing() && !center().isOpen());
      desktop->advance(1.5);
      EXPECT_TRUE(center().isRunning());
    }
    EXPECT_GT(steps, 50) << "the steps were looked for";
  }
}

}  // namespace

}  // namespace plemora
