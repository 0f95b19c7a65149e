#pragma once

#include "conversation/ConversationAccount.h"
#include "conversation/KeptTexts.h"
#include "platform/ApplicationSupport.h"

#include <QSet>

namespace lmp {

/// What is typed about memories and not saved yet (corrections, a text to import), kept on disk until it is saved or
/// given up, so that neither a closed sheet nor a crash costs anybody a sentence.
///
/// One for the program, shared by its windows; the clock outlives it. UI thread. What one account typed is not seen by
/// another. A text that cannot be kept stays here, and `notice` says so; where another program has written the same
/// text, both are put together.
class MemoryInputs : public QObject {
    Q_OBJECT
public:
    static constexpr auto typingPause = KeptTexts::typingPause;
    static constexpr auto retryPause = KeptTexts::retryPause;

    /// @param scope as with DraftFolder
    MemoryInputs(const ApplicationSupport &support, ConversationAccount account, Clock &clock,
                 const QString &scope = {}, QObject *parent = nullptr);

    /// What was typed for `key`; empty when nothing was.
    QString text(const QString &key) const { return m_texts.box(key).input.text; }
    /// What is typed for; with a text.
    QSet<QString> keys() const;
    /// An empty text gives up what was kept.
    void setText(const QString &key, const QString &text);
    /// Why something is not on disk, or is not as it was left; empty when all is well.
    const QString &notice() const { return m_notice; }
    /// The person has read it; what is still so is said again.
    void closeNotice();

    /// To be called when somebody else may be signed in.
    void recheckAccount();
    /// Puts on disk what is not there yet. @return false when that did not work
    QCoro::Task<bool> keep() { return m_texts.keep(); }

Q_SIGNALS:
    /// Another text, or none, other than by `setText`; or another notice.
    void replaced();
    /// There is a text for another set of keys.
    void keysChanged();

private:
    void onReplaced();
    void onStateChanged();
    void joinConflicts();
    QString trouble() const;

    ConversationAccount m_who;
    QString m_signIn;
    KeptTexts m_texts;
    QString m_notice;
    bool m_joined = false; ///< somebody else's words are among these
};

} // namespace lmp
