#pragma once

#include <QString>
#include <QStringList>
#include <QUrl>

namespace lmp {

/// What the crisis card and the crisis page say, in one place for the window and the terminal.
class CrisisTexts {
public:
    static QString cardWithoutNumbers();

    static QString entry();
    static QString entrySubtitle();
    static QString regionWithoutList(); ///< follows the region's label
    static QString pageWithoutNumbers();
    static QString assumedRegion();
    /// @param reason the failed call's own sentence
    static QString loadFailed(const QString &reason);
    static QString back();
    static QStringList rules();

    /// The number as a link to be read: "tel://" and the phone.
    static QString dialLink(const QString &phone);
    /// The same as an address that can be handed to another program. It has no "//": a URL class takes what follows for
    /// a host and makes 0.0.0.120 of 120. Empty when `phone` holds no digit.
    static QUrl dialURL(const QString &phone);
};

} // namespace lmp
