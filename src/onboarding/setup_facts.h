#pragma once

#include <set>

#include "audio/audio_permission.h"
#include "onboarding/onboarding_services.h"

namespace plemora {

/// What the system says about the steps of setup. Keeps nothing: every question asks afresh. Main
/// thread; the services outlive it.
class SetupFacts {
 public:
  /// How Control Center's layout stands to the replacement of Sound.
  enum class Layout {
    whole,       ///< no Sound, and the program's tiles in its place
    lacking,     ///< anything else that can be read
    unreadable,  ///< it is not there, or not understood
  };

  /// "NSStatusItem VisibleCC Sound": whether the menu bar shows Apple's Sound icon.
  static constexpr const char* soundIconPreference = "NSStatusItem VisibleCC Sound";

  explicit SetupFacts(const OnboardingServices& services) : services_(services) {}

  bool isAudioGranted() const;
  bool isTrusted() const;
  Layout layout() const;
  bool isSoundIconHidden() const;
  /// Whether Sound can be replaced at all: by rewriting the layout, or by the user's own hand in
  /// Control Center.
  bool canReplaceSound() const;
  /// The process identifiers of Control Center.
  std::set<std::int32_t> controlCenters() const;

 private:
  const OnboardingServices& services_;
};

}  // namespace plemora
