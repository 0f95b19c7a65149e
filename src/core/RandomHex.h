#pragma once

#include <QRandomGenerator>
#include <QString>

namespace lmp {

/// `digits` random lowercase hexadecimal digits from the system's secure source. Any thread.
inline QString randomHex(qsizetype digits) {
    static constexpr char16_t alphabet[] = u"0123456789abcdef";
    QString text(digits, Qt::Uninitialized);
    quint32 bits = 0;
    for (qsizetype at = 0; at < digits; ++at, bits >>= 4) {
        if (at % 8 == 0)
            bits = QRandomGenerator::system()->generate();
        text[at] = alphabet[bits & 15];
    }
    return text;
}

} // namespace lmp
