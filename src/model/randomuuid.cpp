#include "model/randomuuid.h"

#include <QRandomGenerator>

#include <array>
#include <cstring>

namespace quillfern {

QUuid randomUuid()
{
    std::array<quint32, 4> words{};
    QRandomGenerator::global()->fillRange(words.data(), words.size());
    std::array<char, 16> bytes{};
    std::memcpy(bytes.data(), words.data(), bytes.size());
    // The version (4, random) and the variant (RFC 4122) take their fixed bits.
    bytes[6] = char((bytes[6] & 0x0F) | 0x40);
    bytes[8] = char((bytes[8] & 0x3F) | 0x80);
    return QUuid::fromRfc4122(QByteArrayView(bytes.data(), qsizetype(bytes.size())));
}

} // namespace quillfern
