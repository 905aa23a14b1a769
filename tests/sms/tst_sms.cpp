// Messages and their parts: text, sender, time and validity of incomplete
// messages, and error texts.

#include "sms.h"

#include <QtTest>

namespace {

const QString STAMP_OCTETS = QStringLiteral("12501131216100");
const QDateTime STAMP(QDate(2021, 5, 11), QTime(13, 12, 16));
const QString TEXT_ERROR = QStringLiteral("SmsPduDecoder: Error reading text of message.");

QString hexByte(int value)
{
    return QStringLiteral("%1").arg(value & 0xFF, 2, 16, QLatin1Char('0'));
}

// An 8-bit SMS-DELIVER from +79161234567; with `total` > 0 it carries a
// concatenation header (8-bit reference).
QString deliver(const QByteArray& text, int reference = 0, int total = 0, int sequence = 0,
                const QString& sender = QStringLiteral("0B919761214365F7"))
{
    QString header;
    if (total > 0)
        header = "050003" + hexByte(reference) + hexByte(total) + hexByte(sequence);
    const int udl = header.size() / 2 + text.size();
    return "07919761989901F0" + QString(total > 0 ? "40" : "00") + sender + "0004" + STAMP_OCTETS
        + hexByte(udl) + header + QString::fromLatin1(text.toHex());
}

// A part of a concatenated 7-bit message whose text cannot be read: the
// header is fine (number and count are known), the text is cut short.
QString brokenPart(int reference, int total, int sequence)
{
    return "07919761989901F0400B919761214365F70000" + STAMP_OCTETS + "40" "050003" + hexByte(reference)
        + hexByte(total) + hexByte(sequence) + "C834";
}

Sms message(const QStringList& pdus)
{
    Sms sms;
    for (const QString& pdu : pdus)
        sms.addPart(Sms::decode(pdu));
    return sms;
}

} // namespace

class TestSms : public QObject
{
    Q_OBJECT

private slots:
    void assembly_data();
    void assembly();
    void addPartReplacesSetPartKeeps();
};

void TestSms::assembly_data()
{
    QTest::addColumn<QStringList>("pdus");
    QTest::addColumn<int>("size");
    QTest::addColumn<QString>("sender");
    QTest::addColumn<bool>("valid");
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("error");
    QTest::addColumn<bool>("part0Valid");
    QTest::addColumn<QDateTime>("dateTime");

    const QString own = QStringLiteral("+79161234567");
    const QString noError = QStringLiteral("Sms()");
    QTest::newRow("parts out of order") << QStringList { deliver("b", 5, 2, 2), deliver("a", 5, 2, 1) } << 2 << own
                                        << true << "ab" << noError << true << STAMP;
    // The part that never arrived reads as a default part: valid, no time.
    QTest::newRow("only a later part") << QStringList { deliver("second half", 0x5A, 2, 2) } << 2 << own << true
                                       << "[missing text]second half" << noError << true << QDateTime();
    QTest::newRow("middle part missing") << QStringList { deliver("A", 7, 3, 1), deliver("C", 7, 3, 3) } << 3
                                         << own << true << "A[missing text]C" << noError << true << STAMP;
    // An invalid part never fixes size or sender, but is stored under its number.
    QTest::newRow("only an invalid part") << QStringList { "07919761989901F0000BA19761214365F7000412" } << 0
                                          << QString() << true << QString() << noError << false << QDateTime();
    QTest::newRow("invalid part 0") << QStringList { brokenPart(5, 2, 1), deliver("b", 5, 2, 2) } << 2 << own
                                    << false << "[missing part]b"
                                    << "Sms([invalid part 0: " + TEXT_ERROR + "])" << false << QDateTime();
    // Size and sender come from the first valid part, whatever later ones say.
    QTest::newRow("first valid part fixes size and sender")
        << QStringList { deliver("a", 3, 2, 1), deliver("b", 3, 3, 2, "0B919721436587F9"), deliver("c", 3, 3, 3) }
        << 2 << own << true << "ab" << noError << true << STAMP;
}

void TestSms::assembly()
{
    QFETCH(QStringList, pdus);
    QFETCH(int, size);
    QFETCH(QString, sender);
    QFETCH(bool, valid);
    QFETCH(QString, text);
    QFETCH(QString, error);
    QFETCH(bool, part0Valid);
    QFETCH(QDateTime, dateTime);

    const Sms sms = message(pdus);
    QCOMPARE(sms.getSize(), size);
    QCOMPARE(sms.getSenderAddress(), sender);
    QCOMPARE(sms.isValid(), valid);
    QCOMPARE(sms.getText(), text);
    QCOMPARE(sms.getErrorString(), error);
    QCOMPARE(sms[0].isValid(), part0Valid);
    QCOMPARE(sms.getPart(0).isValid(), part0Valid);
    QCOMPARE(sms.getDateTime(), dateTime);
}

void TestSms::addPartReplacesSetPartKeeps()
{
    Sms sms;
    sms.addPart(Sms::decode(deliver("old", 4, 2, 1)));
    const SmsPart& stored = sms.addPart(Sms::decode(deliver("new", 4, 2, 1)));
    QCOMPARE(stored.getText(), QStringLiteral("new"));
    QCOMPARE(sms[0].getText(), QStringLiteral("new"));

    SmsData data;
    QVERIFY(data.setPart(0, Sms::decode(deliver("first", 4, 2, 1))));
    QVERIFY(!data.setPart(0, Sms::decode(deliver("second", 4, 2, 1))));
    QCOMPARE(data.parts.value(0).getText(), QStringLiteral("first"));
    // setPart does not touch size or sender.
    QCOMPARE(data.size, 0);
}

QTEST_GUILESS_MAIN(TestSms)
#include "tst_sms.moc"
