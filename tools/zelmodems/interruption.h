#pragma once
#include <QString>

// Ctrl-C, SIGTERM and SIGHUP during any command: the tool releases what it
// holds and ends within a second, with status 128 + the signal's number
// (130, 143, 129), whatever call is under way. The signals are taken by a
// thread of their own (sigwait), so a command blocked on a silent modem or
// a sleeping USSD wait is no obstacle. Released are the serial ports' lock
// files that this process owns (the ports themselves close with the
// process) and the folders registered here (the demo's scratch folder).
namespace Interruption {

// Call first in main(), before any other thread exists: the signals are
// blocked in every thread created afterwards and handled by the watcher.
void install();

// A folder to remove on interruption (or nothing to remove any more).
void removeOnInterrupt(const QString& folder);
void keepOnInterrupt(const QString& folder);

} // namespace Interruption
