// The PDU toolkit: SMS-SUBMIT generation (checked octet by octet, read back,
// and decoded by an independent peer, gammu), and the status-report and
// user-data header explanations. Random and malformed input, and random texts
// read back, are the job of fuzz/fuzz_pdu.

#include "gammupeer.h"
#include "pdu.h"
#include "smspdudecoder.h"
#include "smspduencoder.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QRandomGenerator>
#include <QRegularExpression>
#include <QtTest>

#include <tuple>

namespace {

// User data octets of a generated TPDU (after the UDL octet).
int userDataOctets(const PDU& pdu)
{
    const QByteArray tpdu = pdu.tpdu();
    const int digits = static_cast<uchar>(tpdu.at(2));
    int pos = 2 + 2 + (digits + 1) / 2 + 2; // first, MR, address, PID, DCS
    if (tpdu.at(0) & 0x10)
        ++pos;                               // relative validity
    return tpdu.size() - pos - 1;
}

} // namespace

class TestPdu : public QObject
{
    Q_OBJECT

private slots:
    void knownSubmits_data();
    void knownSubmits();
    void splitting_data();
    void splitting();
    void rejects_data();
    void rejects();
    void referencesCount();
    void gsm7Alphabet();
    void septetPacking();
    void validity_data();
    void validity();
    void statusMeanings_data();
    void statusMeanings();
    void explainStatusReport_data();
    void explainStatusReport();
    void explainUserDataHeader_data();
    void explainUserDataHeader();
    void peerDecodesGeneratedSubmits();
    void peerStatusReportsAreExplained();
};

void TestPdu::knownSubmits_data()
{
    QTest::addColumn<QString>("recipient");
    QTest::addColumn<QString>("text");
    QTest::addColumn<int>("validity");
    QTest::addColumn<bool>("statusReport");
    QTest::addColumn<int>("numberType");
    QTest::addColumn<QString>("serviceCentre");
    QTest::addColumn<QString>("hex");
    QTest::addColumn<int>("length");

    // The alphabets and the text itself are checked against gammu below;
    // these rows pin the header fields octet by octet.
    const int autoType = PDU::AutoNumberType;
    // The first one is what gammu's encoder makes of the same message.
    QTest::newRow("7-bit with validity") << "+79161234567" << "hello" << 24 * 60 << false << autoType << ""
                                         << "0011000B919761214365F70000A705E8329BFD06" << 19;
    QTest::newRow("status report, national digits")
        << "8 916 123-45-67" << "hello" << 0 << true << autoType << ""
        << "0021000B819861214365F7000005E8329BFD06" << 18;
    QTest::newRow("national type") << "89161234567" << "hello" << 0 << false << int(PDU::NationalNumber) << ""
                                   << "0001000BA19861214365F7000005E8329BFD06" << 18;
    QTest::newRow("star and hash") << "*100#" << "A" << 0 << false << autoType << ""
                                   << "00010005811A00FB00000141" << 11;
    QTest::newRow("service centre") << "+79161234567" << "hello" << 0 << false << autoType << "+79168999100"
                                    << "07919761989901F001000B919761214365F7000005E8329BFD06" << 18;
    QTest::newRow("empty text") << "+79161234567" << "" << 0 << false << autoType << ""
                                << "0001000B919761214365F7000000" << 13;
}

void TestPdu::knownSubmits()
{
    QFETCH(QString, recipient);
    QFETCH(QString, text);
    QFETCH(int, validity);
    QFETCH(bool, statusReport);
    QFETCH(int, numberType);
    QFETCH(QString, serviceCentre);
    QFETCH(QString, hex);
    QFETCH(int, length);

    PDU::SubmitOptions options;
    options.setValidityMinutes(validity);
    options.setStatusReport(statusReport);
    options.setNumberType(PDU::NumberType(numberType));
    options.setServiceCentre(serviceCentre);
    QString error = QStringLiteral("not cleared");
    const QList<PDU> pdus = zelmodems::encodeSmsSubmit(recipient, text, options, &error);
    QCOMPARE(error, QString());
    QCOMPARE(pdus.size(), 1);
    QCOMPARE(pdus.at(0).toHex(), hex);
    QCOMPARE(pdus.at(0).tpduLength(), length);

    const PDU::Submit back = zelmodems::decodeSmsSubmit(pdus.at(0).toHex());
    QVERIFY2(back.valid(), qPrintable(back.error()));
    QCOMPARE(back.text(), text);
    QCOMPARE(back.statusReport(), statusReport);
    QCOMPARE(back.validityMinutes(), validity);
    QVERIFY(back.header().isEmpty());
    // The same TPDU without the service-centre part.
    const PDU::Submit bare = zelmodems::decodeSmsSubmit(QString::fromLatin1(pdus.at(0).tpdu().toHex()), false);
    QCOMPARE(bare.text(), text);
    QCOMPARE(bare.recipient(), back.recipient());
}

