#pragma once

#include <QImage>
#include <map>
#include <string>

#include "main/stage/picture_resources.h"
#include "main/stage/program_on_stage.h"
#include "main/stage/stage_show.h"
#include "main/stage/stage_wallpaper.h"
#include "main/stage/stage_world.h"

namespace plemora {

/// A desktop on which Control Center shows Sound.
struct SkinDesktop {
  std::string system = "26.4";  ///< version of the system
  bool isDark = true;
  double scale = 2;
  StageWallpaper wallpaper = StageWallpaper::photograph;
  double volume = 0.6;  ///< 0...1
  bool isHeadphones = false;
  bool hasBubbles = true;  ///< bubble sets for this Control Center come with the program
  bool isBare = false;     ///< the program's module without what it shows
  std::map<std::string, std::string> defaults{};  ///< settings of the program
};

/// Mean difference of two pictures of the module, by its parts: levels of 255, over all pixels and
/// the three colours.
struct SkinDifference {
  double seam = 0;    ///< within 12 points of the middle
  double edges = 0;   ///< the other pixels within 4 points of the edge
  double inside = 0;  ///< all others of the module
  double around = 0;  ///< within 8 points outside
};

/// Control Center, open on such a desktop, with the system's own Sound module or with the program's
/// tiles and what the program draws over them. GUI thread.
class SkinStage {
 public:
  enum class Module { systems, programs };

  static constexpr double margin = 8;  ///< of the desktop around the module in its picture, points

  SkinStage(const SkinDesktop& desktop, Module module);

  StageWorld& world() { return world_; }
  StageShow& show() { return show_; }
  ProgramOnStage& program() { return program_; }

  /// Of Sound as it stands in the layout; global, y up.
  Rect moduleFrame();
  /// The module as it is seen now, with the margin around it.
  QImage picture();

  static SkinDifference difference(const QImage& one, const QImage& other, double scale);

 private:
  StageWorld world_;
  StageShow show_;
  PictureResources resources_;
  ProgramOnStage program_;
};

}  // namespace plemora
