#include "adapters/stage/hal_listeners.h"
