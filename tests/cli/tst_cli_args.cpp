// zelmodems without modems: argument handling, help, the PDU toolkit
// commands and the wvdialconf runner with stand-in programs.
#include "clifixture.h"

#include "testfiles.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <csignal>

using clitest::run;

using zmltest::readFile;
using zmltest::writeScript;

class TestCliArgs : public QObject
{
    Q_OBJECT

    // What bash's completion offers for the last of `words` (after "zelmodems").
    static QStringList completions(const QStringList& words)
    {
        QStringList quoted;
        for (const QString& word : words)
            quoted << QLatin1Char('"') + word + QLatin1Char('"');
        QProcess bash;
        bash.start(QStringLiteral("bash"),
                   {"-c", QStringLiteral("source '%1'; COMP_WORDS=(zelmodems %2); COMP_CWORD=%3; _zelmodems; "
                                         "printf '%s\\n' \"${COMPREPLY[@]}\"")
                              .arg(QStringLiteral(ZML_COMPLETION), quoted.join(QLatin1Char(' ')))
                              .arg(words.size())});
        if (!bash.waitForFinished(10000))
            return {QStringLiteral("(bash did not finish)")};
        return QString::fromUtf8(bash.readAllStandardOutput()).split(QLatin1Char('\n'));
    }

private slots:
    // Every command has its help, and the overview lists it.
    void help()
    {
        const clitest::Result overview = run({"--help"});
        QCOMPARE(overview.exitCode, 0);
        for (const QString name : {"find", "info", "signal", "cells", "operator", "balance", "ussd", "own-number",
                                    "sms list", "sms delete", "sms take", "sms send", "pdu encode", "pdu explain",
                                    "wvdialconf", "demo"}) {
            QVERIFY2(overview.out.contains(QStringLiteral("\n  %1 ").arg(name)), qPrintable(name));
            const clitest::Result r = run(name.split(' ') + QStringList{"--help"});
            QCOMPARE(r.exitCode, 0);
            QVERIFY2(r.out.startsWith(QStringLiteral("Usage: zelmodems %1 [options]").arg(name)), r.describe());
            QVERIFY2(r.out.contains("--json") && r.err.isEmpty(), r.describe());
        }
    }

    void pduEncodeAlphabetAndRefusals()
    {
        const clitest::Result ucs2 = run({"pdu", "encode", "+79161234567", "Hi", "--alphabet", "ucs2"});
        QCOMPARE(ucs2.out, QStringLiteral("AT+CMGS=17\n0001000B919761214365F700080400480069\n"));
        const clitest::Result eightBit = run({"pdu", "encode", "+79161234567", "Hi", "--alphabet", "8bit"});
        QCOMPARE(eightBit.exitCode, 1);
        QVERIFY2(eightBit.err.contains("sent in the GSM 7-bit or UCS2 alphabet"), eightBit.describe());
        const clitest::Result r = run({"pdu", "encode", "call me", "Hello"});
        QCOMPARE(r.exitCode, 1);
        QVERIFY2(r.err.contains("zelmodems pdu encode: cannot encode the message"), r.describe());
    }

    // Each option is read back from the PDU it shapes (TS 23.040 9.2.2.2).
    void pduEncodeOptions_data()
    {
        QTest::addColumn<QStringList>("options");
        QTest::addColumn<QString>("expected");
        QTest::newRow("plain") << QStringList() << "0001000B919761214365F7000002C834";
        QTest::newRow("status report asked (TP-SRR)") << QStringList{"--status-report"} << "0021000B919761214365F7000002C834";
        QTest::newRow("valid 60 minutes (TP-VPF relative, VP 11)")
            << QStringList{"--validity", "60"} << "0011000B919761214365F700000B02C834";
        QTest::newRow("national number (type 0xA1)") << QStringList{"--national"} << "0001000BA19761214365F7000002C834";
        QTest::newRow("concatenation reference 7") << QStringList{"--reference", "7", "--alphabet", "ucs2"}
                                                   << "050003070201";
    }

