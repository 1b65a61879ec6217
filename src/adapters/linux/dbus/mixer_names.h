#pragma once

namespace plemora {

/// Where the mixer is found on the session bus.
inline constexpr char mixerBusName[] = "com.quorvane.mixer";
inline constexpr char mixerObjectPath[] = "/com/quorvane/mixer";
inline constexpr char mixerInterface[] = "com.quorvane.mixer.Mixer1";

/// Errors of the methods of the interface. Their messages say what was wrong and what to do.
inline constexpr char unknownAppError[] = "com.quorvane.mixer.Error.UnknownApp";
inline constexpr char unknownDeviceError[] = "com.quorvane.mixer.Error.UnknownDevice";
inline constexpr char invalidValueError[] = "com.quorvane.mixer.Error.InvalidValue";
inline constexpr char noVolumeError[] = "com.quorvane.mixer.Error.NoVolume";

}  // namespace plemora
