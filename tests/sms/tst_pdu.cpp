// The PDU toolkit: SMS-SUBMIT generation (checked octet by octet, read back,
// and decoded by an independent peer, gammu), and the status-report and
// user-data header explanations. Random and malformed input, and random texts
// read back, are the job of fuzz/fuzz_pdu.

#include "gammupeer.h"
#include "pdu.h"

#include <QJsonArray>
#include <QtTest>

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
    void validity_data();
    void validity();
    void explainStatusReport_data();
    void explainStatusReport();
    void explainUserDataHeader_data();
    void explainUserDataHeader();
    void peerDecodesGeneratedSubmits();
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
    QTest::newRow("16-bit reference") << a160 + "b" << true << QList<int> { 152, 9 } << false;
    // 152 septets and an escape pair overrun a part of 153: the pair moves whole.
    QTest::newRow("escape pair not split") << a160.left(152) + euro + b10 << false << QList<int> { 152, 12 } << false;
    QTest::newRow("71 ucs2 take two") << zhe.repeated(71) << false << QList<int> { 67, 4 } << true;
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

void TestPdu::validity_data()
{
    QTest::addColumn<int>("minutes");
    QTest::addColumn<int>("octet");
    QTest::addColumn<int>("meaning");

    QTest::newRow("none") << 0 << -1 << 0;
    QTest::newRow("12 h 1 min") << 721 << 144 << 750;
    QTest::newRow("1 day 1 min") << 1441 << 168 << 2880;
    QTest::newRow("31 days") << 31 * 1440 << 197 << 35 * 1440;
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

void TestPdu::explainStatusReport_data()
{
    QTest::addColumn<QString>("pdu");
    QTest::addColumn<bool>("withServiceCentre");
    QTest::addColumn<QString>("explanation");

    QTest::newRow("delivered") << "07919761989901F0062A0B919761214365F7125011312161211250113121026100" << true
                               << "SMS-STATUS-REPORT\n"
                                  "  Message reference: 42\n"
                                  "  Recipient: +79161234567 (international)\n"
                                  "  Service centre time stamp: 2021-05-11T13:12:16+03:00\n"
                                  "  Discharge time: 2021-05-11T13:12:20+04:00\n"
                                  "  Status: 0x00 (transaction completed): Short message received by the SME";
    QTest::newRow("failed, negative zone, no SMSC") << "06070B819861214365F7125011312161891250113121AAFF45" << false
        << "SMS-STATUS-REPORT\n"
           "  Message reference: 7\n"
           "  Recipient: 89161234567 (unknown type)\n"
           "  Service centre time stamp: 2021-05-11T13:12:16-04:30\n"
           "  Discharge time: invalid (12 50 11 31 21 AA FF)\n"
           "  Status: 0x45 (permanent error, no more attempts): No interworking available";
    const QString invalid = QStringLiteral("Invalid SMS-STATUS-REPORT: ");
    QTest::newRow("not a report")
        << "0011000B919761214365F70000A705E8329BFD06" << true
        << invalid + "Not an SMS-STATUS-REPORT (message type indicator 1, SMS-SUBMIT)";
    QTest::newRow("truncated")
        << "00062A0B919761214365F712501131" << true
        << invalid + "Truncated in the service centre time stamp at octet 11 (7 needed, 4 left)";
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
    row("wrong length", "0400020A02",
        "User data header, 4 octets\n"
        "  Concatenated short messages, 8-bit reference (0x00): wrong length 2 (3 expected): 0A 02");
    row("truncated element", "0500050A02",
        "User data header, 5 octets declared, only 4 present\n"
        "  Concatenated short messages, 8-bit reference (0x00) truncated: 5 octets declared, 2 present: 0A 02");
    row("empty", "", "Empty user data header");
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
    const QList<std::pair<QString, QString>> cases = {
        { "8 (916) 123-45-67", QString::fromUtf8("Extension: {[~]} \\ | ^ € and form\ffeed") },
        { "+4915112345678", QString::fromUtf8("GSM letters: àèéìòù ÄÖÜß ñ ¿¡ £¥§¤ ΔΦΓΛΩΠΨΣΘΞ @$_") },
        { "+79161234567", QStringLiteral("Long plain text that needs parts. ").repeated(12) },
        { "+79161234567", QString::fromUtf8("€{}").repeated(60) },
        { "+79161234567", QString::fromUtf8("Ж").repeated(66) + QString::fromUtf8("€ ok") },
    };
    QJsonArray submits;
    PDU::SubmitOptions options;
    options.setReference16Bit(true);
    for (const auto& c : cases) {
        QJsonArray hexes;
        for (const PDU& pdu : zelmodems::encodeSmsSubmit(c.first, c.second, options))
            hexes << pdu.toHex();
        submits << hexes;
        options.setReference16Bit(false);
    }
    bool skipped = false;
    const QJsonArray decoded = runGammuPeer({ { "submits", submits } }, &skipped).value("submits").toArray();
    if (skipped)
        QSKIP("python3-gammu is not installed (apt-get install python3-gammu)");
    QCOMPARE(decoded.size(), cases.size());
    for (int i = 0; i < cases.size(); ++i) {
        const QJsonObject message = decoded.at(i).toObject();
        const QJsonArray parts = message.value("parts").toArray();
        QCOMPARE(parts.size(), submits.at(i).toArray().size());
        for (int p = 0; p < parts.size(); ++p) {
            const QJsonObject part = parts.at(p).toObject();
            QCOMPARE(part.value("number").toString(), QString(cases.at(i).first).remove(QRegExp("[^+0-9]")));
            QCOMPARE(part.value("coding").toString(), PDU::gsm7Length(cases.at(i).second) >= 0
                                                          ? "Default_No_Compression" : "Unicode_No_Compression");
            if (parts.size() > 1)
                QCOMPARE(part.value("udh").toObject().value("part").toInt(), p + 1);
        }
        QCOMPARE(message.value("text").toString(), cases.at(i).second);
    }
}

QTEST_GUILESS_MAIN(TestPdu)
#include "tst_pdu.moc"
