#include "adapters/stage/scripted_workspace.h"
