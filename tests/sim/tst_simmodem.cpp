// The simulator must behave like a serial modem to a real QSerialPort:
// line settings accepted, echo, answers, line speeds read back, faults.
#include "simmodem.h"

#include <QElapsedTimer>
#include <QSerialPort>
#include <QTemporaryDir>
#include <QtTest>

using namespace zelmodems::sim;

class TestSimModem : public QObject
{
    Q_OBJECT

private:
    static bool openPort(QSerialPort& port, const QString& path, qint32 baud)
    {
        port.setPortName(path);
        if (!port.open(QIODevice::ReadWrite))
            return false;
        return port.setBaudRate(baud) && port.setDataBits(QSerialPort::Data8)
            && port.setParity(QSerialPort::NoParity) && port.setStopBits(QSerialPort::OneStop)
            && port.setFlowControl(QSerialPort::HardwareControl);
    }

    // Reads until `until` appears or the time runs out.
    static QByteArray exchange(QSerialPort& port, const QByteArray& out, const QByteArray& until, int ms = 2000)
    {
        port.write(out);
        port.waitForBytesWritten(100);
        QByteArray in;
        QElapsedTimer t;
        t.start();
        while (!in.contains(until) && t.elapsed() < ms) {
            if (port.waitForReadyRead(20) || port.bytesAvailable())
                in += port.readAll();
        }
        return in;
    }

private slots:
    void answersWithEchoAndResultCode()
    {
        SimModem modem(Make::Huawei);
        QVERIFY(modem.start());
        QSerialPort port;
        QVERIFY2(openPort(port, modem.devicePath(), 115200), qPrintable(port.errorString()));
        QCOMPARE(exchange(port, "AT+CSQ\r", "OK\r\n"), QByteArray("AT+CSQ\r\r\n+CSQ: 20,99\r\n\r\nOK\r\n"));
        QCOMPARE(exchange(port, "ATE0\r", "OK\r\n"), QByteArray("ATE0\r\r\nOK\r\n"));
        QCOMPARE(exchange(port, "AT+NOSUCH\r", "ERROR\r\n"), QByteArray("\r\nERROR\r\n"));
        QCOMPARE(modem.commands(), (QList<QByteArray>{"+CSQ", "E0", "+NOSUCH"}));
    }

    void readsTheClientsLineSpeed_data()
    {
        QTest::addColumn<qint32>("speed");
        QTest::newRow("2400") << 2400;
        QTest::newRow("115200") << 115200;
        QTest::newRow("921600") << 921600;
        QTest::newRow("custom 250000") << 250000;
    }

    void readsTheClientsLineSpeed()
    {
        QFETCH(qint32, speed);
        SimModem modem(Make::SimCom);
        QVERIFY(modem.start());
        QSerialPort port;
        QVERIFY(openPort(port, modem.devicePath(), speed));
        QCOMPARE(modem.lineSpeed(), speed);
        exchange(port, "AT\r", "OK\r\n");
        QCOMPARE(modem.log().value(0).lineSpeed, speed);
    }

    void answersOnlyAtAcceptedSpeeds()
    {
        SimModem modem(Make::Zte);
        QVERIFY(modem.start());
        modem.setAcceptedLineSpeeds({9600});
        QSerialPort port;
        QVERIFY(openPort(port, modem.devicePath(), 115200));
        QVERIFY(exchange(port, "AT\r", "OK", 300).isEmpty());
        QVERIFY(port.setBaudRate(9600));
        QVERIFY(exchange(port, "AT\r", "OK").endsWith("OK\r\n"));
    }

