#include "dev/GitOutput.h"

#include "core/Graphemes.h"

namespace lmp {

using namespace Qt::StringLiterals;

namespace {

/// Zero-terminated fields, one after another.
class Fields {
public:
    explicit Fields(const QByteArray &bytes)
        : m_rest(bytes) {}

    bool atEnd() const { return m_rest.isEmpty(); }
    QString next() {
        const qsizetype end = m_rest.indexOf('\0');
        const auto field = end < 0 ? m_rest : m_rest.first(end);
        m_rest = m_rest.sliced(std::min(field.size() + 1, m_rest.size()));
        return QString::fromUtf8(field);
    }

private:
    QByteArrayView m_rest;
};

/// @param head what stands after "## "
std::optional<QString> branchIn(QString head) {
    if (head == "HEAD (no branch)"_L1)
        return std::nullopt;
    // A branch's name holds neither blanks nor two dots.
    head = head.section(u"..."_s, 0, 0);
    return head.section(u' ', head.startsWith("No commits yet on "_L1) ? -1 : 0).section(u' ', 0, 0);
}

bool isLargeFiles(const QString &key, const QString &value) {
    return (key == "filter.lfs.clean"_L1 && value == "git-lfs clean -- %f"_L1) ||
           (key == "filter.lfs.process"_L1 && value == "git-lfs filter-process"_L1);
}

} // namespace

QStringList GitOutput::ownFilters(const QByteArray &output) {
    QStringList names;
    for (Fields fields(output); !fields.atEnd();) {
        const QString scope = fields.next(), field = fields.next();
        const QString key = field.section(u'\n', 0, 0), value = field.section(u'\n', 1);
        const QString name = key.first(std::max(key.lastIndexOf(u'.'), qsizetype(0)));
        const bool isOwn = scope == "local"_L1 || scope == "worktree"_L1;
        if (isOwn && !isLargeFiles(key, value) && !names.contains(name))
            names.append(name);
    }
    return names;
}

DevGit::Status GitOutput::status(const QByteArray &output) {
    DevGit::Status status;
    for (Fields fields(output); !fields.atEnd();) {
        const QString field = fields.next();
        if (field.startsWith("## "_L1)) {
            status.branch = branchIn(field.sliced(3));
        } else if (field.size() > 3) {
            DevGit::Change change{.path = field.sliced(3), .code = field.first(2)};
            if (change.code.contains(u'R') || change.code.contains(u'C'))
                change.formerly = fields.next();
            status.changed.append(change);
        }
    }
    return status;
}

QList<DevGit::NumStat> GitOutput::numstat(const QByteArray &output) {
    QList<DevGit::NumStat> files;
    for (Fields fields(output); !fields.atEnd();) {
        const QString field = fields.next();
        const qsizetype first = field.indexOf(u'\t');
        const qsizetype second = field.indexOf(u'\t', first + 1);
        if (first < 0 || second < 0)
            continue;
        // toInt gives 0 for what is no number.
        DevGit::NumStat file{.path = field.sliced(second + 1),
                             .added = field.first(first).toInt(),
                             .removed = field.sliced(first + 1, second - first - 1).toInt()};
        if (file.path.isEmpty()) {
            // Renamed: the old name and the new one follow.
            fields.next();
            file.path = fields.next();
        }
        files.append(file);
    }
    return files;
}

QString GitOutput::diff(const QByteArray &output, int limit) {
    const QString text = QString::fromUtf8(output);
    if (text.isEmpty())
        return u"（没有改动）"_s;
    // Short in units is short in characters, and counting those of a large diff takes its time.
    if (text.size() <= limit)
        return text;
    Graphemes graphemes(text);
    qsizetype count = 0;
    qsizetype size = 0;
    qsizetype kept = 0;
    for (auto next = graphemes.next(); !next.isEmpty(); next = graphemes.next()) {
        size += next.size();
        if (++count == limit)
            kept = size;
    }
    if (count <= limit)
        return text;
    return text.first(kept) + u"\n…（已截断，共 "_s + QString::number(count) + u" 字）"_s;
}

} // namespace lmp
