#include "controlcenter/control_center_layout.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "controlcenter/control_identity.h"
#include "controlcenter/layout_world.h"

namespace plemora {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

constexpr const char* unreadable = "Control Center's layout couldn't be read.";
constexpr const char* noSound = "Apple's Sound module isn't in Control Center.";

TEST(ReplaceSound, PutsTwoTilesIntoItsRow) {
  LayoutWorld world;
  const Layout before = world.read();
  world.layout.replaceSound();
  const Layout after = world.read();
  EXPECT_EQ(world.restarts, 1);
  EXPECT_EQ(after.soundElement(), nullptr);
  ASSERT_THAT(after.elements, SizeIs(before.elements.size() + 1));
  const char* const tiles[] = {R"({"id":{"rawValue":"00000000-0000-4000-8000-000000000001"},)"
                               R"("location":{"x":0,"y":4},"size":{"rect2x1":{}}})",
                               R"({"id":{"rawValue":"00000000-0000-4000-8000-000000000002"},)"
                               R"("location":{"x":2,"y":4},"size":{"rect2x1":{}}})"};
  const std::string controlStart = R"({"ControlIdentity":")" + std::string(controlIdentity) +
                                   R"(","ControlSize":2,"ControlType":2,"DisplayName":"Plemora",)"
                                   R"("ControlDescription":"Master volume, each app's volume and )"
                                   R"(the output device.","Identifier":[")";
  for (std::size_t i = 0; i < 2; ++i) {
    EXPECT_EQ(layoutJsonText(after.elements[before.elements.size() - 1 + i]), tiles[i]);
    EXPECT_EQ(layoutJsonText(after.controls[before.controls.size() + i]),
              controlStart + elementID(after.mixerElements()[i]) +
                  R"("],"OverrideSizeForMenuBar":false,"PromptsForUserConfiguration":false})");
  }
  EXPECT_EQ(after.boxes[0]["occupiedLocations"], LayoutJson(Layout::occupiedCells(after.elements)));

  // Everything else is as it was.
  Layout reduced = after;
  reduced.removeMixer();
  Layout withoutSound = before;
  withoutSound.elements.erase(withoutSound.elements.begin() + 8);
  EXPECT_EQ(reduced.encode(), withoutSound.encode());
}

TEST(ReplaceSound, TakesTheRowFromSoundWhateverItsPlaceAndSize) {
  const std::pair<const char*, std::int64_t> cases[] = {
      {R"({"location":{"x":1,"y":3},"size":{"rect2x1":{}}})", 3},
      {R"({"location":{"y":-2},"size":{"square2x2":{}}})", -2},
      {R"({"location":{"x":0,"y":3.0}})", 0},
      {R"({"location":{"x":0,"y":"3"}})", 0},
      {R"({"location":[3,3]})", 0},
      {R"({})", 0},
  };
  for (const auto& [sound, row] : cases) {
    LayoutWorld world;
    Layout layout = world.read();
    LayoutJson moved = parseLayoutJson(sound);
    moved["id"] = layout.elements[8]["id"];
    layout.elements[8] = moved;
    world.store(layout);
    world.layout.replaceSound();
    const LayoutDictionaries tiles = world.read().mixerElements();
    ASSERT_THAT(tiles, SizeIs(2));
    for (std::size_t i = 0; i < 2; ++i) {
      EXPECT_EQ(elementColumn(tiles[i]), static_cast<std::int64_t>(2 * i)) << sound;
      EXPECT_EQ(elementRow(tiles[i]), row) << sound;
    }
  }
}

