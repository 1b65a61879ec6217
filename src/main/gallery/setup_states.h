#pragma once

#include <string>
#include <vector>

#include "onboarding/helper_view.h"
#include "onboarding/setup_view.h"

namespace plemora {

/// A page with the name of its file.
template <typename Page>
struct NamedPage {
  std::string name;
  Page page;
};

/// Those of the setup window and of its helper that are worth a look.
std::vector<NamedPage<SetupPage>> setupPages();
std::vector<NamedPage<HelperPage>> helperPages();

}  // namespace plemora
