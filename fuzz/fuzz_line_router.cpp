// The live channel's line splitter and router. A dialogue is built from the
// input: commands, each with its answer lines, unsolicited codes before and
// inside the answer (with the PDU line of +CMT and +CDS), line ends of every
// kind, and a final result code; the bytes are fed in pieces of every size.
// Every final result code on its own line must end exactly its command,
// every answer line reach that command's answer and nothing else, and every
// unsolicited code (a vendor code nobody knows included, between commands)
// reach the listener, in order, and nothing else either.
//
// Input: each byte is a choice (which line, which line end, piece sizes).
// A first byte with bit 7 set selects the raw mode instead: the rest is fed
// as it is, commands begun at arbitrary points, and the splitter must stay
// within its bound and never hand out a line with a line break outside a
// +CUSD text.
#include "fuzzcommon.h"

#include "linerouter_p.h"
#include "linesplitter_p.h"

#include <QList>

ZML_FUZZ_INIT

using zelmodems::LineRouter;
using zelmodems::LineSplitter;

namespace {

class Choices
{
public:
    Choices(const uint8_t* data, size_t size) : m_data(data), m_size(size) {}
    bool done() const { return m_at >= m_size; }
    int next(int range) { return m_at < m_size ? m_data[m_at++] % range : 0; }

private:
    const uint8_t* m_data;
    size_t m_size;
    size_t m_at = 0;
};

const char* const ANSWER_LINES[] = {"+CSQ: 20,99", "Manufacturer: huawei", "+CMGL: 1,0,,23",
                                    "07919730071111F1040B919761214365F70000621142512304800BC8329BFD06D1D1E939",
                                    "+COPS: 0,0,\"MegaFon\",7", "ACTIVE PROFILE:", "  indented line  ",
                                    "+CUSD: 0,\"line one\r\nline two, OK\r\nERROR\",15"};
const char* const KNOWN_URCS[] = {"+CMTI: \"SM\",3", "RING", "+CREG: 1,\"1A2B\",\"01C3D4E5\",7", "^RSSI: 12",
                                  "+CLIP: \"+79161234567\",145", "+CUSD: 1,\"menu\r\n1 yes\r\n2 no\",15",
                                  "^HCSQ: \"LTE\",50,40,120,20", "+CGEV: ME DETACH"};
const char* const UNKNOWN_URCS[] = {"^NEWTHING: 1", "*VENDOR: 2,3", "+XYZ"};
const char* const FINALS[] = {"OK", "ERROR", "+CME ERROR: 11", "+CMS ERROR: 321", "NO CARRIER", "CONNECT 115200"};
const char* const LINE_ENDS[] = {"\r\n", "\r", "\n", "\r\n\r\n", "\n\r"};

struct Expected
{
    QList<QByteArray> answer;
    QByteArray final;
};

// Feeds `bytes` in pieces and routes every line; what came goes into the
// lists.
void feed(Choices& choices, LineSplitter& splitter, LineRouter& router, const QByteArray& bytes,
          QList<QByteArray>& answer, QByteArray& final, int& finals, QList<QByteArray>& urcs)
{
    int at = 0;
    while (at < bytes.size()) {
        const int piece = 1 + choices.next(32) * (choices.next(4) == 0 ? 64 : 1);
        splitter.feed(bytes.mid(at, piece));
        at += piece;
        QByteArray line;
        while (splitter.takeLine(line)) {
            switch (router.route(line)) {
            case LineRouter::Kind::Final:
                final = line;
                ++finals;
                break;
            case LineRouter::Kind::Intermediate:
                answer << line;
                break;
            case LineRouter::Kind::Unsolicited:
            case LineRouter::Kind::UnsolicitedPdu:
                urcs << line;
                break;
            case LineRouter::Kind::Echo:
            case LineRouter::Kind::Stray:
                break;
            }
        }
    }
}

void structured(Choices& choices)
{
    LineSplitter splitter;
    LineRouter router;
    QList<QByteArray> expectedUrcs;
    QList<QByteArray> urcs;
    for (int command = 0; command < 8 && !choices.done(); ++command) {
        const auto end = [&] { return QByteArray(LINE_ENDS[choices.next(5)]); };
        // Codes that came while no command ran.
        QByteArray idle;
        for (int n = choices.next(3); n > 0; --n) {
            const QByteArray urc = choices.next(2) ? KNOWN_URCS[choices.next(8)] : UNKNOWN_URCS[choices.next(3)];
            idle += end() + urc + end();
            expectedUrcs << urc;
        }
        QList<QByteArray> answer;
        QByteArray final;
        int finals = 0;
        feed(choices, splitter, router, idle, answer, final, finals, urcs);
        ZML_FUZZ_CHECK(finals == 0 && answer.isEmpty());

        const QByteArray name = choices.next(2) ? "+CSQ" : "+CGMR";
        const QByteArray echo = "AT" + name;
        router.begin(echo, LineRouter::ownPrefixOf(name));
        Expected expected;
        QByteArray bytes = choices.next(2) ? echo + "\r" : QByteArray();
        for (int n = choices.next(5); n > 0; --n) {
            if (choices.next(3) == 0) {
                const int which = choices.next(9);
                if (which == 8) {
                    // A message passed on with its PDU line.
                    bytes += end() + "+CMT: ,23" + end() + ANSWER_LINES[3] + end();
                    expectedUrcs << "+CMT: ,23" << ANSWER_LINES[3];
                } else {
                    bytes += end() + KNOWN_URCS[which] + end();
                    expectedUrcs << KNOWN_URCS[which];
                }
            } else {
                const QByteArray line = ANSWER_LINES[choices.next(8)];
                // A quoted +CUSD text in an answer is the command's own only
                // for AT+CUSD; here it is an unsolicited code like any other.
                bytes += end() + line + end();
                if (line.startsWith("+CUSD:"))
                    expectedUrcs << line;
                else
                    expected.answer << line.trimmed();
            }
        }
        expected.final = FINALS[choices.next(6)];
        bytes += end() + expected.final + end();
        feed(choices, splitter, router, bytes, answer, final, finals, urcs);
        ZML_FUZZ_CHECK(finals == 1);
        ZML_FUZZ_CHECK(final == expected.final);
        ZML_FUZZ_CHECK(answer == expected.answer);
        ZML_FUZZ_CHECK(!router.inCommand());
    }
    ZML_FUZZ_CHECK(urcs == expectedUrcs);
}

void raw(const QByteArray& stream, Choices& choices)
{
    LineSplitter splitter;
    LineRouter router;
    int at = 0;
    while (at < stream.size()) {
        const int piece = 1 + choices.next(200);
        splitter.feed(stream.mid(at, piece));
        at += piece;
        if (choices.next(8) == 0)
            router.begin("AT+CSQ", "+CSQ:");
        if (choices.next(16) == 0)
            router.abandon();
        QByteArray line;
        while (splitter.takeLine(line)) {
            ZML_FUZZ_CHECK(!line.isEmpty());
            ZML_FUZZ_CHECK(line.size() <= LineSplitter::MaxLineBytes);
            if (!line.startsWith("+CUSD:") && !splitter.lastWasOverlong())
                ZML_FUZZ_CHECK(!line.contains('\r') && !line.contains('\n'));
            const LineRouter::Kind kind = router.route(line);
            if (kind == LineRouter::Kind::Final)
                ZML_FUZZ_CHECK(LineRouter::isFinal(line) && !router.inCommand());
        }
        ZML_FUZZ_CHECK(splitter.pendingSize() <= LineSplitter::MaxLineBytes + 200);
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    if (size < 1)
        return 0;
    if (data[0] & 0x80) {
        const QByteArray stream(reinterpret_cast<const char*>(data + 1), int(size - 1));
        Choices choices(data + 1, size - 1);
        raw(stream, choices);
    } else {
        Choices choices(data + 1, size - 1);
        structured(choices);
    }
    return 0;
}
