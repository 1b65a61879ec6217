#include "adapters/stage/simulated_hal.h"
