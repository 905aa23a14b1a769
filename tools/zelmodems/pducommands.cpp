// pdu encode and pdu explain: the library's PDU toolkit, no modem needed.
#include "commandline.h"
#include "tooltext.h"
#include "commands.h"
#include "pdu.h"
#include "shortmessage.h"

#include <QJsonArray>
#include <QJsonObject>
#include <QRegularExpression>

namespace {

QString alphabetName(PDU::Alphabet alphabet)
{
    switch (alphabet) {
    case PDU::Gsm7Alphabet: return QStringLiteral("gsm7");
    case PDU::EightBitAlphabet: return QStringLiteral("8bit");
    case PDU::Ucs2Alphabet: return QStringLiteral("ucs2");
    case PDU::AutoAlphabet: break;
    }
    return QStringLiteral("auto");
}

// Hexadecimal text without blanks; false when something else is in it.
bool cleanHex(const QString& text, QString& hex)
{
    hex = text;
    hex.remove(QRegularExpression(QStringLiteral("\\s")));
    return !hex.isEmpty() && hex.size() % 2 == 0
           && QRegularExpression(QStringLiteral("^[0-9A-Fa-f]+$")).match(hex).hasMatch();
}

QStringList indented(const QString& text)
{
    return text.split(QLatin1Char('\n'));
}

void explainDeliver(const QString& hex, bool withServiceCentre, Report& report)
{
    const zelmodems::ShortMessage sms = zelmodems::ShortMessage::decode(hex, withServiceCentre);
    QJsonObject& json = report.json();
    json.insert(QStringLiteral("type"), QStringLiteral("SMS-DELIVER"));
    if (!sms.isValid()) {
        report.fail(QStringLiteral("invalid SMS-DELIVER: %1").arg(sms.error()), zelmodems::Failure::Malformed);
        return;
    }
    const auto orNull = [](int value) { return value < 0 ? QJsonValue() : QJsonValue(value); };
    report.line(QStringLiteral("SMS-DELIVER"));
    if (!sms.serviceCentre().isEmpty())
        report.line(Tool::tr("  Service centre: %1").arg(sms.serviceCentre()));
    report.line(QStringLiteral("  Sender: %1%2")
                    .arg(sms.address(), sms.isAlphanumericAddress() ? QStringLiteral(" (alphanumeric)") : QString()));
    report.line(Tool::tr("  Service centre time stamp: %1").arg(zelmodems::PDU::isoTime(sms.serviceCentreTime())));
    report.line(Tool::tr("  Data coding scheme: 0x%1 (%2%3)")
                    .arg(sms.dataCodingScheme(), 2, 16, QLatin1Char('0'))
                    .arg(alphabetName(sms.alphabet()))
                    .arg(sms.messageClass() < 0 ? QString() : QStringLiteral(", class %1").arg(sms.messageClass())));
    if (!sms.header().isEmpty()) {
        for (const QString& l : indented(zelmodems::explainUserDataHeader(sms.header())))
            report.line(QStringLiteral("  ") + l);
    }
    if (sms.partCount() > 1)
        report.line(QStringLiteral("  Part %1 of %2, reference %3")
                        .arg(sms.partNumber())
                        .arg(sms.partCount())
                        .arg(sms.concatReference()));
    if (sms.alphabet() == PDU::EightBitAlphabet)
        report.line(QStringLiteral("  Data: %1").arg(QString::fromLatin1(sms.userData().toHex(' ').toUpper())));
    else
        report.line(QStringLiteral("  Text: %1").arg(sms.text()));
    json.insert(QStringLiteral("serviceCentre"), sms.serviceCentre());
    json.insert(QStringLiteral("sender"), sms.address());
    json.insert(QStringLiteral("senderType"), sms.addressType());
    json.insert(QStringLiteral("dateTime"), zelmodems::PDU::isoTime(sms.serviceCentreTime()));
    json.insert(QStringLiteral("dataCodingScheme"), sms.dataCodingScheme());
    json.insert(QStringLiteral("alphabet"), alphabetName(sms.alphabet()));
    json.insert(QStringLiteral("class"), orNull(sms.messageClass()));
    json.insert(QStringLiteral("partNumber"), sms.partNumber());
    json.insert(QStringLiteral("partCount"), sms.partCount());
    json.insert(QStringLiteral("concatReference"), orNull(sms.concatReference()));
    json.insert(QStringLiteral("destinationPort"), orNull(sms.destinationPort()));
    json.insert(QStringLiteral("originatorPort"), orNull(sms.originatorPort()));
    json.insert(QStringLiteral("lockingShiftLanguage"), sms.lockingShiftLanguage());
    json.insert(QStringLiteral("singleShiftLanguage"), sms.singleShiftLanguage());
    if (sms.alphabet() == PDU::EightBitAlphabet)
        json.insert(QStringLiteral("data"), QString::fromLatin1(sms.userData().toHex().toUpper()));
    else
        json.insert(QStringLiteral("text"), sms.text());
}

void explainSubmit(const QString& hex, bool withServiceCentre, Report& report)
{
    const PDU::Submit submit = zelmodems::decodeSmsSubmit(hex, withServiceCentre);
    QJsonObject& json = report.json();
    json.insert(QStringLiteral("type"), QStringLiteral("SMS-SUBMIT"));
    if (!submit.valid()) {
        report.fail(QStringLiteral("invalid SMS-SUBMIT: %1").arg(submit.error()), zelmodems::Failure::Malformed);
        return;
    }
    report.line(QStringLiteral("SMS-SUBMIT"));
    report.line(Tool::tr("  Message reference: %1").arg(submit.messageReference()));
    report.line(Tool::tr("  Recipient: %1 (type of address 0x%2)")
                    .arg(submit.recipient())
                    .arg(submit.recipientType(), 2, 16, QLatin1Char('0')));
    report.line(Tool::tr("  Status report requested: %1")
                    .arg(submit.statusReport() ? QStringLiteral("yes") : QStringLiteral("no")));
    if (submit.validityMinutes() > 0)
        report.line(QStringLiteral("  Validity: %1 minutes").arg(submit.validityMinutes()));
    report.line(Tool::tr("  Data coding scheme: 0x%1 (%2)")
                    .arg(submit.dataCodingScheme(), 2, 16, QLatin1Char('0'))
                    .arg(alphabetName(submit.alphabet())));
    if (!submit.header().isEmpty()) {
        for (const QString& l : indented(zelmodems::explainUserDataHeader(submit.header())))
            report.line(QStringLiteral("  ") + l);
    }
    if (submit.partCount() > 1)
        report.line(QStringLiteral("  Part %1 of %2").arg(submit.partNumber()).arg(submit.partCount()));
    report.line(QStringLiteral("  Text: %1").arg(submit.text()));
    json.insert(QStringLiteral("messageReference"), submit.messageReference());
    json.insert(QStringLiteral("recipient"), submit.recipient());
    json.insert(QStringLiteral("recipientType"), submit.recipientType());
    json.insert(QStringLiteral("statusReport"), submit.statusReport());
    json.insert(QStringLiteral("validityMinutes"), submit.validityMinutes());
    json.insert(QStringLiteral("dataCodingScheme"), submit.dataCodingScheme());
    json.insert(QStringLiteral("alphabet"), alphabetName(submit.alphabet()));
    json.insert(QStringLiteral("partNumber"), submit.partNumber());
    json.insert(QStringLiteral("partCount"), submit.partCount());
    json.insert(QStringLiteral("text"), submit.text());
}

void explainStatus(const QString& hex, bool withServiceCentre, Report& report)
{
    const PDU::StatusReport status = zelmodems::decodeStatusReport(hex, withServiceCentre);
    QJsonObject& json = report.json();
    json.insert(QStringLiteral("type"), QStringLiteral("SMS-STATUS-REPORT"));
    if (!status.valid()) {
        report.fail(QStringLiteral("invalid SMS-STATUS-REPORT: %1").arg(status.error()), zelmodems::Failure::Malformed);
        return;
    }
    report.lines(indented(zelmodems::explainStatusReport(hex, withServiceCentre)));
    json.insert(QStringLiteral("messageReference"), status.messageReference());
    json.insert(QStringLiteral("recipient"), status.recipient());
    json.insert(QStringLiteral("serviceCentreTime"), zelmodems::PDU::isoTime(status.serviceCentreTime()));
    json.insert(QStringLiteral("dischargeTime"), zelmodems::PDU::isoTime(status.dischargeTime()));
    json.insert(QStringLiteral("status"), status.status());
    json.insert(QStringLiteral("meaning"), PDU::statusMeaning(status.status()));
}

} // namespace

