#pragma once

#include <QByteArray>
#include <QString>

namespace lmp {

/// The last characters of a child's standard error, without the codes that colour a terminal; knows no I/O.
///
/// A value; whoever shares it between threads locks. Escape sequences and control characters are dropped as the bytes
/// arrive, however they are cut, so that a child that writes little but colours cannot push its words out.
class StderrTail {
public:
    static constexpr int maxCharacters = 4000;

    void feed(QByteArrayView bytes);
    /// At most `maxCharacters`, as a person counts them.
    QString text() const;

private:
    enum class State {
        Text,
        Escape,  ///< after the escape character
        Control, ///< in a control sequence: parameters up to a letter
        String,  ///< in a title, a link and the like, up to their terminator
    };

    void feedByte(char byte);
    void feedText(char byte);

    QByteArray m_bytes;
    State m_state = State::Text;
};

} // namespace lmp
