// SMS-DELIVER decoding: real PDUs with their decoded fields, the decoder's
// field-by-field failures and time stamps as Qt reads them.
// Random and malformed input is the job of fuzz/fuzz_sms_decode.

#include "sms.h"
#include "smspdudecoder.h"

#include <QDateTime>
#include <QScopeGuard>
#include <QtTest>

#include <ctime>

namespace {

const QDateTime STAMP(QDate(2021, 5, 11), QTime(13, 12, 16));
const QString OWN = QStringLiteral("+79161234567");
const QString MISSING = QStringLiteral("[missing text]");

// The real PDUs below were built with gammu's SMS-DELIVER encoder (SMSC
// +79168999100, sender +79161234567, time stamp 2021-05-11 13:12:16, zone 00).
const char PLAIN_7BIT[] =
    "07919761989901F0000B919761214365F70000125011312161000DC8329BFD6681EE6F399B1C02";
const char UCS2_CYRILLIC[] =
    "07919761989901F0000B919761214365F700081250113121610016041F04400438043204350442002C0020043C04"
    "380440";
const char EIGHT_BIT[] = "07919761989901F0000B919761214365F70004125011312161000A382D6269742064617461";
const char ALPHANUMERIC[] =
    "07919761989901F0000DD0CDF2396C7CBB0100001250113121610012D9775D0E1287D961F7B80C8AC15C3518";
const char UNKNOWN_TYPE_SENDER[] =
    "07919761989901F0000B819861214365F700001250113121610002C834";
// 7-bit, 8-bit reference 0xA2, a full first part (160 septets) and a second of 22.
const char CONCAT7_REF8_PART1[] =
    "07919761989901F0400B919761214365F7000012501131216100A0050003A2020182C16030180C0683C16030180C"
    "0683C16030180C0683C16030180C0683C16030180C0683C16030180C0683C16030180C0683C16030180C0683C160"
    "30180C0683C16030180C0683C16030180C0683C16030180C0683C16030180C0683C16030180C0683C16030180C06"
    "83C16030180C0683C16030180C0683C16030180C0683C16030180C0683";
const char CONCAT7_REF8_PART2[] =
    "07919761989901F0400B919761214365F700001250113121610016050003A20202E8E1341BF43683DAE5F93C7C2E"
    "03";
// 7-bit, 16-bit reference 0x047E, second part: "CCCCCCCCabcdefg" (23 septets with the header).
const char CONCAT7_REF16_PART2[] =
    "07919761989901F0400B919761214365F700001250113121610017060804047E0202C3E170381C0E8761F1985C36"
    "9F01";
// UCS2, 8-bit reference 0xA2, second part: "конец".
const char CONCAT_UCS2_REF8_PART2[] =
    "07919761989901F0400B919761214365F700081250113121610010050003A20202043A043E043D04350446";

// Service centre, first octet 00 (40: with a header), sender +79161234567:
// the common heads of the hand-made PDUs.
const QString HEAD = QStringLiteral("07919761989901F0000B919761214365F7");
const QString HEAD_UDH = QStringLiteral("07919761989901F0400B919761214365F7");
const QString STAMP_OCTETS = QStringLiteral("12501131216100");

QString err(const char* message)
{
    return QStringLiteral("SmsPduDecoder: %1").arg(QLatin1String(message));
}

// A row of decodesFields: a part stamped STAMP, message type 0, valid unless
// `error` is given.
void row(const char* name, const QString& pdu, const QString& text, const QString& sender = OWN,
         const QByteArray& partId = QByteArray(), int partNumber = 0, int partCount = 1,
         const QString& error = QString())
{
    QTest::newRow(name) << pdu << error.isNull() << sender << text << STAMP << partId << partNumber
                        << partCount << 0 << error;
}

} // namespace

class TestSmsPduDecoder : public QObject
{
    Q_OBJECT

private slots:
    void decodesFields_data();
    void decodesFields();
    void failures_data();
    void failures();
    void everyPrefixOfAValidPduIsInvalid();
    void timestampsAsQtReadsThem();
};