    void pduEncodeOptions()
    {
        QFETCH(QStringList, options);
        QFETCH(QString, expected);
        const bool longText = options.contains("--reference");
        const clitest::Result r = run(QStringList{"pdu", "encode", "+79161234567", longText ? QString(80, 'x') : "Hi"}
                                      + options);
        QCOMPARE(r.exitCode, 0);
        QVERIFY2(r.out.contains(expected), r.describe());
    }

    void pduExplainHeaderAndBrokenPdu()
    {
        const clitest::Result header = run({"pdu", "explain", "--udh", "05 00 03 cc 02 01"});
        QCOMPARE(header.exitCode, 0);
        QVERIFY2(header.out.contains("reference 204, part 1 of 2"), header.describe());

        // A DELIVER that ends after its first octet.
        const clitest::Result broken = run({"pdu", "explain", "0004"});
        QCOMPARE(broken.exitCode, 1);
        QVERIFY2(broken.err.contains("zelmodems pdu explain: invalid SMS-DELIVER"), broken.describe());

        const clitest::Result empty = run({"pdu", "explain", "05"});
        QCOMPARE(empty.exitCode, 1);
        QVERIFY2(empty.err.contains("the PDU ends before its first octet"), empty.describe());
    }

    void wvdialconf()
    {
        QTemporaryDir dir;
        QVERIFY(dir.isValid());
        const QString bin = dir.filePath("bin");
        const QString work = dir.filePath("work");
        QVERIFY(QDir().mkpath(bin) && QDir().mkpath(work + "/modems"));
        // No process of the machine is stopped: sudo is a stand-in that
        // records what it was asked.
        QVERIFY(writeScript(bin + "/sudo", "echo \"$*\" >> '" + dir.filePath("sudo.log").toUtf8() + "'\n"));
        QVERIFY(writeScript(bin + "/wvdialconf",
                            "printf '[Dialer Defaults]\\nModem = /dev/ttyUSB0\\nBaud = 460800\\n' > \"$1\"\n"));
        QFile conf(dir.filePath("zel5.conf"));
        QVERIFY(conf.open(QIODevice::WriteOnly));
        conf.write("[General]\nworkDir=" + work.toUtf8() + "\n");
        conf.close();

        QProcessEnvironment env = clitest::environment();
        env.insert("PATH", bin + ":" + env.value("PATH"));
        env.insert("QT5EXT_INITCONFIG", conf.fileName());
        const clitest::Result r =
            run({"wvdialconf", "--yes", "--program", bin + "/wvdialconf", "--timeout", "10000", "--json"}, 30000, env);
        QCOMPARE(r.exitCode, 0);
        const QJsonObject json = r.json();
        QCOMPARE(json.value("searchFile").toString(), work + "/modems/wvdial.conf.srch");
        QCOMPARE(json.value("content").toString(),
                 QStringLiteral("[Dialer Defaults]\nModem = /dev/ttyUSB0\nBaud = 460800\n"));
        QCOMPARE(readFile(dir.filePath("sudo.log")), QByteArray("killall pppd\nkillall wvdial\n"));
        const clitest::Result text = run({"wvdialconf", "--yes", "--program", bin + "/wvdialconf"}, 30000, env);
        QCOMPARE(text.exitCode, 0);
        QCOMPARE(text.out, QStringLiteral("%1/wvdialconf wrote %2/modems/wvdial.conf.srch:\n\n"
                                          "[Dialer Defaults]\nModem = /dev/ttyUSB0\nBaud = 460800\n")
                               .arg(bin, work));

        // Without the program nothing is stopped and the user is told why.
        QFile::remove(dir.filePath("sudo.log"));
        const clitest::Result missing = run({"wvdialconf", "--program", bin + "/none"}, 30000, env);
        QCOMPARE(missing.exitCode, 1);
        QVERIFY2(missing.err.contains("is not there or not executable"), missing.describe());
        QVERIFY(!QFile::exists(dir.filePath("sudo.log")));

        // A program that writes nothing: its own complaint is the reason.
        QVERIFY(writeScript(bin + "/silent", "echo 'Cannot open /dev/ttyS0' >&2; exit 1\n"));
        QFile::remove(work + "/modems/wvdial.conf.srch");
        const clitest::Result silent = run({"wvdialconf", "--yes", "--program", bin + "/silent"}, 30000, env);
        QCOMPARE(silent.exitCode, 1);
        QVERIFY2(silent.err.contains("did not write " + work + "/modems/wvdial.conf.srch: ")
                     && silent.err.contains("Cannot open /dev/ttyS0"),
                 silent.describe());

        // A running dialer (a stand-in called pppd) is listed and left alone
        // unless the user says yes; so is everything when the folder is missing.
        QVERIFY(QFile::copy("/bin/sleep", bin + "/pppd"));
        QProcess dialer;
        dialer.start(bin + "/pppd", {"30"});
        QVERIFY(dialer.waitForStarted());
        QFile::remove(dir.filePath("sudo.log"));
        const clitest::Result asked = run({"wvdialconf", "--program", bin + "/wvdialconf"}, 30000, env);
        QCOMPARE(asked.exitCode, 1);
        QVERIFY2(asked.err.contains(QStringLiteral("pppd (pid %1) would be stopped").arg(dialer.processId()))
                     && asked.err.contains("--yes"),
                 asked.describe());
        QVERIFY(!QFile::exists(dir.filePath("sudo.log")));
        QVERIFY(QDir(work + "/modems").removeRecursively());
        const clitest::Result noFolder = run({"wvdialconf", "--yes", "--program", bin + "/wvdialconf"}, 30000, env);
        QCOMPARE(noFolder.exitCode, 1);
        QVERIFY2(noFolder.err.contains("not there or not writable"), noFolder.describe());
        QVERIFY(!QFile::exists(dir.filePath("sudo.log")));
        QCOMPARE(dialer.state(), QProcess::Running);
        dialer.kill();
        dialer.waitForFinished();

        // Ctrl-C while wvdialconf runs: it started with no signal blocked or
        // ignored, and it ends with the tool.
        QVERIFY(QDir().mkpath(work + "/modems"));
        // The mask is read from the program itself once it runs (sleep, which
        // the script becomes): a shell's own mask is not steady while it
        // starts a command (dash blocks every signal around vfork).
        const QString pidFile = dir.filePath("pid");
        QVERIFY(writeScript(bin + "/slow", "echo $$ > '" + pidFile.toUtf8() + ".part'; mv '" + pidFile.toUtf8()
                                               + ".part' '" + pidFile.toUtf8() + "'; exec sleep 30\n"));
        QProcess tool;
        tool.setProcessEnvironment(env);
        tool.start(QStringLiteral(ZELMODEMS_PATH), {"wvdialconf", "--yes", "--program", bin + "/slow"});
        QTRY_VERIFY_WITH_TIMEOUT(QFile::exists(pidFile), 10000);
        const QString proc = QStringLiteral("/proc/%1/").arg(QString::fromLatin1(readFile(pidFile).trimmed()));
        QTRY_COMPARE_WITH_TIMEOUT(readFile(proc + "comm").trimmed(), QByteArray("sleep"), 10000);
        QStringList masks;
        for (const QByteArray& line : readFile(proc + "status").split('\n')) {
            if (line.startsWith("SigBlk:") || line.startsWith("SigIgn:"))
                masks << QString::fromLatin1(line);
        }
        ::kill(pid_t(tool.processId()), SIGINT);
        QVERIFY(tool.waitForFinished(5000));
        QVERIFY2(tool.exitCode() == 130, tool.readAllStandardError().constData());
        QCOMPARE(masks.size(), 2);
        // SIGHUP, SIGINT, SIGPIPE, SIGTERM: bits 0, 1, 12 and 14.
        for (const QString& line : masks)
            QVERIFY2((line.mid(7).trimmed().toULongLong(nullptr, 16) & 0x5003) == 0, qPrintable(line));
        // Gone, or a zombie waiting for whoever adopted it.
        QTRY_VERIFY_WITH_TIMEOUT(!QFile::exists(proc + "stat") || readFile(proc + "stat").contains(") Z "), 5000);
    }

