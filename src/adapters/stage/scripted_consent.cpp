#include "adapters/stage/scripted_consent.h"
