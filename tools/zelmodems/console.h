#pragma once
#include <QTextStream>

// The tool's standard output and error as text streams (UTF-8), and whether
// a person is watching them.
class Console
{
public:
    static QTextStream& out();
    static QTextStream& err();
    // Writes out what standard output holds; false, with the reason, when
    // it could not all be written.
    static bool flushOut(QString* why = nullptr);
    // Standard output is a terminal: live progress may be drawn on it.
    static bool outputIsTerminal();
};
