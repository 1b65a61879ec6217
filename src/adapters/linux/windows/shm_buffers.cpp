#include "adapters/linux/windows/shm_buffers.h"

#include <sys/mman.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <string>
#include <utility>

#include "base/log.h"

namespace plemora {

namespace {

constexpr Logger logger("windows");

constexpr wl_buffer_listener bufferListener = {.release = [](void* data, wl_buffer*) {
  auto& buffer = *static_cast<ShmBuffers::Buffer*>(data);
  buffer.isBusy = false;
  buffer.owner->bufferReleased();
}};

}  // namespace

ShmBuffers::ShmBuffers(wl_shm* shm, const QSize& size, std::function<void()> released)
    : size_(size), released_(std::move(released)) {
  const int stride = size.width() * 4;
  const int bytesEach = stride * size.height();
  bytes_ = static_cast<std::size_t>(bytesEach) * buffers_.size();
  const int file = memfd_create("plemora-panel", MFD_CLOEXEC);
  if (file >= 0 && ftruncate(file, static_cast<off_t>(bytes_)) == 0) {
    void* memory = mmap(nullptr, bytes_, PROT_READ | PROT_WRITE, MAP_SHARED, file, 0);
    memory_ = memory == MAP_FAILED ? nullptr : memory;
  }
  if (memory_ == nullptr) {
    logger.error(std::string("No shared memory for the panel (") + std::strerror(errno) +
                 "): it is not drawn. Close other programs and open it again.");
  } else {
    const WaylandOwned<wl_shm_pool> pool(
        wl_shm_create_pool(shm, file, static_cast<std::int32_t>(bytes_)));
    int offset = 0;
    for (Buffer& buffer : buffers_) {
      buffer.handle.reset(wl_shm_pool_create_buffer(pool.get(), offset, size.width(), size.height(),
                                                    stride, WL_SHM_FORMAT_ARGB8888));
      buffer.image = QImage(static_cast<uchar*>(memory_) + offset, size.width(), size.height(),
                            stride, QImage::Format_ARGB32_Premultiplied);
      buffer.owner = this;
      wl_buffer_add_listener(buffer.handle.get(), &bufferListener, &buffer);
      offset += bytesEach;
    }
  }
  if (file >= 0) {
    close(file);
  }
}

ShmBuffers::~ShmBuffers() {
  if (memory_ != nullptr) {
    munmap(memory_, bytes_);
  }
}

ShmBuffers::Buffer* ShmBuffers::idle() {
  for (Buffer& buffer : buffers_) {
    if (buffer.handle && !buffer.isBusy) {
      return &buffer;
    }
  }
  return nullptr;
}

void ShmBuffers::bufferReleased() {
  released_();
}

}  // namespace plemora
