#pragma once

#include <QString>
#include <QStringList>

#include <expected>

namespace lmp {

/// What the window was started with. A value.
struct WindowOptions {
    QString site;       ///< empty is the sandbox
    bool named = false; ///< the service was named, by the arguments or the environment
    QString profile;    ///< empty is the person's own
    QString link;       ///< a lumenpair:// address to open, or empty

    /// @param arguments without the program's name
    /// @return the options, or a sentence that says what is wrong with them
    static std::expected<WindowOptions, QString> parse(const QStringList &arguments);
    /// What a later start is to be given to be this one again: the service and the profile, and no link.
    QStringList arguments() const;
};

} // namespace lmp