void TestPdu::splitting_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<bool>("reference16");
    QTest::addColumn<QList<int>>("partSizes"); // septets (GSM) or UTF-16 units (UCS2) per part
    QTest::addColumn<bool>("ucs2");

    const QString a160(160, QLatin1Char('a'));
    const QString b10(10, QLatin1Char('b'));
    const QString euro = QString::fromUtf8("€");
    const QString zhe = QString::fromUtf8("Ж");
    QTest::newRow("160 septets fit one") << a160 << false << QList<int> { 160 } << false;
    QTest::newRow("161 septets take two") << a160 + "b" << false << QList<int> { 153, 8 } << false;
    QTest::newRow("16-bit reference") << a160 + "b" << true << QList<int> { 152, 9 } << false;
    QTest::newRow("three parts") << QString(400, QLatin1Char('x')) << false << QList<int> { 153, 153, 94 } << false;
    // 152 septets and an escape pair overrun a part of 153: the pair moves whole.
    QTest::newRow("escape pair not split") << a160.left(152) + euro + b10 << false << QList<int> { 152, 12 } << false;
    QTest::newRow("escape pair just fits") << a160.left(151) + euro + b10 << false << QList<int> { 153, 10 } << false;
    QTest::newRow("70 ucs2 fit one") << zhe.repeated(70) << false << QList<int> { 70 } << true;
    QTest::newRow("71 ucs2 take two") << zhe.repeated(71) << false << QList<int> { 67, 4 } << true;
    QTest::newRow("ucs2 16-bit reference") << zhe.repeated(71) << true << QList<int> { 66, 5 } << true;
    // U+1F600 takes two UTF-16 units; they stay in one part.
    QTest::newRow("surrogate pair not split") << zhe.repeated(66) + QString::fromUtf8("😀") + b10 << false
                                              << QList<int> { 66, 12 } << true;
}

void TestPdu::splitting()
{
    QFETCH(QString, text);
    QFETCH(bool, reference16);
    QFETCH(QList<int>, partSizes);
    QFETCH(bool, ucs2);

    PDU::SubmitOptions options;
    options.setReference16Bit(reference16);
    options.setConcatReference(0x1234);
    const QList<PDU> pdus = zelmodems::encodeSmsSubmit("+79161234567", text, options);
    QCOMPARE(pdus.size(), partSizes.size());

    int pos = 0;
    for (int i = 0; i < pdus.size(); ++i) {
        const PDU& pdu = pdus.at(i);
        QCOMPARE(pdu.partNumber(), i + 1);
        QCOMPARE(pdu.partCount(), pdus.size());
        QVERIFY(userDataOctets(pdu) <= 140);
        const PDU::Submit submit = zelmodems::decodeSmsSubmit(pdu.toHex());
        QVERIFY2(submit.valid(), qPrintable(submit.error()));
        QCOMPARE(submit.alphabet(), ucs2 ? PDU::Ucs2Alphabet : PDU::Gsm7Alphabet);
        if (pdus.size() > 1) {
            QCOMPARE(submit.header().size(), reference16 ? 7 : 6);
            QCOMPARE(submit.concatReference(), reference16 ? 0x1234 : 0x34);
            QCOMPARE(submit.partNumber(), i + 1);
            QCOMPARE(submit.partCount(), pdus.size());
        }
        const int size = ucs2 ? submit.text().size() : PDU::gsm7Length(submit.text());
        QCOMPARE(size, partSizes.at(i));
        QCOMPARE(submit.text(), text.mid(pos, submit.text().size()));
        pos += submit.text().size();
    }
    QCOMPARE(pos, text.size());
}