    void usageErrors_data()
    {
        QTest::addColumn<QStringList>("args");
        QTest::addColumn<QString>("message");
        QTest::newRow("no command") << QStringList() << "Usage: zelmodems <command>";
        QTest::newRow("unknown command") << QStringList{"bogus"} << "unknown command \"bogus\"";
        QTest::newRow("sms alone") << QStringList{"sms"} << "sms needs a subcommand: list, delete, take or send";
        QTest::newRow("no port") << QStringList{"info"} << "zelmodems info: PORT is missing";
        QTest::newRow("extra argument") << QStringList{"signal", "ttyS0", "ttyS1"}
                                        << "zelmodems signal: unexpected argument \"ttyS1\"";
        QTest::newRow("bad baud") << QStringList{"info", "ttyS0", "--baud", "fast"}
                                  << "--baud takes a positive number, not \"fast\"";
        QTest::newRow("unknown option") << QStringList{"balance", "ttyS0", "--frobnicate"}
                                        << "Unknown option 'frobnicate'";
        QTest::newRow("option without value") << QStringList{"balance", "ttyS0", "--code"}
                                              << "Missing value after '--code'";
        // Nothing to delete is a mistake, not a successful deletion of nothing.
        QTest::newRow("sms delete without index") << QStringList{"sms", "delete", "ttyS0"}
                                                  << "zelmodems sms delete: INDEX is missing";
        QTest::newRow("own-number both ways") << QStringList{"own-number", "ttyS0", "--sms", "--ussd-reply"}
                                              << "--sms and --ussd-reply exclude each other";
        QTest::newRow("bad alphabet") << QStringList{"pdu", "encode", "+79161234567", "x", "--alphabet", "klingon"}
                                      << "--alphabet takes auto, gsm7, 8bit or ucs2";
        QTest::newRow("not hexadecimal") << QStringList{"pdu", "explain", "07zz"} << "\"07zz\" is not hexadecimal";
    }

