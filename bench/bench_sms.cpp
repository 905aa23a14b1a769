// SMS decoding and joining, side by side with Debian's python3-gammu on the
// same corpus (bench/data/sms_corpus.txt, PDUs that gammu encoded).
//
// Sms::decode takes the modem's hexadecimal text, so the peer's figure is
// taken from hexadecimal text as well (bytes.fromhex + gammu.DecodePDU). The
// peer runs in the Python interpreter; its pure call overhead is measured
// and printed too, so that the ratio can be read fairly.
#include "benchutil.h"

#include "joinedmessage.h"
#include "messagestore.h"
#include "shortmessage.h"
#include "sms.h"
#include "smspart.h"

#include <QCoreApplication>
#include <QFile>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QTextStream>

#include <cstdio>

using namespace bench;

namespace {

double secondsPerMeasure = 2.0;

QList<QStringList> readCorpus(const QString& path)
{
    QList<QStringList> batches;
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly | QIODevice::Text))
        return batches;
    QStringList batch;
    QTextStream in(&file);
    while (!in.atEnd()) {
        const QString line = in.readLine().trimmed();
        if (line.startsWith(QLatin1Char('#')))
            continue;
        if (line.isEmpty()) {
            if (!batch.isEmpty())
                batches << batch;
            batch.clear();
            continue;
        }
        batch << line;
    }
    if (!batch.isEmpty())
        batches << batch;
    return batches;
}

// Runs `work` (one pass over the corpus) repeatedly for about the measure's
// time; returns nanoseconds per pass.
template <typename F>
double perPass(F work)
{
    work();
    qint64 passes = 0;
    const qint64 start = nowNs();
    const qint64 end = start + qint64(secondsPerMeasure * 1e9);
    qint64 now = start;
    while (now < end) {
        work();
        ++passes;
        now = nowNs();
    }
    return double(now - start) / double(passes);
}

} // namespace