void TestPdu::rejects_data()
{
    QTest::addColumn<QString>("recipient");
    QTest::addColumn<QString>("text");
    QTest::addColumn<int>("alphabet");
    QTest::addColumn<QString>("error");

    const int autoAlphabet = PDU::AutoAlphabet;
    QTest::newRow("empty number") << "" << "x" << autoAlphabet << "Invalid recipient number \"\"";
    QTest::newRow("letters") << "+7916abc" << "x" << autoAlphabet << "Invalid recipient number \"+7916abc\"";
    QTest::newRow("plus inside") << "79+16" << "x" << autoAlphabet << "Invalid recipient number \"79+16\"";
    QTest::newRow("21 digits") << QString(21, QLatin1Char('1')) << "x" << autoAlphabet
                               << "Invalid recipient number \"111111111111111111111\"";
    QTest::newRow("cyrillic in gsm") << "+7916" << QString::fromUtf8("Да") << int(PDU::Gsm7Alphabet)
                                     << "The text has characters outside the GSM 7-bit alphabet";
    QTest::newRow("8-bit text") << "+7916" << "x" << int(PDU::EightBitAlphabet)
                                << "Text messages are sent in the GSM 7-bit or UCS2 alphabet";
    QTest::newRow("256 parts") << "+7916" << QString(153 * 255 + 1, QLatin1Char('a')) << autoAlphabet
                               << "The text needs 256 messages, more than 255";
}

void TestPdu::rejects()
{
    QFETCH(QString, recipient);
    QFETCH(QString, text);
    QFETCH(int, alphabet);
    QFETCH(QString, error);

    PDU::SubmitOptions options;
    options.setAlphabet(PDU::Alphabet(alphabet));
    QString message;
    QVERIFY(zelmodems::encodeSmsSubmit(recipient, text, options, &message).isEmpty());
    QCOMPARE(message, error);
    // Without an error pointer it just gives nothing.
    QVERIFY(zelmodems::encodeSmsSubmit(recipient, text, options).isEmpty());
}

void TestPdu::referencesCount()
{
    // Without a given reference each long message gets the next one.
    const QString text(200, QLatin1Char('r'));
    const PDU::Submit a = zelmodems::decodeSmsSubmit(zelmodems::encodeSmsSubmit("+7916", text).at(0).toHex());
    const PDU::Submit b = zelmodems::decodeSmsSubmit(zelmodems::encodeSmsSubmit("+7916", text).at(0).toHex());
    QVERIFY(a.concatReference() >= 0 && a.concatReference() <= 0xFF);
    QCOMPARE(b.concatReference(), (a.concatReference() + 1) & 0xFF);
}

void TestPdu::gsm7Alphabet()
{
    // Every character of the default alphabet (except the escape) and of the
    // extension table survives septets and back, at its table position.
    const QString basic = QString::fromUtf8(
        "@£$¥èéùìòÇ\nØø\rÅåΔ_ΦΓΛΩΠΨΣΘΞ\x1F" "ÆæßÉ !\"#¤%&'()*+,-./0123456789:;<=>?¡ABCDEFGHIJKLMNOPQRSTUVWXYZÄÖÑÜ§"
        "¿abcdefghijklmnopqrstuvwxyzäöñüà");
    QString table = basic;
    table.remove(QChar(0x1F)); // placeholder for the escape position
    QCOMPARE(table.size(), 127);
    bool ok = false;
    const QByteArray septets = PDU::toGsm7(table, &ok);
    QVERIFY(ok);
    for (int i = 0; i < septets.size(); ++i)
        QCOMPARE(int(septets.at(i)), i < 27 ? i : i + 1);
    QCOMPARE(PDU::fromGsm7(septets), table);

    const QString extension = QString::fromUtf8("\f^{}\\[~]|€");
    QCOMPARE(PDU::toGsm7(extension).toHex(), QByteArray("1b0a1b141b281b291b2f1b3c1b3d1b3e1b401b65"));
    QCOMPARE(PDU::fromGsm7(PDU::toGsm7(extension)), extension);
    QCOMPARE(PDU::gsm7Length(extension), 20);
    QCOMPARE(PDU::gsm7Length(QString::fromUtf8("abcЖ")), -1);
    PDU::toGsm7(QString::fromUtf8("Ж"), &ok);
    QVERIFY(!ok);
    // An unknown escape pair reads as its second septet; a trailing escape is dropped.
    QCOMPARE(PDU::fromGsm7(QByteArray::fromHex("1b41421b")), QStringLiteral("AB"));
}

