// SPDX-License-Identifier: MIT
#include "qwcore.h"

const char *for_qwcore_version() { return QWPORT_VERSION; }
