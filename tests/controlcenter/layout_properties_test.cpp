#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <map>

#include "controlcenter/layout_maker.h"

// What must hold for whatever layout Control Center may have.

namespace plemora {
namespace {

constexpr unsigned layouts = 60;

/// All that a layout holds, as text; its bytes may differ where the content does not.
std::string contentOf(const StoredLayout& stored) {
  Layout layout = Layout::decode(stored);
  layout.boxes[0].erase("displayablesData");
  for (const char* key : {"modules", "chronoControls"}) {
    layout.displayables.removeMember(key);
  }
  std::string text = layoutJsonText(layout.boxes) + layoutJsonText(layout.controlsRoot) +
                     layout.displayables.xml();
  for (const auto* lists : {&layout.modules, &layout.chronoControls}) {
    text += PropertyList::array(*lists).xml();
  }
  return text;
}

using Cell = std::pair<std::int64_t, std::int64_t>;

/// How often each cell is covered, counted without the program's help.
std::map<Cell, int> coverage(const LayoutDictionaries& elements) {
  const std::map<std::string, Cell> sizes = {
      {"square1x1", {1, 1}}, {"rect2x1", {2, 1}}, {"square2x2", {2, 2}}, {"rect4x1", {4, 1}}};
  std::map<Cell, int> covered;
  for (const LayoutJson& element : elements) {
    const LayoutJson location = element.value("location", LayoutJson());
    const LayoutJson size = element.value("size", LayoutJson());
    if (!location.is_object() || !location.contains("x") || !location.contains("y") ||
        !size.is_object() || size.size() != 1 || !sizes.contains(size.begin().key())) {
      continue;
    }
    const LayoutJson& x = location["x"];
    const LayoutJson& y = location["y"];
    constexpr std::uint64_t most = std::numeric_limits<std::int64_t>::max();
    if (!x.is_number_integer() || !y.is_number_integer() ||
        (x.is_number_unsigned() && x.get<std::uint64_t>() > most) ||
        (y.is_number_unsigned() && y.get<std::uint64_t>() > most)) {
      continue;
    }
    const auto [columns, rows] = sizes.at(size.begin().key());
    for (std::int64_t i = 0; i < columns; ++i) {
      for (std::int64_t j = 0; j < rows; ++j) {
        ++covered[{x.get<std::int64_t>() + i, y.get<std::int64_t>() + j}];
      }
    }
  }
  return covered;
}

std::map<Cell, int> storedCells(const Layout& layout) {
  std::map<Cell, int> cells;
  for (const LayoutJson& cell : layout.boxes[0].at("occupiedLocations")) {
    ++cells[{cell.at("x").get<std::int64_t>(), cell.at("y").get<std::int64_t>()}];
  }
  return cells;
}

int overlaps(const Layout& layout) {
  int count = 0;
  for (const auto& [cell, times] : coverage(layout.elements)) {
    count += times - 1;
  }
  return count;
}

/// What of the layout is neither ours nor Sound's, as text.
std::string foreignPart(Layout layout) {
  std::erase_if(layout.elements, [](const LayoutJson& element) {
    const std::string id = elementID(element);
    return id.starts_with("sound ") || id.starts_with("00000000-");
  });
  layout.removeMixer();
  std::erase_if(layout.modules, [](const PropertyList& module) {
    const auto name = module.member("moduleId");
    return name && name->asString() == "Sound";
  });
  LayoutJson& box = layout.boxes[0];
  box.erase("displayablesData");
  box.erase("occupiedLocations");
  box["grid"].erase("elements");
  layout.controlsRoot.erase("Controls");
  for (const char* key : {"modules", "chronoControls", "instanceIds"}) {
    layout.displayables.removeMember(key);
  }
  return layoutJsonText({layout.boxes, layout.elements, layout.controlsRoot, layout.controls}) +
         layout.displayables.xml() + PropertyList::array(layout.modules).xml() +
         PropertyList::array(layout.instanceIDs).xml() +
         PropertyList::array(layout.chronoControls).xml();
}

std::vector<std::size_t> sizesOf(const Layout& layout) {
  return {layout.elements.size(), layout.controls.size(), layout.modules.size(),
          layout.instanceIDs.size(), layout.chronoControls.size()};
}

class AnyLayout : public testing::Test {
 protected:
  template <class Check>
  void forEach(const Check& check) {
    for (unsigned seed = 1; seed <= layouts && !HasFailure(); ++seed) {
      SCOPED_TRACE("seed " + std::to_string(seed));
      const StoredLayout stored = LayoutMaker(seed).make();
      LayoutWorld world(stored);
      check(world, stored);
    }
  }
};

TEST_F(AnyLayout, ReplacedAndRestoredIsTheSameByteForByte) {
  forEach([](LayoutWorld& world, const StoredLayout& before) {
    world.layout.replaceSound();
    EXPECT_NE(world.stored(), before);
    world.layout.restore();
    EXPECT_EQ(world.stored(), before);
    EXPECT_FALSE(world.files.exists(LayoutWorld::backupPath));
  });
}

TEST_F(AnyLayout, LeavesForeignContentAndStoresTheCellsOfItsTiles) {
  forEach([](LayoutWorld& world, const StoredLayout& stored) {
    const Layout before = Layout::decode(stored);
    for (const bool replaces : {true, false}) {
      replaces ? world.layout.replaceSound() : world.layout.putSoundBack(true);
      const Layout after = world.read();
      EXPECT_EQ(foreignPart(after), foreignPart(before));
      EXPECT_EQ(storedCells(after), coverage(after.elements));
    }
  });
}

TEST_F(AnyLayout, HasSoundAndNoneOfUsOnceItIsPutBack) {
  forEach([](LayoutWorld& world, const StoredLayout& stored) {
    const Layout before = Layout::decode(stored);
    const LayoutJson sound = *before.soundElement();
    const bool filledItsRow = elementSize(sound).columns == 4 && elementColumn(sound) == 0 &&
                              elementRow(sound).has_value();
    world.layout.replaceSound();
    EXPECT_GE(world.read().mixerElements().size(), 2U);
    world.layout.putSoundBack(true);
    const Layout after = world.read();
    EXPECT_TRUE(after.soundElement());
    EXPECT_TRUE(after.mixerElements().empty());
    EXPECT_TRUE(std::ranges::none_of(after.controls, isMixerControl));
    if (filledItsRow) {
      EXPECT_LE(overlaps(after), overlaps(before));
    }
  });
}

TEST_F(AnyLayout, DoesNotGrowHoweverOftenSoundComesAndGoes) {
  forEach([](LayoutWorld& world, const StoredLayout& stored) {
    std::vector<std::size_t> sizes = sizesOf(Layout::decode(stored));
    // A second Sound may go in the first rounds; from then on nothing changes in number.
    for (int round = 0; round < 5; ++round) {
      const std::vector<std::size_t> last = sizes;
      world.layout.replaceSound();
      world.layout.putSoundBack(true);
      sizes = sizesOf(world.read());
      for (std::size_t i = 0; i < sizes.size(); ++i) {
        EXPECT_LE(sizes[i], last[i]) << "round " << round << ", list " << i;
      }
      if (round > 2) {
        EXPECT_EQ(sizes, last);
      }
    }
  });
}

TEST_F(AnyLayout, IsReplacedOnceHoweverOftenItIsAsked) {
  forEach([](LayoutWorld& world, const StoredLayout&) {
    world.layout.replaceSound();
    const std::string backup = world.files.read(LayoutWorld::backupPath).value();
    while (world.read().soundElement()) {
      world.layout.replaceSound();  // another one
    }
    const StoredLayout once = world.stored();
    EXPECT_NE(failureOf([&] { world.layout.replaceSound(); }), "");
    EXPECT_EQ(world.stored(), once);
    // Sound comes back by itself, and goes again: the tiles are renewed, not doubled.
    Layout layout = world.read();
    layout.elements.push_back(makeElement("sound 0", 0, 4, "rect4x1"));
    world.store(layout);
    world.layout.replaceSound();
    const Layout twice = world.read();
    EXPECT_EQ(sizesOf(twice), sizesOf(Layout::decode(once)));
    EXPECT_EQ(foreignPart(twice), foreignPart(Layout::decode(once)));
    EXPECT_EQ(world.files.read(LayoutWorld::backupPath), backup);
  });
}

TEST_F(AnyLayout, IsUnderstoodAgainAfterEveryChange) {
  forEach([](LayoutWorld& world, const StoredLayout&) {
    const StoredLayout first = world.read().encode();
    EXPECT_EQ(contentOf(Layout::decode(first).encode()), contentOf(first));
  });
}

}  // namespace
}  // namespace plemora
