// The result-code detection of the driver's answer loops: an answer arrives
// in pieces of any size, and the scanner, which looks only at what is new
// (and the bytes before it where a code may have begun), must report a code
// at exactly the piece that completes the first one in the whole answer.
//
// Input: first byte: bit 0 picks the raw-command codes (OK, ERROR) instead
// of the command codes (OK, ERROR, NO CARRIER); second byte seeds the piece
// sizes; the rest is the answer.
#include "fuzzcommon.h"

#include "resultcodescanner_p.h"

ZML_FUZZ_INIT

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    if (size < 2)
        return 0;
    const bool raw = data[0] & 1;
    ResultCodeScanner scanner = raw ? ResultCodeScanner{"OK", "ERROR"} : ResultCodeScanner{"OK", "ERROR", "NO CARRIER"};
    const QByteArray stream(reinterpret_cast<const char*>(data + 2), int(size - 2));

    // Where the first code ends in the whole answer (past the end: none).
    int firstEnd = stream.size() + 1;
    for (const char* code : {"OK", "ERROR", "NO CARRIER"}) {
        if (raw && code[0] == 'N')
            continue;
        const int at = stream.indexOf(code);
        if (at >= 0)
            firstEnd = std::min(firstEnd, at + int(qstrlen(code)));
    }

    // Pieces of 1 to 64 bytes, now and then a large one, as serial reads give.
    quint32 state = data[1] * 2654435761u + 1;
    QByteArray answer;
    int offset = 0;
    do {
        state = state * 1664525u + 1013904223u;
        const int piece = (state >> 24) < 8 ? int(state >> 8) % 4096 : 1 + int(state >> 26);
        answer.append(stream.mid(offset, piece));
        offset += piece;
        const bool due = answer.size() >= firstEnd;
        ZML_FUZZ_CHECK(scanner.found(answer) == due);
        if (due)
            break;
    } while (offset < stream.size());
    return 0;
}