void TestPdu::septetPacking()
{
    // Three packers written apart agree: the toolkit's (with fill bits for a
    // header), the USSD packer and the SMS-DELIVER unpacker.
    QRandomGenerator random(7);
    for (int round = 0; round < 1000; ++round) {
        QByteArray septets(int(random.bounded(170)), '\0');
        for (char& c : septets)
            c = char(random.bounded(0x80));
        QCOMPARE(PDU::packSeptets(septets).toHex(), SmsPduEncoder::encode(septets, ' ').toHex());
        QCOMPARE(SmsPduDecoder::septetsToOctets(PDU::packSeptets(septets), septets.size()), septets);
        const int fill = int(random.bounded(7));
        const QByteArray packed = PDU::packSeptets(septets, fill);
        QCOMPARE(packed.size(), (fill + 7 * septets.size() + 7) / 8);
        QCOMPARE(static_cast<uchar>(packed.isEmpty() ? 0 : packed.at(0)) & ((1 << fill) - 1), 0);
        QCOMPARE(PDU::unpackSeptets(packed, septets.size(), fill), septets);
    }
    // Asking for more septets than there are gives what there is.
    QCOMPARE(PDU::unpackSeptets(QByteArray::fromHex("E8329BFD06"), 99), QByteArray("hello"));
}

void TestPdu::validity_data()
{
    QTest::addColumn<int>("minutes");
    QTest::addColumn<int>("octet");
    QTest::addColumn<int>("meaning");

    QTest::newRow("none") << 0 << -1 << 0;
    QTest::newRow("5 minutes") << 5 << 0 << 5;
    QTest::newRow("6 minutes") << 6 << 1 << 10;
    QTest::newRow("12 hours") << 720 << 143 << 720;
    QTest::newRow("12 h 1 min") << 721 << 144 << 750;
    QTest::newRow("1 day") << 1440 << 167 << 1440;
    QTest::newRow("1 day 1 min") << 1441 << 168 << 2880;
    QTest::newRow("30 days") << 30 * 1440 << 196 << 30 * 1440;
    QTest::newRow("31 days") << 31 * 1440 << 197 << 35 * 1440;
    QTest::newRow("63 weeks") << 63 * 7 * 1440 << 255 << 63 * 7 * 1440;
    QTest::newRow("beyond") << 100 * 7 * 1440 << 255 << 63 * 7 * 1440;
}

void TestPdu::validity()
{
    QFETCH(int, minutes);
    QFETCH(int, octet);
    QFETCH(int, meaning);
    QCOMPARE(PDU::validityOctet(minutes), octet);
    if (octet >= 0)
        QCOMPARE(PDU::validityMinutes(octet), meaning);
}

void TestPdu::statusMeanings_data()
{
    QTest::addColumn<int>("status");
    QTest::addColumn<int>("statusClass");
    QTest::addColumn<QString>("meaning");

    QTest::newRow("02") << 0x02 << int(PDU::StatusCompleted) << "Short message replaced by the SC";
    QTest::newRow("05") << 0x05 << int(PDU::StatusCompleted) << "Reserved";
    QTest::newRow("10") << 0x10 << int(PDU::StatusCompleted) << "Specific to the service centre";
    QTest::newRow("21") << 0x21 << int(PDU::StatusTemporaryRetrying) << "SME busy";
    QTest::newRow("30") << 0x30 << int(PDU::StatusTemporaryRetrying) << "Specific to the service centre";
    QTest::newRow("4a") << 0x4A << int(PDU::StatusPermanentError) << "Reserved";
    QTest::newRow("62") << 0x62 << int(PDU::StatusTemporaryGivenUp) << "No response from SME";
    QTest::newRow("80") << 0x80 << int(PDU::StatusReserved) << "Reserved";
    QTest::newRow("-1") << -1 << int(PDU::StatusReserved) << "Invalid status value";
}