    void faultsAndLinks()
    {
        QTemporaryDir dir;
        SimModem modem(Make::Cinterion);
        QVERIFY(modem.start());
        const QString link = dir.filePath(QStringLiteral("ttyUSB0"));
        QVERIFY(modem.createLink(link));
        QCOMPARE(modem.devicePath(), link);
        modem.setFault("+CSQ", Fault::NoCarrier);
        modem.setFault("+COPS?", Fault::Silence);
        modem.setEcho(false);
        QSerialPort port;
        QVERIFY(openPort(port, link, 9600));
        QCOMPARE(exchange(port, "AT+CSQ\r", "CARRIER\r\n"), QByteArray("\r\nNO CARRIER\r\n"));
        QVERIFY(exchange(port, "AT+COPS?\r", "OK", 200).isEmpty());
        modem.setFault("+CSQ", Fault::SplitBytes, 2);
        QCOMPARE(exchange(port, "AT+CSQ\r", "OK\r\n"), QByteArray("\r\n+CSQ: 20,99\r\n\r\nOK\r\n"));
        modem.vanish();
        QVERIFY(modem.hasVanished());
        QVERIFY(!QFile::exists(link));
        port.write("AT\r");
        QElapsedTimer t;
        t.start();
        // A pulled USB modem reads ENODEV (ResourceError); a pty whose master
        // is gone reads EIO (ReadError). Either must come, and soon.
        auto gone = [&] { return port.error() == QSerialPort::ResourceError || port.error() == QSerialPort::ReadError; };
        while (!gone() && t.elapsed() < 1000) {
            port.clearError();
            port.waitForReadyRead(10);
        }
        QVERIFY2(gone(), qPrintable(port.errorString()));
    }

    void textModeSmsPrompt()
    {
        SimModem modem(Make::Huawei);
        QVERIFY(modem.start());
        modem.setEcho(false);
        QSerialPort port;
        QVERIFY(openPort(port, modem.devicePath(), 115200));
        exchange(port, "AT+CMGF=1\r", "OK\r\n");
        QCOMPARE(exchange(port, "AT+CMGS=+79121234567\r", "> "), QByteArray("\r\n> "));
        QCOMPARE(exchange(port, "hello\x1a", "OK\r\n"), QByteArray("\r\n+CMGS: 1\r\n\r\nOK\r\n"));
        QCOMPARE(modem.sentMessages().value(0).first, QByteArray("+79121234567"));
        QCOMPARE(modem.sentMessages().value(0).second, QByteArray("hello"));
    }

    void ussdPacking_data()
    {
        QTest::addColumn<QByteArray>("septets");
        QTest::addColumn<QByteArray>("packed");
        QTest::newRow("empty") << QByteArray() << QByteArray();
        QTest::newRow("*100#") << QByteArray("*100#") << QByteArray::fromHex("aa180c3602");
        QTest::newRow("eight characters") << QByteArray("12345678") << QByteArray::fromHex("31d98c56b3dd70");
        QTest::newRow("seven characters") << QByteArray("1234567") << QByteArray::fromHex("31d98c56b3dd00");
    }

    void ussdPacking()
    {
        QFETCH(QByteArray, septets);
        QFETCH(QByteArray, packed);
        QCOMPARE(Ussd::pack(septets), packed);
        QCOMPARE(Ussd::unpack(packed), septets);
    }

    void ussdReplies()
    {
        SimModem modem(Make::Huawei);
        QVERIFY(modem.start());
        modem.setEcho(false);
        modem.setUssdReply("*100#", Ussd::ucs2(QString::fromUtf8("Бал")));
        modem.setUssdDelay(50);
        QSerialPort port;
        QVERIFY(openPort(port, modem.devicePath(), 115200));
        // Packed and in hexadecimal: understood; the reply follows the OK.
        QCOMPARE(exchange(port, "AT+CUSD=1,\"AA180C3602\",15\r", "72\r\n"),
                 QByteArray("\r\nOK\r\n\r\n+CUSD: 0,\"04110430043B\",72\r\n"));
        // Plain text is no hexadecimal: refused.
        QCOMPARE(exchange(port, "AT+CUSD=1,\"*100#\",15\r", "ERROR\r\n"), QByteArray("\r\nERROR\r\n"));
        // Result presentation off: OK only.
        QCOMPARE(exchange(port, "AT+CUSD=0,\"aa180c3602\",15\r", "+CUSD", 300), QByteArray("\r\nOK\r\n"));
        QCOMPARE(modem.ussdRequests(), (QList<QByteArray>{"*100#", "*100#"}));

        SimModem zte(Make::Zte);
        QVERIFY(zte.start());
        zte.setEcho(false);
        zte.setUssdRefusals(1);
        zte.setUssdReplyBeforeOk(true);
        zte.setUssdReply("*102#", Ussd::plain("Balans 1 r."));
        QSerialPort zport;
        QVERIFY(openPort(zport, zte.devicePath(), 115200));
        QCOMPARE(exchange(zport, "AT+CUSD=1,\"*102#\",15\r", "ERROR"),
                 QByteArray("\r\n+CME ERROR: Unexpected Data Value\r\n"));
        QCOMPARE(exchange(zport, "AT+CUSD=1,\"*102#\",15\r", "OK\r\n"),
                 QByteArray("\r\n+CUSD: 0,\"Balans 1 r.\",15\r\n\r\nOK\r\n"));
        QCOMPARE(exchange(zport, "AT+CUSD=1,\"*1#\",15\r", "\r\n+CUSD: 4\r\n"),
                 QByteArray("\r\n+CUSD: 4\r\n\r\nOK\r\n"));
        QCOMPARE(exchange(zport, "AT+CSCS=\"GSM\"\r", "OK\r\n"), QByteArray("\r\nOK\r\n"));
        QCOMPARE(zte.characterSet(), QByteArray("GSM"));
    }

