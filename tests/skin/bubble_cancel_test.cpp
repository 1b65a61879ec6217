#include "skin/bubble_cancel.h"

#include <gtest/gtest.h>

#include <cmath>

#include "adapters/stage/memory_defaults.h"
#include "adapters/stage/memory_files.h"
#include "adapters/stage/memory_resources.h"

namespace plemora {
namespace {

std::string entry(const std::string& mask, int numbers, const std::string& number = "0.5") {
  std::string list;
  for (int i = 0; i < numbers; ++i) {
    list += (i > 0 ? "," : "") + number;
  }
  return R"({"mask":")" + mask + R"(","matrix":[)" + list + "]}";
}

class BubbleCancelTest : public testing::Test {
 protected:
  BubbleCancelTest() {
    files.makeFolder("/app");
    files.makeFolder("/debug");
  }
  /// In the bundle, where it is found by its name, or in the folder for debugging.
  void put(const std::string& name, const std::string& bytes, bool inBundle = true) {
    const std::string path = (inBundle ? "/app/" : "/debug/") + name;
    files.writeAtomically(path, bytes);
    if (inBundle) {
      resources.paths[name] = path;
    }
  }
  void putImage(const std::string& name, int width, bool inBundle = true) {
    const std::string bytes = "png " + std::to_string(width);
    put(name, bytes, inBundle);
    resources.pictures[bytes] = ImageContent{width, 1, nullptr};
  }
  /// The widths of the masks that are loaded.
  std::vector<int> masks(float strength = 1) const {
    std::vector<int> widths;
    for (const auto& layer : bubbles.layers("26.1", strength)) {
      widths.push_back(layer.mask.width);
    }
    return widths;
  }

  MemoryDefaults defaults;
  MemoryFiles files;
  MemoryResources resources;
  BubbleCancel bubbles{defaults, files, resources};
};

TEST_F(BubbleCancelTest, PassesOverWhatCannotBeUsed) {
  putImage("a.png", 1);
  putImage("b.png", 2);
  put("broken.png", "no picture");
  resources.paths["lost.png"] = "/app/lost.png";
  const std::string good = entry("a", 20), other = entry("b", 20);
  const struct {
    std::string file;
    std::vector<int> masks;
  } cases[] = {{"[" + other + "," + good + "]", {2, 1}},
               {"[" + entry("a", 19) + "," + entry("b", 19) + "," + entry("b", 21) + "]", {}},
               {"[" + entry("absent", 20) + "," + entry("broken", 20) + "," + entry("lost", 20) +
                    "," + good + "]",
                {1}},
               {"[" + good + R"(,{"mask":"b"}])", {}},
               {"[" + good + R"(,{"mask":1,"matrix":[]}])", {}},
               {"[" + good + "," + entry("b", 20, "true") + "]", {}},
               {"[" + good + "," + entry("b", 20, "1e39") + "]", {}},
               {"[" + good + ",7]", {}},
               {good, {}},
               {"[" + good, {}},
               {"", {}}};
  EXPECT_TRUE(masks().empty());
  for (const auto& [file, expected] : cases) {
    put("26.1.json", file);
    EXPECT_EQ(masks(), expected) << file;
  }
}

TEST_F(BubbleCancelTest, LooksIntoTheFolderForDebuggingFirst) {
  put("26.1.json", "[" + entry("a", 20) + "]");
  putImage("a.png", 1);
  defaults.setString("debugBubbleDir", "/debug");
  EXPECT_EQ(masks(), std::vector<int>{1});
  put("26.1.json", "[" + entry("a", 20) + "," + entry("b", 20) + "," + entry("c", 20) + "]", false);
  putImage("a.png", 10, false);
  putImage("c.png", 30, false);
  EXPECT_EQ(masks(), (std::vector<int>{10, 30}));
}

TEST_F(BubbleCancelTest, BlendsTowardsNoEffectAtAll) {
  put("26.1.json", "[" + entry("a", 20) + "]");
  putImage("a.png", 1);
  const struct {
    float strength, diagonal, other;
  } cases[] = {{1, 0.5F, 0.5F}, {0, 1, 0},  {0.3F, 0.85F, 0.15F},
               {9, 0.5F, 0.5F}, {-1, 1, 0}, {std::nanf(""), 1, 0}};
  for (const auto& [strength, diagonal, other] : cases) {
    const ColorMatrix matrix = bubbles.layers("26.1", strength).at(0).matrix;
    for (std::size_t i = 0; i < matrix.size(); ++i) {
      const bool isDiagonal = i == 0 || i == 6 || i == 12 || i == 18;
      EXPECT_NEAR(matrix[i], isDiagonal ? diagonal : other, 1e-6) << strength << " " << i;
    }
  }
}

}  // namespace
}  // namespace plemora
