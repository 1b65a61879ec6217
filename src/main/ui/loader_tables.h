#pragma once

namespace plemora {

/// What libraries are bound by: names, hashes and relocations, half as large as the code of Qt.
/// They are of use while libraries are loaded. Any thread.
class LoaderTables {
 public:
  /// Notes which libraries are there already: others are still bound to them, later ones not.
  LoaderTables();

  /// Gives back the memory in which the later libraries keep theirs; whoever should read them again
  /// has them from the file.
  void release() const;

 private:
  int known_ = 0;
};

}  // namespace plemora
