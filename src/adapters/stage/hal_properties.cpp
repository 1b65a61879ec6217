#include "adapters/stage/hal_properties.h"