void TestPdu::statusMeanings()
{
    QFETCH(int, status);
    QFETCH(int, statusClass);
    QFETCH(QString, meaning);
    QCOMPARE(int(PDU::statusClass(status)), statusClass);
    QCOMPARE(PDU::statusMeaning(status), meaning);
}

void TestPdu::explainStatusReport_data()
{
    QTest::addColumn<QString>("pdu");
    QTest::addColumn<bool>("withServiceCentre");
    QTest::addColumn<QString>("explanation");

    QTest::newRow("delivered") << "07919761989901F0062A0B919761214365F7125011312161211250113121026100" << true
                               << "SMS-STATUS-REPORT\n"
                                  "  Message reference: 42\n"
                                  "  Recipient: +79161234567 (international)\n"
                                  "  Service centre time stamp: 2021-05-11 13:12:16 +03:00\n"
                                  "  Discharge time: 2021-05-11 13:12:20 +04:00\n"
                                  "  Status: 0x00 (transaction completed): Short message received by the SME";
    QTest::newRow("failed, negative zone, no SMSC") << "06070B819861214365F7125011312161891250113121AAFF45" << false
        << "SMS-STATUS-REPORT\n"
           "  Message reference: 7\n"
           "  Recipient: 89161234567 (unknown type)\n"
           "  Service centre time stamp: 2021-05-11 13:12:16 -04:30\n"
           "  Discharge time: invalid (12 50 11 31 21 AA FF)\n"
           "  Status: 0x45 (permanent error, no more attempts): No interworking available";
    const QString invalid = QStringLiteral("Invalid SMS-STATUS-REPORT: ");
    QTest::newRow("not a report")
        << "0011000B919761214365F70000A705E8329BFD06" << true
        << invalid + "Not an SMS-STATUS-REPORT (message type indicator 1, SMS-SUBMIT)";
    QTest::newRow("truncated")
        << "00062A0B919761214365F712501131" << true
        << invalid + "Truncated in the service centre time stamp at octet 11 (7 needed, 4 left)";
    QTest::newRow("not hex") << "00062A0B9197612G" << true
                             << invalid + "Not hexadecimal text: character 'G' after 15 digits";
    QTest::newRow("odd digits") << "00062" << true << invalid + "Odd number of hexadecimal digits (5)";
    QTest::newRow("empty") << " \r\n" << true << invalid + "Empty PDU";
}

void TestPdu::explainStatusReport()
{
    QFETCH(QString, pdu);
    QFETCH(bool, withServiceCentre);
    QFETCH(QString, explanation);
    QCOMPARE(zelmodems::explainStatusReport(pdu, withServiceCentre), explanation);
    // A report cut anywhere is refused, never read as a shorter one.
    if (zelmodems::decodeStatusReport(pdu, withServiceCentre).valid())
        for (int length = 0; length < pdu.size(); length += 2)
            QVERIFY(!zelmodems::decodeStatusReport(pdu.left(length), withServiceCentre).valid());
}

