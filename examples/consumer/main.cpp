// A caller of the installed library: registration ran at load time, and the
// exported classes link and work.
#include <zelmodemslib/atmodem.h>
#include <zelmodemslib/zelmodemslib.h>

#include <QCoreApplication>
#include <QTextStream>

int main(int argc, char** argv)
{
    QCoreApplication app(argc, argv);
    QTextStream out(stdout);
    const qt5ext::AppVersion version = ZelModemsLib::version();
    if (!version.isValid())
        return 1;
    // A port that does not exist: a clear failure, no crash.
    AtModem modem(nullptr);
    if (modem.open(QStringLiteral("/nonexistent/ttyUSB9"), 115200, 1) || modem.lastError().isEmpty())
        return 2;
    out << "zelmodemslib " << version.version() << ' ' << version.buildDateTime() << '\n';
    return 0;
}
