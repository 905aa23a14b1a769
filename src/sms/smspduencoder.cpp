#include "smspduencoder.h"

#include "gsm7_p.h"

const uchar SmsPduEncoder::mEncodeMask[7] = { 0x01, 0x03, 0x07, 0x0F, 0x1F, 0x3F, 0x7F };

QByteArray SmsPduEncoder::encode(const QByteArray& text, uchar fill)
{
    // Septets only: the packing is the standard one, done where every
    // other packer of the library does it.
    bool septetsOnly = true;
    for (const char c : text) {
        if (static_cast<uchar>(c) & 0x80) {
            septetsOnly = false;
            break;
        }
    }
    if (septetsOnly)
        return zelmodems::gsm7::pack(text, 0);

    // A byte with the high bit set stands as `fill` in its own septet, while
    // its low bits still complete the octet before it: the two passes below
    // keep exactly that.
    const int n = text.size();
    const auto ch = [&text](int i) { return static_cast<uchar>(text.at(i)); };

    // First pass: every character shifted right by its place in its group of
    // eight; the eighth of each group is wholly absorbed by the seven before.
    QByteArray work;
    work.reserve(n - n / 8);
    int shift = 0;
    for (int i = 0; i < n; ++i) {
        if (shift == 7) {
            shift = 0;
            continue;
        }
        const uchar c = (ch(i) & 0x80) ? fill : ch(i);
        work.append(static_cast<char>(static_cast<uchar>(c >> shift)));
        ++shift;
    }

    // Second pass: complete each octet with the low bits of the next
    // character (taken from the raw byte).
    QByteArray out(work.size(), '\0');
    int next = 1;
    int step = 1;
    for (int k = 0; k < out.size(); ++k) {
        const uchar current = static_cast<uchar>(work.at(k));
        if (next == n) {
            out[k] = static_cast<char>(current);
            break;
        }
        const uchar low = ch(next) & mEncodeMask[step - 1];
        out[k] = static_cast<char>(static_cast<uchar>(current | (low << (8 - step))));
        ++step;
        if (step == 8) {
            next += 2;
            step = 1;
            if (next > n)
                break;
        } else {
            ++next;
        }
    }
    return out;
}
