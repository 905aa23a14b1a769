#pragma once
// The GSM 7-bit alphabet (3GPP TS 23.038 6.2.1, the extension table of
// 6.2.1.1 and the national language tables of Annex A) and the septet
// packing of TS 23.038 6.1.2.1.1: one home for the toolkit, the message
// decoder and the encoders. The tables themselves are in gsm7tables_p.h.
//
// The escape septet 0x1B is never a character of its own: it selects the
// single shift table for the septet after it. Following TS 23.038 6.2.1.1,
// an escape followed by a septet the shift table leaves empty reads as that
// septet in the main table, an escape followed by another escape (reserved
// for a further extension table) reads as a space, and an escape with
// nothing after it is dropped.
#include <QByteArray>
#include <QString>

namespace zelmodems {
namespace gsm7 {

const uchar Escape = 0x1B;

// Text of `septets` (one per byte, the high bit ignored) in the tables of
// the given national languages (0: the default alphabet; an identifier
// without a table reads as the default). A septet no table assigns reads
// as U+FFFD.
QString decode(const QByteArray& septets, int lockingShift = 0, int singleShift = 0);
// Septets of `text` in the default alphabet and its extension table, one
// per byte, extension characters as escape pairs; empty with *ok false
// when a character is not in them.
QByteArray encode(const QString& text, bool* ok = nullptr);
// Septets `text` takes (extension characters count two); -1 when some
// character is not in the alphabet.
int length(const QString& text);

// Packs septets least significant bit first after `fillBits` (0..6) zero bits.
QByteArray pack(const QByteArray& septets, int fillBits = 0);
// Unpacks `count` septets starting `fillBits` bits into `packed` (fewer
// when the octets run out; none for a negative count).
QByteArray unpack(const QByteArray& packed, int count, int fillBits = 0);

} // namespace gsm7
} // namespace zelmodems
