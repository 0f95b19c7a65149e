#pragma once

#include "app/AppRouter.h"

namespace lmp {

/// Reads the program's own links, which any web page or program may hand us.
///
///     lumenpair://now  (social, market, studio, me)     lumenpair://conversation/ID
///     lumenpair://object/KIND/ID                        lumenpair://object/approval/MISSION/STEP
///     lumenpair://crisis
///
/// Free of state; any thread. A link only ever names a place to show: it starts nothing and changes nothing, and where
/// going there would stop something, the window asks. What is not exactly one of these forms is unavailable.
class DeepLink {
public:
    static constexpr qsizetype longest = 2048;

    /// Whether `text` claims to be one of ours, well formed or not. Whoever wrote it wanted to go somewhere, and is
    /// told where that is nowhere.
    static bool isLink(QStringView text);
    /// The first link among a program's arguments, if there is one.
    static std::optional<QString> in(const QStringList &arguments);

    /// @param shownKinds the kinds of objects that can be shown
    static AppRouter::Route route(const QString &link, const QStringList &shownKinds);
    /// Follows `link`, the same way at the start and while the program runs.
    static void open(AppRouter &router, const QString &link);
};

} // namespace lmp
