#include "server_volume.h"

#include <pipewire/pipewire.h>
#include <spa/node/io.h>
#include <spa/node/node.h>
#include <spa/param/audio/format-utils.h>
#include <spa/param/param.h>
#include <spa/param/props.h>
#include <spa/pod/builder.h>
#include <spa/support/cpu.h>
#include <spa/utils/names.h>
#include <spa/utils/result.h>

#include <array>
#include <stdexcept>
#include <string>
#include <vector>

#include "aligned_samples.h"

namespace plemora {
namespace {

constexpr std::size_t channels = 2;
constexpr std::uint32_t rate = 48000;

void check(int result, const char* what) {
  if (result < 0) {
    throw std::runtime_error(std::string(what) + ": " + spa_strerror(result));
  }
}

/// One loaded plugin object.
class Handle {
 public:
  Handle(const char* library, const char* factory, const spa_dict* info,
         const std::vector<spa_support>& support)
      : handle_(pw_load_spa_handle(library, factory, info,
                                   static_cast<std::uint32_t>(support.size()), support.data())) {
    if (!handle_) {
      throw std::runtime_error(std::string("cannot load ") + factory + " of " + library);
    }
  }
  ~Handle() { pw_unload_spa_handle(handle_); }
  Handle(const Handle&) = delete;
  Handle& operator=(const Handle&) = delete;

  void* interface(const char* type) const {
    void* found = nullptr;
    check(spa_handle_get_interface(handle_, type, &found), type);
    return found;
  }

 private:
  spa_handle* handle_;
};

/// Starts the library before anything of it is used.
struct Library {
  Library() { pw_init(nullptr, nullptr); }
  ~Library() { pw_deinit(); }
};

/// A buffer of two planar channels and its place at a port.
struct Port {
  Port(AlignedSamples::Use use, std::size_t frames) : memory(use, channels, frames) {
    const auto bytes = static_cast<std::uint32_t>(frames * sizeof(float));
    for (std::size_t i = 0; i < channels; ++i) {
      chunks[i].size = bytes;
      chunks[i].stride = sizeof(float);
      datas[i].type = SPA_DATA_MemPtr;
      datas[i].flags = SPA_DATA_FLAG_READWRITE | SPA_DATA_FLAG_DYNAMIC;
      datas[i].fd = -1;
      datas[i].maxsize = bytes;
      datas[i].data = memory.channel(i);
      datas[i].chunk = &chunks[i];
    }
    buffer.n_datas = channels;
    buffer.datas = datas.data();
    io.status = SPA_STATUS_NEED_DATA;
    io.buffer_id = SPA_ID_INVALID;
  }

  AlignedSamples memory;
  std::array<spa_chunk, channels> chunks{};
  std::array<spa_data, channels> datas{};
  spa_buffer buffer{};
  spa_io_buffers io{};
};

}  // namespace

struct ServerVolume::Parts {
  Library library;
  Handle cpu;
  Handle converter;
  spa_node* node;
  spa_io_position position{};
  Port input;
  Port output;

  explicit Parts(std::size_t frames)
      : cpu("support/libspa-support", SPA_NAME_SUPPORT_CPU, nullptr, {}),
        converter(
            "audioconvert/libspa-audioconvert", SPA_NAME_AUDIO_CONVERT, nullptr,
            {SPA_SUPPORT_INIT(SPA_TYPE_INTERFACE_CPU, cpu.interface(SPA_TYPE_INTERFACE_CPU))}),
        node(static_cast<spa_node*>(converter.interface(SPA_TYPE_INTERFACE_Node))),
        input(AlignedSamples::Use::input, frames),
        output(AlignedSamples::Use::output, frames) {
    position.clock.rate = SPA_FRACTION(1, rate);
    position.clock.duration = frames;
    check(spa_node_set_io(node, SPA_IO_Position, &position, sizeof position), "position");
  }

