// Scripts: the host's scripts run in the interpreter that imported the module, in its __main__.
#pragma once

namespace scripts {

/// Registers the interpreter with the host.
void serve();

/// Leaves the host without an interpreter.
void end();

/// Whether an interrupt from the keyboard has ended a script since the last call. Like all that a script
/// raises it was reported; whoever runs scripts by the thousand should stop.
bool takeInterrupt();

}   // namespace scripts
