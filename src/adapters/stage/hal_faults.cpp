#include "adapters/stage/hal_faults.h"
