// modemsim: simulated modems on pseudo-terminals, for developing and
// trying out programs that use the modems library without hardware.
#include "simmodem.h"
#include "recordeddialogue.h"
#include "simscript.h"

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QDir>
#include <QTextStream>

#include <chrono>
#include <condition_variable>
#include <csignal>
#include <iostream>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include <signal.h>

using namespace zelmodems::sim;

int main(int argc, char** argv)
{
    QCoreApplication app(argc, argv);
    QCoreApplication::setApplicationName(QStringLiteral("modemsim"));

    QCommandLineParser parser;
    parser.setApplicationDescription(QStringLiteral(
        "Starts simulated modems on pseudo-terminals, prints the device path of each "
        "(one line per modem: make, path) and answers AT commands until interrupted.\n"
        "Makes: ") + Profile::makeNames().join(QStringLiteral(", ")));
    parser.addHelpOption();
    QCommandLineOption makeOpt(QStringList{QStringLiteral("m"), QStringLiteral("make")},
        QStringLiteral("Make of the next modem; repeat for several modems (default huawei)."),
        QStringLiteral("make"));
    QCommandLineOption countOpt(QStringList{QStringLiteral("n"), QStringLiteral("count")},
        QStringLiteral("Number of modems when no make is given, or copies of each given make."),
        QStringLiteral("n"), QStringLiteral("1"));
    QCommandLineOption linkOpt(QStringLiteral("link-dir"),
        QStringLiteral("Make symbolic links ttySIM0, ttySIM1, ... to the devices in this folder."),
        QStringLiteral("dir"));
    QCommandLineOption imsiOpt(QStringLiteral("imsi"),
        QStringLiteral("IMSI of every SIM (the first five digits choose the operator)."),
        QStringLiteral("imsi"));
    QCommandLineOption noEchoOpt(QStringLiteral("no-echo"), QStringLiteral("Start with echo off."));
    QCommandLineOption latencyOpt(QStringLiteral("latency"),
        QStringLiteral("Pause before every answer, in milliseconds."), QStringLiteral("ms"), QStringLiteral("0"));
    QCommandLineOption logOpt(QStringLiteral("log"),
        QStringLiteral("Print the commands each modem received when stopping."));
    QCommandLineOption setOpt(QStringLiteral("set"),
        QStringLiteral("A statement of the modems' script, as in a --script file (repeatable): "
                       "\"signal 99,99\", \"ussd *100# Balance 5 rub\", \"ussd-status *100# 4\", "
                       "\"sms +79161234567 Hello\", \"sms-pdu HEX [stat]\", \"answer +CGMR 1.0\", "
                       "\"error +COPS?\", \"silent +CSQ\", \"latency 300\", \"vanish-after 12\", "
                       "\"no-sms-confirmation\"."),
        QStringLiteral("statement"));
    QCommandLineOption scriptOpt(QStringLiteral("script"),
        QStringLiteral("A file of such statements, one a line ('#' starts a comment)."), QStringLiteral("file"));
    QCommandLineOption replayOpt(QStringLiteral("replay"),
        QStringLiteral("Play back a dialogue recorded with zelmodems --record: one modem that answers "
                       "each command as the recorded modem did."),
        QStringLiteral("file"));
    QCommandLineOption controlOpt(QStringLiteral("control"),
        QStringLiteral("Read statements from standard input while running, one a line, and apply them to "
                       "every modem (\"N: statement\" for the modem on line N of the list, from 0): events "
                       "such as \"incoming-sms +79161234567 Hi\", \"registration roaming\", "
                       "\"ussd-menu 1 Balance\", \"vanish\", \"return\"."));
    parser.addOptions({makeOpt, countOpt, linkOpt, imsiOpt, noEchoOpt, latencyOpt, logOpt, setOpt, scriptOpt,
                       replayOpt, controlOpt});
    parser.process(app);

    QTextStream out(stdout);
    QTextStream err(stderr);

    SimScript script;
    QString scriptError;
    bool scriptOk = true;
    for (const QString& file : parser.values(scriptOpt))
        scriptOk = scriptOk && script.addFile(file, &scriptError);
    for (const QString& statement : parser.values(setOpt))
        scriptOk = scriptOk && script.add(statement, &scriptError);
    if (!scriptOk) {
        err << "modemsim: " << scriptError << '\n';
        return 2;
    }
    RecordedDialogue recording;
    const bool replay = parser.isSet(replayOpt);
    if (replay && !recording.load(parser.value(replayOpt), &scriptError)) {
        err << "modemsim: " << scriptError << '\n';
        return 2;
    }

    QList<Make> makes;
    for (const QString& name : parser.values(makeOpt)) {
        Make make;
        if (!Profile::parseMake(name, &make)) {
            err << "modemsim: unknown make " << name << "; choose from "
                << Profile::makeNames().join(QStringLiteral(", ")) << '\n';
            return 2;
        }
        makes << make;
    }
    if (makes.isEmpty())
        makes << (replay ? Make::Unknown : Make::Huawei);
    bool countOk = false;
    const int copies = parser.value(countOpt).toInt(&countOk);
    if (!countOk || copies < 1 || copies > 1000) {
        err << "modemsim: --count takes a number from 1 to 1000\n";
        return 2;
    }

    // Signals are taken synchronously below; block them before the modems'
    // threads start so that those threads inherit the mask.
    sigset_t stopSignals;
    sigemptyset(&stopSignals);
    sigaddset(&stopSignals, SIGINT);
    sigaddset(&stopSignals, SIGTERM);
    pthread_sigmask(SIG_BLOCK, &stopSignals, nullptr);

    std::vector<std::unique_ptr<SimModem>> modems;
    const QString linkDir = parser.value(linkOpt);
    if (!linkDir.isEmpty() && !QDir().mkpath(linkDir)) {
        err << "modemsim: cannot create " << linkDir << '\n';
        return 1;
    }
    int index = 0;
    for (Make make : qAsConst(makes)) {
        for (int i = 0; i < copies; ++i, ++index) {
            Profile profile = Profile::forMake(make);
            if (parser.isSet(imsiOpt))
                profile.imsi = parser.value(imsiOpt).toLatin1();
            if (parser.isSet(noEchoOpt))
                profile.echo = false;
            // Distinct IMEIs, so that each modem is a modem of its own.
            if (!profile.imei.isEmpty() && index > 0) {
                const QByteArray suffix = QByteArray::number(index);
                profile.imei = profile.imei.left(profile.imei.size() - suffix.size()) + suffix;
            }
            auto modem = std::make_unique<SimModem>(profile);
            QString error;
            if (!modem->start(&error)) {
                err << "modemsim: " << error << '\n';
                return 1;
            }
            modem->setLatency(parser.value(latencyOpt).toInt());
            if (replay)
                recording.apply(*modem);
            script.apply(*modem);
            if (!linkDir.isEmpty())
                modem->createLink(QDir(linkDir).filePath(QStringLiteral("ttySIM%1").arg(index)));
            out << Profile::makeName(make) << '\t' << modem->devicePath() << Qt::endl;
            modems.push_back(std::move(modem));
        }
    }

    // Delayed statements and those typed on standard input are applied on
    // threads of their own, never while the modems are being taken down.
    std::mutex eventMutex;
    std::condition_variable eventWake;
    bool stopping = false;
    const auto applyTo = [&](int which, const QString& statement) {
        std::lock_guard<std::mutex> lock(eventMutex);
        if (stopping)
            return;
        for (int i = 0; i < int(modems.size()); ++i) {
            if (which < 0 || which == i)
                SimScript::applyOne(statement, *modems[size_t(i)]);
        }
    };
    std::thread scheduler([&] {
        std::multimap<int, QString> due;
        for (const auto& item : script.delayed())
            due.emplace(item.first, item.second);
        const auto start = std::chrono::steady_clock::now();
        for (const auto& item : due) {
            std::unique_lock<std::mutex> lock(eventMutex);
            if (eventWake.wait_until(lock, start + std::chrono::milliseconds(item.first), [&] { return stopping; }))
                return;
            lock.unlock();
            applyTo(-1, item.second);
        }
    });
    if (parser.isSet(controlOpt)) {
        std::thread([&] {
            std::string line;
            while (std::getline(std::cin, line)) {
                QString statement = QString::fromStdString(line).trimmed();
                if (statement.isEmpty() || statement.startsWith(QLatin1Char('#')))
                    continue;
                int which = -1;
                const int colon = statement.indexOf(QLatin1Char(':'));
                bool numbered = false;
                if (colon > 0)
                    which = statement.left(colon).toInt(&numbered);
                if (numbered)
                    statement = statement.mid(colon + 1).trimmed();
                else
                    which = -1;
                QString why;
                if (!SimScript().add(statement, &why)) {
                    std::cerr << "modemsim: " << why.toStdString() << std::endl;
                    continue;
                }
                applyTo(which, statement);
            }
        }).detach();
    }

    int sig = 0;
    sigwait(&stopSignals, &sig);
    {
        std::lock_guard<std::mutex> lock(eventMutex);
        stopping = true;
    }
    eventWake.notify_all();
    scheduler.join();

    if (parser.isSet(logOpt)) {
        for (const auto& modem : modems) {
            out << modem->devicePath() << ":\n";
            for (const CommandRecord& r : modem->log())
                out << "  " << r.elapsedMs << " ms\t" << r.lineSpeed << "\tAT" << r.command << '\n';
        }
    }
    modems.clear();
    return 0;
}
