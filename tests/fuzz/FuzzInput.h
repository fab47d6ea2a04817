// Reads a fuzzer's bytes as a stream of small decisions and texts. Once the bytes run out every
// read answers 0 or "", so a target always terminates and short inputs stay meaningful.
#pragma once

#include <QByteArray>
#include <QString>

#include <cstddef>
#include <cstdint>
#include <cstring>

class FuzzInput
{
public:
    FuzzInput(const uint8_t *data, size_t size)
        : m_data(data)
        , m_size(size)
    {
    }

    bool atEnd() const { return m_pos >= m_size; }
    size_t remaining() const { return m_size - m_pos; }

    uint8_t byte() { return atEnd() ? 0 : m_data[m_pos++]; }
    /// One of `count` choices (0 when count is 0).
    unsigned pick(unsigned count) { return count == 0 ? 0 : byte() % count; }

    /// Up to eight bytes, little-endian.
    uint64_t integer(unsigned bytes = 8)
    {
        uint64_t value = 0;
        for (unsigned i = 0; i < bytes && i < 8; ++i)
            value |= uint64_t(byte()) << (8 * i);
        return value;
    }

    /// A length byte, then that many bytes as UTF-8 (invalid sequences become replacement
    /// characters, as any reader of the wire would see them).
    QString text() { return QString::fromUtf8(bytes(byte())); }

    QByteArray bytes(size_t count)
    {
        count = std::min(count, remaining());
        const QByteArray result(reinterpret_cast<const char *>(m_data + m_pos), qsizetype(count));
        m_pos += count;
        return result;
    }

    /// Everything not read yet.
    QByteArray rest() { return bytes(remaining()); }

private:
    const uint8_t *m_data;
    size_t m_size;
    size_t m_pos = 0;
};
