#include "screens/chat/ConversationSearchModel.h"

#include "core/Detach.h"
#include "core/PlainLabel.h"

#include <algorithm>

namespace lmp {

using namespace Qt::StringLiterals;

namespace {

constexpr int typingPause = 80;  ///< ms
constexpr int growthPause = 800; ///< ms between looking again while conversations are being read

QString styled(const ConversationSearchHit &hit) {
    QString html;
    qsizetype at = 0;
    for (const auto &mark : hit.marks) {
        html += hit.excerpt.sliced(at, mark.from - at).toHtmlEscaped();
        html += u"<b><u>"_s + hit.excerpt.sliced(mark.from, mark.length).toHtmlEscaped() + u"</u></b>"_s;
        at = mark.from + mark.length;
    }
    return html + hit.excerpt.sliced(at).toHtmlEscaped();
}

} // namespace

ConversationSearchModel::ConversationSearchModel(ConversationSearch &search, QObject *parent)
    : QAbstractListModel(parent)
    , m_search(search) {
    m_soon.setSingleShot(true);
    m_soon.setInterval(typingPause);
    m_again.setSingleShot(true);
    m_again.setInterval(growthPause);
    for (QTimer *timer : {&m_soon, &m_again})
        connect(timer, &QTimer::timeout, this, [this] { detach(ask(false), "searching the conversations"); });
    connect(&search, &ConversationSearch::coverageChanged, this, [this] {
        if (!m_query.isEmpty() && !m_again.isActive())
            m_again.start();
        Q_EMIT stateChanged();
    });
    connect(&search, &ConversationSearch::accountChanged, this, &ConversationSearchModel::clear);
}

ConversationSearchModel::~ConversationSearchModel() {
    m_stop.request_stop();
}

quint64 ConversationSearchModel::askAnew() {
    m_stop.request_stop();
    m_stop = std::stop_source();
    return ++m_asked;
}

int ConversationSearchModel::rowCount(const QModelIndex &parent) const {
    return parent.isValid() ? 0 : int(m_hits.size());
}

QVariant ConversationSearchModel::data(const QModelIndex &index, int role) const {
    if (!checkIndex(index, CheckIndexOption::IndexIsValid | CheckIndexOption::ParentIsInvalid))
        return {};
    const auto &hit = m_hits.at(index.row());
    const QString named = PlainLabel::line(hit.title);
    const QString title = named.isEmpty() ? u"新对话"_s : named;
    const QString speaker = hit.role == TalkRole::user ? u"你"_s : u"分身"_s;
    switch (role) {
    case TitleRole:
        return title;
    case SpeakerRole:
        return speaker;
    case Qt::DisplayRole:
    case ExcerptRole:
        return styled(hit);
    case SpokenRole:
        return u"%1，%2说：%3"_s.arg(title, speaker, hit.excerpt);
    default:
        return {};
    }
}

QHash<int, QByteArray> ConversationSearchModel::roleNames() const {
    return {{TitleRole, "title"}, {SpeakerRole, "speaker"}, {ExcerptRole, "excerpt"}, {SpokenRole, "spoken"}};
}

void ConversationSearchModel::open() {
    m_search.refresh();
    Q_EMIT stateChanged();
}

void ConversationSearchModel::setQuery(const QString &query) {
    if (query == m_query)
        return;
    m_query = query;
    askAnew();
    if (SearchTerms(query).isEmpty()) {
        m_soon.stop();
        show({}, false);
        return;
    }
    m_soon.start();
    Q_EMIT stateChanged();
}

void ConversationSearchModel::setCurrent(int row) {
    const int bounded = std::clamp(row, m_hits.isEmpty() ? -1 : 0, int(m_hits.size()) - 1);
    if (bounded == m_current)
        return;
    m_current = bounded;
    Q_EMIT stateChanged();
    if (m_more && m_current >= m_hits.size() - 5)
        fetchOlder();
}

void ConversationSearchModel::fetchOlder() {
    if (m_more && !m_fetching)
        detach(ask(true), "searching the conversations");
}

QCoro::Task<> ConversationSearchModel::ask(bool further) {
    const QPointer self(this);
    const quint64 asked = askAnew();
    const QString query = m_query;
    if (SearchTerms(query).isEmpty())
        co_return;
    m_fetching = true;
    const auto below = further ? std::optional(m_reached) : std::nullopt;
    // What is there already is asked for again as a whole, so that nobody loses their place.
    const qsizetype limit = further ? 50 : std::max<qsizetype>(50, m_hits.size());
    const auto page = co_await m_search.find(query, below, limit, m_stop.get_token());
    if (!self)
        co_return;
    m_fetching = false;
    if (m_asked != asked)
        co_return;
    if (page) {
        show(*page, further);
        co_return;
    }
    show({}, false);
    m_status = page.error();
    Q_EMIT stateChanged();
}

void ConversationSearchModel::show(const ConversationSearch::Page &page, bool further) {
    const qint64 place = m_current >= 0 && m_current < m_hits.size() ? m_hits.at(m_current).place : 0;
    if (further) {
        if (!page.hits.isEmpty()) {
            beginInsertRows({}, int(m_hits.size()), int(m_hits.size() + page.hits.size()) - 1);
            m_hits += page.hits;
            endInsertRows();
        }
    } else {
        become(page.hits);
        const auto same = std::ranges::find(m_hits, place, &ConversationSearchHit::place);
        m_current = m_hits.isEmpty() ? -1 : same == m_hits.end() ? 0 : int(same - m_hits.begin());
        m_total = page.total;
    }
    m_more = page.more;
    m_reached = page.reached;
    if (SearchTerms(m_query).isEmpty())
        m_status.clear();
    else if (m_hits.isEmpty())
        m_status = u"没有找到。"_s;
    else
        m_status = (page.totalIsAtLeast ? u"至少 %1 条消息"_s : u"%1 条消息"_s).arg(m_total);
    Q_EMIT stateChanged();
}

void ConversationSearchModel::become(const QList<ConversationSearchHit> &hits) {
    // Both go down from the latest, and no place occurs twice.
    qsizetype row = 0;
    for (const auto &hit : hits) {
        qsizetype gone = row;
        while (gone < m_hits.size() && m_hits.at(gone).place > hit.place)
            ++gone;
        if (gone > row) {
            beginRemoveRows({}, int(row), int(gone) - 1);
            m_hits.remove(row, gone - row);
            endRemoveRows();
        }
        if (row == m_hits.size() || m_hits.at(row).place != hit.place) {
            beginInsertRows({}, int(row), int(row));
            m_hits.insert(row, hit);
            endInsertRows();
        } else if (m_hits.at(row) != hit) {
            m_hits[row] = hit;
            Q_EMIT dataChanged(index(int(row)), index(int(row)));
        }
        ++row;
    }
    if (row < m_hits.size()) {
        beginRemoveRows({}, int(row), int(m_hits.size()) - 1);
        m_hits.remove(row, m_hits.size() - row);
        endRemoveRows();
    }
}

void ConversationSearchModel::clear() {
    askAnew();
    m_query.clear();
    m_soon.stop();
    m_again.stop();
    show({}, false);
}

void ConversationSearchModel::choose(int row) {
    if (row < 0 || row >= m_hits.size())
        return;
    const auto hit = m_hits.at(row);
    Q_EMIT chosen(hit.conversationId, hit.messageId, m_query);
}

} // namespace lmp
