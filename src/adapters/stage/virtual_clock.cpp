#include "adapters/stage/virtual_clock.h"
