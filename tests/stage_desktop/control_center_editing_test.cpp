#include <algorithm>

#include "stage_desktop/desk.h"

namespace plemora {

namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

class ControlCenterEditing : public Desk {};

TEST_F(ControlCenterEditing, StoresWhatTheUserEditsAndKeepsTheRest) {
  openCenter();
  const std::string sound = module("Sound").id;
  EXPECT_FALSE(center().removeTile(sound)) << "not in edit mode";
  center().pressEditButton();

  desktop->click(middle(StageControlPanel::removeBadge(center().panel().tile(module("Sound")))));
  EXPECT_EQ(stored().module("Sound"), nullptr);
  EXPECT_EQ(stored().module("Display")->row, 3);

  // Dragged to where it does not fit, a tile goes back.
  const auto dragTile = [&](const char* name, int column, int row) {
    StageTile wanted = module(name);
    const Rect from = center().panel().tile(wanted);
    wanted.column = column;
    wanted.row = row;
    // Not quite there: it goes to the nearest place.
    const Point place = middle(center().panel().tile(wanted));
    desktop->drag(middle(from), {place.x - 20, place.y + 20});
  };
  dragTile("Battery", 0, 0);
  EXPECT_EQ(stored().module("Battery")->row, 5);
  EXPECT_FALSE(center().moveTile(module("Display").id, 1, 8)) << "it would stick out";
  dragTile("Battery", 3, 4);
  EXPECT_EQ(stored().module("Battery")->column, 3);
  EXPECT_EQ(stored().module("Battery")->row, 4);
  dragTile("KeyboardBrightness", 3, 6);
  EXPECT_EQ(stored().module("KeyboardBrightness")->row, 6);
  EXPECT_FALSE(center().dragged());

  // Sound is in the gallery again, and the app's control behind the modules.
  const auto gallery = center().gallery();
  EXPECT_THAT(gallery, ElementsAre("Sound", "Weather", "Radio"));
  desktop->click(middle(StageControlPanel::galleryEntry(desktop->space.main(), 2)));
  const auto tiles = stored().tiles();
  const auto radio =
      std::ranges::find_if(tiles, [](const StageTile& tile) { return tile.name() == "Radio"; });
  ASSERT_NE(radio, tiles.end());
  EXPECT_EQ(radio->control->extensionID, "org.example.radio.controls");
  EXPECT_EQ(radio->control->containerID, "org.example.radio");
  EXPECT_EQ(radio->control->kind, "org.example.radio.play");
  EXPECT_FALSE(center().resizeTile(radio->id, "rect4x1")) << "there is no room";
  EXPECT_TRUE(center().resizeTile(radio->id, "rect2x1"));
  EXPECT_TRUE(center().addGalleryEntry(0));
  EXPECT_NE(stored().module("Sound"), nullptr);
  center().pressEditButton();
  EXPECT_TRUE(desktop->clickTile(radio->id));
  EXPECT_EQ(presses, 1);

  EXPECT_THAT(stored().complaints(), IsEmpty());
  for (const char* foreign : {"Example Lamp", "Example Door"}) {
    EXPECT_TRUE(std::ranges::any_of(tiles, [&](const StageTile& tile) {
      return tile.name() == foreign;
    })) << foreign;
  }
  EXPECT_THAT(stored().boxesValue(), HasSubstr("waiting"));
  EXPECT_THAT(stored().boxesValue(), HasSubstr("of another kind"));
  EXPECT_TRUE(center().couldStore());
}

TEST_F(ControlCenterEditing, ComplainsOfALayoutThatCannotBeRight) {
  const auto complaintsAfter = [&](const std::string& from, const std::string& to) {
    FreshLayout layout = freshLayout();
    const auto at = layout.boxes.find(from);
    EXPECT_NE(at, std::string::npos) << from;
    layout.boxes.replace(at, from.size(), to);
    std::string why;
    return StageTileGrid::read(layout.boxes, layout.controls, why).value().complaints();
  };
  // Sound is the tile in row 4; Display stands above it.
  EXPECT_THAT(complaintsAfter(R"("location":{"y":4,"x":0})", R"("location":{"y":3,"x":0})"),
              Contains("Sound overlaps Display"));
  EXPECT_THAT(complaintsAfter(R"("location":{"y":4,"x":0})", R"("location":{"y":4,"x":1})"),
              Contains("Sound sticks out of the grid"));
  EXPECT_THAT(complaintsAfter(R"({"x":0,"y":4},)", ""),
              Contains("Sound stands where no cell is occupied"));
  EXPECT_THAT(complaintsAfter("5EED0000-0000-4000-8000-000000000008\"", "NOBODY\""),
              Contains(HasSubstr("NOBODY")));
  EXPECT_THAT(complaintsAfter("5EED0000-0000-4000-8000-000000000008\"",
                              "5EED0000-0000-4000-8000-000000000007\""),
              Contains("Display is there twice with one identifier"));
}

}  // namespace

}  // namespace plemora
