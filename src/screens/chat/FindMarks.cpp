#include "screens/chat/FindMarks.h"

#include <QQuickTextDocument>
#include <QSyntaxHighlighter>
#include <QTextDocument>

namespace lmp {

namespace {

constexpr int interval = 120; ///< ms

class MatchHighlighter : public QSyntaxHighlighter {
public:
    MatchHighlighter(QTextDocument *document, SearchTerms wanted, const QColor &background, const QColor &ink)
        : QSyntaxHighlighter(document)
        , terms(std::move(wanted)) {
        format.setBackground(background);
        format.setForeground(ink);
        // Not by the colour alone.
        format.setFontUnderline(true);
    }

    SearchTerms terms;
    QTextCharFormat format;

protected:
    void highlightBlock(const QString &text) override {
        for (const auto &range : terms.anyRanges(text))
            setFormat(int(range.from), int(range.length), format);
    }
};

template <class Visit>
void visitTexts(QQuickItem *item, Visit visit) {
    if (item->inherits("QQuickTextEdit") && item->property("readOnly").toBool()) {
        if (auto *text = item->property("textDocument").value<QQuickTextDocument *>())
            visit(item, text->textDocument());
        return;
    }
    for (QQuickItem *child : item->childItems())
        visitTexts(child, visit);
}

} // namespace

FindMarks::FindMarks(QObject *parent)
    : QObject(parent) {
    m_timer.setInterval(interval);
    connect(&m_timer, &QTimer::timeout, this, &FindMarks::mark);
    connect(this, &FindMarks::coloursChanged, this, &FindMarks::update);
}

void FindMarks::setFind(ChatFind *find) {
    if (find == m_find)
        return;
    if (m_find)
        m_find->disconnect(this);
    m_find = find;
    if (find)
        connect(find, &ChatFind::changed, this, &FindMarks::update);
    update();
    Q_EMIT findChanged();
}

void FindMarks::update() {
    const bool wanted = m_find && m_find->isOpen() && !m_find->terms().isEmpty();
    if (!wanted && !m_timer.isActive())
        return;
    mark();
    if (wanted)
        m_timer.start();
    else
        m_timer.stop();
}

void FindMarks::mark() {
    if (!m_within)
        return;
    const SearchTerms terms = m_find && m_find->isOpen() ? m_find->terms() : SearchTerms();
    const QString currentId = m_find ? m_find->currentId() : QString();
    for (QQuickItem *message : m_within->childItems())
        markMessage(message, terms, !currentId.isEmpty() && message->property("messageId").toString() == currentId);
}

void FindMarks::markMessage(QQuickItem *message, const SearchTerms &terms, bool current) {
    const QColor &background = current ? m_currentBackground : m_background;
    const QColor &ink = current ? m_currentInk : m_ink;
    visitTexts(message, [&](QQuickItem *, QTextDocument *document) {
        auto *other = document->findChild<QSyntaxHighlighter *>(QString(), Qt::FindDirectChildrenOnly);
        auto *ours = dynamic_cast<MatchHighlighter *>(other);
        if (other && !ours)
            return;
        const bool same = ours && ours->terms == terms && ours->format.background().color() == background;
        if (same)
            return;
        delete ours;
        if (!terms.isEmpty())
            new MatchHighlighter(document, terms, background, ink);
    });
}

qreal FindMarks::matchTop(QQuickItem *row) {
    if (!row || !m_find)
        return -1;
    qreal top = -1;
    visitTexts(row, [&](QQuickItem *item, QTextDocument *document) {
        if (top >= 0)
            return;
        const auto ranges = m_find->terms().anyRanges(document->toPlainText());
        QRectF place;
        if (!ranges.isEmpty() && QMetaObject::invokeMethod(item, "positionToRectangle", Q_RETURN_ARG(QRectF, place),
                                                           Q_ARG(int, int(ranges.first().from))))
            top = item->mapToItem(row, place.topLeft()).y();
    });
    return top;
}

} // namespace lmp
