#pragma once
#include <QtGlobal>

#include <array>
#include <cstddef>
#include <type_traits>

// A table-driven CRC in the usual parametric form: register type, width,
// initial value, polynomial (normal, MSB-first notation), final XOR value,
// and whether input bytes and the result are reflected.
//
// The register always runs MSB-first. Reflected variants are computed by
// reflecting each input byte on the way in and the register on the way out,
// so one table serves both kinds; the initial value is taken as it stands.
//
//     CrcArc crc;
//     quint16 sum = crc(data, size, true);   // CRC-16/ARC
template <typename T, int Width, T Init, T Poly, T XorOut, bool RefIn, bool RefOut>
class Crc
{
    static_assert(std::is_integral<T>::value && std::is_unsigned<T>::value,
                  "the register must be an unsigned integer");
    static_assert(Width >= 8 && Width <= int(sizeof(T) * 8),
                  "the width must fit the register and hold at least one byte");

public:
    using value_type = T;

    Crc()
    {
        // Entry b: the byte in the top eight bits of the register, then
        // eight polynomial steps.
        for (int b = 0; b < 256; ++b) {
            T r = T(T(b) << (Width - 8));
            for (int bit = 0; bit < 8; ++bit)
                r = step(r);
            m_table[std::size_t(b)] = T(r & mask());
        }
    }

    // The checksum of `length` bytes at `data`. With `useTable` false the
    // bytes are shifted in bit by bit (slow, for checking the table).
    T operator()(const void* data, std::size_t length, bool useTable) const
    {
        const unsigned char* p = static_cast<const unsigned char*>(data);
        T r = T(Init & mask());
        if (useTable) {
            for (std::size_t i = 0; i < length; ++i) {
                const unsigned idx = unsigned((r >> (Width - 8)) ^ inByte(p[i])) & 0xFFu;
                r = T((T(r << 8) ^ m_table[idx]) & mask());
            }
        } else {
            for (std::size_t i = 0; i < length; ++i) {
                r = T(r ^ T(T(inByte(p[i])) << (Width - 8)));
                for (int bit = 0; bit < 8; ++bit)
                    r = step(r);
            }
        }
        if (RefOut)
            r = reflect(r, Width);
        return T((r ^ XorOut) & mask());
    }

    const std::array<T, 256>& table() const { return m_table; }

    static constexpr T mask()
    {
        return Width == int(sizeof(T) * 8) ? T(~T(0)) : T((T(1) << (Width % int(sizeof(T) * 8))) - 1);
    }

    // The low `bits` bits of `value` in reverse order.
    static T reflect(T value, int bits)
    {
        T out = 0;
        for (int i = 0; i < bits; ++i) {
            out = T(out << 1) | T(value & 1u);
            value = T(value >> 1);
        }
        return out;
    }

private:
    static constexpr T topBit() { return T(T(1) << (Width - 1)); }

    static T step(T r)
    {
        return (r & topBit()) ? T((T(r << 1) ^ Poly) & mask()) : T(T(r << 1) & mask());
    }

    static unsigned inByte(unsigned char byte)
    {
        return RefIn ? unsigned(reflect(T(byte), 8)) : unsigned(byte);
    }

    std::array<T, 256> m_table{};
};

// CRC-16/ARC (also known as CRC-16/IBM): polynomial 0x8005, reflected,
// initial value and final XOR 0; check value 0xBB3D over "123456789".
using CrcArc = Crc<quint16, 16, 0x0000, 0x8005, 0x0000, true, true>;
