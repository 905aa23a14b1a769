#pragma once
#include "zelmodemslib_export.h"

#include <QByteArray>

// Packs 7-bit characters into GSM 7-bit septets, eight characters into seven
// octets (least significant bit first), as USSD strings are sent to modems
// that want them packed. No character-set conversion is done: the text is
// taken byte by byte.
class ZELMODEMSLIB_EXPORT SmsPduEncoder
{
public:
    /// Returns the packed octets (raw, not hexadecimal), ceil(7n/8) of them.
    /// A byte with its top bit set is packed as `fill` (callers pass the
    /// blank, 32); only its low bits still reach the octet before it.
    static QByteArray encode(const QByteArray& text, uchar fill);

    /// Masks of the low 1 to 7 bits of the character whose bits complete an
    /// octet.
    static const uchar mEncodeMask[7];
};