TEST(ReplaceSound, ASecondTimeChangesNothingOrOnlyRenewsTheTiles) {
  LayoutWorld world;
  world.layout.replaceSound();
  const StoredLayout replaced = world.stored();
  const auto backup = world.files.read(LayoutWorld::backupPath);
  EXPECT_EQ(failureOf([&] { world.layout.replaceSound(); }), noSound);
  EXPECT_EQ(world.stored(), replaced);
  EXPECT_EQ(world.restarts, 1);

  // The system has put Sound back beside our tiles.
  Layout layout = world.read();
  const LayoutJson sound = Layout::decode(freshStoredLayout()).elements[8];
  layout.elements.push_back(sound);
  world.store(layout);
  world.layout.replaceSound();
  const Layout again = world.read();
  EXPECT_THAT(again.elements, SizeIs(16));
  EXPECT_THAT(again.controls, SizeIs(6));
  EXPECT_THAT(again.mixerElements(), SizeIs(2));
  EXPECT_EQ(again.soundElement(), nullptr);
  EXPECT_EQ(world.files.read(LayoutWorld::backupPath), backup) << "the first one stays";
}

TEST(ReplaceSound, ChangesNothingWithoutSoundOrWithoutAReadableLayout) {
  LayoutWorld world;
  Layout layout = world.read();
  layout.elements.erase(layout.elements.begin() + 8);
  world.store(layout);
  const StoredLayout before = world.stored();
  EXPECT_EQ(failureOf([&] { world.layout.replaceSound(); }), noSound);
  EXPECT_EQ(world.stored(), before);
  EXPECT_FALSE(world.files.exists(LayoutWorld::backupPath));

  const std::optional<PreferenceValue> odd[] = {
      std::nullopt, std::string("[]"), true, std::int64_t{1}, 1.5, OtherPreference{}};
  for (const auto& value : odd) {
    for (const bool isBoxes : {true, false}) {
      LayoutWorld broken;
      isBoxes ? broken.preferences.setValue("boxes", value, ControlCenterLayout::layoutDomain,
                                            PreferenceHost::current)
              : broken.preferences.setValue(controlsKey, value, ControlCenterLayout::mainDomain,
                                            PreferenceHost::any);
      EXPECT_EQ(failureOf([&] { broken.layout.replaceSound(); }), unreadable);
      EXPECT_EQ(failureOf([&] { broken.layout.putSoundBack(true); }), unreadable);
      EXPECT_EQ(failureOf([&] { broken.layout.saveBackup(); }), unreadable);
      EXPECT_FALSE(broken.files.exists(LayoutWorld::backupPath));
      EXPECT_EQ(broken.restarts, 0);
    }
  }
}

TEST(ReplaceSound, ReadsEachValueForItsOwnHost) {
  LayoutWorld world{{}};
  const FreshLayout fresh = freshLayout();
  world.preferences.setValue("boxes", PreferenceData{fresh.boxes},
                             ControlCenterLayout::layoutDomain, PreferenceHost::any);
  world.preferences.setValue(controlsKey, PreferenceData{fresh.controls},
                             ControlCenterLayout::mainDomain, PreferenceHost::current);
  EXPECT_NE(failureOf([&] { world.layout.replaceSound(); }), "");
}

TEST(Backup, HoldsBothValuesInThePlatformsForm) {
  LayoutWorld world;
  EXPECT_EQ(world.layout.backupURL(), LayoutWorld::backupPath);
  EXPECT_TRUE(world.files.exists("/Library/Application Support/Plemora"));
  world.layout.saveBackup();
  const std::string text = world.files.read(LayoutWorld::backupPath).value();
  EXPECT_THAT(text, testing::StartsWith("<?xml"));
  const PropertyList backup = PropertyList::parse(text);
  EXPECT_THAT(backup.members(), SizeIs(2));
  EXPECT_EQ(backup.member("controls")->asData(), freshLayout().controls);
  EXPECT_EQ(backup.member("boxes")->asData(), freshLayout().boxes);
}

