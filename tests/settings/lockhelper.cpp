// A second process for the port lock-file tests. Modes:
//   hold <port>    take the port's lock file, print "held", wait for a line
//                  "release" on standard input, remove the lock, print "released"
//   wait <port>    print "waiting", wait for the lock file to go, print
//                  "true" or "false" and the milliseconds waited
//   create <port>  print "waiting", take the lock file (or give up), print
//                  the milliseconds spent
#include "modemsettings.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QFile>
#include <QTextStream>

int main(int argc, char** argv)
{
    QCoreApplication app(argc, argv);
    const QStringList args = app.arguments();
    if (args.size() != 3)
        return 2;
    const QString& mode = args.at(1);
    const QString& port = args.at(2);

    QTextStream out(stdout);
    if (mode == QLatin1String("hold")) {
        ModemSettings::createLockFile(port);
        out << "held" << Qt::endl;
        QFile in;
        if (!in.open(stdin, QIODevice::ReadOnly))
            return 3;
        while (!in.atEnd()) {
            if (in.readLine().trimmed() == "release")
                break;
        }
        ModemSettings::removeLockFile(port);
        out << "released" << Qt::endl;
        return 0;
    }

    QElapsedTimer timer;
    out << "waiting" << Qt::endl;
    timer.start();
    if (mode == QLatin1String("wait")) {
        const bool free = ModemSettings::waitLockFile(port);
        out << (free ? "true" : "false") << ' ' << timer.elapsed() << Qt::endl;
        return 0;
    }
    if (mode == QLatin1String("create")) {
        ModemSettings::createLockFile(port);
        out << timer.elapsed() << Qt::endl;
        return 0;
    }
    return 2;
}
