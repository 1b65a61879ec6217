#pragma once

#include <string>
#include <vector>

namespace plemora {

/// Whether a display answers where the environment says: the toolkit ends a program that asks for
/// one in vain. Takes the platform that QT_QPA_PLATFORM names into account.
bool displayAnswers();

/// The variables that say which desktop this process runs on, "NAME=value" each.
std::vector<std::string> desktopEnvironment();

/// Takes such variables over, of another process on the same machine; others are passed over.
void joinDesktop(const std::vector<std::string>& environment);

}  // namespace plemora
