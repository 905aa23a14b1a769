// What may go on an AT command line: input that would end the command,
// close its quoted string, end or cancel an SMS text is refused.
#include "atinput.h"
#include "simfixture.h"

using zelmodems::AtInput;

class TestAtInput : public QObject
{
    Q_OBJECT

private slots:
    void checks_data()
    {
        QTest::addColumn<int>("kind");   // 0 number, 1 USSD code, 2 SMS text
        QTest::addColumn<QString>("input");
        QTest::addColumn<bool>("accepted");
        QTest::newRow("international number") << 0 << "+79161234567" << true;
        QTest::newRow("number with CR and a command") << 0 << "+7916\rAT+CFUN=0" << false;
        QTest::newRow("plus inside a number") << 0 << "7+916" << false;
        QTest::newRow("Arabic-Indic digits") << 0 << QString::fromUtf8("\u0661\u0662") << false;
        QTest::newRow("balance code") << 1 << "*100#" << true;
        QTest::newRow("code closing its quote") << 1 << "*100#\",15\rAT+CFUN=0" << false;
        QTest::newRow("code with LF") << 1 << "*100#\n" << false;
        QTest::newRow("text with line breaks and quotes") << 2 << "Hi \"there\"\r\nsee you" << true;
        QTest::newRow("text with Ctrl-Z and a command") << 2 << "hello\x1a" "AT+CFUN=0\r" << false;
        QTest::newRow("text with an ANSI escape") << 2 << "\x1b[2J" << false;
    }

    void checks()
    {
        QFETCH(int, kind);
        QFETCH(QString, input);
        QFETCH(bool, accepted);
        const QString why = kind == 0 ? AtInput::checkNumber(input)
                          : kind == 1 ? AtInput::checkUssdCode(input)
                                      : AtInput::checkSmsText(input);
        QCOMPARE(why.isEmpty(), accepted);
    }

    // The driver's own sending calls refuse the same input: the simulated
    // modem receives nothing at all, and the reason is the last error.
    void driverSendsNothing_data()
    {
        QTest::addColumn<int>("call");   // 0 sendMessage, 1 sendUSSD, 2 sendUSSD2
        QTest::addColumn<QString>("first");
        QTest::addColumn<QString>("second");
        QTest::newRow("SMS text ending early") << 0 << "+79161234567" << "hello\x1a" "AT+CFUN=0\r";
        QTest::newRow("SMS number with a command") << 0 << "+7916\rAT+CFUN=0\r" << "hello";
        QTest::newRow("SMS number with a second command") << 0 << "+79161234567;+CMGD=1,4" << "hello";
        QTest::newRow("SMS number with a quote") << 0 << "+7916\"1234567" << "hello";
        QTest::newRow("USSD code closing its quote") << 1 << "*100#\",15\rAT+CFUN=0" << QString();
        QTest::newRow("USSD by SMS with a line feed") << 2 << "*105#\nAT+CFUN=0" << QString();
    }

    void driverSendsNothing()
    {
        QFETCH(int, call);
        QFETCH(QString, first);
        QFETCH(QString, second);
        zmltest::LockDir locks;
        QVERIFY(locks.install());
        ZML_OPEN(zelmodems::sim::Make::Huawei);
        QString reply;
        const bool sent = call == 0 ? modem.sendMessage(first, second)
                        : call == 1 ? modem.sendUSSD(first, reply)
                                    : modem.sendUSSD2(first, reply);
        QVERIFY(!sent);
        QVERIFY2(modem.lastError().contains(QLatin1String("nothing sent")), qPrintable(modem.lastError()));
        QCOMPARE(sim.commands(), QList<QByteArray>());
    }
};

QTEST_GUILESS_MAIN(TestAtInput)
#include "tst_atinput.moc"