void TestPdu::explainUserDataHeader_data()
{
    QTest::addColumn<QByteArray>("header");
    QTest::addColumn<QString>("explanation");

    const auto row = [](const char* name, const char* hex, const QString& explanation) {
        QTest::newRow(name) << QByteArray::fromHex(hex) << explanation;
    };
    row("concatenation 8-bit", "050003CC0201",
        "User data header, 5 octets\n"
        "  Concatenated short messages, 8-bit reference: reference 204, part 1 of 2");
    row("concatenation 16-bit", "060804BEEF0303",
        "User data header, 6 octets\n"
        "  Concatenated short messages, 16-bit reference: reference 48879, part 3 of 3");
    row("ports and language", "1005040B8423F00402FA00240101250102",
        "User data header, 16 octets\n"
        "  Application port addressing, 16-bit address: destination port 2948, originator port 9200\n"
        "  Application port addressing, 8-bit address: destination port 250, originator port 0\n"
        "  National language single shift: Turkish (1)\n"
        "  National language locking shift: Spanish (2)");
    row("unknown and named elements", "127002AABB2600A00101010201020A03000010",
        "User data header, 18 octets\n"
        "  Unknown element 0x70 (SIM toolkit security header), 2 octets: AA BB\n"
        "  Unknown element 0x26 (reserved), 0 octets\n"
        "  Unknown element 0xa0 (reserved), 1 octets: 01\n"
        "  Special SMS message indication: fax message waiting, 2 waiting, discard the message\n"
        "  Text formatting (0x0a), 3 octets: 00 00 10");
    row("inconsistent concatenation", "0500030A0203",
        "User data header, 5 octets\n"
        "  Concatenated short messages, 8-bit reference: reference 10, part 3 of 2 "
        "(inconsistent: the part is to be ignored)");
    row("wrong length", "0400020A02",
        "User data header, 4 octets\n"
        "  Concatenated short messages, 8-bit reference (0x00): wrong length 2 (3 expected): 0A 02");
    row("truncated element", "0500050A02",
        "User data header, 5 octets declared, only 4 present\n"
        "  Concatenated short messages, 8-bit reference (0x00) truncated: 5 octets declared, 2 present: 0A 02");
    row("trailing octets", "0324010124",
        "User data header, 3 octets\n"
        "  (1 further octets are not part of the header)\n"
        "  National language single shift: Turkish (1)");
    row("reserved language", "03250100",
        "User data header, 3 octets\n  National language locking shift: reserved language (0)");
    row("length octet missing", "0124",
        "User data header, 1 octets\n  Element 0x24 truncated: its length octet is missing");
    row("empty", "", "Empty user data header");
    row("zero length", "00", "User data header, 0 octets");
}

void TestPdu::explainUserDataHeader()
{
    QFETCH(QByteArray, header);
    QFETCH(QString, explanation);
    QCOMPARE(zelmodems::explainUserDataHeader(header), explanation);
}

void TestPdu::peerDecodesGeneratedSubmits()
{
    // gammu decodes what the toolkit generates: number, alphabet, the
    // concatenation header and, joined by gammu itself, the whole text. For
    // 7-bit parts that shows the fill bits after the header are right.
    struct Case {
        QString number;
        QString text;
        bool reference16 = false;
        bool statusReport = false;
        int validity = 0;
        PDU::NumberType type = PDU::AutoNumberType;
    };
    const QList<Case> cases = {
        { "+79161234567", "Hello, world!" },
        { "89161234567", "National number, plain text", false, true, 1440 },
        { "8 (916) 123-45-67", "National type", false, false, 0, PDU::NationalNumber },
        { "+44 7911 123456", QString::fromUtf8("Extension: {[~]} \\ | ^ € and form\ffeed"), false, false, 60 },
        { "+4915112345678", QString::fromUtf8("GSM letters: àèéìòù ÄÖÜß ñ ¿¡ £¥§¤ ΔΦΓΛΩΠΨΣΘΞ @$_") },
        { "+79161234567", QString::fromUtf8("Привет, мир! Баланс: 10,50 руб.") },
        { "+79161234567", QStringLiteral("Long plain text that needs parts. ").repeated(12), false, true },
        { "+79161234567", QStringLiteral("Sixteen-bit reference. ").repeated(10), true },
        { "89161234567", QString::fromUtf8("Длинное сообщение на кириллице. ").repeated(6) },
        { "+79161234567", QString::fromUtf8("€{}").repeated(60) },
        { "+79161234567", QString::fromUtf8("Ж").repeated(66) + QString::fromUtf8("€ ok"), true },
    };

    QJsonArray submits;
    QList<QList<PDU>> generated;
    for (const Case& c : cases) {
        PDU::SubmitOptions options;
        options.setReference16Bit(c.reference16);
        options.setStatusReport(c.statusReport);
        options.setValidityMinutes(c.validity);
        options.setNumberType(c.type);
        generated << zelmodems::encodeSmsSubmit(c.number, c.text, options);
        QJsonArray hexes;
        for (const PDU& pdu : generated.last())
            hexes << pdu.toHex();
        submits << hexes;
    }

    bool skipped = false;
    const QJsonObject answer = runGammuPeer({ { "submits", submits } }, &skipped);
    if (skipped)
        QSKIP("The independent decoder is not available: /usr/bin/python3 with python3-gammu "
              "(apt-get install python3-gammu) is needed for this test.");
    const QJsonArray decoded = answer.value("submits").toArray();
    QCOMPARE(decoded.size(), cases.size());

    for (int i = 0; i < cases.size(); ++i) {
        const Case& c = cases.at(i);
        const QJsonObject message = decoded.at(i).toObject();
        const QJsonArray parts = message.value("parts").toArray();
        const QList<PDU>& pdus = generated.at(i);
        QCOMPARE(parts.size(), pdus.size());
        const QString dialled = QString(c.number).remove(QRegularExpression("[^+0-9]"));
        const QString coding = PDU::gsm7Length(c.text) >= 0 ? "Default_No_Compression" : "Unicode_No_Compression";
        for (int p = 0; p < parts.size(); ++p) {
            const QJsonObject part = parts.at(p).toObject();
            QCOMPARE(part.value("type").toString(), QStringLiteral("Submit"));
            QCOMPARE(part.value("number").toString(), dialled);
            QCOMPARE(part.value("coding").toString(), coding);
            const QJsonObject udh = part.value("udh").toObject();
            if (pdus.size() == 1) {
                QCOMPARE(udh.value("type").toString(), QStringLiteral("NoUDH"));
            } else {
                QCOMPARE(udh.value("all").toInt(), pdus.size());
                QCOMPARE(udh.value("part").toInt(), p + 1);
                QCOMPARE(udh.value(c.reference16 ? "id16" : "id8").toInt(),
                         zelmodems::decodeSmsSubmit(pdus.at(p).toHex()).concatReference());
            }
        }
        QCOMPARE(message.value("text").toString(), c.text);
    }
}

