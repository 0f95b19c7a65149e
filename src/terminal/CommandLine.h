#pragma once

#include "dev/DevEngineKind.h"
#include "dev/DevMode.h"
#include "dev/DevPermissionDecision.h"

#include <QString>
#include <QStringList>

#include <expected>
#include <optional>

namespace lmp {

/// What was typed after the program's name. A value.
struct CommandLine {
    enum class Command {
        Chat,
        SignIn,
        SignOut,
        WhoAmI,
        ConversationList,
        ConversationShow,
        DraftList,
        DraftShow,
        DraftDiscard,
        Memory,
        Search,
        Crisis,
        Dev,
        DevGit,
        DevWorktree,
        Doctor
    };

    /// A session with a coding agent.
    struct Dev {
        DevEngineKind engine = DevEngineKind::claude;
        QString repo = QStringLiteral("."); ///< of the other dev commands too
        DevMode mode = DevMode::acceptEdits;
        std::optional<QString> model = {};
        std::optional<QString> resume = {};
        std::optional<DevPermissionDecision::Kind> allow = {}; ///< the answer to every question
        bool jsonl = false;
        QStringList text = {};
    };

    /// What is to be done with the ledger of memories.
    struct Memory {
        enum class What {
            List,
            Candidates,
            Chapters,
            Confirm,
            Dismiss,
            Correct,
            Revert,
            Freeze,
            Unfreeze,
            Forget,
            Restore,
            History,
            Import,
            Accept,
            Reject
        };
        What what = What::List;
        QString id = {};
        QString text = {}; ///< what is looked for, or the new wording
        QString file = {}; ///< empty or "-" is standard input
        bool jsonl = false;
    };

    /// Why nothing is run: the text, and whether it is an answer (help, version) or a complaint.
    struct Leave {
        QString text;
        bool usageError = false;
    };

    QString site; ///< empty: the environment's, else the sandbox
    bool sandbox = false;
    QString profile;
    Command command = Command::Chat;

    // chat
    bool continueLast = false;
    QString conversationId;
    bool incognito = false;
    bool cheaper = false;
    bool jsonl = false;
    QStringList text;

    // search, with `jsonl` and `text`
    int most = 50;

    // sign-in
    QString email;
    bool registerEmail = false;
    QString phone;
    QString dialCode = QStringLiteral("+86");
    bool password = false;
    bool guest = false;
    bool google = false;

    // drafts
    QString draftId;
    bool draftJson = false;
    bool discardSurely = false;
    bool discardUnreadable = false;
    Memory memory;

    // crisis
    QString region;

    // dev, dev git, dev worktree, doctor
    Dev dev;
    QString gitView; ///< status, diff or log
    QString worktree;
    bool json = false;
    /// Whether the command has nothing to do with the service.
    bool isLocal() const { return command >= Command::Dev; }

    /// @param argc,argv as main() has them; arguments are UTF-8
    static std::expected<CommandLine, Leave> parse(int argc, const char *const *argv);

    /// "lumenpair 0.1.0 (1)" and so on; needs no application object.
    static QString version();
};

} // namespace lmp
