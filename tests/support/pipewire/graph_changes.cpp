#include <spa/node/command.h>
#include <spa/param/props.h>
#include <spa/pod/builder.h>

#include <stdexcept>

#include "support/pipewire/graph_connection.h"
#include "support/pipewire/loop_lock.h"
#include "support/wait.h"

namespace plemora::rig {

namespace {

const char* positions(int channels) {
  return channels == 1 ? "MONO" : channels == 2 ? "FL,FR" : "FL,FR,FC,LFE,RL,RR";
}

}  // namespace

pw_proxy* GraphView::Impl::makeSink(const SinkOptions& options) const {
  const std::string channels = std::to_string(options.channels);
  const std::string priority = std::to_string(options.priority);
  const auto& description = options.description.empty() ? options.name : options.description;
  auto* properties = pw_properties_new(
      PW_KEY_FACTORY_NAME, "support.null-audio-sink", PW_KEY_NODE_NAME, options.name.c_str(),
      PW_KEY_NODE_DESCRIPTION, description.c_str(), PW_KEY_MEDIA_CLASS, "Audio/Sink",
      PW_KEY_PRIORITY_DRIVER, priority.c_str(), PW_KEY_PRIORITY_SESSION, priority.c_str(),
      "audio.channels", channels.c_str(), "audio.position", positions(options.channels),
      "monitor.channel-volumes", "true", nullptr);
  auto* proxy = static_cast<pw_proxy*>(pw_core_create_object(
      core, "adapter", PW_TYPE_INTERFACE_Node, PW_VERSION_NODE, &properties->dict, 0));
  pw_properties_free(properties);
  return proxy;
}

NodeView GraphView::createSink(const SinkOptions& options) {
  {
    const LoopLock lock(impl_->loop);
    impl_->sinks[options.name] = {options, impl_->makeSink(options)};
  }
  if (!eventually(5, [&] { return sync() && sinksAreReady(); })) {
    throw std::runtime_error("the sink " + options.name + " did not get its ports");
  }
  return *node(options.name);
}

void GraphView::removeSink(const std::string& name) {
  {
    const LoopLock lock(impl_->loop);
    pw_proxy_destroy(impl_->sinks.at(name).proxy);
    impl_->sinks.erase(name);
  }
  eventually(5, [&] { return sync() && !node(name).has_value(); });
}

void GraphView::recreateSinks() {
  const LoopLock lock(impl_->loop);
  for (auto& [name, sink] : impl_->sinks) {
    pw_proxy_destroy(sink.proxy);
  }
  impl_->roundTrip();
  for (auto& [name, sink] : impl_->sinks) {
    sink.proxy = impl_->makeSink(sink.options);
  }
}

bool GraphView::sinksAreReady() {
  std::map<std::string, std::size_t> wanted;
  {
    const LoopLock lock(impl_->loop);
    for (const auto& [name, sink] : impl_->sinks) {
      wanted[name] = 2 * static_cast<std::size_t>(sink.options.channels);
    }
  }
  for (const auto& [name, count] : wanted) {
    const auto found = node(name);
    if (!found || ports(found->id).size() != count) {
      return false;
    }
  }
  return true;
}

int GraphView::link(std::uint32_t outputPort, std::uint32_t inputPort) {
  const LoopLock lock(impl_->loop);
  const std::string output = std::to_string(outputPort);
  const std::string input = std::to_string(inputPort);
  auto* properties = pw_properties_new(PW_KEY_LINK_OUTPUT_PORT, output.c_str(),
                                       PW_KEY_LINK_INPUT_PORT, input.c_str(), nullptr);
  const int handle = impl_->madeLinks.empty() ? 1 : impl_->madeLinks.rbegin()->first + 1;
  impl_->madeLinks[handle] = static_cast<pw_proxy*>(pw_core_create_object(
      impl_->core, "link-factory", PW_TYPE_INTERFACE_Link, PW_VERSION_LINK, &properties->dict, 0));
  pw_properties_free(properties);
  return handle;
}

void GraphView::unlink(int link) {
  const LoopLock lock(impl_->loop);
  pw_proxy_destroy(impl_->madeLinks.at(link));
  impl_->madeLinks.erase(link);
}

void GraphView::setMetadata(const std::string& object, std::uint32_t subject,
                            const std::string& key, const std::string& type,
                            const std::string& value) {
  const LoopLock lock(impl_->loop);
  auto* found = impl_->metadataObject(object);
  if (found == nullptr) {
    throw std::runtime_error("the server has no metadata " + object);
  }
  pw_metadata_set_property(reinterpret_cast<pw_metadata*>(found->proxy), subject, key.c_str(),
                           type.empty() ? nullptr : type.c_str(),
                           value.empty() ? nullptr : value.c_str());
}

void GraphView::setDefaultSink(const std::string& name) {
  int asked = 0;
  const bool taken = eventually(8, [&] {
    // A session manager that has just started may not listen yet.
    if (asked++ % 64 == 0) {
      setMetadata("default", 0, "default.configured.audio.sink", "Spa:String:JSON",
                  "{ \"name\": \"" + name + "\" }");
    }
    sync();
    return metadata("default")["0 default.audio.sink"].find("\"" + name + "\"") !=
           std::string::npos;
  });
  if (!taken) {
    throw std::runtime_error("the default sink did not become " + name);
  }
}

void GraphView::forceQuantum(int frames) {
  setMetadata("settings", 0, "clock.force-quantum", "", std::to_string(frames));
  sync();
}

}  // namespace plemora::rig
