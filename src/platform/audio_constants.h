#pragma once

#include "platform/audio_types.h"

// Codes of the audio hardware layer. Source: the public Core Audio headers
// (CoreAudio/AudioHardwareBase.h, AudioHardware.h; AudioToolbox/AudioHardwareService.h).

namespace plemora {

inline constexpr AudioObjectID kAudioObjectUnknown = 0;
inline constexpr AudioObjectID kAudioObjectSystemObject = 1;
inline constexpr AudioObjectPropertyElement kAudioObjectPropertyElementMain = 0;

inline constexpr AudioObjectPropertyScope kAudioObjectPropertyScopeGlobal = fourCharCode("glob");
inline constexpr AudioObjectPropertyScope kAudioObjectPropertyScopeInput = fourCharCode("inpt");
inline constexpr AudioObjectPropertyScope kAudioObjectPropertyScopeOutput = fourCharCode("outp");

inline constexpr OSStatus noErr = 0;
inline constexpr OSStatus kAudioHardwareUnspecifiedError = fourCharCode("what");
inline constexpr OSStatus kAudioHardwareUnknownPropertyError = fourCharCode("who?");
inline constexpr OSStatus kAudioHardwareBadPropertySizeError = fourCharCode("!siz");
inline constexpr OSStatus kAudioHardwareIllegalOperationError = fourCharCode("nope");
inline constexpr OSStatus kAudioHardwareBadObjectError = fourCharCode("!obj");
inline constexpr OSStatus kAudioHardwareBadDeviceError = fourCharCode("!dev");
inline constexpr OSStatus kAudioHardwareUnsupportedOperationError = fourCharCode("unop");

// The system object.
inline constexpr FourCharCode kAudioHardwarePropertyDevices = fourCharCode("dev#");
inline constexpr FourCharCode kAudioHardwarePropertyDefaultOutputDevice = fourCharCode("dOut");
inline constexpr FourCharCode kAudioHardwarePropertyDefaultSystemOutputDevice =
    fourCharCode("sOut");
inline constexpr FourCharCode kAudioHardwarePropertyProcessObjectList = fourCharCode("prs#");

// Any object.
inline constexpr FourCharCode kAudioObjectPropertyName = fourCharCode("lnam");

// Process objects.
inline constexpr FourCharCode kAudioProcessPropertyPID = fourCharCode("ppid");
inline constexpr FourCharCode kAudioProcessPropertyIsRunningOutput = fourCharCode("piro");
inline constexpr FourCharCode kAudioProcessPropertyDevices = fourCharCode("pdv#");

// Devices.
inline constexpr FourCharCode kAudioDevicePropertyDeviceUID = fourCharCode("uid ");
inline constexpr FourCharCode kAudioDevicePropertyTransportType = fourCharCode("tran");
inline constexpr FourCharCode kAudioDevicePropertyStreams = fourCharCode("stm#");
inline constexpr FourCharCode kAudioDevicePropertyIsHidden = fourCharCode("hidn");
inline constexpr FourCharCode kAudioDevicePropertyMute = fourCharCode("mute");
inline constexpr FourCharCode kAudioDevicePropertyVolumeScalar = fourCharCode("volm");
inline constexpr FourCharCode kAudioDevicePropertyDataSource = fourCharCode("ssrc");
inline constexpr FourCharCode kAudioDevicePropertyNominalSampleRate = fourCharCode("nsrt");
inline constexpr FourCharCode kAudioDevicePropertyBufferFrameSize = fourCharCode("fsiz");
inline constexpr FourCharCode kAudioDevicePropertyBufferFrameSizeRange = fourCharCode("fsz#");
inline constexpr FourCharCode kAudioDevicePropertyLatency = fourCharCode("ltnc");
inline constexpr FourCharCode kAudioDevicePropertySafetyOffset = fourCharCode("saft");
inline constexpr FourCharCode kAudioDevicePropertyIOProcStreamUsage = fourCharCode("suse");
/// Perceptual master volume, Float32 0...1, output scope (audio hardware service).
inline constexpr FourCharCode kAudioHardwareServiceDeviceProperty_VirtualMainVolume =
    fourCharCode("vmvc");

// Aggregate devices.
inline constexpr FourCharCode kAudioAggregateDevicePropertyActiveSubDeviceList =
    fourCharCode("agrp");
inline constexpr FourCharCode kAudioAggregateDevicePropertyMainSubDevice = fourCharCode("amst");

// Taps.
inline constexpr FourCharCode kAudioTapPropertyFormat = fourCharCode("tfmt");

// Values of kAudioDevicePropertyTransportType.
inline constexpr FourCharCode kAudioDeviceTransportTypeUnknown = 0;
inline constexpr FourCharCode kAudioDeviceTransportTypeBuiltIn = fourCharCode("bltn");
inline constexpr FourCharCode kAudioDeviceTransportTypeAggregate = fourCharCode("grup");
inline constexpr FourCharCode kAudioDeviceTransportTypeVirtual = fourCharCode("virt");
inline constexpr FourCharCode kAudioDeviceTransportTypePCI = fourCharCode("pci ");
inline constexpr FourCharCode kAudioDeviceTransportTypeUSB = fourCharCode("usb ");
inline constexpr FourCharCode kAudioDeviceTransportTypeFireWire = fourCharCode("1394");
inline constexpr FourCharCode kAudioDeviceTransportTypeBluetooth = fourCharCode("blue");
inline constexpr FourCharCode kAudioDeviceTransportTypeBluetoothLE = fourCharCode("blea");
inline constexpr FourCharCode kAudioDeviceTransportTypeHDMI = fourCharCode("hdmi");
inline constexpr FourCharCode kAudioDeviceTransportTypeDisplayPort = fourCharCode("dprt");
inline constexpr FourCharCode kAudioDeviceTransportTypeAirPlay = fourCharCode("airp");
inline constexpr FourCharCode kAudioDeviceTransportTypeThunderbolt = fourCharCode("thun");

/// Value of kAudioDevicePropertyDataSource while headphones are plugged in.
inline constexpr FourCharCode kAudioDataSourceHeadphones = fourCharCode("hdpn");
inline constexpr FourCharCode kAudioDataSourceInternalSpeaker = fourCharCode("ispk");

}  // namespace plemora
