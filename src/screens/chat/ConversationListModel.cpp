#include "screens/chat/ConversationListModel.h"

#include "app/Application.h"
#include "conversation/ConversationTexts.h"
#include "core/Detach.h"
#include "core/PlainLabel.h"
#include "core/PoolAwaiter.h"
#include "screens/chat/ChatDateRefresh.h"
#include "screens/chat/ChatDateText.h"
#include "screens/chat/ChatModel.h"

#include <algorithm>

namespace lmp {

using namespace Qt::StringLiterals;

namespace {

/// The list is narrow, and its rows are to be seen below what went wrong.
constexpr qsizetype longestReason = 80;
constexpr qsizetype longestExcerpt = 40;

} // namespace

ConversationListModel::ConversationListModel(Application &application, QObject *parent)
    : ConversationListModel(ChatServices::of(application), parent) {
    for (const auto signal :
         {&AuthStore::generationChanged, &AuthStore::phaseChanged, &AuthStore::verificationFailedChanged})
        connect(&application.auth(), signal, this, &ConversationListModel::recheckAccount);
}

ConversationListModel::ConversationListModel(ChatServices services, QObject *parent)
    : QAbstractListModel(parent)
    , m_services(std::move(services))
    , m_owner(m_services.account.owner()) {
    new ChatDateRefresh(*this, TimeTextRole, *m_services.clock);
}

ConversationListModel::~ConversationListModel() = default;

int ConversationListModel::rowCount(const QModelIndex &parent) const {
    return parent.isValid() ? 0 : int(m_shown.size());
}

QVariant ConversationListModel::data(const QModelIndex &index, int role) const {
    if (!checkIndex(index, CheckIndexOption::IndexIsValid | CheckIndexOption::ParentIsInvalid))
        return {};
    const ConversationRow &row = m_shown.at(index.row());
    switch (role) {
    case ConversationIdRole:
        return row.id;
    case Qt::DisplayRole:
    case TitleRole:
        return row.title.isEmpty() ? u"新对话"_s : row.title;
    case SubtitleRole:
        if (!row.unsent.isEmpty())
            return u"没发出："_s + row.unsent;
        return row.localOnly ? u"只在本机，尚未同步"_s : QString();
    case TimeTextRole:
        return ChatDateText::of(row.at, m_services.clock->now().toLocalTime());
    case SelectedRole:
        return row.id == m_selectedId;
    case UnreadRole:
        return 0;
    case DraftRole:
        return row.draft;
    case WaitingTextRole:
        return QString();
    default:
        return {};
    }
}

QHash<int, QByteArray> ConversationListModel::roleNames() const {
    return {{ConversationIdRole, "conversationId"},
            {TitleRole, "title"},
            {SubtitleRole, "subtitle"},
            {TimeTextRole, "timeText"},
            {SelectedRole, "selected"},
            {UnreadRole, "unread"},
            {DraftRole, "draft"},
            {WaitingTextRole, "waitingText"}};
}

void ConversationListModel::refresh() {
    m_again = m_loading;
    if (m_loading)
        return;
    m_loading = true;
    detach(load(), "listing the conversations");
    Q_EMIT stateChanged();
}

QCoro::Task<> ConversationListModel::load() {
    const QPointer self(this);
    const auto generation = m_generation;
    co_await readLocal();
    if (!self || m_generation != generation)
        co_return;
    const auto answer = co_await ConversationService(m_services.api).list();
    if (!self || m_generation != generation)
        co_return;
    recheckAccount();
    if (!self || m_generation != generation)
        co_return;
    m_loading = false;
    m_errorText = answer ? QString()
                         : ConversationTexts::recentUnreadable(PlainLabel::line(answer.error().reason, longestReason));
    if (answer) {
        m_summaries = answer->conversations;
        m_loaded = true;
    }
    rebuild();
    if (self && m_again)
        refresh();
}

QCoro::Task<> ConversationListModel::readLocal() {
    const QPointer self(this);
    const auto generation = m_generation;
    auto read =
        co_await PoolAwaiter([drafts = m_services.drafts, inputs = m_services.inputs,
                              account = m_services.account.current()] { return Local::read(drafts, inputs, account); },
                             &m_files);
    if (!self || m_generation != generation)
        co_return;
    m_local = std::move(read);
    m_notice = m_local.notices.join(u'\n');
    rebuild();
}

ConversationListModel::Local ConversationListModel::Local::read(const ConversationDraftCache &drafts,
                                                                const ConversationInputDraftStore &inputs,
                                                                const std::optional<QString> &account) {
    Local local;
    if (!account)
        return local;
    if (const auto kept = drafts.list(account)) {
        for (const auto &entry : kept->entries)
            local.rows.push_back({.id = entry.snapshot.id,
                                  .title = PlainLabel::line(entry.snapshot.title),
                                  .at = QDateTime::fromString(entry.updatedAt, Qt::ISODateWithMs),
                                  .draft = true,
                                  .localOnly = !entry.snapshot.revision});
        if (kept->unreadable > 0)
            local.notices << ConversationTexts::draftsKeptUnread(kept->unreadable);
    } else {
        local.notices << kept.error().reason;
    }
    if (const auto unsent = inputs.list(*account)) {
        for (const auto &entry : unsent->entries) {
            const QString id = ConversationInputDraftStore::originalId(entry.id);
            const QString title = PlainLabel::line(entry.title);
            if (!local.unsent.contains(id))
                local.texts.push_back({.id = id,
                                       .title = title.isEmpty() ? u"未发送的新对话"_s : title,
                                       .at = QDateTime::fromString(entry.updatedAt, Qt::ISODateWithMs),
                                       .draft = true,
                                       .unsent = PlainLabel::line(entry.input.text, longestExcerpt)});
            local.unsent.insert(id);
        }
        if (unsent->unreadable > 0)
            local.notices << ConversationTexts::inputsKeptUnread();
    } else {
        local.notices << ConversationTexts::inputUnreadable();
    }
    return local;
}

void ConversationListModel::rebuild() {
    QHash<QString, ConversationRow> drafts;
    for (const ConversationRow &row : std::as_const(m_local.rows))
        drafts.insert(row.id, row);
    // The chat knows better than the disk how what it has open stands.
    const auto isDraft = [this](const QString &id, bool onDisk) {
        return id == m_open.id ? m_open.draft : onDisk || m_local.unsent.contains(id);
    };
    QList<ConversationRow> known;
    for (const auto &summary : std::as_const(m_summaries)) {
        const auto draft = drafts.take(summary.id);
        known.push_back({.id = summary.id,
                         .title = PlainLabel::line(summary.title),
                         .at = std::max(draft.at, m_savedAt.value(summary.id)),
                         .draft = isDraft(summary.id, draft.draft),
                         .localOnly = false});
    }
    // What the service does not know comes first, the newest in front.
    QList<ConversationRow> all;
    for (ConversationRow row : std::as_const(m_local.rows)) {
        row.draft = isDraft(row.id, true);
        if (drafts.contains(row.id))
            all.push_back(row);
    }
    all += known;
    all = textsBeside(all) + all;
    const bool listed = std::ranges::find(all, m_open.id, &ConversationRow::id) != all.end();
    if (!listed && !m_open.id.isEmpty() && !m_open.title.isEmpty())
        all.prepend(m_open);
    m_all = std::move(all);
    show();
    Q_EMIT stateChanged();
}

QList<ConversationRow> ConversationListModel::textsBeside(const QList<ConversationRow> &listed) const {
    // Before the service has answered, most of them belong to what it is about to list.
    if (!m_loaded && m_errorText.isEmpty())
        return {};
    QSet<QString> known{m_openId};
    for (const ConversationRow &row : listed)
        known.insert(row.id);
    auto texts = m_local.texts;
    texts.removeIf(
        [&](const ConversationRow &row) { return known.contains(row.id) || ComposerInputs::isInUse(row.id); });
    return texts;
}

void ConversationListModel::find(const QString &text) {
    const QString wanted = text.trimmed();
    if (wanted == m_findText)
        return;
    m_findText = wanted;
    show();
    Q_EMIT stateChanged();
}

void ConversationListModel::show() {
    QList<ConversationRow> wanted;
    std::ranges::copy_if(m_all, std::back_inserter(wanted), [this](const ConversationRow &row) {
        return m_findText.isEmpty() || row.title.contains(m_findText, Qt::CaseInsensitive);
    });
    if (m_shown.isEmpty() || wanted.isEmpty()) {
        if (m_shown.isEmpty() && wanted.isEmpty())
            return;
        beginResetModel();
        m_shown = std::move(wanted);
        endResetModel();
        return;
    }
    for (qsizetype row = 0; row < wanted.size(); ++row)
        place(row, wanted.at(row));
    if (m_shown.size() > wanted.size()) {
        beginRemoveRows({}, int(wanted.size()), int(m_shown.size()) - 1);
        m_shown.resize(wanted.size());
        endRemoveRows();
    }
}

void ConversationListModel::place(qsizetype row, const ConversationRow &wanted) {
    const auto there = std::find_if(m_shown.cbegin() + std::min(row, m_shown.size()), m_shown.cend(),
                                    [&](const ConversationRow &one) { return one.id == wanted.id; });
    const qsizetype from = there - m_shown.cbegin();
    if (there == m_shown.cend()) {
        beginInsertRows({}, int(row), int(row));
        m_shown.insert(row, wanted);
        endInsertRows();
        return;
    }
    if (from != row) {
        beginMoveRows({}, int(from), int(from), {}, int(row));
        m_shown.move(from, row);
        endMoveRows();
    }
    if (m_shown.at(row) != wanted) {
        m_shown[row] = wanted;
        Q_EMIT dataChanged(index(int(row)), index(int(row)));
    }
}

void ConversationListModel::select(const QString &conversationId) {
    if (conversationId == m_selectedId)
        return;
    const QString before = std::exchange(m_selectedId, conversationId);
    for (qsizetype row = 0; row < m_shown.size(); ++row) {
        if (m_shown.at(row).id == before || m_shown.at(row).id == conversationId)
            Q_EMIT dataChanged(index(int(row)), index(int(row)), {SelectedRole});
    }
    Q_EMIT selectedIdChanged();
}

QString ConversationListModel::neighbour(int step) const {
    const auto selected = std::ranges::find(m_shown, m_selectedId, &ConversationRow::id);
    if (selected == m_shown.end())
        return step > 0 && !m_shown.isEmpty() ? m_shown.front().id : QString();
    const qsizetype row = selected - m_shown.begin() + step;
    return row >= 0 && row < m_shown.size() ? m_shown.at(row).id : QString();
}

void ConversationListModel::follow(ChatModel *chat) {
    if (m_chat)
        m_chat->disconnect(this);
    m_chat = chat;
    if (!chat)
        return;
    connect(chat, &ChatModel::conversationChanged, this, &ConversationListModel::onChatChanged);
    connect(chat, &ChatModel::saved, this, [this] {
        m_savedAt.insert(m_chat->conversationId(), m_services.clock->now());
        refresh();
    });
    connect(chat, &ChatModel::draftsChanged, this, [this] { detach(readLocal(), "listing the drafts"); });
    onChatChanged();
}

void ConversationListModel::onChatChanged() {
    const bool titled = m_chat->isOpen() && !m_chat->incognito() && m_chat->messages()->total() > 0;
    const QString id = m_chat->conversationId();
    m_open = {.id = titled ? id : QString(),
              .title = titled ? m_chat->title() : QString(),
              .at = {},
              .draft = titled && m_chat->localOnly(),
              .localOnly = m_chat->neverAtService()};
    // Not by what is selected: the list may have gone ahead.
    const bool other = std::exchange(m_openId, id) != id;
    select(id);
    rebuild();
    // What was open before stands on disk as it was left.
    if (other)
        detach(readLocal(), "listing the drafts");
    readUnlisted();
}

void ConversationListModel::readUnlisted() {
    if (!m_loaded || m_open.id.isEmpty() || m_open.localOnly)
        return;
    const bool listed = std::ranges::find(m_summaries, m_open.id, &ConversationSummaryDTO::id) != m_summaries.end();
    if (!listed && std::exchange(m_unlisted, m_open.id) != m_open.id)
        refresh();
}

void ConversationListModel::recheckAccount() {
    const QString now = m_services.account.owner();
    if (std::exchange(m_owner, now) == now)
        return;
    ++m_generation;
    m_summaries.clear();
    m_local = {};
    m_savedAt.clear();
    m_open = {};
    m_loading = m_again = m_loaded = false;
    m_errorText.clear();
    m_notice.clear();
    m_findText.clear();
    select({});
    rebuild();
}

} // namespace lmp
