#pragma once

#include "platform/ExternalOpener.h"

namespace lmp {

/// Opens links with the desktop's own opener (xdg-open, on macOS open), as a program of its own and without a shell.
///
/// Only http and https addresses with a host and plain telephone numbers are handed on; a link comes from elsewhere,
/// and any other scheme could start anything.
class SystemOpener : public ExternalOpener {
public:
    /// @return false for a link that is refused, without a desktop to show it, and when the opener did not start
    bool open(const QUrl &url) override;
    /// @return false also when the opener soon says that it found no program for the link
    QCoro::Task<bool> openAndHear(QUrl url) override;

    /// Whether `url` is one that may be handed on.
    static bool mayOpen(const QUrl &url);
};

} // namespace lmp
