#include "adapters/stage/manual_serial_queue.h"
