#pragma once

#include "audio/render/render_state.h"
#include "platform/audio_types.h"

namespace plemora {

/// Renders one IO cycle of a tap: every output channel gets the tap's channel of the same number
/// (modulo the number of tap channels) times a gain that runs linearly from state.currentGain to
/// state.targetGain across the buffer; the peaks before and after the gain are noted in state.
///
/// input:  the sub-devices' buffers, state.skipInputBuffers of them, then the tap's. A buffer with
///         0 channels counts as one channel; one with null mData is silent. The shortest buffer
///         of the tap limits the number of frames.
/// output: every whole frame is written, with 0 where the tap has nothing. A buffer with 0 channels
///         or null mData is left alone, its channels are counted all the same.
///
/// An output buffer may be the very memory of the input buffer that it is rendered from, if no
/// later buffer is rendered from that too; other overlaps are not allowed. A NaN sample passes
/// through and never becomes a peak.
///
/// Real-time thread. Neither allocates, locks, logs nor calls into the system.
void render(AudioBufferList input, AudioBufferList output, RenderState& state) noexcept;

}  // namespace plemora
