// Messages and parts: decoding entry, joining, text and validity of
// incomplete messages, error texts and the debug forms.

#include "sms.h"

#include <QtTest>

#include <functional>

namespace {

const QString STAMP_OCTETS = QStringLiteral("12501131216100");
const QDateTime STAMP(QDate(2021, 5, 11), QTime(13, 12, 16));

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

const QString TEXT_ERROR = QStringLiteral("SmsPduDecoder: Error reading text of message.");

QString debugText(const std::function<void(QDebug)>& write)
{
    QString out;
    write(QDebug(&out).nospace());
    return out;
}

} // namespace

class TestSms : public QObject
{
    Q_OBJECT

private slots:
    void defaultPart();
    void decodeSkipsBlanksAndLineEnds();
    void join_data();
    void join();
    void joinGroupsSeveralMessages();
    void onlyALaterPartArrived();
    void onlyAnInvalidPart();
    void firstValidPartFixesSizeAndSender();
    void addPartReplacesSetPartKeeps();
    void dateTime_data();
    void dateTime();
    void copiesAreIndependentValues();
    void debugForms_data();
    void debugForms();
};

void TestSms::defaultPart()
{
    for (const SmsPart& part : { SmsPart(), SmsPart(nullptr) }) {
        QVERIFY(part.isValid());
        QCOMPARE(part.getText(), QStringLiteral("[missing text]"));
        QCOMPARE(part.getPartCount(), 1);
        QCOMPARE(part.getPartNumber(), 0);
        QCOMPARE(part.getMessageType(), 3);
        QVERIFY(part.getPartId().isEmpty());
        QVERIFY(!part.getDateTime().isValid());
        QVERIFY(part.getErrorString().isEmpty());
    }
    const Sms empty;
    QCOMPARE(empty.getSize(), 0);
    QVERIFY(empty.isValid());
    QCOMPARE(empty.getText(), QString());
    QCOMPARE(empty.getErrorString(), QStringLiteral("Sms()"));
}

void TestSms::decodeSkipsBlanksAndLineEnds()
{
    const QString clean = deliver("Balance 10.50", 0x5A, 2, 1);
    QString spaced;
    for (int i = 0; i < clean.size(); i += 2)
        spaced += clean.mid(i, 2) + (i % 6 == 0 ? "\r\n" : " ");
    const SmsPart a = Sms::decode(clean);
    const SmsPart b = Sms::decode(spaced);
    QVERIFY(a.isValid());
    QCOMPARE(b.isValid(), a.isValid());
    QCOMPARE(b.getText(), QStringLiteral("Balance 10.50"));
    QCOMPARE(b.getSenderAddress(), a.getSenderAddress());
    QCOMPARE(b.getPartId(), a.getPartId());
    QCOMPARE(b.getPartNumber(), a.getPartNumber());
}

void TestSms::join_data()
{
    // Each message is described as "<valid>|<size>|<text>"; single messages
    // come first in input order, the only concatenated one last.
    QTest::addColumn<QStringList>("pdus");
    QTest::addColumn<QStringList>("messages");

    QTest::newRow("singles first, in input order")
        << QStringList { deliver("first"), deliver("one", 0x5A, 2, 1), deliver("second"),
                         deliver(" two", 0x5A, 2, 2) }
        << QStringList { "1|1|first", "1|1|second", "1|2|one two" };
    QTest::newRow("out of order") << QStringList { deliver("C", 7, 3, 3), deliver("A", 7, 3, 1),
                                                   deliver("B", 7, 3, 2) }
                                  << QStringList { "1|3|ABC" };
    QTest::newRow("middle part missing")
        << QStringList { deliver("A", 7, 3, 1), deliver("C", 7, 3, 3) }
        << QStringList { "1|3|A[missing text]C" };
    QTest::newRow("middle part invalid")
        << QStringList { deliver("A", 7, 3, 1), brokenPart(7, 3, 2), deliver("C", 7, 3, 3) }
        << QStringList { "0|3|A[missing part]C" };
    // An invalid part first does not fix the size; the next valid one does.
    QTest::newRow("invalid part first")
        << QStringList { brokenPart(7, 2, 1), deliver("B", 7, 2, 2) }
        << QStringList { "0|2|[missing part]B" };
    // A part whose header cannot be read has count 1 and stands alone.
    QTest::newRow("unreadable header stands alone")
        << QStringList { "07919761989901F0400B919761214365F70004" + STAMP_OCTETS + "0703240101616263",
                         deliver("A", 7, 2, 1), deliver("B", 7, 2, 2) }
        << QStringList { "1|0|", "1|2|AB" };
    QTest::newRow("empty") << QStringList() << QStringList();
}

