#pragma once

#include <QString>

#include <functional>
#include <optional>

namespace lmp {

/// Who is signed in, as far as conversations need to know it; the session store fills it in.
///
/// A value; its functions are called on the UI thread and never block.
struct ConversationAccount {
    /// The signed-in user's id, or none.
    std::function<std::optional<QString>()> userId;
    /// The identity of the current sign-in: another text after every sign-in and sign-out.
    std::function<QString()> generation;

    /// The signed-in user's id, or none also where nobody tells.
    std::optional<QString> current() const;
    /// The key of local records: the user's id, or "anonymous" when nobody is signed in.
    QString key() const;
    /// The current sign-in, or nothing where nobody tells.
    QString signIn() const { return generation ? generation() : QString(); }
    /// Whose what is on the screen is: another text for another account, and for another sign-in of the same.
    QString owner() const { return key() + QChar(u'\n') + signIn(); }
};

} // namespace lmp
