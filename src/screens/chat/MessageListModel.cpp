#include "screens/chat/MessageListModel.h"

#include "conversation/ChatWithTwinView.h"
#include "conversation/ConversationTexts.h"
#include "core/Detach.h"
#include "screens/chat/ChatDateRefresh.h"
#include "screens/chat/ChatDateText.h"

#include <QPointer>

#include <algorithm>

namespace lmp {

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace {

/// At most 30 times a second.
constexpr std::chrono::milliseconds flushInterval = 34ms;
/// How far a window that follows may grow over `maxRows`, so that it is cut now and then and not for every message.
constexpr qsizetype slackRows = 40;

} // namespace

MessageListModel::MessageListModel(ConversationSession &session, ChatWithTwinView &view, Clock &clock, QObject *parent)
    : QAbstractListModel(parent)
    , m_session(session)
    , m_view(view)
    , m_clock(clock) {
    connect(&session, &ConversationSession::opened, this, &MessageListModel::reset);
    connect(&session, &ConversationSession::changed, this, &MessageListModel::onChanged);
    connect(&view, &ChatWithTwinView::deltaReceived, this, &MessageListModel::flushSoon);
    connect(&view, &ChatWithTwinView::stateChanged, this, &MessageListModel::onStateChanged);
    reset();
    new ChatDateRefresh(*this, TimeTextRole, m_clock);
}

MessageListModel::~MessageListModel() {
    m_stop.request_stop();
}

int MessageListModel::rowCount(const QModelIndex &parent) const {
    return parent.isValid() ? 0 : int(m_rows.size());
}

QVariant MessageListModel::data(const QModelIndex &index, int role) const {
    if (!checkIndex(index, CheckIndexOption::IndexIsValid | CheckIndexOption::ParentIsInvalid))
        return {};
    const MessageRow &row = m_rows.at(index.row());
    const Mark mark = m_marks.value(row.id);
    const bool busy = !m_retrying.isEmpty() && row.id == m_retrying;
    switch (role) {
    case MessageIdRole:
        return row.id;
    case SpeakerRole:
        return row.isTwin ? u"twin"_s : u"user"_s;
    case Qt::DisplayRole:
    case TextRole:
        return row.growing ? growingText() : row.text;
    case BlocksRole:
        return QVariant::fromValue(row.isTwin ? blocksOf(index.row()) : nullptr);
    case TimeTextRole:
        return ChatDateText::of(mark.at, m_clock.now().toLocalTime());
    case StateRole:
        return QVariant::fromValue(stateOf(row, mark));
    case StateTextRole:
        return stateTextOf(row, mark);
    case ErrorTextRole:
        return mark.error;
    case RetryOfferedRole:
        return offersRetry(row, mark);
    case ReopenOfferedRole:
        return mark.unconfirmed;
    case RetryTextRole:
        if (busy)
            return ConversationTexts::retryRunning();
        if (!offersRetry(row, mark))
            return QString();
        return row.isTwin ? ConversationTexts::retryOffer() : ConversationTexts::failedMessage();
    case RetryBusyRole:
        return busy;
    case StreamingRole:
        return row.growing;
    case UsedCountRole:
        return row.usedCount;
    case UsedTextRole:
        return row.usedCount > 0 ? ConversationTexts::usedMemories(row.usedCount) : QString();
    case FeedbackRole:
        return m_feedback.value(row.id);
    case ChargeTextRole:
        return mark.charge;
    case GroupedRole:
        return row.grouped;
    default:
        return {};
    }
}

QHash<int, QByteArray> MessageListModel::roleNames() const {
    return {{MessageIdRole, "messageId"},   {SpeakerRole, "role"},        {TextRole, "text"},
            {BlocksRole, "blocks"},         {TimeTextRole, "timeText"},   {StateRole, "state"},
            {StateTextRole, "stateText"},   {ErrorTextRole, "errorText"}, {RetryOfferedRole, "retryOffered"},
            {RetryTextRole, "retryText"},   {RetryBusyRole, "retryBusy"}, {StreamingRole, "streaming"},
            {UsedCountRole, "usedCount"},   {UsedTextRole, "usedText"},   {FeedbackRole, "feedback"},
            {ChargeTextRole, "chargeText"}, {GroupedRole, "grouped"},     {ReopenOfferedRole, "reopenOffered"}};
}

MessageListModel::State MessageListModel::stateOf(const MessageRow &row, const Mark &mark) {
    if (mark.stopped)
        return Stopped;
    if (mark.unconfirmed && !row.isTwin)
        return Unknown;
    switch (row.state) {
    case MessageRow::State::Pending:
        return Pending;
    case MessageRow::State::Unknown:
        return Unknown;
    case MessageRow::State::Failed:
        return Failed;
    case MessageRow::State::Delivered:
        break;
    }
    return Delivered;
}

QString MessageListModel::stateTextOf(const MessageRow &row, const Mark &mark) {
    if (row.isTwin)
        return mark.stopped ? u"已停止"_s : row.stateText();
    return mark.unconfirmed ? ConversationTexts::unknownMessage() : row.stateText();
}

bool MessageListModel::offersRetry(const MessageRow &row, const Mark &mark) const {
    // What nobody keeps, the service cannot answer again. A message of one's own can still be edited there.
    return row.retryOffered && !mark.unconfirmed && !(row.isTwin && m_session.incognito());
}

// The window

void MessageListModel::reset() {
    m_marks.clear();
    m_feedback = m_view.feedback();
    m_retrying.clear();
    m_growingId.clear();
    restart();
}

void MessageListModel::restart(qsizetype first) {
    beginResetModel();
    for (const qsizetype index : m_blocks.keys())
        forgetBlocks(index);
    fill(first);
    endResetModel();
    Q_EMIT windowChanged();
}

void MessageListModel::fill(qsizetype first) {
    const auto *conversation = m_session.conversation();
    m_total = conversation ? conversation->messages.size() : 0;
    m_first = first >= 0 ? std::min(first, m_total) : std::max<qsizetype>(0, m_total - firstRows);
    m_rows.clear();
    for (qsizetype index = m_first; index < std::min(m_total, m_first + firstRows); ++index)
        m_rows.push_back(rowAt(index));
}

MessageRow MessageListModel::rowAt(qsizetype index) const {
    return MessageRow::of(*m_session.conversation(), index, m_growingId);
}

void MessageListModel::fetchOlder() {
    if (atStart())
        return;
    const qsizetype begin = std::max<qsizetype>(0, m_first - pageRows);
    QList<MessageRow> rows;
    for (qsizetype index = begin; index < m_first; ++index)
        rows.push_back(rowAt(index));
    beginInsertRows({}, 0, int(rows.size()) - 1);
    m_rows = rows + m_rows;
    m_first = begin;
    endInsertRows();
    if (m_rows.size() > maxRows)
        drop(maxRows, m_rows.size() - maxRows);
    Q_EMIT windowChanged();
}

void MessageListModel::fetchNewer() {
    if (atEnd())
        return;
    extend(std::min(m_total, m_first + m_rows.size() + pageRows));
    if (m_rows.size() > maxRows)
        drop(0, m_rows.size() - maxRows);
    Q_EMIT windowChanged();
}

void MessageListModel::jumpToLatest() {
    if (!atEnd())
        restart();
}

void MessageListModel::extend(qsizetype end) {
    const qsizetype begin = m_first + m_rows.size();
    if (end <= begin)
        return;
    QList<MessageRow> rows;
    for (qsizetype index = begin; index < end; ++index)
        rows.push_back(rowAt(index));
    beginInsertRows({}, int(m_rows.size()), int(m_rows.size() + rows.size()) - 1);
    m_rows += rows;
    endInsertRows();
}

void MessageListModel::drop(qsizetype row, qsizetype count) {
    beginRemoveRows({}, int(row), int(row + count) - 1);
    for (qsizetype gone = row; gone < row + count; ++gone)
        forgetBlocks(m_first + gone);
    m_rows.remove(row, count);
    if (row == 0)
        m_first += count;
    endRemoveRows();
}

int MessageListModel::bringIn(const QString &messageId) {
    const auto *conversation = m_session.conversation();
    if (rowOf(messageId) >= 0 || !conversation)
        return rowOf(messageId);
    const auto &messages = conversation->messages;
    const auto found = std::ranges::find(messages, messageId, &ConvMessageDTO::id);
    if (found == messages.end())
        return -1;
    const qsizetype last = std::max<qsizetype>(0, messages.size() - firstRows);
    restart(std::min(last, std::max<qsizetype>(0, found - messages.begin() - firstRows / 2)));
    return rowOf(messageId);
}

int MessageListModel::rowOf(const QString &messageId) const {
    const auto found =
        std::find_if(m_rows.rbegin(), m_rows.rend(), [&](const auto &row) { return row.id == messageId; });
    return found == m_rows.rend() ? -1 : int(m_rows.rend() - found - 1);
}

// The conversation changes

void MessageListModel::onChanged() {
    const auto *conversation = m_session.conversation();
    if (!conversation)
        return;
    const auto &messages = conversation->messages;
    const bool followed = atEnd();
    const qsizetype known = m_total;
    updateGrowing();
    // Messages come at the end and change in their place. Anything else is a conversation of another shape.
    for (qsizetype row = 0; row < m_rows.size(); ++row) {
        const qsizetype index = m_first + row;
        if (index >= messages.size() || messages.at(index).id != m_rows.at(row).id) {
            restart();
            return;
        }
    }
    m_total = messages.size();
    for (qsizetype row = 0; row < m_rows.size(); ++row)
        replace(row, rowAt(m_first + row));
    for (qsizetype index = known; index < m_total; ++index)
        m_marks[messages.at(index).id].at = m_clock.now();
    if (followed) {
        extend(m_total);
        if (m_rows.size() > maxRows + slackRows)
            drop(0, m_rows.size() - maxRows);
    }
    if (known != m_total)
        Q_EMIT windowChanged();
}

void MessageListModel::replace(qsizetype row, MessageRow now) {
    const MessageRow before = m_rows.at(row);
    if (before == now)
        return;
    auto *blocks = m_blocks.value(m_first + row);
    if (blocks && before.growing && !now.growing) {
        blocks->append(now.text.sliced(std::min(m_fed, now.text.size())));
        blocks->finish();
    } else if (blocks && before.text != now.text) {
        blocks->setText(now.text);
        blocks->finish();
    }
    m_rows[row] = std::move(now);
    Q_EMIT dataChanged(index(int(row)), index(int(row)));
}

// The reply grows

void MessageListModel::updateGrowing() {
    const auto active = m_view.activeSend();
    const auto &messages = m_session.conversation()->messages;
    const bool grows = active && !messages.isEmpty() && messages.last().role == TalkRole::twin &&
                       messages.last().replyToUserMessageId == active->messageId;
    m_growingId = grows ? messages.last().id : QString();
}

QString MessageListModel::growingText() const {
    const auto *conversation = m_session.conversation();
    const auto *reply = conversation ? ConversationMessageDelivery::find(*conversation, m_growingId) : nullptr;
    return reply ? reply->text : QString();
}

MarkdownBlockModel *MessageListModel::blocksOf(qsizetype number) const {
    if (auto *blocks = m_blocks.value(m_first + number))
        return blocks;
    const MessageRow &row = m_rows.at(number);
    // Under this object, so that the engine does not take it for its own.
    auto *made = new MarkdownBlockModel(const_cast<MessageListModel *>(this));
    const QString text = row.growing ? growingText() : row.text;
    made->setText(text);
    if (row.growing)
        m_fed = text.size();
    else
        made->finish();
    m_blocks.insert(m_first + number, made);
    return made;
}

void MessageListModel::forgetBlocks(qsizetype index) {
    // A delegate may still be drawn with them.
    if (auto *blocks = m_blocks.take(index))
        blocks->deleteLater();
}

void MessageListModel::flushSoon() {
    if (m_flushWaits)
        return;
    const auto now = m_clock.monotonic();
    const auto due = m_flushedAt ? *m_flushedAt + flushInterval : now;
    if (due <= now) {
        flush();
        return;
    }
    m_flushWaits = true;
    detach(flushLater(std::chrono::ceil<std::chrono::milliseconds>(due - now), m_stop.get_token()), "a growing reply");
}

QCoro::Task<> MessageListModel::flushLater(std::chrono::milliseconds wait, std::stop_token stop) {
    const QPointer self(this);
    co_await m_clock.sleep(wait, stop);
    if (!self)
        co_return;
    m_flushWaits = false;
    flush();
}

void MessageListModel::flush() {
    const auto row = m_growingId.isEmpty() ? -1 : rowOf(m_growingId);
    const auto *conversation = m_session.conversation();
    if (row < 0 || !conversation)
        return;
    m_flushedAt = m_clock.monotonic();
    const auto *reply = ConversationMessageDelivery::find(*conversation, m_growingId);
    if (!reply)
        return;
    if (auto *blocks = m_blocks.value(m_first + row)) {
        const QString piece = reply->text.sliced(m_fed);
        m_fed = reply->text.size();
        if (!piece.isEmpty())
            blocks->append(piece);
    } else {
        Q_EMIT dataChanged(index(row), index(row), {TextRole});
    }
    Q_EMIT grew();
}

MarkdownBlockModel *MessageListModel::blocksFor(const QString &messageId) {
    const int row = rowOf(messageId);
    return row >= 0 && m_rows.at(row).isTwin ? blocksOf(row) : nullptr;
}

// What this window knows beyond the conversation

void MessageListModel::onStateChanged() {
    const auto before = std::exchange(m_feedback, m_view.feedback());
    if (before != m_feedback) {
        for (const MessageRow &row : std::as_const(m_rows)) {
            if (before.value(row.id) != m_feedback.value(row.id))
                announce(row.id, {FeedbackRole});
        }
    }
}

void MessageListModel::announce(const QString &messageId, const QList<int> &roles) {
    if (const int row = rowOf(messageId); row >= 0)
        Q_EMIT dataChanged(index(row), index(row), roles);
}

void MessageListModel::setError(const QString &messageId, const QString &text) {
    if (m_marks.value(messageId).error == text)
        return;
    m_marks[messageId].error = text;
    announce(messageId, {ErrorTextRole});
}

void MessageListModel::setCharge(const QString &messageId, const QString &text) {
    m_marks[messageId].charge = text;
    announce(messageId, {ChargeTextRole});
}

void MessageListModel::setStopped(const QString &messageId) {
    m_marks[messageId].stopped = true;
    announce(messageId, {StateRole, StateTextRole});
}

void MessageListModel::setUnconfirmed(const QString &messageId) {
    m_marks[messageId].unconfirmed = true;
    announce(messageId, {StateRole, StateTextRole, RetryOfferedRole, RetryTextRole, ReopenOfferedRole});
}

void MessageListModel::setRetrying(const QString &messageId) {
    const QString before = std::exchange(m_retrying, messageId);
    if (before == messageId)
        return;
    announce(before, {RetryBusyRole, RetryTextRole});
    announce(messageId, {RetryBusyRole, RetryTextRole});
}

QString MessageListModel::lastOfTurn(const QString &userMessageId) const {
    const auto *conversation = m_session.conversation();
    if (conversation && !conversation->messages.isEmpty()) {
        const auto &last = conversation->messages.last();
        if (last.role == TalkRole::twin && last.replyToUserMessageId == userMessageId)
            return last.id;
    }
    return userMessageId;
}

} // namespace lmp
