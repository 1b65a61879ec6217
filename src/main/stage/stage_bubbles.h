#pragma once

namespace plemora {

class Files;
class PictureResources;

/// Bubble sets for the glass that the stage's Control Center has. They take the light of the tiles'
/// own rims away and mend the edges, where the desktop beside a tile shines in, once each has been
/// blurred by the overlay. They are drawn from what the stage's glass is; of no use elsewhere.
/// GUI thread.
struct StageBubbles {
  /// Puts a set for each release into the files, as they come with the program.
  static void install(PictureResources& resources, Files& files);
};

}  // namespace plemora