    void smsStore()
    {
        SimModem modem(Make::Huawei);
        QVERIFY(modem.start());
        modem.setEcho(false);
        const QByteArray first = "07919730071111F1040B919701214365F70000121011111111210441E19008";
        const QByteArray second = "07919730071111F1040B919701214365F70000121011111111210141";
        QCOMPARE(modem.storeSms(first, 0), 1);
        QCOMPARE(modem.storeSms(second, 1, 5), 5);
        QCOMPARE(modem.storeSms(second), 2);
        QSerialPort port;
        QVERIFY(openPort(port, modem.devicePath(), 115200));
        QCOMPARE(exchange(port, "AT+CMGL=0\r", "OK\r\n"),
                 QByteArray("\r\n+CMGL: 1,0,,23\r\n" + first + "\r\n\r\nOK\r\n"));
        // Listed unread messages are read now.
        QCOMPARE(exchange(port, "AT+CMGL=4\r", "OK\r\n"),
                 QByteArray("\r\n+CMGL: 1,1,,23\r\n" + first + "\r\n+CMGL: 2,1,,20\r\n" + second
                            + "\r\n+CMGL: 5,1,,20\r\n" + second + "\r\n\r\nOK\r\n"));
        QCOMPARE(exchange(port, "AT+CMGD=2\r", "OK\r\n"), QByteArray("\r\nOK\r\n"));
        QCOMPARE(exchange(port, "AT+CMGD=2\r", "ERROR: 321\r\n"), QByteArray("\r\n+CMS ERROR: 321\r\n"));
        QCOMPARE(modem.storedSms().keys(), (QList<int>{1, 5}));

        // A listing that hangs after the first entry.
        modem.setSmsListLimit(1);
        QCOMPARE(exchange(port, "AT+CMGL=4\r", "OK\r\n", 300),
                 QByteArray("\r\n+CMGL: 1,1,,23\r\n" + first + "\r\n"));
        // Text mode has no numeric listing.
        QCOMPARE(exchange(port, "AT+CMGF=1\r", "OK\r\n"), QByteArray("\r\nOK\r\n"));
        QCOMPARE(exchange(port, "AT+CMGL=4\r", "302\r\n"), QByteArray("\r\n+CMS ERROR: 302\r\n"));
    }

    void timedUnsolicitedAndVanish()
    {
        SimModem modem(Make::SimCom);
        QVERIFY(modem.start());
        QSerialPort port;
        QVERIFY(openPort(port, modem.devicePath(), 115200));
        modem.sendUnsolicited("\r\nRING\r\n", 100);
        modem.vanishAfter(300);
        QCOMPARE(exchange(port, QByteArray(), "RING\r\n"), QByteArray("\r\nRING\r\n"));
        QVERIFY(!modem.hasVanished());
        // A quiet modem has done all it was told to do later, vanishing too.
        modem.waitUntilQuiet();
        QVERIFY(modem.hasVanished());
    }
};

QTEST_GUILESS_MAIN(TestSimModem)
#include "tst_simmodem.moc"