void TestSmsPduDecoder::decodesFields_data()
{
    QTest::addColumn<QString>("pdu");
    QTest::addColumn<bool>("valid");
    QTest::addColumn<QString>("sender");
    QTest::addColumn<QString>("text");
    QTest::addColumn<QDateTime>("dateTime");
    QTest::addColumn<QByteArray>("partId");
    QTest::addColumn<int>("partNumber");
    QTest::addColumn<int>("partCount");
    QTest::addColumn<int>("messageType");
    QTest::addColumn<QString>("error");

    row("7-bit", PLAIN_7BIT, "Hello, world!");
    // 13 semi-octets = 7 octets = 7 septets: the whole name.
    row("alphanumeric sender", ALPHANUMERIC, "Your balance 10.50", "MegaFon");
    // Type 0x81 (unknown): the digits 89161234567 are unpacked as 7-bit text.
    row("unknown-type sender read as text", UNKNOWN_TYPE_SENDER, "Hi", QString::fromLatin1("\x18" "C\x05\x19Tl"));

    // After a 6-octet header the length is reduced by 6 (not by the 7 septets
    // the header and its fill bit take): a full part asks for one octet more
    // than there is.
    row("7-bit ref8 full part", CONCAT7_REF8_PART1, MISSING, OWN, "\xA2", 0, 2,
        err("Error reading text of message."));
    // The fill bit is not skipped: the septets come out shifted by one bit.
    row("7-bit ref8 short part", CONCAT7_REF8_PART2, QString::fromLatin1("hCSYA^MAZKggCOK\x01"), OWN, "\xA2", 1, 2);
    // A 7-octet header needs no fill bits; the one extra septet is padding (0).
    row("7-bit ref16 aligned part", CONCAT7_REF16_PART2, "CCCCCCCCabcdefg", OWN, QByteArray::fromHex("047E"), 1, 2);
    row("ucs2 ref8 part 2", CONCAT_UCS2_REF8_PART2, QString::fromUtf8("конец"), OWN, "\xA2", 1, 2);

    // Hand-made variations.
    row("zone octet ignored", HEAD + "0000" "125011312161" "8A" "02C834", "Hi");
    row("odd digit count drops filler", "07919761989901F00005919721F3" "0004" + STAMP_OCTETS + "024142", "AB",
        "+79123");
    row("network type, digits above nine as letters",
        "07919761989901F00004B1BADC" "0004" + STAMP_OCTETS + "024142", "AB", "+abcd");
    // Septet 0 is '@' in the default alphabet; the text ends there.
    row("7-bit text ends at septet 0", HEAD + "0000" + STAMP_OCTETS + "03418010", "A");
    // No alphabet table: septet 0x02 ('$' in GSM) stays character 2.
    row("no alphabet table", HEAD + "0000" + STAMP_OCTETS + "024201", QString::fromLatin1("B\x02"));
    row("8-bit text ends at zero byte", HEAD + "0004" + STAMP_OCTETS + "0441420043", "AB");
    // Only the first element is understood; the rest of the header becomes text.
    row("second header element read as text", HEAD_UDH + "0004" + STAMP_OCTETS + "0C080003010201240101616263",
        QString::fromLatin1("$\x01\x01"), OWN, "\x01", 0, 2);
    // The length left after the header is counted in 8 bits: 2 - 1 - 5 is 252.
    row("length wraps below the header",
        HEAD_UDH + "0004" + STAMP_OCTETS + "02050003010201" + QString("41").repeated(252),
        QString(252, QLatin1Char('A')), OWN, "\x01", 0, 2);

    QTest::newRow("type bit 1 set") << "07919761989901F0060B919761214365F70004" + STAMP_OCTETS + "024142" << true
                                    << OWN << "AB" << STAMP << QByteArray() << 0 << 1 << 2 << QString();
    // A time stamp with non-decimal semi-octets gives no date-time, no failure.
    QTest::newRow("unparsable time stamp") << HEAD + "0004" "FF501131216100" "024142" << true << OWN << "AB"
                                           << QDateTime() << QByteArray() << 0 << 1 << 0 << QString();
}

void TestSmsPduDecoder::decodesFields()
{
    QFETCH(QString, pdu);
    QFETCH(bool, valid);
    QFETCH(QString, sender);
    QFETCH(QString, text);
    QFETCH(QDateTime, dateTime);
    QFETCH(QByteArray, partId);
    QFETCH(int, partNumber);
    QFETCH(int, partCount);
    QFETCH(int, messageType);
    QFETCH(QString, error);

    const SmsPart part = Sms::decode(pdu);
    QCOMPARE(part.isValid(), valid);
    QCOMPARE(part.getErrorString(), error);
    QCOMPARE(part.getSenderAddress(), sender);
    QCOMPARE(part.getText(), text);
    QCOMPARE(part.getDateTime(), dateTime);
    if (dateTime.isValid())
        QCOMPARE(part.getDateTime().timeSpec(), Qt::LocalTime);
    QCOMPARE(part.getPartId(), partId);
    QCOMPARE(part.getPartNumber(), partNumber);
    QCOMPARE(part.getPartCount(), partCount);
    QCOMPARE(part.getMessageType(), messageType);
}

