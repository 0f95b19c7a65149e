#pragma once

#include "dev/DevRun.h"

#include <QList>

namespace lmp {

/// What the workbench asks of git, each a command of its own, run to completion in the repository.
///
/// A value. Its calls are coroutines for any thread with an event loop and hold nothing of it. They fail with a text
/// for the person as it stands: git's own words, or that there is no git. What is asked means the same whatever a
/// person's settings are: no pager, no colours, no other program in place of the diff; reading runs no hook and takes
/// no lock. Nor does it run what whoever may write to the repository has chosen there: a repository's own filters are
/// left out, but for the well-known one of large files, and submodules are not looked into; where such a filter would
/// change a file it may show as changed. The person's own filters run. A commit is made as anybody would make it. Names
/// are taken literally, never as patterns. What git says to a person is in the person's language.
class DevGit {
public:
    struct Change {
        QString path;          ///< from the top of the work tree
        QString code;          ///< git's two letters
        QString formerly = {}; ///< the old path of what was renamed or copied
        bool operator==(const Change &) const = default;
    };
    struct Status {
        std::optional<QString> branch; ///< none on a detached head
        QList<Change> changed;
        bool operator==(const Status &) const = default;
    };
    struct NumStat {
        QString path;
        int added = 0;
        int removed = 0;
        bool operator==(const NumStat &) const = default;
    };
    template <class T>
    using Answer = std::expected<T, QString>;
    /// An answer that is a text, and one that is only that it went well.
    struct Text {
        QString text;
        bool operator==(const Text &) const = default;
    };
    struct Done {
        bool operator==(const Done &) const = default;
    };

    /// @param repository a folder in the work tree
    explicit DevGit(QString repository)
        : m_repository(std::move(repository)) {}

    QCoro::Task<bool> isRepository() const;
    QCoro::Task<Answer<Status>> status() const;
    /// Of everything that is tracked, against the last commit; a file that is not text counts as 0.
    QCoro::Task<Answer<QList<NumStat>>> numstat() const;
    /// The text of the same, cut to `limit` characters; or the words to be shown in its place.
    QCoro::Task<Text> diff(int limit) const;
    QCoro::Task<Answer<QStringList>> log(int count) const;
    /// Commits `files`, as `status` names them, and nothing else; a renamed file together with its old name.
    QCoro::Task<Answer<Done>> commit(QStringList files, QString message) const;
    /// Makes a work tree beside the repository, on a branch of its own. @return its path
    QCoro::Task<Answer<Text>> newWorktree(QString name) const;

    /// `name` as a part of a path and of a branch.
    static QString worktreeName(QString name);
    static QString worktreeRule();
    /// Shown in place of a result.
    static QString missingText();

private:
    QString m_repository;
};

} // namespace lmp
