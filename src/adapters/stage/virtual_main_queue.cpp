#include "adapters/stage/virtual_main_queue.h"