void TestSms::join()
{
    QFETCH(QStringList, pdus);
    QFETCH(QStringList, messages);

    QList<SmsPart> parts;
    for (const QString& pdu : pdus)
        parts << Sms::decode(pdu);
    const QList<Sms> joined = Sms::join(parts);
    QStringList described;
    for (const Sms& sms : joined)
        described << QStringLiteral("%1|%2|%3").arg(int(sms.isValid())).arg(sms.getSize()).arg(sms.getText());
    QCOMPARE(described, messages);
}

void TestSms::joinGroupsSeveralMessages()
{
    // Messages with different references are kept apart (in no defined order).
    const QList<SmsPart> parts = { Sms::decode(deliver("x1", 1, 2, 1)), Sms::decode(deliver("y2", 2, 2, 2)),
                                   Sms::decode(deliver("x2", 1, 2, 2)), Sms::decode(deliver("y1", 2, 2, 1)),
                                   Sms::decode(deliver("single")) };
    const QList<Sms> joined = Sms::join(parts);
    QCOMPARE(joined.size(), 3);
    QCOMPARE(joined.at(0).getText(), QStringLiteral("single"));
    QStringList rest = { joined.at(1).getText(), joined.at(2).getText() };
    rest.sort();
    QCOMPARE(rest, QStringList({ "x1x2", "y1y2" }));
}

void TestSms::onlyALaterPartArrived()
{
    Sms sms;
    sms.addPart(Sms::decode(deliver("second half", 0x5A, 2, 2)));
    QCOMPARE(sms.getSize(), 2);
    QVERIFY(sms.isValid());
    QCOMPARE(sms.getText(), QStringLiteral("[missing text]second half"));
    QCOMPARE(sms.getSenderAddress(), QStringLiteral("+79161234567"));
    QCOMPARE(sms.getErrorString(), QStringLiteral("Sms()"));
    // The missing part is a default one.
    QVERIFY(sms[0].isValid());
    QCOMPARE(sms.getPart(0).getText(), QStringLiteral("[missing text]"));
    QCOMPARE(sms[1].getText(), QStringLiteral("second half"));
}

void TestSms::onlyAnInvalidPart()
{
    Sms sms;
    const SmsPart bad = Sms::decode(QStringLiteral("07919761989901F0000BA19761214365F7000412"));
    QVERIFY(!bad.isValid());
    sms.addPart(bad);
    QCOMPARE(sms.getSize(), 0);
    QCOMPARE(sms.getText(), QString());
    QVERIFY(sms.isValid());
    QCOMPARE(sms.getErrorString(), QStringLiteral("Sms()"));
    QCOMPARE(sms.getSenderAddress(), QString());
    // It is stored all the same, under number 0.
    QVERIFY(!sms[0].isValid());

    // With the size known, the invalid part shows in the error text.
    Sms two;
    two.addPart(Sms::decode(deliver("A", 9, 2, 2)));
    two.addPart(Sms::decode(brokenPart(9, 2, 1)));
    QVERIFY(!two.isValid());
    QCOMPARE(two.getErrorString(), QStringLiteral("Sms([invalid part 0: %1])").arg(TEXT_ERROR));
    QCOMPARE(two.getText(), QStringLiteral("[missing part]A"));
}

void TestSms::firstValidPartFixesSizeAndSender()
{
    Sms sms;
    sms.addPart(Sms::decode(deliver("a", 3, 2, 1)));
    sms.addPart(Sms::decode(deliver("b", 3, 3, 2, "0B919721436587F9")));
    sms.addPart(Sms::decode(deliver("c", 3, 3, 3)));
    QCOMPARE(sms.getSize(), 2);
    QCOMPARE(sms.getSenderAddress(), QStringLiteral("+79161234567"));
    QCOMPARE(sms.getText(), QStringLiteral("ab"));
}

void TestSms::addPartReplacesSetPartKeeps()
{
    Sms sms;
    sms.addPart(Sms::decode(deliver("old", 4, 2, 1)));
    SmsPart& stored = sms.addPart(Sms::decode(deliver("new", 4, 2, 1)));
    QCOMPARE(stored.getText(), QStringLiteral("new"));
    QCOMPARE(sms[0].getText(), QStringLiteral("new"));

    SmsData data;
    QVERIFY(data.setPart(0, Sms::decode(deliver("first", 4, 2, 1))));
    QVERIFY(!data.setPart(0, Sms::decode(deliver("second", 4, 2, 1))));
    QCOMPARE(data.parts.value(0).getText(), QStringLiteral("first"));
    QVERIFY(data.setPart(1, Sms::decode(deliver("other", 4, 2, 2))));
    QCOMPARE(data.parts.size(), 2);
    // setPart does not touch size or sender.
    QCOMPARE(data.size, 0);
}

