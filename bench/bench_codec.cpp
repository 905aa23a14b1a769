// Small codecs and the operator table:
// - GSM 7-bit packing (SmsPduEncoder::encode, used for Huawei USSD strings),
//   side by side with the PDU toolkit's general packer on the same text;
// - CRC-16/ARC of the connection names (table path), side by side with the
//   same CRC bit by bit and with zlib's CRC-32 (a production table CRC, as
//   the limit of a byte-wise table walk);
// - loading the operator table from its resource, side by side with parsing
//   the same JSON alone (the floor: what the table's own work adds to it).
#include "benchutil.h"

#include "crc_p.h"
#include "modemsettings.h"
#include "pdu.h"
#include "smspduencoder.h"

#include <QCoreApplication>
#include <QFile>
#include <QJsonDocument>

#include <zlib.h>

#include <cstdio>

using namespace bench;

namespace {

double secondsPerMeasure = 1.0;

template <typename F>
double nsPerCall(F work)
{
    work();
    qint64 calls = 0;
    const qint64 start = nowNs();
    const qint64 end = start + qint64(secondsPerMeasure * 1e9);
    qint64 now = start;
    while (now < end) {
        for (int i = 0; i < 16; ++i)
            work();
        calls += 16;
        now = nowNs();
    }
    return double(now - start) / double(calls);
}

double mbPerSecond(double nsPerCall, int bytes)
{
    return double(bytes) / nsPerCall * 1e9 / 1e6;
}

} // namespace

int main(int argc, char** argv)
{
    QCoreApplication app(argc, argv);
    if (app.arguments().contains(QStringLiteral("--quick")))
        secondsPerMeasure = 0.2;
    qInstallMessageHandler(discardMessages);

    // The operator table first, while the process is cold: the first
    // ModemSettings loads it (resource, decompression, JSON, entries).
    const qint64 firstLoad0 = nowNs();
    {
        ModemSettings settings;
        keep(settings.mncTable());
    }
    const double firstLoadUs = double(nowNs() - firstLoad0) / 1000.0;

    // ------------------------------------------------ 7-bit packing
    const QString section7 = QStringLiteral("GSM 7-bit packing");
    const QByteArray sms160 =
        QByteArray("Dear subscriber, from 01.06 the tariff changes: calls cost 2 RUB per minute, "
                   "SMS 1 RUB, mobile internet 5 RUB per day with 2 GB included. Thank you!!")
            .left(160);
    const QByteArray ussd = "*100#";
    const double packLong = nsPerCall([&] { keep(SmsPduEncoder::encode(sms160, 32)); });
    const double packLongToolkit = nsPerCall([&] { keep(PDU::packSeptets(sms160)); });
    const double packUssd = nsPerCall([&] { keep(SmsPduEncoder::encode(ussd, 32)); });
    const double packUssdToolkit = nsPerCall([&] { keep(PDU::packSeptets(ussd)); });
    if (SmsPduEncoder::encode(sms160, 32) != PDU::packSeptets(sms160))
        std::fprintf(stderr, "the two packers disagree on the 160-character text\n");
    print({section7, QStringLiteral("SmsPduEncoder::encode, 160 characters: MB/s (ns per call)"),
           QStringLiteral("%1 (%2)").arg(fmt(mbPerSecond(packLong, sms160.size()), 0), fmt(packLong, 0)),
           QStringLiteral("PDU::packSeptets, same text: MB/s (ns)"),
           QStringLiteral("%1 (%2)").arg(fmt(mbPerSecond(packLongToolkit, sms160.size()), 0),
                                         fmt(packLongToolkit, 0)),
           fmt(packLongToolkit / packLong) + QStringLiteral("x"), QString(), QString()});
    print({section7, QStringLiteral("SmsPduEncoder::encode, USSD \"*100#\": ns per call"), fmt(packUssd, 0),
           QStringLiteral("PDU::packSeptets, same code: ns per call"), fmt(packUssdToolkit, 0),
           fmt(packUssdToolkit / packUssd) + QStringLiteral("x"), QString(), QString()});

    // ------------------------------------------------ CRC-16/ARC
    const QString sectionCrc = QStringLiteral("CRC-16/ARC");
    const CrcArc crc;
    QByteArray block(4096, '\0');
    for (int i = 0; i < block.size(); ++i)
        block[i] = char((i * 131 + 7) & 0xFF);
    const QByteArray nameInput = QStringLiteral("ttyUSB2866123456789012Мегафон").toUtf8();
    const double crcTable = nsPerCall([&] { keep(crc(block.constData(), std::size_t(block.size()), true)); });
    const double crcBits = nsPerCall([&] { keep(crc(block.constData(), std::size_t(block.size()), false)); });
    const double crc32 = nsPerCall([&] {
        keep(::crc32(0L, reinterpret_cast<const Bytef*>(block.constData()), uInt(block.size())));
    });
    const double crcName = nsPerCall([&] { keep(crc(nameInput.constData(), std::size_t(nameInput.size()), true)); });
    if (crc("123456789", 9, true) != 0xBB3D || crc("123456789", 9, false) != 0xBB3D)
        std::fprintf(stderr, "CRC-16/ARC check value wrong\n");
    print({sectionCrc, QStringLiteral("table, 4 KiB block: MB/s"), fmt(mbPerSecond(crcTable, block.size()), 0),
           QStringLiteral("the same CRC bit by bit: MB/s"), fmt(mbPerSecond(crcBits, block.size()), 0),
           fmt(crcBits / crcTable, 1) + QStringLiteral("x faster"), QString(), QString()});
    print({sectionCrc, QStringLiteral("table, 4 KiB block: MB/s"), fmt(mbPerSecond(crcTable, block.size()), 0),
           QStringLiteral("zlib crc32 (a tuned table CRC), same block: MB/s"),
           fmt(mbPerSecond(crc32, block.size()), 0), fmt(crc32 / crcTable, 2), QString(), QString()});
    print({sectionCrc,
           QStringLiteral("connection-name input (port + IMEI + operator, %1 bytes): ns per call")
               .arg(nameInput.size()),
           fmt(crcName, 0), QString(), QString(), QString(), QString(), QString()});

    // ------------------------------------------------ operator table
    const QString sectionTable = QStringLiteral("Operator table");
    QByteArray json;
    {
        QFile resource(ModemSettings::mncTablePath());
        if (resource.open(QIODevice::ReadOnly))
            json = resource.readAll();
    }
    const double loadNs = nsPerCall([&] { keep(ModemSettings::loadMncTable(ModemSettings::mncTablePath())); });
    const double parseNs = nsPerCall([&] {
        QFile resource(ModemSettings::mncTablePath());
        resource.open(QIODevice::ReadOnly);
        keep(QJsonDocument::fromJson(resource.readAll()).toVariant());
    });
    const int entries = ModemSettings::loadMncTable(ModemSettings::mncTablePath()).size();
    print({sectionTable,
           QStringLiteral("loadMncTable(\":/mnc/mnctable.json\"), %1 entries: us").arg(entries),
           fmt(loadNs / 1000.0, 1), QStringLiteral("reading + parsing the same JSON alone: us"),
           fmt(parseNs / 1000.0, 1), fmt(loadNs / parseNs, 1) + QStringLiteral("x"), QString(), QString()});
    print({sectionTable, QStringLiteral("first ModemSettings in a cold process (loads the table): us"),
           fmt(firstLoadUs, 0), QString(), QString(), QString(), QString(), QString()});
    return 0;
}
