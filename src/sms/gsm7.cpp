// The GSM 7-bit alphabet and septet packing (see gsm7_p.h).
#include "gsm7_p.h"

#include "gsm7tables_p.h"

#include <QHash>

namespace zelmodems {
namespace gsm7 {

namespace {

// Character -> septet (0x00-0x7F) or escape pair (0x1B00 | septet), from
// the default tables: what the encoders may write.
const QHash<ushort, ushort>& reverse()
{
    static const QHash<ushort, ushort> table = [] {
        using namespace gsm7tables;
        QHash<ushort, ushort> t;
        for (ushort septet = 0; septet < 128; ++septet) {
            if (septet != Escape && LockingShift[0][septet] != Unassigned)
                t.insert(LockingShift[0][septet], septet);
        }
        // Where a character is in both, its single septet wins.
        for (ushort septet = 0; septet < 128; ++septet) {
            const ushort c = SingleShift[0][septet];
            if (septet != Escape && c != Unassigned && !t.contains(c))
                t.insert(c, static_cast<ushort>((Escape << 8) | septet));
        }
        return t;
    }();
    return table;
}

} // namespace

QString decode(const QByteArray& septets, int lockingShift, int singleShift)
{
    using namespace gsm7tables;
    if (lockingShift < 0 || lockingShift >= LanguageCount)
        lockingShift = 0;
    if (singleShift < 0 || singleShift >= LanguageCount)
        singleShift = 0;
    const ushort* const main = LockingShift[lockingShift];
    const ushort* const shift = SingleShift[singleShift];
    QString text;
    text.reserve(septets.size());
    for (int i = 0; i < septets.size(); ++i) {
        const uchar septet = static_cast<uchar>(septets.at(i)) & 0x7F;
        ushort c = main[septet];
        if (septet == Escape) {
            if (++i >= septets.size())
                break;
            const uchar next = static_cast<uchar>(septets.at(i)) & 0x7F;
            if (next == Escape)
                c = 0x0020;
            else
                c = shift[next] != Unassigned ? shift[next] : main[next];
        }
        text.append(QChar(c == Unassigned ? ushort(0xFFFD) : c));
    }
    return text;
}

QByteArray encode(const QString& text, bool* ok)
{
    const QHash<ushort, ushort>& table = reverse();
    QByteArray septets;
    septets.reserve(text.size());
    for (const QChar c : text) {
        const auto it = table.constFind(c.unicode());
        if (it == table.constEnd()) {
            if (ok)
                *ok = false;
            return QByteArray();
        }
        if (it.value() > 0x7F)
            septets.append(static_cast<char>(Escape));
        septets.append(static_cast<char>(it.value() & 0x7F));
    }
    if (ok)
        *ok = true;
    return septets;
}

int length(const QString& text)
{
    const QHash<ushort, ushort>& table = reverse();
    int septets = 0;
    for (const QChar c : text) {
        const auto it = table.constFind(c.unicode());
        if (it == table.constEnd())
            return -1;
        septets += (it.value() > 0x7F) ? 2 : 1;
    }
    return septets;
}

QByteArray pack(const QByteArray& septets, int fillBits)
{
    fillBits = qBound(0, fillBits, 6);
    const int bits = fillBits + 7 * septets.size();
    QByteArray packed((bits + 7) / 8, '\0');
    int bit = fillBits;
    for (const char s : septets) {
        const uint value = static_cast<uchar>(s) & 0x7F;
        const int index = bit / 8;
        const int shift = bit % 8;
        packed[index] = static_cast<char>(static_cast<uchar>(packed.at(index)) | ((value << shift) & 0xFF));
        if (shift > 1)
            packed[index + 1] = static_cast<char>(value >> (8 - shift));
        bit += 7;
    }
    return packed;
}

QByteArray unpack(const QByteArray& packed, int count, int fillBits)
{
    fillBits = qBound(0, fillBits, 6);
    const int available = (packed.size() * 8 - fillBits) / 7;
    count = qBound(0, count, qMax(available, 0));
    QByteArray septets(count, '\0');
    int bit = fillBits;
    for (int i = 0; i < count; ++i) {
        const int index = bit / 8;
        const int shift = bit % 8;
        uint word = static_cast<uchar>(packed.at(index));
        if (index + 1 < packed.size())
            word |= static_cast<uint>(static_cast<uchar>(packed.at(index + 1))) << 8;
        septets[i] = static_cast<char>((word >> shift) & 0x7F);
        bit += 7;
    }
    return septets;
}

} // namespace gsm7
} // namespace zelmodems
