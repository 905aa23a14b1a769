#include "console.h"

#include <errno.h>
#include <stdio.h>
#include <string.h>
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

bool Console::flushOut(QString* why)
{
    out().flush();
    const bool streamOk = out().status() == QTextStream::Ok;
    errno = 0;
    const bool fileOk = ::fflush(stdout) == 0 && !::ferror(stdout);
    if (streamOk && fileOk)
        return true;
    if (why)
        *why = errno != 0 ? QString::fromLocal8Bit(::strerror(errno)) : QStringLiteral("write error");
    return false;
}

bool Console::outputIsTerminal()
{
    return ::isatty(STDOUT_FILENO) == 1;
}