  void setUp(spa_direction direction, Port& port) {
    std::array<std::uint8_t, 1024> memory;
    spa_pod_builder builder;
    spa_pod_builder_init(&builder, memory.data(), memory.size());
    const auto* const config = static_cast<const spa_pod*>(spa_pod_builder_add_object(
        &builder, SPA_TYPE_OBJECT_ParamPortConfig, SPA_PARAM_PortConfig,
        SPA_PARAM_PORT_CONFIG_direction, SPA_POD_Id(direction), SPA_PARAM_PORT_CONFIG_mode,
        SPA_POD_Id(SPA_PARAM_PORT_CONFIG_MODE_convert)));
    check(spa_node_set_param(node, SPA_PARAM_PortConfig, 0, config), "port configuration");

    spa_audio_info_raw format{};
    format.format = SPA_AUDIO_FORMAT_F32P;
    format.rate = rate;
    format.channels = channels;
    format.position[0] = SPA_AUDIO_CHANNEL_FL;
    format.position[1] = SPA_AUDIO_CHANNEL_FR;
    spa_pod_builder_init(&builder, memory.data(), memory.size());
    const spa_pod* const pod = spa_format_audio_raw_build(&builder, SPA_PARAM_Format, &format);
    check(spa_node_port_set_param(node, direction, 0, SPA_PARAM_Format, 0, pod), "format");
    check(spa_node_port_set_io(node, direction, 0, SPA_IO_Buffers, &port.io, sizeof port.io), "io");
  }

  void useBuffer(spa_direction direction, Port& port) {
    spa_buffer* buffers[] = {&port.buffer};
    check(spa_node_port_use_buffers(node, direction, 0, 0, buffers, 1), "buffers");
  }

  void setVolume(float volume) {
    std::array<std::uint8_t, 1024> memory;
    spa_pod_builder builder;
    spa_pod_builder_init(&builder, memory.data(), memory.size());
    std::array<float, channels> volumes;
    volumes.fill(volume);
    const auto* const props = static_cast<const spa_pod*>(spa_pod_builder_add_object(
        &builder, SPA_TYPE_OBJECT_Props, SPA_PARAM_Props, SPA_PROP_channelVolumes,
        SPA_POD_Array(sizeof(float), SPA_TYPE_Float, channels, volumes.data())));
    check(spa_node_set_param(node, SPA_PARAM_Props, 0, props), "volume");
  }
};

ServerVolume::ServerVolume(std::size_t frames, float volume)
    : parts_(std::make_unique<Parts>(frames)) {
  parts_->setUp(SPA_DIRECTION_INPUT, parts_->input);
  parts_->setUp(SPA_DIRECTION_OUTPUT, parts_->output);
  parts_->setVolume(volume);
  spa_command start = SPA_NODE_COMMAND_INIT(SPA_NODE_COMMAND_Start);
  parts_->useBuffer(SPA_DIRECTION_INPUT, parts_->input);
  parts_->useBuffer(SPA_DIRECTION_OUTPUT, parts_->output);
  check(spa_node_send_command(parts_->node, &start), "start");
}

ServerVolume::~ServerVolume() = default;

float* ServerVolume::input(std::size_t channel) {
  return static_cast<float*>(parts_->input.datas[channel].data);
}

const float* ServerVolume::output(std::size_t channel) const {
  return static_cast<const float*>(parts_->output.datas[channel].data);
}

void ServerVolume::process() {
  parts_->input.io.status = SPA_STATUS_HAVE_DATA;
  parts_->input.io.buffer_id = 0;
  parts_->output.io.status = SPA_STATUS_NEED_DATA;  // gives the buffer of the last cycle back
  check(spa_node_process(parts_->node), "process");
  if (parts_->output.io.status != SPA_STATUS_HAVE_DATA) {
    throw std::runtime_error("the converter produced nothing");
  }
}

}  // namespace plemora
