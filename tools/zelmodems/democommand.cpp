// demo: the tool against simulated modems, as a user would run it.
#include "commandline.h"
#include "tooltext.h"
#include "commands.h"
#include "console.h"
#include "demomodems.h"

#include <QFileInfo>
#include <QJsonArray>
#include <QJsonObject>

namespace {

// Runs one command as "zelmodems <words>" would, shows it (text mode) and
// keeps its result (JSON mode).
class DemoRun
{
public:
    explicit DemoRun(bool json) : m_json(json) {}

    Report run(const QStringList& words)
    {
        const QString command = QStringLiteral("zelmodems ") + words.join(QLatin1Char(' '));
        if (!m_json) {
            Console::out() << "\n$ " << command << '\n';
            Console::out().flush();
        }
        Report report = commands::dispatch(m_json ? words + QStringList{QStringLiteral("--json")} : words);
        if (!m_json) {
            report.print(command);
        }
        QJsonObject step;
        step.insert(QStringLiteral("command"), command);
        step.insert(QStringLiteral("exitCode"), report.status());
        if (report.failed())
            step.insert(QStringLiteral("error"), report.error());
        else
            step.insert(QStringLiteral("result"), report.json());
        m_steps.append(step);
        m_failures += report.failed() ? 1 : 0;
        return report;
    }

    QJsonArray steps() const { return m_steps; }
    int failures() const { return m_failures; }

private:
    bool m_json;
    QJsonArray m_steps;
    int m_failures = 0;
};

} // namespace

namespace commands {

Report demo(const QStringList& args)
{
    Report report;
    CommandLine cl(QStringLiteral("demo"),
                   Tool::tr("Starts simulated modems in this process and runs, as a user would, find\n"
                                  "on all of them, then info, balance, own-number and sms list on each modem\n"
                                  "found. No hardware is needed. The modems: a Huawei E3372 USB stick with\n"
                                  "three serial interfaces (ttyUSB0-2) and a MegaFon SIM, and a SIMCOM\n"
                                  "SIM7600 on a serial line (ttyS1) with a Beeline SIM. They live on\n"
                                  "pseudo-terminals linked in a scratch folder, which goes when the demo\n"
                                  "ends; the machine's own serial ports are not touched."));
    if (!cl.parse(args, report))
        return report;
    const bool json = cl.json();

    DemoModems modems;
    QString error;
    if (!modems.start(&error)) {
        report.fail(Tool::tr("cannot start the simulated modems: %1").arg(error), zelmodems::Failure::SystemError);
        return report;
    }

    QJsonArray simulated;
    if (!json) {
        Console::out() << "ZelModemsLib demo: simulated modems on pseudo-terminals, no hardware needed.\n\n";
        for (const DemoModems::Port& port : modems.ports())
            Console::out() << "  " << port.name.leftJustified(8) << ' ' << port.description << '\n';
        Console::out() << "  " << QStringLiteral("gsmmodem").leftJustified(8)
                       << " udev-style link to the USB modem's data interface (ttyUSB0)\n"
                       << "  (links to the pseudo-terminals in " << QFileInfo(modems.dataPortLink()).absolutePath()
                       << ")\n";
        Console::out().flush();
    }
    for (const DemoModems::Port& port : modems.ports()) {
        QJsonObject item;
        item.insert(QStringLiteral("name"), port.name);
        item.insert(QStringLiteral("device"), port.device);
        item.insert(QStringLiteral("description"), port.description);
        simulated.append(item);
    }

    DemoRun run(json);
    const Report found = run.run({QStringLiteral("find")});
    // The service talks to a modem through its command port; a modem with a
    // single interface has none and is used through its data port.
    for (const QJsonValue& value : found.json().value(QStringLiteral("modems")).toArray()) {
        const QJsonObject modem = value.toObject();
        const QString cmd = modem.value(QStringLiteral("cmdPortName")).toString();
        const QString port = cmd.isEmpty() ? modem.value(QStringLiteral("portName")).toString() : cmd;
        run.run({QStringLiteral("info"), port});
        run.run({QStringLiteral("balance"), port});
        // Operators that send the number by SMS make the request last about
        // 15 s; the demo asks only those that answer in the USSD reply.
        if (!modem.value(QStringLiteral("phoneFromSms")).toBool())
            run.run({QStringLiteral("own-number"), port});
        else if (!json)
            Console::out() << "\n(own-number on " << port
                           << " left out: this operator sends the number by SMS, which takes about 15 s)\n";
        run.run({QStringLiteral("sms"), QStringLiteral("list"), port});
    }

    report.json().insert(QStringLiteral("simulatedPorts"), simulated);
    report.json().insert(QStringLiteral("steps"), run.steps());
    if (run.failures() > 0)
        report.fail(Tool::tr("%1 of %2 demo steps failed").arg(run.failures()).arg(run.steps().size()), zelmodems::Failure::Refused);
    else if (!json)
        report.line(Tool::tr("\nDemo finished: %1 commands, all succeeded.").arg(run.steps().size()));
    return report;
}

} // namespace commands
