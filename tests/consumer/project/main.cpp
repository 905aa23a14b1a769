// A caller of the installed library: registration ran at load time, and the
// exported classes link and work.
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
    out << "zelmodemslib " << version.version() << ' ' << version.buildDateTime() << '\n';
    return 0;
}
