#include "views/callout_binding.h"

namespace plemora {

void CalloutBinding::open() {
  if (view_.onOpen) {
    view_.onOpen();
  }
}

}  // namespace plemora
