#include "adapters/stage/simulated_object.h"
