#pragma once

#include "MarkdownBlockModel.h"

#include <QPointer>
#include <QQuickItem>

#include <vector>

namespace lmp {

/// Lays the rows of a MarkdownBlockModel out, one under the other, and has items only for those that are in sight or
/// near it, so that neither a long text nor one that grows costs more than what is seen of it.
///
/// Lives on the UI thread inside a Flickable, owned by MarkdownView. A text of few blocks has all its items, and with
/// them its exact height; in a longer one, a row that was never near has the height that its text lets expect, and when
/// it is measured above the sight, the view moves along so that nothing jumps. Cannot fail.
class MarkdownFlow : public QQuickItem {
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(lmp::MarkdownBlockModel *blocks READ blocks WRITE setBlocks NOTIFY blocksChanged)
    /// What a row is drawn with; gets the roles of the row, `index` and this item as `view`.
    Q_PROPERTY(QQmlComponent *row MEMBER m_row NOTIFY rowChanged)
    /// How many pixels a pixel of the design has.
    Q_PROPERTY(qreal factor MEMBER m_factor NOTIFY factorChanged)
    /// Whether it moves the Flickable itself; whoever else holds the view on to something listens to the signals.
    Q_PROPERTY(bool keepsPlace MEMBER m_keepsPlace NOTIFY keepsPlaceChanged)

public:
    /// With no more rows than these, all have items.
    static constexpr qsizetype fewRows = 60;

    explicit MarkdownFlow(QQuickItem *parent = nullptr);
    ~MarkdownFlow() override;

    [[nodiscard]] MarkdownBlockModel *blocks() const { return m_blocks; }
    void setBlocks(MarkdownBlockModel *blocks);

    /// The item of a row, made if need be; null for a row that there is not.
    Q_INVOKABLE QQuickItem *itemAt(int row);
    /// Gives the keyboard to the next row above (-1) or below (1) that has a text, its `edit`.
    /// @return false when there is none
    Q_INVOKABLE bool moveFocus(int from, int by);
    /// Brings `part` of `item` into sight.
    Q_INVOKABLE void reveal(QQuickItem *item, const QRectF &part);
    /// How many rows have items.
    Q_INVOKABLE int made() const { return int(m_made.size()); }

Q_SIGNALS:
    void keepsPlaceChanged();
    /// Rows above the sight turned out to be so much higher than was thought: what is seen moves down by that, unless
    /// the view moves along.
    void measuredAbove(qreal by);
    /// The keyboard went to a place out of sight, so far down from it.
    void moveAsked(qreal by);
    void blocksChanged();
    void rowChanged();
    void factorChanged();

protected:
    void componentComplete() override;
    void itemChange(ItemChange change, const ItemChangeData &data) override;
    void geometryChange(const QRectF &now, const QRectF &before) override;
    void updatePolish() override;

private:
    struct Row {
        QQuickItem *item = nullptr;
        qreal top = 0;
        qreal height = 0;
    };
    struct Sight {
        qreal top = 0;
        qreal bottom = 0;
        bool operator==(const Sight &) const = default;
    };

    void insertRows(const QModelIndex &parent, int first, int last);
    void removeRows(const QModelIndex &parent, int first, int last);
    void updateRows(const QModelIndex &first, const QModelIndex &last, const QList<int> &roles);
    void startOver();
    void look();
    void arrange();
    void make(int row);
    void drop(int row);
    void dropFar();
    void estimate();
    [[nodiscard]] qreal estimated(int row) const;
    void moveView(qreal by);
    [[nodiscard]] QQuickItem *viewport() const;
    [[nodiscard]] Sight sight() const;
    [[nodiscard]] bool hasKeyboard(const QQuickItem *item) const;

    QPointer<MarkdownBlockModel> m_blocks;
    QPointer<QQmlComponent> m_row;
    QHash<int, QByteArray> m_roles;
    std::vector<Row> m_rows;
    std::vector<int> m_made; ///< rows with an item, in no order
    Sight m_sight;
    QMetaObject::Connection m_frames;
    qreal m_factor = 1;
    bool m_keepsPlace = true;
};

} // namespace lmp
