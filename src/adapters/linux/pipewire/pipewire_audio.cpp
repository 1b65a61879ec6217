#include "adapters/linux/pipewire/pipewire_audio.h"

#include <utility>

#include "adapters/linux/pipewire/pipewire_connection.h"
#include "adapters/linux/pipewire/pipewire_graph.h"
#include "adapters/linux/pipewire/pipewire_properties.h"

namespace plemora {

namespace {

// Answers of the consent service.
constexpr int allowed = 0;
constexpr int undecided = 2;

// What the server lets this program do takes the place of a permission of the user.
class ServerAccess : public ConsentService {
 public:
  explicit ServerAccess(PipeWireConnection& connection) : connection_(connection) {}

  std::optional<int> preflight(const std::string&) override {
    const PipeWireLoop::Lock lock(connection_.loop());
    const GraphMirror* mirror = connection_.isConnected() ? connection_.mirror() : nullptr;
    return mirror != nullptr && mirror->mayLink() ? allowed : undecided;
  }

  // There is nobody to ask: the answer stands in the server's configuration.
  bool request(const std::string& service, std::function<void(bool granted)> reply) override {
    reply(preflight(service) == allowed);
    return true;
  }

 private:
  PipeWireConnection& connection_;
};

}  // namespace

struct PipeWireAudio::Parts {
  Parts(MainQueue& queue, ClientDirectory& directory)
      : mainQueue(queue),
        listeners(queue),
        connection(loop, directory,
                   {[this](const auto& changes) { listeners.post(changes); },
                    [this](bool connected) { announce(connected); }}),
        properties(connection, own, listeners),
        graph(connection, own),
        consent(connection) {}

  // The handler is the main thread's: it is looked up there, if these parts still are.
  void announce(bool connected) {
    mainQueue.async([weak = std::weak_ptr(handler), connected] {
      const auto held = weak.lock();
      if (held && *held) {
        (*held)(connected);
      }
    });
  }

  MainQueue& mainQueue;
  std::shared_ptr<std::function<void(bool)>> handler =
      std::make_shared<std::function<void(bool)>>();
  PipeWireLoop loop;
  ListenerRegistry listeners;
  PrivateObjects own;
  PipeWireConnection connection;
  PipeWireProperties properties;
  PipeWireGraph graph;
  ServerAccess consent;
};

PipeWireAudio::PipeWireAudio(MainQueue& mainQueue, ClientDirectory& directory)
    : parts_(std::make_unique<Parts>(mainQueue, directory)) {
  parts_->connection.open();
}

PipeWireAudio::~PipeWireAudio() {
  parts_->connection.close();
}

AudioProperties& PipeWireAudio::properties() {
  return parts_->properties;
}

AudioGraph& PipeWireAudio::graph() {
  return parts_->graph;
}

ConsentService& PipeWireAudio::consent() {
  return parts_->consent;
}

bool PipeWireAudio::isConnected() const {
  return parts_->connection.isConnected();
}

void PipeWireAudio::setConnectionHandler(std::function<void(bool connected)> handler) {
  *parts_->handler = std::move(handler);
}

}  // namespace plemora
