#pragma once

#include <pipewire/pipewire.h>

#include <cstdint>
#include <functional>
#include <memory>

#include "adapters/linux/pipewire/pipewire_loop.h"
#include "adapters/linux/pipewire/remote_object.h"

namespace plemora {

/// A connection to the server for filters and their links alone. When much comes at once, the
/// library can take the descriptor of one block of memory for that of another, and from then on
/// nothing new on that connection works. So what is much, the announcements of the graph, goes over
/// another connection, links are asked for a few at a time, and a connection whose memory is mixed
/// up all the same is noticed. With the loop's lock held.
class FilterConnection {
 public:
  /// With more filters too much comes at once: from 62 on memory was mixed up again and again.
  static constexpr std::size_t mostFilters = 24;

  /// The callback runs when the connection is spoilt.
  FilterConnection(const PipeWireLoop& loop, std::function<void()> onSpoilt);
  FilterConnection(const FilterConnection&) = delete;
  FilterConnection& operator=(const FilterConnection&) = delete;

  /// Null when there was no server to connect to.
  pw_core* core() const { return core_.get(); }

  /// Nothing new can be made on it; what works on it goes on.
  bool isSpoilt() const { return isSpoilt_; }

  /// Whether one more link may be asked for now; if not, again in some milliseconds. now: media
  /// time in seconds.
  bool mayLink(double now);

 private:
  void checkMemory(std::uint32_t id, int descriptor);
  void spoil();

  struct Disconnect {
    void operator()(pw_core* core) const { pw_core_disconnect(core); }
  };
  std::function<void()> onSpoilt_;
  bool isSpoilt_ = false;
  double turnStart_ = 0;  ///< media time
  int linksInTurn_ = 0;
  std::unique_ptr<pw_core, Disconnect> core_;
  Hook hook_;
};

}  // namespace plemora
