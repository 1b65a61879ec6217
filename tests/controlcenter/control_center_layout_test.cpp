#include "controlcenter/control_center_layout.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "base/base64.h"
#include "controlcenter/control_identity.h"
#include "controlcenter/layout_world.h"

namespace plemora {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

constexpr const char* unreadable = "Control Center's layout couldn't be read.";
constexpr const char* unexpectedFormat =
    "This version of macOS stores Control Center's layout differently.";
constexpr const char* noSound = "Apple's Sound module isn't in Control Center.";
constexpr const char* notStored = "Control Center's layout couldn't be saved.";

LayoutJson element(const char* text) {
  return parseLayoutJson(text);
}

TEST(ControlIdentity, IsTheArchiveThatNamesOurControl) {
  EXPECT_EQ(controlIdentity.size(), 752U);
  const auto bytes = decodeBase64(controlIdentity);
  ASSERT_TRUE(bytes);
  EXPECT_EQ(bytes->size(), 564U);
  EXPECT_TRUE(isMixerControlIdentity(controlIdentity));

  const PropertyList archive = PropertyList::parse(*bytes);
  EXPECT_EQ(archive.member("$archiver")->asString(), "NSKeyedArchiver");
  EXPECT_EQ(archive.member("$version")->asInteger(), 100000);
  EXPECT_EQ(archive.member("$top")->members(),
            (PropertyList::Members{{"root", PropertyList::uid(1)}}));
  const PropertyList::Array objects = *archive.member("$objects")->items();
  EXPECT_THAT(objects, SizeIs(8));
  EXPECT_EQ(objects[0].asString(), "$null");
  const auto target = [&](const PropertyList& object, const char* key) {
    return objects.at(object.member(key)->asUID().value());
  };
  const auto classChain = [&](const PropertyList& object) {
    const PropertyList type = target(object, "$class");
    EXPECT_EQ(type.member("$classname"), type.member("$classes")->items()->at(0));
    std::vector<std::string> names;
    const PropertyList::Array chain = type.member("$classes").value().items().value();
    for (const PropertyList& name : chain) {
      names.push_back(*name.asString());
    }
    return names;
  };
  EXPECT_THAT(objects[1].members(), SizeIs(4));
  EXPECT_THAT(classChain(objects[1]), ElementsAre("CHSControlIdentity", "NSObject"));
  EXPECT_EQ(objects[1].member("extId")->asUID(), 2U);
  EXPECT_EQ(target(objects[1], "kind").asString(), "com.quorvane.mixer.sound");
  EXPECT_EQ(objects[1].member("intentRef")->asUID(), 0U);
  EXPECT_THAT(objects[2].members(), SizeIs(4));
  EXPECT_THAT(classChain(objects[2]), ElementsAre("CHSExtensionIdentity", "NSObject"));
  EXPECT_EQ(target(objects[2], "extensionBundleIdentifier").asString(),
            "com.quorvane.mixer.controls");
  EXPECT_EQ(target(objects[2], "containerBundleIdentifier").asString(), "com.quorvane.mixer");
  EXPECT_EQ(objects[2].member("deviceIdentifier")->asUID(), 0U);
}

TEST(LayoutRecord, FindsItsWayInAFreshLayout) {
  LayoutWorld world;
  const Layout layout = world.read();
  EXPECT_THAT(layout.boxes, SizeIs(2));
  EXPECT_THAT(layout.elements, SizeIs(15));
  EXPECT_THAT(layout.instanceIDs, SizeIs(14));
  EXPECT_THAT(layout.chronoControls, SizeIs(2));
  EXPECT_THAT(layout.modules, SizeIs(12));
  EXPECT_THAT(layout.controls, SizeIs(4));
  EXPECT_EQ(layout.moduleNames().at("5EED0000-0000-4000-8000-000000000000"), "WiFi");
  ASSERT_TRUE(layout.soundElement());
  EXPECT_EQ(elementID(*layout.soundElement()), "5EED0000-0000-4000-8000-000000000008");
  EXPECT_THAT(layout.mixerElements(), IsEmpty());
}

TEST(LayoutRecord, IsWrittenAsItWasRead) {
  const StoredLayout fresh = freshStoredLayout();
  EXPECT_EQ(Layout::decode(fresh).encode().controls, fresh.controls);
  // But for escapes that a text does not need.
  std::string boxes = fresh.boxes;
  boxes.replace(boxes.find("\\u00e9\\/"), 8, "é/");
  EXPECT_EQ(Layout::decode(fresh).encode().boxes, boxes);
}

TEST(LayoutRecord, RefusesWhatLooksDifferent) {
  const auto displayed = [](const PropertyList& displayables) {
    StoredLayout stored = freshStoredLayout();
    LayoutJson boxes = parseLayoutJson(stored.boxes);
    boxes[0]["displayablesData"] = encodeBase64(displayables.binary());
    return StoredLayout{stored.controls, layoutJsonText(boxes)};
  };
  const auto withBoxes = [](const std::string& boxes) {
    return StoredLayout{freshStoredLayout().controls, boxes};
  };
  const auto withControls = [](const std::string& controls) {
    return StoredLayout{controls, freshStoredLayout().boxes};
  };
  const PropertyList displayables = Layout::decode(freshStoredLayout()).displayables;
  const auto without = [&](const char* key) {
    PropertyList changed = displayables;
    changed.removeMember(key);
    return displayed(changed);
  };
  const auto with = [&](const char* key, const PropertyList& value) {
    PropertyList changed = displayables;
    changed.setMember(key, value);
    return displayed(changed);
  };
  const PropertyList texts = PropertyList::array({PropertyList::string("x")});

  const StoredLayout different[] = {
      withBoxes("{}"),
      withBoxes("[]"),
      withBoxes("[1]"),
      withBoxes("[{},2]"),
      withBoxes("[{}]"),
      withBoxes(R"([{"grid":[]}])"),
      withBoxes(R"([{"grid":{}}])"),
      withBoxes(R"([{"grid":{"elements":{}}}])"),
      withBoxes(R"([{"grid":{"elements":[1]}}])"),
      withBoxes(R"([{"grid":{"elements":[]}}])"),
      withBoxes(R"([{"grid":{"elements":[]},"displayablesData":7}])"),
      withBoxes(R"([{"grid":{"elements":[]},"displayablesData":"no base64"}])"),
      displayed(PropertyList::array()),
      without("instanceIds"),
      without("chronoControls"),
      without("modules"),
      with("instanceIds", PropertyList()),
      with("instanceIds", texts),
      with("chronoControls", PropertyList::array()),
      with("chronoControls", PropertyList::data(PropertyList().binary())),
      with("modules", PropertyList::data(texts.binary())),
      withControls("[]"),
      withControls("{}"),
      withControls(R"({"Controls":{}})"),
      withControls(R"({"Controls":[[]]})"),
  };
  for (const StoredLayout& stored : different) {
    EXPECT_EQ(failureOf([&] { Layout::decode(stored); }), unexpectedFormat)
        << stored.boxes << stored.controls;
  }

  const std::pair<StoredLayout, const char*> unparsable[] = {
      {withBoxes("[{"), "parse error at line 1"},
      {withControls("{\"Controls\":"), "parse error at line 1"},
      {withBoxes(R"([{"grid":{"elements":[]},"displayablesData":""}])"), "property list"},
      {with("modules", PropertyList::data("no list")), "property list"},
      {with("chronoControls", PropertyList::data("bplist00")), "property list"},
  };
  for (const auto& [stored, words] : unparsable) {
    EXPECT_THAT(failureOf([&, layout = &stored] { Layout::decode(*layout); }),
                testing::HasSubstr(words));
  }
}

TEST(LayoutRecord, CountsTheCellsOfKnownTiles) {
  const std::pair<const char*, const char*> cases[] = {
      {R"({"location":{"x":0,"y":2},"size":{"rect4x1":{}}})",
       R"([{"x":0,"y":2},{"x":1,"y":2},{"x":2,"y":2},{"x":3,"y":2}])"},
      {R"({"location":{"x":1,"y":0},"size":{"square2x2":{}}})",
       R"([{"x":1,"y":0},{"x":1,"y":1},{"x":2,"y":0},{"x":2,"y":1}])"},
      {R"({"location":{"x":2,"y":5},"size":{"rect2x1":{}}})", R"([{"x":2,"y":5},{"x":3,"y":5}])"},
      {R"({"location":{"x":-1,"y":-2},"size":{"square1x1":{"odd":1}}})", R"([{"x":-1,"y":-2}])"},
      {R"({"location":{"x":0,"y":0},"size":{"rect3x1":{}}})", "[]"},
      {R"({"location":{"x":0,"y":0},"size":{"rect4x1":{},"rect2x1":{}}})", "[]"},
      {R"({"location":{"x":0,"y":0},"size":{}})", "[]"},
      {R"({"location":{"x":0,"y":0},"size":["rect4x1"]})", "[]"},
      {R"({"location":{"x":0,"y":0}})", "[]"},
      {R"({"size":{"rect4x1":{}}})", "[]"},
      {R"({"location":{"x":0},"size":{"rect4x1":{}}})", "[]"},
      {R"({"location":{"x":"0","y":0},"size":{"rect4x1":{}}})", "[]"},
      {R"({"location":{"x":0.0,"y":0},"size":{"rect4x1":{}}})", "[]"},
      {R"({"location":[0,0],"size":{"rect4x1":{}}})", "[]"},
      {R"({"location":{"x":9223372036854775807,"y":0},"size":{"rect4x1":{}}})", "[]"},
  };
  for (const auto& [tile, cells] : cases) {
    EXPECT_EQ(layoutJsonText(Layout::occupiedCells({element(tile)})), cells) << tile;
  }
}

TEST(LayoutRecord, KnowsModulesByEitherFormOfIdentifier) {
  Layout layout = Layout::decode(freshStoredLayout());
  const auto raw = [](const char* text) {
    return dictionary({{"rawValue", PropertyList::string(text)}});
  };
  const auto named = [](const char* name) { return PropertyList::string(name); };
  layout.modules = {
      dictionary({{"moduleId", named("A")}, {"identifier", raw("1")}}),
      dictionary({{"size", PropertyList()}, {"id", raw("2")}, {"moduleId", named("B")}}),
      dictionary({{"rawValue", named("3")}, {"moduleId", named("C")}, {"id", raw("4")}}),
      dictionary({{"moduleId", named("without an identifier")}}),
      dictionary({{"id", raw("without a name")}}),
      dictionary({{"id", raw("odd")}, {"moduleId", PropertyList::integer(1)}}),
      dictionary(
          {{"id", dictionary({{"rawValue", PropertyList::integer(5)}})}, {"moduleId", named("D")}}),
  };
  EXPECT_THAT(layout.moduleNames(), ElementsAre(testing::Pair("1", "A"), testing::Pair("2", "B"),
                                                testing::Pair("3", "C")));

  layout.modules.push_back(dictionary({{"moduleId", named("Sound")}, {"id", raw("")}}));
  layout.elements = {element(R"({"id":{"rawValue":"1"}})"), element(R"({"id":{"rawValue":7}})"),
                     element(R"({"id":{"rawValue":""}})")};
  EXPECT_EQ(layout.soundElement(), &layout.elements[1]) << "a missing identifier is an empty one";
}

TEST(LayoutRecord, KnowsItsControlsByTheirIdentity) {
  Layout layout = Layout::decode(freshStoredLayout());
  const auto control = [](const std::string& identity, const char* identifiers) {
    return LayoutJson{{"ControlIdentity", identity}, {"Identifier", parseLayoutJson(identifiers)}};
  };
  const std::string other = encodeBase64("...com.quorvane.mixer.controls...");
  layout.controls = {
      control(std::string(controlIdentity), R"(["a"])"),
      control(other, R"(["b",7,"c"])"),
      control(encodeBase64("com.quorvane.mixer.control"), R"(["d"])"),
      control("com.quorvane.mixer.controls", R"(["e"])"),
      control(other + "\n", R"(["f"])"),
      control(other, R"("g")"),
      {{"ControlIdentity", 7}, {"Identifier", {"h"}}},
      {{"Identifier", {"i"}}},
  };
  layout.elements.clear();
  for (const char* id : {"i", "c", "a", "b", "d", "e", "f", "g", "h"}) {
    layout.elements.push_back(makeElement(id, 0, 0, "square1x1"));
  }
  std::vector<std::string> found;
  for (const LayoutJson& tile : layout.mixerElements()) {
    found.push_back(elementID(tile));
  }
  EXPECT_THAT(found, ElementsAre("c", "a", "b")) << "in the order of the elements";
  layout.removeMixer();
  EXPECT_THAT(layout.elements, SizeIs(6));
  EXPECT_THAT(layout.controls, SizeIs(5)) << "the control with an odd list of identifiers goes too";
}

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
    LayoutJson moved = element(sound);
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