int main(int argc, char** argv)
{
    QCoreApplication app(argc, argv);
    QStringList args = app.arguments();
    if (args.removeAll(QStringLiteral("--quick")))
        secondsPerMeasure = 0.3;
    const QString corpus = args.value(1, QStringLiteral(ZML_BENCH_DATA_DIR "/sms_corpus.txt"));
    const QString peerScript = args.value(2, QStringLiteral(ZML_BENCH_SOURCE_DIR "/gammu_decode.py"));
    qInstallMessageHandler(discardMessages);

    const QList<QStringList> batches = readCorpus(corpus);
    QStringList pdus;
    for (const QStringList& b : batches)
        pdus << b;
    if (pdus.isEmpty()) {
        std::fprintf(stderr, "no PDUs in %s\n", qPrintable(corpus));
        return 1;
    }

    // The decoder reads the text length of a 7-bit part with a header in a
    // way that leaves most such parts one octet short (they come out invalid
    // with "Error reading text of message."); those are decoded all the same,
    // up to the failing read, and counted here.
    int invalid = 0;
    for (const QString& pdu : qAsConst(pdus))
        invalid += Sms::decode(pdu).isValid() ? 0 : 1;
    std::fprintf(stderr, "%d of %d PDUs are invalid by the decoder's rules\n", invalid, int(pdus.size()));

    const double decodeNs = perPass([&] {
        for (const QString& pdu : qAsConst(pdus))
            keep(Sms::decode(pdu));
    }) / double(pdus.size());

    QList<QList<SmsPart>> decodedBatches;
    for (const QStringList& b : batches) {
        QList<SmsPart> parts;
        for (const QString& pdu : b)
            parts << Sms::decode(pdu);
        decodedBatches << parts;
    }
    int messages = 0;
    const double joinNs = perPass([&] {
        messages = 0;
        for (const QList<SmsPart>& parts : qAsConst(decodedBatches)) {
            const QList<Sms> joined = Sms::join(parts);
            for (const Sms& sms : joined) {
                keep(sms.getText());
                ++messages;
            }
        }
    }) / double(pdus.size());

    // The toolkit's reader of stored messages on the same corpus: decoding,
    // then decoding and joining each listing.
    const double shortNs = perPass([&] {
        for (const QString& pdu : qAsConst(pdus))
            keep(zelmodems::ShortMessage::decode(pdu));
    }) / double(pdus.size());
    const double shortJoinNs = perPass([&] {
        for (const QStringList& b : batches) {
            QList<zelmodems::ShortMessage> parts;
            for (const QString& pdu : b)
                parts << zelmodems::ShortMessage::decode(pdu);
            for (const zelmodems::JoinedMessage& message : zelmodems::JoinedMessage::join(parts))
                keep(message.text());
        }
    }) / double(pdus.size());

    // The peer, in the same run.
    QProcess peer;
    peer.start(QStringLiteral("/usr/bin/python3"),
               {peerScript, corpus, QString::number(secondsPerMeasure)});
    QJsonObject peerResult;
    if (peer.waitForFinished(int(secondsPerMeasure * 10000) + 60000) && peer.exitCode() == 0)
        peerResult = QJsonDocument::fromJson(peer.readAllStandardOutput()).object();
    else
        std::fprintf(stderr, "gammu peer failed: %s\n", peer.readAllStandardError().constData());

    const QString section = QStringLiteral("SMS");
    const double gammuDecode = peerResult.value(QStringLiteral("decode_ns")).toDouble();
    const double gammuCall = peerResult.value(QStringLiteral("call_ns")).toDouble();
    const double gammuJoin = peerResult.value(QStringLiteral("join_ns")).toDouble();
    const QString gammuName = QStringLiteral("python3-gammu %1 (DecodePDU from hex)")
                                  .arg(peerResult.value(QStringLiteral("gammu")).toString());
    print({section,
           QStringLiteral("Sms::decode, %1 real-shaped PDUs: PDUs per second").arg(pdus.size()),
           fmt(1e9 / decodeNs, 0), gammuName + QStringLiteral(": PDUs per second"),
           gammuDecode > 0 ? fmt(1e9 / gammuDecode, 0) : QStringLiteral("n/a"),
           gammuDecode > 0 ? fmt(gammuDecode / decodeNs, 1) + QStringLiteral("x faster") : QString(),
           QStringLiteral("faster per PDU"),
           gammuDecode > 0 ? (decodeNs < gammuDecode ? QStringLiteral("met") : QStringLiteral("missed"))
                           : QString()});
    print({section, QStringLiteral("Sms::decode: ns per PDU"), fmt(decodeNs, 0),
           QStringLiteral("gammu ns per PDU (of which interpreter call overhead %1)").arg(fmt(gammuCall, 0)),
           gammuDecode > 0 ? fmt(gammuDecode, 0) : QStringLiteral("n/a"),
           gammuDecode > 0 ? fmt(decodeNs / gammuDecode, 3) : QString(), QString(), QString()});
    print({section,
           QStringLiteral("Sms::join + getText, %1 listings of 20-40 parts: parts per second")
               .arg(batches.size()),
           fmt(1e9 / joinNs, 0), QStringLiteral("gammu LinkSMS + DecodeSMS: parts per second"),
           gammuJoin > 0 ? fmt(1e9 / gammuJoin, 0) : QStringLiteral("n/a"),
           gammuJoin > 0 ? fmt(gammuJoin / joinNs, 1) + QStringLiteral("x faster") : QString(), QString(),
           QString()});
    print({section,
           QStringLiteral("ShortMessage::decode, same PDUs: PDUs per second"),
           fmt(1e9 / shortNs, 0), gammuName + QStringLiteral(": PDUs per second"),
           gammuDecode > 0 ? fmt(1e9 / gammuDecode, 0) : QStringLiteral("n/a"),
           gammuDecode > 0 ? fmt(gammuDecode / shortNs, 1) + QStringLiteral("x faster") : QString(),
           QStringLiteral("faster per PDU"),
           gammuDecode > 0 ? (shortNs < gammuDecode ? QStringLiteral("met") : QStringLiteral("missed"))
                           : QString()});
    print({section,
           QStringLiteral("ShortMessage::decode + JoinedMessage::join + text, same listings: parts per second"),
           fmt(1e9 / shortJoinNs, 0), QStringLiteral("gammu DecodePDU + LinkSMS + DecodeSMS: parts per second"),
           gammuJoin > 0 && gammuDecode > 0 ? fmt(1e9 / (gammuJoin + gammuDecode), 0) : QStringLiteral("n/a"),
           gammuJoin > 0 && gammuDecode > 0 ? fmt((gammuJoin + gammuDecode) / shortJoinNs, 1) + QStringLiteral("x faster")
                                            : QString(),
           QString(), QString()});
    std::fprintf(stderr, "%d messages joined from %d parts (gammu: %d messages, %d decoding failures)\n",
                 messages, int(pdus.size()), peerResult.value(QStringLiteral("messages")).toInt(),
                 peerResult.value(QStringLiteral("failures")).toInt());

    // A hostile listing: 100 KB of entry headers with no PDU line under any.
    // The parser must stay linear, far under the second a caller can bear.
    QByteArray headers;
    while (headers.size() < 100 * 1024)
        headers += "+CMGL: 1,1,,23\r\n";
    QList<zelmodems::StoredPdu> entries;
    const qint64 parseStart = nowNs();
    zelmodems::MessageStore::parseListing(headers, entries);
    const double parseMs = double(nowNs() - parseStart) / 1e6;
    print({section, QStringLiteral("MessageStore::parseListing, 100 KB of headers without PDUs: ms"),
           fmt(parseMs, 1), QStringLiteral("limit"), QStringLiteral("1000"), fmt(parseMs / 1000.0, 3),
           QStringLiteral("< 1000 ms"), parseMs < 1000.0 ? QStringLiteral("met") : QStringLiteral("missed")});
    return 0;
}
