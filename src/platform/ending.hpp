// What ends a program before its work is done, and that it then takes less than a second, whatever
// its threads wait for.
#pragma once

namespace corvana {

/// From now on SIGINT, SIGTERM and SIGHUP ask the program to end: interruptStatus() tells, and the
/// time of endInTime() runs. A second one of them ends it at once. Signals that are ignored stay
/// ignored. To be called before other threads exist.
void catchInterrupts();

/// What a program ended by the first caught signal returns: 128 + its number; 0 while there was
/// none. Never goes back. Any thread.
int interruptStatus();

/// The program is on its way out. If it is still there in 0.8 seconds, it ends at once and
/// returns interruptStatus(). Main thread.
void endInTime();

/// From now on a write to a reader that went away or beyond the limit on the size of files fails
/// and does not end the program.
void ignoreWriteSignals();

}  // namespace corvana
