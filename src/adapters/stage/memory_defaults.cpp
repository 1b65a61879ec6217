#include "adapters/stage/memory_defaults.h"