void TestPdu::peerStatusReportsAreExplained()
{
    // gammu builds the reports from fields it encodes itself; the toolkit
    // reads the same reference, recipient, status and times out of them.
    const QList<std::tuple<QString, int, int>> cases = {
        { "+79161234567", 42, 0x00 }, { "89161234567", 7, 0x45 }, { "+4915112345678", 255, 0x20 },
        { "+79161234567", 0, 0x62 },  { "112", 1, 0x30 },         { "+447911123456", 128, 0x46 },
    };
    QJsonArray reports;
    for (const auto& c : cases)
        reports << QJsonObject { { "number", std::get<0>(c) }, { "reference", std::get<1>(c) },
                                 { "status", std::get<2>(c) }, { "scts", "2021-05-11T13:12:16" },
                                 { "dt", "2021-05-11T13:12:20" } };
    bool skipped = false;
    const QJsonObject answer = runGammuPeer({ { "reports", reports } }, &skipped);
    if (skipped)
        QSKIP("The independent encoder is not available: /usr/bin/python3 with python3-gammu "
              "(apt-get install python3-gammu) is needed for this test.");
    const QJsonArray built = answer.value("reports").toArray();
    QCOMPARE(built.size(), cases.size());

    for (int i = 0; i < cases.size(); ++i) {
        const QJsonObject peer = built.at(i).toObject();
        const QString hex = peer.value("hex").toString();
        // gammu reads its own report back as we asked for it...
        QCOMPARE(peer.value("type").toString(), QStringLiteral("Status_Report"));
        QCOMPARE(peer.value("status").toInt(), std::get<2>(cases.at(i)));
        // ...and the toolkit agrees with gammu.
        const PDU::StatusReport report = zelmodems::decodeStatusReport(hex);
        QVERIFY2(report.valid(), qPrintable(report.error()));
        QCOMPARE(report.recipient(), peer.value("number").toString());
        QCOMPARE(report.status(), peer.value("status").toInt());
        QCOMPARE(report.messageReference(), peer.value("reference").toInt());
        QCOMPARE(report.serviceCentreTime().toString("yyyy-MM-ddTHH:mm:ss"), QStringLiteral("2021-05-11T13:12:16"));
        QCOMPARE(report.dischargeTime().toString("yyyy-MM-ddTHH:mm:ss"), QStringLiteral("2021-05-11T13:12:20"));

        const QString explanation = zelmodems::explainStatusReport(hex);
        QVERIFY2(explanation.contains("  Recipient: " + report.recipient() + " ("), qPrintable(explanation));
        QVERIFY2(explanation.endsWith(PDU::statusMeaning(report.status())), qPrintable(explanation));
    }
}

QTEST_GUILESS_MAIN(TestPdu)
#include "tst_pdu.moc"
