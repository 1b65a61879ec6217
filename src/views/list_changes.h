#pragma once

#include <algorithm>
#include <cstddef>
#include <functional>
#include <vector>

namespace plemora {

/// How a list of keyed values becomes another one with as few steps as its views need to move rows
/// instead of rebuilding them. Keys are unique in each list.
template <typename Key>
struct ListChanges {
  std::function<void(int index)> remove;
  std::function<void(int from, int to)> move;  ///< as std::rotate would, to < from
  std::function<void(int index)> insert;       ///< the new list's value of that index
  std::function<void(int index)> update;       ///< both lists have it there

  /// keys: of the old list; changed along, so that it equals the new one at the end.
  void apply(std::vector<Key>& keys, const std::vector<Key>& wanted) const {
    for (int i = static_cast<int>(keys.size()); i-- > 0;) {
      if (std::find(wanted.begin(), wanted.end(), keys[static_cast<std::size_t>(i)]) ==
          wanted.end()) {
        remove(i);
        keys.erase(keys.begin() + i);
      }
    }
    for (std::size_t i = 0; i < wanted.size(); ++i) {
      const auto begin = keys.begin() + static_cast<std::ptrdiff_t>(i);
      const auto found = std::find(begin, keys.end(), wanted[i]);
      if (found == keys.end()) {
        insert(static_cast<int>(i));
        keys.insert(begin, wanted[i]);
        continue;
      }
      if (found != begin) {
        move(static_cast<int>(found - keys.begin()), static_cast<int>(i));
        std::rotate(begin, found, found + 1);
      }
      update(static_cast<int>(i));
    }
  }
};

}  // namespace plemora
