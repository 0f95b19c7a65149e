#include "support/DraftTrials.h"

#include "conversation/ConversationSession.h"
#include "conversation/KeptTexts.h"
#include "platform/SystemClock.h"
#include "support/Await.h"
#include "support/FailingCalls.h"

#include <QCryptographicHash>
#include <QDir>
#include <QFile>

#include <atomic>
#include <chrono>
#include <csignal>
#include <dirent.h>
#include <fcntl.h>
#include <random>
#include <sys/mman.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

namespace lmp {

using namespace Qt::StringLiterals;
using Store = ConversationInputDraftStore;
using Call = FailingCalls::Call;

namespace {

const QString account = u"trial"_s;
const QString conversation = u"c"_s;

/// Memory that a forked program shares with this one, and that outlives its death.
template <class T>
class Shared {
public:
    Shared()
        : m_value(new(::mmap(nullptr, sizeof(T), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0)) T) {}
    ~Shared() { ::munmap(m_value, sizeof(T)); }
    Shared(const Shared &) = delete;
    Shared &operator=(const Shared &) = delete;
    T *operator->() { return m_value; }

private:
    T *m_value;
};

template <class Work>
pid_t forked(Work work) {
    const pid_t child = ::fork();
    if (child == 0) {
        work();
        ::_exit(0);
    }
    return child;
}

void end(pid_t child) {
    ::kill(child, SIGKILL);
    ::waitpid(child, nullptr, 0);
}

Store::Entry entryOf(const QString &text) {
    Store::Entry entry;
    entry.id = conversation;
    entry.input.text = text;
    return entry;
}

/// A number and text of some length that belongs to it, so that a mixture of two saves shows.
QString textOf(qint64 number) {
    return QString::number(number) + u' ' + QString(int(number * 7919 % 20'000), QChar(char16_t(u'一' + number % 100)));
}

std::optional<qint64> numberIn(const QString &text) {
    const qint64 number = text.section(u' ', 0, 0).toLongLong();
    return text == textOf(number) ? std::optional(number) : std::nullopt;
}

struct Looks {
    std::atomic<qint64> looks = 0, open = 0;
};

/// Looks at every file of the folder, over and over.
void watch(const QByteArray &folder, Looks &looks) {
    for (;;) {
        DIR *dir = ::opendir(folder.constData());
        for (const dirent *one = dir ? ::readdir(dir) : nullptr; one; one = ::readdir(dir)) {
            struct stat status = {};
            if (::fstatat(::dirfd(dir), one->d_name, &status, AT_SYMLINK_NOFOLLOW) == 0 && S_ISREG(status.st_mode)) {
                ++looks.looks;
                looks.open += (status.st_mode & 077) != 0;
            }
        }
        if (dir)
            ::closedir(dir);
    }
}

struct Progress {
    std::atomic<qint64> acknowledged = 0;
    std::atomic<bool> saving = false, failed = false;
};

void saveForEver(const Store &store, std::optional<QString> known, Progress &progress) {
    for (qint64 number = progress.acknowledged + 1;; ++number) {
        const auto entry = entryOf(textOf(number));
        progress.saving = true;
        const auto saved = store.save(account, entry, known, QDateTime());
        progress.failed = progress.failed || !saved;
        if (!saved)
            return;
        known = *saved;
        progress.acknowledged = number;
        progress.saving = false;
    }
}

} // namespace

DraftTrials::Kills DraftTrials::kill(const QString &folder, int kills) {
    const auto support = ApplicationSupport::at(folder);
    const Store store(support);
    const QByteArray files = QFile::encodeName(support.folder(u"UnsentInput/v1"_s).value_or(QString()));
    Shared<Looks> looks;
    Shared<Progress> progress;
    // Whoever forgets the mode of a new file makes one that all may read.
    const mode_t mask = ::umask(0);
    const pid_t watcher = forked([&] { watch(files, *looks.operator->()); });
    std::mt19937 random(1);
    Kills result;
    std::optional<QString> known;
    // Long enough for about one save on this disk.
    const auto started = std::chrono::steady_clock::now();
    for (int save = 0; save < 5; ++save)
        known = store.save(account, entryOf(textOf(0)), known, QDateTime()).value_or(known);
    const std::chrono::microseconds took =
        std::chrono::duration_cast<std::chrono::microseconds>(std::chrono::steady_clock::now() - started) / 5;
    std::uniform_int_distribution<unsigned> delay(0, 500 + 2 * unsigned(took.count()));
    for (; result.kills < kills; ++result.kills) {
        const pid_t child = forked([&] { saveForEver(store, known, *progress.operator->()); });
        ::usleep(delay(random));
        end(child);
        result.midSave += progress->saving;
        const auto read = store.read(account, conversation);
        const qint64 acknowledged = progress->acknowledged;
        const auto number =
            read && *read ? numberIn((*read)->input.text) : std::optional<qint64>(acknowledged ? -1 : 0);
        result.torn += !read || !number || progress->failed;
        result.lost += number && *number < acknowledged;
        known = read && *read ? (*read)->writeId : std::nullopt;
        // A save may have landed without its program having heard of it.
        progress->acknowledged = std::max(acknowledged, number.value_or(0));
        result.acknowledged = progress->acknowledged;
        progress->saving = progress->failed = false;
    }
    end(watcher);
    ::umask(mask);
    (void)store.list(account);
    result.leftBeside = int(QDir(QFile::decodeName(files)).entryList({u"*.tmp"_s}, QDir::Files | QDir::Hidden).size());
    result.looks = looks->looks;
    result.open = looks->open;
    return result;
}

namespace {

/// What a window does with a sentence: types it, has it kept, makes it a message and empties the box.
void sendForEver(const QString &folder, Progress &progress) {
    int argc = 0;
    const QCoreApplication application(argc, nullptr);
    const auto support = ApplicationSupport::at(folder);
    SystemClock clock;
    ConversationSession session(ConversationService(APIClient{QUrl(),
                                                              [] {
                                                                  return QString();
                                                              }}),
                                ConversationDraftCache(support),
                                {[]() -> std::optional<QString> { return account; }, {}}, clock);
    KeptTexts inputs(KeptTextStore(Store(support)), clock);
    QObject::connect(&session, &ConversationSession::secured, &inputs,
                     [&](const QString &id, quint64 edits) { inputs.release(id, edits); });
    inputs.open(account);
    session.begin();
    const QString box = session.conversation()->id;
    for (qint64 number = 1;; ++number) {
        inputs.change(box, [&](ConversationInput &input) { input.text = textOf(number); });
        if (!await(inputs.keep()))
            progress.failed = true;
        progress.acknowledged = number;
        session.edit([&](ConversationDTO &conversation) {
            ConvMessageDTO message;
            message.id = QString::number(number);
            message.text = textOf(number);
            conversation.messages.push_back(message);
        });
        session.keep();
        inputs.hold(box, session.edits());
    }
}

} // namespace

DraftTrials::Sends DraftTrials::killSends(const QString &folder, int kills) {
    const auto support = ApplicationSupport::at(folder);
    std::mt19937 random(1);
    std::uniform_int_distribution<unsigned> delay(0, 40'000);
    Sends result;
    for (; result.kills < kills; ++result.kills) {
        QDir(folder).removeRecursively();
        Shared<Progress> progress;
        const pid_t child = forked([&] { sendForEver(folder, *progress.operator->()); });
        while (!progress->acknowledged && ::waitpid(child, nullptr, WNOHANG) == 0)
            ::usleep(1000);
        ::usleep(delay(random));
        end(child);
        QSet<QString> typed, sent;
        for (const auto &entry : Store(support).list(account)->entries)
            typed.insert(entry.input.text);
        for (const auto &entry : ConversationDraftCache(support).list(account)->entries) {
            for (const auto &message : entry.snapshot.messages)
                sent.insert(message.text);
        }
        result.lost += progress->failed || !progress->acknowledged;
        for (qint64 number = 1; number <= progress->acknowledged; ++number) {
            const QString text = textOf(number);
            result.lost += !typed.contains(text) && !sent.contains(text);
            result.both += typed.contains(text) && sent.contains(text);
        }
        result.typed += progress->acknowledged;
    }
    return result;
}

namespace {

struct Counts {
    std::atomic<qint64> landed = 0, changedElsewhere = 0, failed = 0;
};

void saveOften(const Store &store, int saves, Counts &counts) {
    for (int done = 0; done < saves; ++done) {
        const auto read = store.read(account, conversation);
        if (!read) {
            ++counts.failed;
            continue;
        }
        const qint64 before = *read ? (*read)->input.text.toLongLong() : 0;
        const auto known = *read ? (*read)->writeId : std::nullopt;
        const auto saved = store.save(account, entryOf(QString::number(before + 1)), known, QDateTime());
        if (saved)
            ++counts.landed;
        else
            ++(saved.error() == Store::StoreError::changedElsewhere ? counts.changedElsewhere : counts.failed);
    }
}

} // namespace

DraftTrials::Race DraftTrials::race(const QString &folder, int writers, int saves) {
    const Store store(ApplicationSupport::at(folder));
    Shared<Counts> counts;
    const auto started = std::chrono::steady_clock::now();
    std::vector<pid_t> children;
    for (int writer = 0; writer < writers; ++writer)
        children.push_back(forked([&] { saveOften(store, saves, *counts.operator->()); }));
    for (const pid_t child : children)
        ::waitpid(child, nullptr, 0);
    const std::chrono::duration<double> took = std::chrono::steady_clock::now() - started;
    const auto last = store.read(account, conversation);
    const qint64 inFile = last && *last ? (*last)->input.text.toLongLong() : 0;
    return {.saves = qint64(writers) * saves,
            .landed = counts->landed,
            .changedElsewhere = counts->changedElsewhere,
            .failed = counts->failed,
            .lostUpdates = counts->landed - inFile,
            .seconds = took.count()};
}

// The grid

namespace {

/// One way in which the file is replaced, made or removed.
struct Deed {
    const char *name;
    bool old;            ///< there is a file already
    bool removes;        ///< it is to go
    bool cache;          ///< a whole conversation's, not an input's
    bool spoilt = false; ///< what is there is no draft, and is to be moved aside
};

constexpr Deed deeds[] = {{"replace", true, false, false},
                          {"make", false, false, false},
                          {"remove", true, true, false},
                          {"replace conversation", true, false, true},
                          {"move aside", true, false, false, true}};

struct CallName {
    Call call;
    const char *name;
};

constexpr CallName calls[] = {{Call::Mkdir, "mkdir"}, {Call::Open, "open"},    {Call::Flock, "flock"},
                              {Call::Fstat, "fstat"}, {Call::Read, "read"},    {Call::Write, "write"},
                              {Call::Fsync, "fsync"}, {Call::Close, "close"},  {Call::Rename, "rename"},
                              {Call::Swap, "swap"},   {Call::Unlink, "unlink"}};

struct CodeName {
    int code;
    const char *name;
};

constexpr CodeName codes[] = {
    {ENOSPC, "ENOSPC"}, {EIO, "EIO"}, {EACCES, "EACCES"}, {EINTR, "EINTR"}, {0, "short write"}};

class Cell {
public:
    Cell(const QString &folder, const Deed &deed)
        : m_support(ApplicationSupport::at(folder))
        , m_deed(deed) {
        QDir(folder).removeRecursively();
        // What a save finds: the file of the save before, or not even the folder.
        if (deed.old)
            m_known = save(u"old"_s, {});
        if (deed.spoilt) {
            QFile file(files(u"*.json"_s).value(0));
            if (file.open(QIODevice::WriteOnly))
                file.write("spoilt");
        }
        m_old = bytes();
    }

    /// @return whether it says that it was done
    bool run(const FailingCalls::Plan &plan) {
        FailingCalls::arm(plan);
        m_done = save(m_deed.removes ? QString() : u"new"_s, m_known, &m_failed);
        FailingCalls::disarm();
        return !m_failed;
    }
    bool isAsBefore() const { return bytes() == m_old || (m_deed.spoilt && !bytes() && isAside()); }
    bool isDone() const {
        const auto now = bytes();
        if (m_deed.spoilt && !isAside())
            return false;
        return m_deed.removes ? !now : now && now != m_old && now->contains("new");
    }

private:
    std::optional<QString> save(const QString &text, const std::optional<QString> &known, bool *failed = nullptr) {
        if (m_deed.cache) {
            ConversationDTO snapshot;
            snapshot.id = conversation;
            snapshot.title = text;
            const auto saved = ConversationDraftCache(m_support).save(account, snapshot, known, QDateTime());
            if (failed)
                *failed = !saved;
            return saved ? std::optional(*saved) : std::nullopt;
        }
        const auto saved = Store(m_support).save(account, entryOf(text), known, QDateTime());
        if (failed)
            *failed = !saved;
        return saved.value_or(std::nullopt);
    }
    QStringList files(const QString &pattern) const {
        const QDir dir(m_support.root() + (m_deed.cache ? u"/ConversationDrafts/v1"_s : u"/UnsentInput/v1"_s));
        QStringList paths;
        for (const QString &name : dir.entryList({pattern}, QDir::Files))
            paths.push_back(dir.filePath(name));
        return paths;
    }
    std::optional<QByteArray> bytes(const QString &pattern = u"*.json"_s) const {
        const auto paths = files(pattern);
        QFile file(paths.value(0));
        if (paths.size() != 1 || !file.open(QIODevice::ReadOnly))
            return std::nullopt;
        return file.readAll();
    }
    bool isAside() const { return bytes(u"*.unreadable"_s) == "spoilt"; }

    ApplicationSupport m_support;
    Deed m_deed;
    std::optional<QString> m_known, m_done;
    std::optional<QByteArray> m_old;
    bool m_failed = false;
};

/// Whether a save may go on in spite of this: an interruption that ends, a write that is gone on with, a swap that is
/// done as a rename instead, and the clearing away of what nobody looks at.
bool maySurvive(const FailingCalls::Plan &plan) {
    const bool passes = plan.code == EINTR && !plan.onward;
    return passes || plan.code == 0 || plan.call == Call::Swap || plan.call == Call::Unlink ||
           (plan.call == Call::Close && plan.code == EINTR);
}

void tryCell(const QString &folder, const Deed &deed, const FailingCalls::Plan &plan, const QString &name,
             DraftTrials::Grid &grid) {
    Cell cell(folder, deed);
    const bool done = cell.run(plan);
    ++grid.cells;
    grid.widest |= FailingCalls::widest();
    if (!done && cell.isAsBefore())
        ++grid.reported;
    else if (done && cell.isDone() && maySurvive(plan))
        ++grid.survived;
    else
        grid.wrong += name + (done ? u": said to be done\n"_s : u": not as before\n"_s);
}

} // namespace

DraftTrials::Grid DraftTrials::grid(const QString &folder) {
    Grid grid;
    for (const Deed &deed : deeds) {
        std::array<int, std::size_t(Call::Count)> counts{};
        Cell counted(folder, deed);
        if (!counted.run({}) || !counted.isDone())
            grid.wrong += QString::fromLatin1(deed.name) + u": fails by itself\n"_s;
        for (const auto &[call, _] : calls)
            counts[std::size_t(call)] = FailingCalls::count(call);
        for (const auto &[call, callName] : calls) {
            for (const auto &[code, codeName] : codes) {
                if (code == 0 && call != Call::Write)
                    continue;
                for (int number = 0; number < counts[std::size_t(call)]; ++number) {
                    for (const bool onward : {false, true})
                        tryCell(folder, deed, {.call = call, .number = number, .onward = onward, .code = code},
                                u"%1: %2 %3 of %4%5"_s.arg(QLatin1StringView(deed.name), QLatin1StringView(callName),
                                                           QString::number(number), QLatin1StringView(codeName),
                                                           onward ? u" and onward"_s : QString()),
                                grid);
                }
            }
        }
    }
    return grid;
}

} // namespace lmp
