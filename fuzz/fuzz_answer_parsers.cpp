// The readings of the driver's queries on a modem's answers, without the
// serial line: the same input as fuzz_modem_answers (first byte: the query
// in its low four bits; the rest: the answer), handed to the functions the
// queries read their answers with, thousands of times faster than a round
// trip through a pseudo-terminal. Each reading must hold what its caller
// relies on.
#include "fuzzcommon.h"

#include "atmodem_p.h"
#include "messagestore.h"
#include "modemanswers_p.h"

ZML_FUZZ_INIT

namespace {

// QRegExp's \d is any Unicode decimal digit (Arabic-Indic ones included),
// not only 0-9: what the number queries return.
bool allDigits(const QString& text)
{
    for (const QChar c : text)
        if (!c.isDigit())
            return false;
    return true;
}

// The driver's reading of a number: the identity queries, the ICCID, the
// signal pair.
QString number(const QByteArray& answer, const QString& pattern)
{
    QString value;
    const bool found = modemanswers::findNumber(answer, pattern, value);
    ZML_FUZZ_CHECK(found == !value.isEmpty());
    return value;
}

void cells(const QByteArray& input)
{
    // The cell list, then the serving and the neighbour cells' answers.
    const QList<QByteArray> answers = input.split('\xff');
    QMap<QString, QStringList> found;
    if (!modemanswers::siemensCells(answers.at(0), found))
        return;
    for (const QStringList& record : qAsConst(found))
        ZML_FUZZ_CHECK(record.size() == 5);
    for (int i = 1; i < answers.size() && i < 3; ++i)
        modemanswers::addSiemensLevels(answers.at(i), found);
    for (const QStringList& record : qAsConst(found))
        ZML_FUZZ_CHECK(record.size() >= 5);
    cellListToVariant(modemanswers::joinCells(found));
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    if (size < 1 || size > 256 * 1024)
        return 0;
    const QByteArray answer(reinterpret_cast<const char*>(data + 1), int(size - 1));
    const QString digits = QStringLiteral("\\d+");
    QString a;
    QString b;
    switch (data[0] & 0x0F) {
    case 0:
    case 1:
    case 3:
        // IMEI, IMSI (and from it the MCC and MNC).
        ZML_FUZZ_CHECK(allDigits(number(answer, digits)));
        break;
    case 2: {
        const QString pair = number(answer, QStringLiteral("\\d+\\s*\\,\\s*\\d+"));
        const int level = modemanswers::signalLevel(pair);
        ZML_FUZZ_CHECK(level >= -113 && level <= 0);
        break;
    }
    case 4:
        if (modemanswers::operatorName(answer, a))
            ZML_FUZZ_CHECK(!a.contains(QLatin1Char('"')));
        break;
    case 5:
        if (modemanswers::registeredCell(answer, a, b))
            ZML_FUZZ_CHECK(!a.isEmpty() && !b.isEmpty() && !a.contains(QLatin1Char('"')));
        break;
    case 6: cells(answer); break;
    case 7:
        if (modemanswers::simcomCell(answer, a)) {
            ZML_FUZZ_CHECK(a.count(QLatin1Char(',')) == 5);
            ZML_FUZZ_CHECK(cellListToVariant(a).size() == 1);
        }
        break;
    case 8: {
        // ICCIDs: digits, or ZTE's raw SIM file of 6 to 24 word characters.
        const QString iccid = number(answer, (data[0] & 0x10) ? QStringLiteral("\\w{6,24}") : digits);
        ZML_FUZZ_CHECK(swapIccidDigits(iccid).size() == iccid.size() + iccid.size() % 2);
        break;
    }
    case 9:
    case 10: {
        QList<zelmodems::StoredPdu> entries;
        if (zelmodems::MessageStore::parseListing(answer, entries)) {
            for (const zelmodems::StoredPdu& e : qAsConst(entries))
                ZML_FUZZ_CHECK(!e.isComplete() || (e.index() >= 0 && e.index() <= zelmodems::MessageStore::MaxIndex));
        }
        break;
    }
    case 11: {
        // The fixed reading deletes every index it lists: each must be a
        // real one, paired with its own PDU.
        QList<int> indexes;
        QList<SmsPart> parts;
        modemanswers::listedMessages(answer, indexes, parts);
        ZML_FUZZ_CHECK(indexes.size() == parts.size());
        for (int index : qAsConst(indexes))
            ZML_FUZZ_CHECK(index >= 0);
        Sms::join(parts);
        break;
    }
    default: {
        QString ignored;
        modemanswers::findNumber(answer, QStringLiteral("\\w{6,24}"), ignored);
        break;
    }
    }
    return 0;
}