namespace commands {

Report pduEncode(const QStringList& args)
{
    Report report;
    CommandLine cl(QStringLiteral("pdu encode"),
                   Tool::tr("Builds the SMS-SUBMIT PDUs that send TEXT to NUMBER from a modem in PDU\n"
                                  "mode: one PDU, or a concatenated series for a long text. Each is shown\n"
                                  "with its AT+CMGS length argument."));
    cl.addPositional(QStringLiteral("NUMBER"),
                     Tool::tr("The recipient (+79161234567 international, otherwise as dialled)."));
    cl.addPositional(QStringLiteral("TEXT"), Tool::tr("The message text."));
    const QString ALPHABET = QStringLiteral("alphabet");
    const QString NATIONAL = QStringLiteral("national");
    const QString REPORT = QStringLiteral("status-report");
    const QString VALIDITY = QStringLiteral("validity");
    const QString REFERENCE = QStringLiteral("reference");
    const QString REF16 = QStringLiteral("ref16");
    const QString SMSC = QStringLiteral("smsc");
    cl.addOption(QCommandLineOption(ALPHABET, Tool::tr("auto (default), gsm7, 8bit or ucs2."),
                                    QStringLiteral("name"), QStringLiteral("auto")));
    cl.addOption(QCommandLineOption(NATIONAL, Tool::tr("The number is a national one (type of address 0xA1).")));
    cl.addOption(QCommandLineOption(REPORT, Tool::tr("Ask for a status report.")));
    cl.addOption(QCommandLineOption(VALIDITY, Tool::tr("Relative validity period in minutes."),
                                    QStringLiteral("minutes")));
    cl.addOption(QCommandLineOption(REFERENCE,
                                    Tool::tr("Concatenation reference of a long message (default: "
                                                   "the next of a counter)."),
                                    QStringLiteral("n")));
    cl.addOption(QCommandLineOption(REF16, Tool::tr("16-bit concatenation references.")));
    cl.addOption(QCommandLineOption(SMSC, Tool::tr("Service centre to put in front (default: the "
                                                         "modem's stored one)."),
                                    QStringLiteral("number")));
    if (!cl.parse(args, report))
        return report;

    PDU::SubmitOptions options;
    const QString alphabet = cl.value(ALPHABET).toLower();
    if (alphabet == QLatin1String("auto"))
        options.setAlphabet(PDU::AutoAlphabet);
    else if (alphabet == QLatin1String("gsm7"))
        options.setAlphabet(PDU::Gsm7Alphabet);
    else if (alphabet == QLatin1String("8bit"))
        options.setAlphabet(PDU::EightBitAlphabet);
    else if (alphabet == QLatin1String("ucs2"))
        options.setAlphabet(PDU::Ucs2Alphabet);
    else {
        report.fail(Tool::tr("--alphabet takes auto, gsm7, 8bit or ucs2, not \"%1\"").arg(cl.value(ALPHABET)),
                    Report::UsageError);
        return report;
    }
    if (cl.isSet(NATIONAL))
        options.setNumberType(PDU::NationalNumber);
    options.setStatusReport(cl.isSet(REPORT));
    if (cl.isSet(VALIDITY)) {
        bool ok = false;
        options.setValidityMinutes(cl.value(VALIDITY).toInt(&ok));
        if (!ok || options.validityMinutes() <= 0) {
            report.fail(Tool::tr("--validity takes a positive number of minutes"), Report::UsageError);
            return report;
        }
    }
    if (cl.isSet(REFERENCE)) {
        bool ok = false;
        options.setConcatReference(cl.value(REFERENCE).toInt(&ok));
        const int limit = cl.isSet(REF16) ? 65535 : 255;
        if (!ok || options.concatReference() < 0 || options.concatReference() > limit) {
            report.fail(Tool::tr("--reference takes a number from 0 to %1").arg(limit), Report::UsageError);
            return report;
        }
    }
    options.setReference16Bit(cl.isSet(REF16));
    options.setServiceCentre(cl.value(SMSC));

    QString error;
    const QList<PDU> pdus = zelmodems::encodeSmsSubmit(cl.positional(0), cl.positional(1), options, &error);
    if (pdus.isEmpty()) {
        report.fail(Tool::tr("cannot encode the message: %1").arg(error), zelmodems::Failure::BadInput);
        return report;
    }
    QJsonArray parts;
    for (const PDU& pdu : pdus) {
        if (pdus.size() > 1)
            report.line(QStringLiteral("Part %1 of %2:").arg(pdu.partNumber()).arg(pdu.partCount()));
        report.line(QStringLiteral("AT+CMGS=%1").arg(pdu.tpduLength()));
        report.line(pdu.toHex());
        QJsonObject part;
        part.insert(QStringLiteral("partNumber"), pdu.partNumber());
        part.insert(QStringLiteral("partCount"), pdu.partCount());
        part.insert(QStringLiteral("tpduLength"), pdu.tpduLength());
        part.insert(QStringLiteral("pdu"), pdu.toHex());
        parts.append(part);
    }
    report.json().insert(QStringLiteral("pdus"), parts);
    return report;
}

Report pduExplain(const QStringList& args)
{
    Report report;
    CommandLine cl(QStringLiteral("pdu explain"),
                   Tool::tr("Explains an SMS PDU given in hexadecimal (as a modem lists it in PDU\n"
                                  "mode, service centre part first): SMS-DELIVER (a received message),\n"
                                  "SMS-SUBMIT (one to be sent) or SMS-STATUS-REPORT, told apart by the\n"
                                  "message type indicator. With --udh, HEX is a user-data header (its\n"
                                  "length octet first)."));
    cl.addPositional(QStringLiteral("HEX"), Tool::tr("The PDU in hexadecimal (blanks allowed)."));
    const QString NO_SMSC = QStringLiteral("no-smsc");
    const QString UDH = QStringLiteral("udh");
    cl.addOption(QCommandLineOption(NO_SMSC, Tool::tr("The PDU has no service-centre part in front.")));
    cl.addOption(QCommandLineOption(UDH, Tool::tr("HEX is a user-data header.")));
    if (!cl.parse(args, report))
        return report;

    QString hex;
    if (!cleanHex(cl.positional(0), hex)) {
        report.fail(Tool::tr("\"%1\" is not hexadecimal octets").arg(cl.positional(0)), Report::UsageError);
        return report;
    }
    const QByteArray octets = QByteArray::fromHex(hex.toLatin1());
    if (cl.isSet(UDH)) {
        const QString text = zelmodems::explainUserDataHeader(octets);
        report.lines(indented(text));
        report.json().insert(QStringLiteral("type"), QStringLiteral("user data header"));
        report.json().insert(QStringLiteral("explanation"), text);
        return report;
    }

    const bool withServiceCentre = !cl.isSet(NO_SMSC);
    const int firstOctet = withServiceCentre ? 1 + static_cast<uchar>(octets.at(0)) : 0;
    if (firstOctet >= octets.size()) {
        report.fail(Tool::tr("the PDU ends before its first octet (is the service-centre part "
                                   "missing? see --no-smsc)"), zelmodems::Failure::Malformed);
        return report;
    }
    switch (static_cast<uchar>(octets.at(firstOctet)) & 0x03) {
    case 0: explainDeliver(hex, withServiceCentre, report); break;
    case 1: explainSubmit(hex, withServiceCentre, report); break;
    case 2: explainStatus(hex, withServiceCentre, report); break;
    default: report.fail(Tool::tr("message type indicator 3 is reserved: not an SMS PDU"), zelmodems::Failure::Malformed); break;
    }
    return report;
}

} // namespace commands
