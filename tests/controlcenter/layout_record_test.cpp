#include "controlcenter/layout_record.h"

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

constexpr const char* unexpectedFormat =
    "This version of macOS stores Control Center's layout differently.";

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
      withBoxes("[{},2]"),
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
      with("instanceIds", texts),
      with("chronoControls", PropertyList::array()),
      with("chronoControls", PropertyList::data(PropertyList().binary())),
      with("modules", PropertyList::data(texts.binary())),
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
      {R"({"location":{"x":0,"y":0},"size":["rect4x1"]})", "[]"},
      {R"({"location":{"x":0,"y":0}})", "[]"},
      {R"({"location":{"x":0},"size":{"rect4x1":{}}})", "[]"},
      {R"({"location":{"x":"0","y":0},"size":{"rect4x1":{}}})", "[]"},
      {R"({"location":{"x":0.0,"y":0},"size":{"rect4x1":{}}})", "[]"},
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

}  // namespace
}  // namespace plemora