void TestSmsPduDecoder::failures_data()
{
    QTest::addColumn<QString>("pdu");
    QTest::addColumn<QString>("error");
    QTest::addColumn<QString>("sender");
    QTest::addColumn<QString>("text");
    QTest::addColumn<int>("messageType");

    // Fields read before the failure stay (sender, message type); the later
    // ones keep their defaults. A null message: the failure sets no text.
    const auto fail = [](const char* name, const QString& pdu, const QString& sender, int type, const char* message,
                         const QString& text = MISSING) {
        QTest::newRow(name) << pdu << (message ? err(message) : QString()) << sender << text << type;
    };
    const QString stamped = HEAD + "0000" + STAMP_OCTETS;
    fail("empty", "", "", 3, "Error reading service number.");
    fail("zero service centre length", "00" "000B919761214365F70000" + STAMP_OCTETS + "024142", "", 3, nullptr);
    fail("first octet is last", "07919761989901F000", "", 3, "Error reading message type.");
    fail("no address length", "07919761989901F00000", "", 0, "Error reading address length.");
    fail("address length 255 wraps to 0", "07919761989901F000FF91" + QString(40, QLatin1Char('1')), "", 0,
         "Error reading sender address.");
    fail("national type", "07919761989901F0000BA19761214365F7000412", "", 0, "Error reading address type 32.");
    fail("protocol identifier is last", HEAD + "00", OWN, 0, nullptr);
    fail("coding octet is last", HEAD + "0000", OWN, 0, "Error reading data coding scheme.");
    // The zone octet is skipped only when another octet follows it.
    fail("length octet is last", stamped, OWN, 0, "Error reading user data length.");
    fail("7-bit text short", stamped + "0AC834", OWN, 0, "Error reading text of message.");
    fail("7-bit empty text", stamped + "0000", OWN, 0, "Error reading text of message.");
    // For 8-bit and UCS2 a failed read leaves the text empty and no message.
    fail("8-bit text short", HEAD + "0004" + STAMP_OCTETS + "054142", OWN, 0, nullptr, "");
    fail("header IEI 24", HEAD_UDH + "0004" + STAMP_OCTETS + "0703240101616263", OWN, 0,
         "Error reading user header data.");
    fail("header cut short", HEAD_UDH + "0004" + STAMP_OCTETS + "0905000301", OWN, 0,
         "Error reading user header data.");
}

void TestSmsPduDecoder::failures()
{
    QFETCH(QString, pdu);
    QFETCH(QString, error);
    QFETCH(QString, sender);
    QFETCH(QString, text);
    QFETCH(int, messageType);

    const SmsPart part = Sms::decode(pdu);
    QVERIFY(!part.isValid());
    QCOMPARE(part.getErrorString(), error);
    QCOMPARE(part.getSenderAddress(), sender);
    QCOMPARE(part.getText(), text);
    QCOMPARE(part.getMessageType(), messageType);
    QCOMPARE(part.getPartCount(), 1);
}

void TestSmsPduDecoder::everyPrefixOfAValidPduIsInvalid()
{
    // One decoder serves all the prefixes: a failed decoding leaves nothing
    // behind for the next one and does not change a part already returned.
    for (const char* hex : { PLAIN_7BIT, UCS2_CYRILLIC, EIGHT_BIT, ALPHANUMERIC, UNKNOWN_TYPE_SENDER,
                             CONCAT7_REF8_PART2, CONCAT7_REF16_PART2, CONCAT_UCS2_REF8_PART2 }) {
        const QByteArray octets = QByteArray::fromHex(hex);
        SmsPduDecoder decoder;
        const SmsPart whole = decoder.decodeMessage(octets);
        const QString text = whole.getText();
        QVERIFY(whole.isValid());
        for (int length = 0; length < octets.size(); ++length)
            QVERIFY2(!decoder.decodeMessage(octets.left(length)).isValid(),
                     qPrintable(QStringLiteral("prefix of %1 octets of %2 decoded").arg(length).arg(hex)));
        QVERIFY(whole.isValid());
        QCOMPARE(whole.getText(), text);
        QCOMPARE(decoder.decodeMessage(octets).getText(), text);
        QVERIFY(decoder.decodeMessage(octets).isValid());
    }
}

void TestSmsPduDecoder::timestampsAsQtReadsThem()
{
    // The decoder takes a shorter way for plain times; this holds it to
    // QDateTime::fromString("yyyyMMddHHmmss") in the process's zone, texts
    // it refuses included: a time skipped by a daylight-saving change (the
    // spring gap and autumn overlap of Berlin), impossible dates, letters.
    const QByteArray savedZone = qgetenv("TZ");
    const bool hadZone = qEnvironmentVariableIsSet("TZ");
    const auto restore = qScopeGuard([&] {
        hadZone ? qputenv("TZ", savedZone) : qunsetenv("TZ");
        tzset();
    });
    for (const char* zone : {"UTC", "Europe/Berlin"}) {
        qputenv("TZ", zone);
        tzset();
        for (const QString digits : {"210511131216", "210328023000", "211031023000", "200229120000", "210229120000",
                                     "211301000000", "210511240000", "2105111312f6", "ffffffffffff"}) {
            QString octets;
            for (int i = 0; i < digits.size(); i += 2)
                octets += digits.mid(i + 1, 1) + digits.mid(i, 1);
            // 7-bit text "1" after the time stamp and its zone octet.
            const QDateTime got = Sms::decode(HEAD + "0000" + octets + "000131").getDateTime();
            const QDateTime expected = QDateTime::fromString("20" + digits, QStringLiteral("yyyyMMddHHmmss"));
            QCOMPARE(got.isValid(), expected.isValid());
            QCOMPARE(got.date(), expected.date());
            QCOMPARE(got.time(), expected.time());
            if (expected.isValid())
                QCOMPARE(got.toMSecsSinceEpoch(), expected.toMSecsSinceEpoch());
        }
    }
}

QTEST_GUILESS_MAIN(TestSmsPduDecoder)
#include "tst_smspdudecoder.moc"