TEST(Restore, GivesBackEveryByteOnce) {
  StoredLayout odd = freshStoredLayout();
  odd.boxes = " " + odd.boxes + "\n";
  LayoutWorld world(odd);
  world.layout.replaceSound();
  ASSERT_NE(world.stored(), odd);
  world.layout.restore();
  EXPECT_EQ(world.stored(), odd);
  EXPECT_EQ(world.restarts, 2);
  EXPECT_FALSE(world.files.exists(LayoutWorld::backupPath));
  EXPECT_EQ(failureOf([&] { world.layout.restore(); }), unreadable);
  EXPECT_EQ(world.restarts, 2);
}

TEST(Restore, TakesNothingButABackup) {
  const PropertyList data = PropertyList::data("[]");
  const std::string odd[] = {
      "",
      "no list",
      PropertyList::array().binary(),
      PropertyList().xml(),
      dictionary({{"controls", data}}).xml(),
      dictionary({{"boxes", data}}).xml(),
      dictionary({{"boxes", data}, {"controls", PropertyList::string("[]")}}).xml(),
  };
  for (const std::string& bytes : odd) {
    LayoutWorld world;
    world.files.writeAtomically(world.layout.backupURL(), bytes);
    EXPECT_EQ(failureOf([&] { world.layout.restore(); }), unreadable) << bytes;
    EXPECT_EQ(world.stored(), freshStoredLayout());
    EXPECT_EQ(world.files.read(LayoutWorld::backupPath), bytes);
  }
  // The binary form is as good as the other.
  LayoutWorld world;
  world.files.writeAtomically(world.layout.backupURL(),
                              dictionary({{"boxes", data}, {"controls", data}}).binary());
  world.layout.restore();
  EXPECT_EQ(world.stored(), (StoredLayout{"[]", "[]"}));
}

TEST(PutSoundBack, LeavesTheLayoutWithSoundAndWithoutUs) {
  for (const bool restarts : {true, false}) {
    LayoutWorld world;
    const Layout before = world.read();
    world.layout.replaceSound();
    world.layout.putSoundBack(restarts);
    EXPECT_EQ(world.restarts, restarts ? 2 : 1);
    const Layout after = world.read();
    EXPECT_THAT(after.mixerElements(), IsEmpty());
    EXPECT_EQ(after.controls, before.controls);
    ASSERT_TRUE(after.soundElement());
    EXPECT_EQ(layoutJsonText(*after.soundElement()),
              R"({"id":{"rawValue":"00000000-0000-4000-8000-000000000003"},)"
              R"("location":{"x":0,"y":4},"size":{"rect4x1":{}}})");
    EXPECT_THAT(after.elements, SizeIs(before.elements.size()));
    EXPECT_TRUE(world.files.exists(LayoutWorld::backupPath));
    EXPECT_EQ(after.boxes[0]["occupiedLocations"],
              LayoutJson(Layout::occupiedCells(after.elements)));

    // The entry that Sound left behind is its entry again, with all that else is in it.
    ASSERT_THAT(after.modules, SizeIs(before.modules.size()));
    PropertyList entry = before.modules[8];
    entry.setMember(
        "identifier",
        dictionary({{"rawValue", PropertyList::string(elementID(*after.soundElement()))}}));
    entry.setMember("size", dictionary({{"large", PropertyList()}}));
    EXPECT_EQ(after.modules[8], entry);
  }
}

TEST(PutSoundBack, DoesNotGrowHoweverOftenSoundComesAndGoes) {
  LayoutWorld world;
  const Layout before = world.read();
  for (int round = 0; round < 5; ++round) {
    world.layout.replaceSound();
    world.layout.putSoundBack(true);
    const Layout after = world.read();
    EXPECT_THAT(after.elements, SizeIs(before.elements.size()));
    EXPECT_EQ(after.controls, before.controls);
    EXPECT_THAT(after.modules, SizeIs(before.modules.size()));
    EXPECT_EQ(after.instanceIDs, before.instanceIDs);
    EXPECT_EQ(after.chronoControls, before.chronoControls);
  }
}