    void usageErrors()
    {
        QFETCH(QStringList, args);
        QFETCH(QString, message);
        for (const bool json : {false, true}) {
            if (json && args.isEmpty())
                continue;
            // --json right after the command's name: no option's value.
            QStringList words = args;
            const bool twoWords = (args.value(0) == "sms" || args.value(0) == "pdu") && args.size() > 1;
            if (json)
                words.insert(twoWords ? 2 : 1, QStringLiteral("--json"));
            const clitest::Result r = run(words);
            QVERIFY2(r.finished, r.describe());
            QCOMPARE(r.exitCode, 2);
            QVERIFY2(r.err.contains(message), r.describe());
            // A program asking for JSON gets the failure as JSON on standard output.
            if (json)
                QCOMPARE(r.json().value("exitStatus").toInt(), 2);
            else
                QVERIFY2(r.out.isEmpty(), r.describe());
        }
    }

    // Completion in bash: the words offered at the end of a command line.
    void completion_data()
    {
        QTest::addColumn<QStringList>("words");
        QTest::addColumn<QString>("offered");
        QTest::newRow("a command after a global option and its value") << QStringList{"--baud", "9600", ""} << "find";
        QTest::newRow("a subcommand after --json") << QStringList{"--json", "sms", ""} << "take";
        QTest::newRow("ussd's answers") << QStringList{"ussd", "--r"} << "--reply";
        QTest::newRow("watch's folder option") << QStringList{"watch", "--f"} << "--folder";
        QTest::newRow("sim's subcommands") << QStringList{"sim", ""} << "change-pin";
        QTest::newRow("a file after --pin-file") << QStringList{"sim", "unlock", "--pin-file", "/et"} << "/etc";
    }
    void completion()
    {
        QFETCH(QStringList, words);
        QFETCH(QString, offered);
        const QStringList got = completions(words);
        QVERIFY2(got.contains(offered), qPrintable(got.join(QLatin1Char(' '))));
    }

