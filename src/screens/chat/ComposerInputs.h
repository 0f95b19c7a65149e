#pragma once

#include "conversation/KeptTexts.h"

#include <QObject>
#include <QtQmlIntegration>

namespace lmp {

/// What is typed and not sent in one window, kept apart for each conversation: which of the kept texts stands in the
/// box, and what a fresh conversation takes over.
///
/// Part of the chat's model; the clock outlives it. UI thread. Of an incognito conversation nothing is kept. How texts
/// come to the disk, and what happens where two windows meet, is KeptTexts'.
class ComposerInputs : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("part of a ChatModel")
    /// What the disk had of the box in use is in it.
    Q_PROPERTY(bool inputRestored READ isRestored NOTIFY stateChanged)
    /// Why it is not on disk, or not from there; empty when all is well.
    Q_PROPERTY(QString inputDraftError READ error NOTIFY stateChanged)
    /// Another window has written something else; `keepMine` or `takeTheirs` is the person's choice.
    Q_PROPERTY(bool inputDraftConflicted READ isConflicted NOTIFY stateChanged)
    Q_PROPERTY(QString otherText READ otherText NOTIFY stateChanged)
    /// One of the two was given up; `takeBack` is the action.
    Q_PROPERTY(bool givenUp READ hasGivenUp NOTIFY stateChanged)
public:
    using Place = KeptText::Place;

    static constexpr auto typingPause = KeptTexts::typingPause;
    static constexpr auto retryPause = KeptTexts::retryPause;

    ComposerInputs(ConversationInputDraftStore store, Clock &clock, QObject *parent = nullptr);
    ~ComposerInputs() override;

    /// Puts the input of the conversation before away, and takes out that of `place`. A fresh one takes over what was
    /// left unsent in the last fresh one.
    /// @param carry what stands in the box now goes along
    void moveTo(const Place &place, bool carry = false);
    /// More has become known of the conversation in use.
    void describe(const Place &place);
    /// Whether the box of `id` holds something for a conversation that was never begun.
    bool isFresh(const QString &id) const;
    /// The conversation in whose box was typed last, when that was later than in the box in use; else empty.
    QString typedLater() const;
    /// Resumes when what the disk had as the box in use was moved to is in it.
    static QCoro::Task<> looked();
    /// Whether some window has the fresh conversation `id` open.
    static bool isInUse(const QString &id);

    /// What stands in the box in use.
    ConversationInput current() const { return m_texts.box(m_id).input; }
    void setText(const QString &text);
    void setRetryMessage(std::optional<QString> messageId);
    void clear();
    /// What stands in the box was sent: it is empty, and what it held stays on disk until `release`.
    void hold(quint64 ticket) { m_texts.hold(m_id, ticket); }
    /// What was sent from the box of `id` up to `ticket` is safe.
    void release(const QString &id, quint64 ticket) { m_texts.release(id, ticket); }

    /// Puts away what there is and begins with what the disk has for `account`.
    /// @param samePerson only now it is known who it is that has been typing: the box stays as it is
    void open(const std::optional<QString> &account, bool samePerson = false);
    /// The account whose input was restored.
    const std::optional<QString> &restoredDraftAccount() const { return m_texts.restoredAccount(); }
    /// Whether the disk has everything that is to be kept.
    bool isKept() const { return m_texts.isKept(); }
    /// Puts on disk what is not there yet. @return false when that did not work
    QCoro::Task<bool> keep() { return m_texts.keep(); }

    // Of the box in use.
    bool isRestored() const { return m_texts.box(m_id).restored; }
    std::optional<QString> inputDraftWriteId() const { return m_texts.box(m_id).draftWriteId; }
    /// Why the box is not on disk, or what the disk has is not in the box; null when all is well.
    QString error() const { return m_texts.error(m_id); }
    bool isConflicted() const { return m_texts.box(m_id).theirs.has_value(); }
    /// What another window wrote, while that is so.
    std::optional<KeptText::Entry> theirs() const { return m_texts.box(m_id).theirs; }
    /// The same, as it reads.
    QString otherText() const;
    /// Puts what stands here in the place of what the other window wrote. Nothing never takes the place of something.
    Q_INVOKABLE void keepMine();
    /// Gives up what stands here for what the other window wrote.
    Q_INVOKABLE void takeTheirs();
    /// Whether one of the two was given up, and can be had back with `takeBack`.
    bool hasGivenUp() const { return m_texts.box(m_id).givenUp.has_value() && !isConflicted(); }
    Q_INVOKABLE void takeBack() { m_texts.takeBack(m_id); }
    Q_INVOKABLE void forgetGivenUp() { m_texts.forgetGivenUp(m_id); }

Q_SIGNALS:
    /// The box in use holds something else, other than by `setText`.
    void replaced();
    /// `error`, `isConflicted` or `isRestored` may have changed.
    void stateChanged();
    /// What stands in the boxes that are not in use has been put on disk.
    void kept();

private:
    void takeOver();
    /// The box in which was typed last, of those that count and are not in use here; none where nothing was later than
    /// `after`.
    std::optional<QString> typedLast(const std::function<bool(const QString &, const KeptText &)> &counts,
                                     QDateTime after = {}) const;
    void onReplaced(const QString &id);
    void onRestored();

    KeptTexts m_texts;
    QString m_id; ///< of the box in use
};

} // namespace lmp
