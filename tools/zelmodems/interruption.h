#pragma once
#include <QByteArray>
#include <QString>

struct termios;

// Ctrl-C, SIGTERM and SIGHUP during any command: the tool releases what it
// holds and ends within a second, with status 128 + the signal's number
// (130, 143, 129), whatever call is under way. The signals are caught by a
// handler that only wakes a thread of their own, so a command blocked on a
// silent modem or a sleeping USSD wait is no obstacle. Released are the
// serial ports' lock files that this process owns (the ports themselves
// close with the process) and the folders registered here (the demo's
// scratch folder); the tool's child processes (wvdialconf) are ended too.
// Nothing is blocked or ignored in a way that children inherit: a program
// the tool starts gets the default signal mask and dispositions.
namespace Interruption {

// Call first in main(), before any other thread exists.
void install();
// Call once the translation is installed: the interruption's own line is
// then said in the user's language.
void translate();

// While a code is typed without echo: the terminal's settings to put back
// if the command is interrupted (null: nothing to put back).
void restoreTerminalOnInterrupt(const termios* settings);

// A folder to remove on interruption (or nothing to remove any more).
void removeOnInterrupt(const QString& folder);
void keepOnInterrupt(const QString& folder);

// Once an interruption is under way, the thread that calls this waits for
// the tool to end (with the interruption's status) instead of going on to
// report what the interruption itself caused (a child that was ended).
void holdIfInterrupted();

// What to print if the command is interrupted now: `out` on standard
// output (JSON for a program), `err` on standard error (for a person).
// Empty texts print nothing.
void setProgress(const QByteArray& out, const QByteArray& err);

} // namespace Interruption