    // Every option a command's --help lists is offered after the command:
    // completion cannot fall behind the commands.
    void completionKnowsEveryOption()
    {
        const clitest::Result overview = run({"--help"});
        QStringList commands;
        bool listing = false;
        for (const QString& line : overview.out.split(QLatin1Char('\n'))) {
            if (line == QLatin1String("Commands:")) {
                listing = true;
            } else if (listing && line.startsWith(QLatin1String("  "))) {
                commands << line.mid(2, 16).trimmed();
            } else if (listing) {
                break;
            }
        }
        QVERIFY(commands.size() > 20);
        const QRegularExpression option(QStringLiteral("^\\s+(?:-\\w, )?(--[a-z0-9-]+)"));
        for (const QString& command : qAsConst(commands)) {
            const QStringList words = command.split(QLatin1Char(' '));
            const clitest::Result help = run(words + QStringList{"--help"});
            QStringList options;
            for (const QString& line : help.out.split(QLatin1Char('\n'))) {
                const QRegularExpressionMatch m = option.match(line);
                if (m.hasMatch())
                    options << m.captured(1);
            }
            QVERIFY2(!options.isEmpty(), qPrintable(command));
            const QStringList offered = completions(words + QStringList{"--"});
            for (const QString& wanted : qAsConst(options))
                QVERIFY2(offered.contains(wanted), qPrintable(command + QLatin1String(": ") + wanted));
        }
    }

    void pduExplain_data()
    {
        QTest::addColumn<QStringList>("args");
        QTest::addColumn<QString>("type");
        QTest::addColumn<QString>("key");
        QTest::addColumn<QString>("value");
        QTest::addColumn<QString>("line");
        // SMS-DELIVER from +79161234567, "Hello", 2022-11-22 17:18:05 +03.
        QTest::newRow("deliver") << QStringList{"07919761980614F8040B919761214365F700002211227181502105C8329BFD06"}
                                 << "SMS-DELIVER" << "text" << "Hello" << "  Sender: +79161234567";
        // SMS-SUBMIT of "Привет" in UCS2 with a status report requested.
        QTest::newRow("submit") << QStringList{"0021000B919761214365F700080C041F04400438043204350442"}
                                << "SMS-SUBMIT" << "alphabet" << "ucs2" << "  Text: Привет";
        // SMS-STATUS-REPORT for message 42: received by the recipient; no service-centre part.
        QTest::newRow("status report")
            << QStringList{"062A0B919761214365F72211227181502122112271815521" "00", "--no-smsc"} << "SMS-STATUS-REPORT"
            << "recipient" << "+79161234567" << "  Message reference: 42";
    }

    void pduExplain()
    {
        QFETCH(QStringList, args);
        QFETCH(QString, type);
        QFETCH(QString, key);
        QFETCH(QString, value);
        QFETCH(QString, line);
        const clitest::Result text = run(QStringList{"pdu", "explain"} + args);
        QCOMPARE(text.exitCode, 0);
        QVERIFY2(text.out.startsWith(type + '\n'), text.describe());
        QVERIFY2(text.out.split('\n').contains(line), text.describe());

        bool ok = false;
        const clitest::Result json = run(QStringList{"pdu", "explain", "--json"} + args);
        const QJsonObject object = json.json(&ok);
        QVERIFY2(ok, json.describe());
        QCOMPARE(object.value("type").toString(), type);
        QCOMPARE(object.value(key).toString(), value);
    }
};

QTEST_GUILESS_MAIN(TestCliArgs)
#include "tst_cli_args.moc"
