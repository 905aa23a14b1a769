// The parametric CRC: catalogue check values over "123456789", and the
// table-driven and bit-by-bit paths agreeing on arbitrary data.
#include "crc_p.h"

#include <QRandomGenerator>
#include <QtTest>

namespace {

const QByteArray CHECK_INPUT("123456789");

// Both paths of one CRC variant over `data`.
template <typename C>
QPair<quint64, quint64> both(const QByteArray& data)
{
    const C crc;
    return qMakePair(quint64(crc(data.constData(), std::size_t(data.size()), true)),
                     quint64(crc(data.constData(), std::size_t(data.size()), false)));
}

// Catalogue variants (width, poly, init, refin, refout, xorout).
using Crc8 = Crc<quint8, 8, 0x00, 0x07, 0x00, false, false>;
using Crc16X25 = Crc<quint16, 16, 0xFFFF, 0x1021, 0xFFFF, true, true>;
using Crc24OpenPgp = Crc<quint32, 24, 0xB704CE, 0x864CFB, 0x000000, false, false>;
using Crc32 = Crc<quint32, 32, 0xFFFFFFFF, 0x04C11DB7, 0xFFFFFFFF, true, true>;
using Crc32Bzip2 = Crc<quint32, 32, 0xFFFFFFFF, 0x04C11DB7, 0xFFFFFFFF, false, false>;

typedef QPair<quint64, quint64> (*Runner)(const QByteArray&);

struct Variant
{
    const char* name;
    Runner run;
    quint64 check;
};

const Variant VARIANTS[] = {
    {"CRC-16/ARC", &both<CrcArc>, 0xBB3D},
    {"CRC-8", &both<Crc8>, 0xF4},
    {"CRC-16/X-25", &both<Crc16X25>, 0x906E},
    {"CRC-24/OPENPGP", &both<Crc24OpenPgp>, 0x21CF02},
    {"CRC-32", &both<Crc32>, 0xCBF43926},
    {"CRC-32/BZIP2", &both<Crc32Bzip2>, 0xFC891918},
};

} // namespace

Q_DECLARE_METATYPE(Runner)

class TestCrc : public QObject
{
    Q_OBJECT

private slots:
    // Both paths give the catalogue value, and agree on arbitrary data.
    void variants_data()
    {
        QTest::addColumn<Runner>("run");
        QTest::addColumn<quint64>("check");
        for (const Variant& v : VARIANTS)
            QTest::newRow(v.name) << v.run << v.check;
    }
    void variants()
    {
        QFETCH(Runner, run);
        QFETCH(quint64, check);
        QCOMPARE(run(CHECK_INPUT), qMakePair(check, check));
        QRandomGenerator random(20240517);
        for (int length = 0; length < 300; length += 7) {
            QByteArray data(length, Qt::Uninitialized);
            for (char& c : data)
                c = char(random.bounded(256));
            const QPair<quint64, quint64> sums = run(data);
            QCOMPARE(sums.first, sums.second);
        }
    }

};

QTEST_MAIN(TestCrc)
#include "tst_crc.moc"