void TestSms::dateTime_data()
{
    QTest::addColumn<QStringList>("pdus");
    QTest::addColumn<QDateTime>("expected");

    QTest::newRow("part 0 valid") << QStringList { deliver("b", 5, 2, 2), deliver("a", 5, 2, 1) } << STAMP;
    QTest::newRow("part 0 missing") << QStringList { deliver("b", 5, 2, 2) } << QDateTime();
    QTest::newRow("part 0 invalid") << QStringList { deliver("b", 5, 2, 2), brokenPart(5, 2, 1) }
                                    << QDateTime();
    QTest::newRow("single") << QStringList { deliver("x") } << STAMP;
}

void TestSms::dateTime()
{
    QFETCH(QStringList, pdus);
    QFETCH(QDateTime, expected);
    Sms sms;
    for (const QString& pdu : pdus)
        sms.addPart(Sms::decode(pdu));
    QCOMPARE(sms.getDateTime(), expected);
}

void TestSms::copiesAreIndependentValues()
{
    Sms original;
    original.addPart(Sms::decode(deliver("a", 6, 2, 1)));

    Sms copied(original);
    copied.addPart(Sms::decode(deliver("b", 6, 2, 2)));
    QCOMPARE(copied.getText(), QStringLiteral("ab"));
    QCOMPARE(original.getText(), QStringLiteral("a[missing text]"));

    Sms assigned;
    assigned = original;
    QCOMPARE(assigned.getText(), QStringLiteral("a[missing text]"));
    QCOMPARE(assigned.getSize(), 2);
    assigned.addPart(Sms::decode(deliver("B", 6, 2, 2)));
    QCOMPARE(assigned.getText(), QStringLiteral("aB"));
    QCOMPARE(original.getText(), QStringLiteral("a[missing text]"));

    Sms& self = assigned;
    assigned = self;
    QCOMPARE(assigned.getText(), QStringLiteral("aB"));
}

void TestSms::debugForms_data()
{
    QTest::addColumn<QString>("written");
    QTest::addColumn<QString>("expected");

    SmsPart second = Sms::decode(deliver("Hi", 0x11, 3, 2));
    SmsPart broken = Sms::decode(brokenPart(0x11, 3, 3));
    Sms valid;
    valid.addPart(Sms::decode(deliver("one ", 0x12, 2, 1)));
    valid.addPart(Sms::decode(deliver("two", 0x12, 2, 2)));
    Sms invalid;
    invalid.addPart(Sms::decode(deliver("x", 0x13, 2, 1)));
    invalid.addPart(Sms::decode(brokenPart(0x13, 2, 2)));

    QTest::newRow("valid part")
        << debugText([&](QDebug d) { d << second; })
        << "SmsPart([1/3] \"Hi\", \"+79161234567\", \"11.05.2021 13:12:16\")";
    QTest::newRow("valid part pointer")
        << debugText([&](QDebug d) { d << &second; })
        << "SmsPart([1/3] \"Hi\", \"+79161234567\", \"11.05.2021 13:12:16\")";
    QTest::newRow("invalid part") << debugText([&](QDebug d) { d << broken; })
                                  << "SmsPart(\"" + TEXT_ERROR + "\")";
    QTest::newRow("invalid part pointer") << debugText([&](QDebug d) { d << &broken; })
                                          << "SmsPart(invalid message: \"" + TEXT_ERROR + "\")";
    QTest::newRow("valid message")
        << debugText([&](QDebug d) { d << valid; })
        << "Sms(2, \"one two\", \"+79161234567\", \"11.05.2021 13:12:16\")";
    QTest::newRow("invalid message")
        << debugText([&](QDebug d) { d << invalid; })
        << "Sms(\"Sms([invalid part 1: " + TEXT_ERROR + "])\")";
    QTest::newRow("message pointer") << debugText([&](QDebug d) { d << &valid; }) << "\"one two\"";
    QTest::newRow("invalid message pointer") << debugText([&](QDebug d) { d << &invalid; })
                                             << "\"x[missing part]\"";
    // In a spaced stream the operators still write their own items unspaced.
    QString spaced;
    QDebug(&spaced) << "before" << second << "after";
    QTest::newRow("inside a spaced stream")
        << spaced << "before SmsPart([1/3] \"Hi\", \"+79161234567\", \"11.05.2021 13:12:16\") after ";
}

void TestSms::debugForms()
{
    QFETCH(QString, written);
    QFETCH(QString, expected);
    QCOMPARE(written, expected);
}

QTEST_GUILESS_MAIN(TestSms)
#include "tst_sms.moc"
