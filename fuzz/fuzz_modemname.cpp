// Modem identification: setModemName on an answer to "ATI" (as any modem,
// or line noise, may give it) and parseFieldInternal on the same answer with
// the field names the driver asks for.
//
// Input: first byte selects the field and whether a dialect is set before
// (a previous modem on the same object); the rest is the answer.
#include "fuzzcommon.h"

#include "atmodem.h"

#include <QRegExp>

ZML_FUZZ_INIT

namespace {

const char* const FIELDS[] = {"Manufacturer", "Model", "Revision", "IMEI", "Manufacturer|Model"};

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    if (size < 1)
        return 0;
    const uchar selector = data[0];
    const QByteArray answer(reinterpret_cast<const char*>(data) + 1, int(size - 1));

    AtModem modem;
    if (selector & 0x80)
        modem.setModemName("Manufacturer: huawei\r\nModel: E3372\r\n");
    const qint32 before = modem.dialect();
    modem.setModemName(answer);

    // The name never holds white space; the dialect is one of the six and
    // changes only when the answer was recognised.
    ZML_FUZZ_CHECK(!modem.name().contains(QRegExp(QStringLiteral("\\s"))));
    ZML_FUZZ_CHECK(modem.dialect() >= AtModem::DEFAULT_AT_GSM && modem.dialect() <= AtModem::HSPA);
    ZML_FUZZ_CHECK(!modem.gsmDialect().isEmpty());
    if (answer.trimmed().isEmpty()) {
        ZML_FUZZ_CHECK(modem.name().isEmpty());
        ZML_FUZZ_CHECK(modem.dialect() == before);
    }

    const QString field = QString::fromLatin1(FIELDS[(selector & 0x7F) % (sizeof FIELDS / sizeof *FIELDS)]);
    QString value = QStringLiteral("untouched");
    if (modem.parseFieldInternal(answer, field, value)) {
        ZML_FUZZ_CHECK(value == value.trimmed());
        ZML_FUZZ_CHECK(!value.contains(QLatin1Char('\n')) && !value.contains(QLatin1Char('\r')));
    } else {
        ZML_FUZZ_CHECK(value == QLatin1String("untouched"));
    }
    return 0;
}
