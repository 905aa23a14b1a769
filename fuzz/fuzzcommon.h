#pragma once
// Shared set-up of the fuzz targets: a core application object (some code
// translates its texts or asks for the application's event dispatcher) and
// silence (the library logs every bad input it meets, which would slow the
// fuzzer down by orders of magnitude and drown its own report).
#include <QCoreApplication>
#include <QString>

#include <cstddef>
#include <climits>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>

namespace zmlfuzz {

inline void discardMessages(QtMsgType type, const QMessageLogContext&, const QString& text)
{
    // A fatal message is a finding: let it end the run with its text.
    if (type == QtFatalMsg) {
        fprintf(stderr, "qFatal: %s\n", qPrintable(text));
        abort();
    }
}

inline void initialise(int* argc, char*** argv)
{
    static QCoreApplication* app = nullptr;
    if (!app) {
        app = new QCoreApplication(*argc, *argv);
        qInstallMessageHandler(discardMessages);
    }
}

// A check that the fuzzer reports as a crash when it fails.
#define ZML_FUZZ_CHECK(condition)                                                        \
    do {                                                                                 \
        if (!(condition)) {                                                              \
            fprintf(stderr, "check failed at %s:%d: %s\n", __FILE__, __LINE__, #condition); \
            abort();                                                                     \
        }                                                                                \
    } while (0)

// Takes typed values from the front of a fuzz input, so that one input can
// build a structured request (a settings list, a map, options). Every call
// succeeds: when the input runs out, values are zero or empty.
class Input
{
public:
    Input(const uint8_t* data, size_t size) : m_data(data), m_size(size) {}

    size_t remaining() const { return m_size - m_pos; }

    uint8_t byte()
    {
        return m_pos < m_size ? m_data[m_pos++] : 0;
    }
    bool boolean() { return (byte() & 1) != 0; }
    // A value from `low` to `high` (inclusive), from as few bytes as it needs.
    template <typename T>
    T range(T low, T high)
    {
        const unsigned long long span = static_cast<unsigned long long>(high) - static_cast<unsigned long long>(low);
        unsigned long long value = 0;
        for (unsigned long long reach = 0; reach < span && remaining() > 0; reach = (reach << 8) | 0xFF)
            value = (value << 8) | byte();
        if (span != ~0ULL)
            value %= span + 1;
        return static_cast<T>(static_cast<unsigned long long>(low) + value);
    }
    int anyInt() { return range<int>(INT_MIN, INT_MAX); }
    double anyDouble()
    {
        switch (byte() % 4) {
        case 0: return double(anyInt());
        case 1: return double(anyInt()) / 100.0;
        case 2: return double(range<long long>(LLONG_MIN, LLONG_MAX)) * 1e300;
        default: return double(anyInt()) * 1e-300;
        }
    }
    // Bytes up to a backslash that is not doubled, or up to `maxLength`.
    std::string string(size_t maxLength)
    {
        std::string s;
        while (s.size() < maxLength && m_pos < m_size) {
            const char c = char(m_data[m_pos++]);
            if (c == '\\') {
                if (m_pos < m_size && m_data[m_pos] == '\\')
                    ++m_pos;
                else
                    break;
            }
            s.push_back(c);
        }
        return s;
    }
    std::string rest()
    {
        std::string s(reinterpret_cast<const char*>(m_data) + m_pos, m_size - m_pos);
        m_pos = m_size;
        return s;
    }

private:
    const uint8_t* m_data;
    size_t m_size;
    size_t m_pos = 0;
};

inline QByteArray bytes(const std::string& s)
{
    return QByteArray(s.data(), int(s.size()));
}

inline QString utf8(const std::string& s)
{
    return QString::fromUtf8(s.data(), int(s.size()));
}

} // namespace zmlfuzz

#define ZML_FUZZ_INIT                                            \
    extern "C" int LLVMFuzzerInitialize(int* argc, char*** argv) \
    {                                                            \
        zmlfuzz::initialise(argc, argv);                         \
        return 0;                                                \
    }