TEST(PutSoundBack, KeepsASoundThatIsThere) {
  LayoutWorld world;
  const Layout before = world.read();
  Layout layout = before;
  layout.addMixer("ours", 0, 9);
  world.store(layout);
  world.layout.putSoundBack(true);
  EXPECT_EQ(world.stored(), before.encode());
}

TEST(PutSoundBack, AddsAModuleInTheFormOfTheOthers) {
  const PropertyList raw = dictionary({{"rawValue", PropertyList::string("1")}});
  const PropertyList name = PropertyList::string("WiFi");
  const std::pair<PropertyList::Array, std::vector<std::string>> cases[] = {
      {{}, {"id"}},
      {{PropertyList(), dictionary({{"moduleId", name}, {"instance", raw}})}, {"instance"}},
      {{dictionary({{"moduleId", name}, {"rawValue", PropertyList::string("1")}})}, {}},
  };
  for (const auto& [modules, path] : cases) {
    LayoutWorld world;
    Layout layout = world.read();
    layout.modules = modules;
    world.store(layout);
    world.layout.putSoundBack(true);
    const Layout after = world.read();
    ASSERT_THAT(after.modules, SizeIs(modules.size() + 1));
    PropertyList entry = after.modules.back();
    EXPECT_THAT(entry.members(), SizeIs(3));
    EXPECT_EQ(entry.member("size"), dictionary({{"large", PropertyList()}}));
    EXPECT_EQ(entry.member("moduleId")->asString(), "Sound");
    for (const std::string& key : path) {
      entry = entry.member(key).value();
    }
    ASSERT_TRUE(after.soundElement()) << "found again";
    EXPECT_EQ(entry.member("rawValue")->asString(), elementID(*after.soundElement()));
  }
}

TEST(PutSoundBack, FindsARowForSound) {
  // Rows of our tiles, rows of tiles of others (four columns wide), the row that Sound gets.
  struct Case {
    std::vector<const char*> ours;
    std::vector<int> others;
    std::int64_t row;
  };
  const Case cases[] = {
      {{"5", "5"}, {}, 5},         {{"5", "5"}, {5}, 5},  // theirs all the same
      {{"-1", "\"odd\""}, {}, -1}, {{"6", "2"}, {}, 6},   // the first of them
      {{"6", "2"}, {6}, 2},                               // the first that is free
      {{"6", "2"}, {0, 2, 6}, 1},  {{"1.5", "null"}, {0}, 1}, {{}, {0, 1, 3}, 2}, {{}, {}, 0},
  };
  for (const Case& example : cases) {
    LayoutWorld world;
    Layout layout = world.read();
    layout.elements.clear();
    for (const char* row : example.ours) {
      layout.addMixer(world.clock.makeUUID(), 0, 0);
      layout.elements.back()["location"]["y"] = parseLayoutJson(row);
    }
    for (const int row : example.others) {
      layout.elements.push_back(makeElement("other", 0, row, "rect4x1"));
    }
    layout.elements.push_back(makeElement("far away", 4, 0, "rect4x1"));
    world.store(layout);
    world.layout.putSoundBack(true);
    const Layout after = world.read();
    EXPECT_EQ(elementRow(*after.soundElement()), example.row)
        << testing::PrintToString(example.ours);
    EXPECT_EQ(elementColumn(*after.soundElement()), 0);
  }
}

TEST(Restart, EndsEveryControlCenterAndNothingElse) {
  LayoutWorld world;
  world.workspace.launch(application(20, "com.apple.controlcenter"));
  world.workspace.launch(application(30, "com.apple.controlcenter.helper"));
  RunningApplication plain;
  plain.pid = 40;
  world.workspace.launch(plain);
  std::vector<std::int32_t> ended;
  world.workspace.onForceTerminate = [&](const auto& application) {
    ended.push_back(application.pid);
  };
  world.layout.restartControlCenter();
  EXPECT_THAT(ended, ElementsAre(7, 20));
}

}  // namespace
}  // namespace plemora
