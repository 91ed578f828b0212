// SPDX-License-Identifier: MIT
// A port's reader: the thread that moves bytes from the device into the port's ring all the time.
#pragma once

#include "port_table.h"

namespace qwport::serial {

// Starts a reader on an emptied ring and waits until it runs. Gives 0 or an error code: 5 if there is a reader
// already, 12 if an earlier one could not be ended. A reader that ends while it starts is forgotten, and its error
// is the code.
DWORD start_reader(PortRecord &port);

// Ends the reader and drops what is in the ring. Gives 0 or an error code, 12 if the reader had to be ended by
// force; only a handle that cannot be closed stays the port's reader.
DWORD stop_reader(PortRecord &port);

// Makes sure that the port has a reader; one that ended by itself counts as one until it is stopped.
DWORD need_reader(PortRecord &port);

}  // namespace qwport::serial
