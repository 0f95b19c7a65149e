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
    /// Who is signed in, and by which sign-in. What was begun for another owner is nobody's business any more, also
    /// when the same person has come back.
    QString owner() const;
    bool isStill(const QString &owner) const { return this->owner() == owner; }
};

} // namespace lmp
