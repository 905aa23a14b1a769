#include "console.h"

#include <stdio.h>
#include <unistd.h>

namespace {

QTextStream* utf8Stream(FILE* file)
{
    auto* stream = new QTextStream(file);
    stream->setCodec("UTF-8");
    return stream;
}

} // namespace

QTextStream& Console::out()
{
    static QTextStream* stream = utf8Stream(stdout);
    return *stream;
}

QTextStream& Console::err()
{
    static QTextStream* stream = utf8Stream(stderr);
    return *stream;
}

bool Console::outputIsTerminal()
{
    return ::isatty(STDOUT_FILENO) == 1;
}
