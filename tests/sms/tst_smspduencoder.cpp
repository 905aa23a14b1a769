// GSM 7-bit packing of USSD strings.

#include "smspduencoder.h"

#include <QtTest>

class TestSmsPduEncoder : public QObject
{
    Q_OBJECT

private slots:
    void encode_data();
    void encode();
};

void TestSmsPduEncoder::encode_data()
{
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<int>("fill");
    QTest::addColumn<QByteArray>("packed");

    QTest::newRow("empty") << QByteArray() << 32 << QByteArray();
    QTest::newRow("eight characters") << QByteArray("12345678") << 32 << QByteArray::fromHex("31D98C56B3DD70");
    // Seven characters leave the top seven bits of the last octet zero (no CR).
    QTest::newRow("seven characters") << QByteArray("1234567") << 32 << QByteArray::fromHex("31D98C56B3DD00");
    QTest::newRow("balance request") << QByteArray("*100#") << 32 << QByteArray::fromHex("AA180C3602");
    // A top-bit byte is packed as the fill value at its own place; the octet
    // before it still takes the raw byte's low bit (0xC1 -> 1).
    QTest::newRow("top bit substituted")
        << QByteArray("A\xC1") << 32 << QByteArray::fromHex("C110");
    QTest::newRow("top bit first") << QByteArray("\xFF" "B") << 32 << QByteArray::fromHex("2021");
    // The eighth character of a group is absorbed whole; its top bit only
    // shows as the masked low bits.
    QTest::newRow("top bit eighth") << QByteArray("1234567\xB8") << 32
                                    << QByteArray::fromHex("31D98C56B3DD70");
}

void TestSmsPduEncoder::encode()
{
    QFETCH(QByteArray, text);
    QFETCH(int, fill);
    QFETCH(QByteArray, packed);

    QCOMPARE(SmsPduEncoder::encode(text, uchar(fill)).toHex(), packed.toHex());
}

QTEST_GUILESS_MAIN(TestSmsPduEncoder)
#include "tst_smspduencoder.moc"
