#include "core/OneShotBody.h"

#include <algorithm>
#include <cstring>

namespace lmp {

OneShotBody::OneShotBody(QByteArray bytes, QObject *parent)
    : QIODevice(parent)
    , m_bytes(std::move(bytes)) {
    // Unbuffered, since a device that Qt had read ahead of would count as read twice.
    open(QIODevice::ReadOnly | QIODevice::Unbuffered);
}

qint64 OneShotBody::readData(char *data, qint64 maxSize) {
    const qint64 n = std::min<qint64>(maxSize, m_bytes.size() - m_position);
    if (n == 0)
        return -1;
    std::memcpy(data, m_bytes.constData() + m_position, size_t(n));
    m_position += n;
    return n;
}

} // namespace lmp
