#pragma once

#include "MarkdownDocument.h"

#include <QAbstractListModel>
#include <QtQml/qqmlregistration.h>

namespace lmp {

/// The blocks of one Markdown text as rows, for MarkdownView.
///
/// Lives on the UI thread, owned by whoever has the text. A piece that is appended changes, adds or removes only the
/// last rows; feed it at most 30 times a second. What is drawn holds no colour, so a theme may change without another
/// parse. Cannot fail: every text is Markdown.
class MarkdownBlockModel : public QAbstractListModel {
    Q_OBJECT
    QML_ELEMENT

public:
    /// As MarkdownBlock::Kind, for QML.
    enum Kind { Paragraph, Heading, Code, Table, Image, Rule };
    Q_ENUM(Kind)
    /// As MarkdownBlock::Task, for QML.
    enum Task { NoTask, OpenTask, DoneTask };
    Q_ENUM(Task)
    enum Role {
        KindRole = Qt::UserRole,
        TextRole,
        LevelRole,
        LanguageRole,
        CodeRole,
        LinesRole,
        HiddenRole,
        ColumnsRole,
        ClosedRole,
        ImageUrlRole,
        AltRole,
        QuoteDepthRole,
        ListDepthRole,
        IndentRole,
        BarsRole,
        JoinedBarsRole,
        SpaceRole,
        MarkerRole,
        OrderedRole,
        NumberRole,
        TaskRole,
    };

    using QAbstractListModel::QAbstractListModel;

    /// Another text, whole.
    Q_INVOKABLE void setText(const QString &text);
    /// More of the text.
    Q_INVOKABLE void append(const QString &piece);
    /// No more is expected: the last line counts as it stands.
    Q_INVOKABLE void finish();

    /// The block as it was written; all the code of a code block.
    Q_INVOKABLE QString source(int row) const;
    /// Shows more of a block that hides lines or rows.
    Q_INVOKABLE void expand(int row);
    /// Shows no more of a block than at first.
    Q_INVOKABLE void collapse(int row);

    /// Where the first link of the row begins that stands behind `position`; -1 when there is none.
    Q_INVOKABLE int nextLink(int row, int position) const;
    /// Where the last link of the row begins that stands before `position`; -1 when there is none.
    Q_INVOKABLE int previousLink(int row, int position) const;
    /// Where the link that begins at `start` ends.
    Q_INVOKABLE int linkEnd(int row, int start) const;
    /// The address of the link that begins at `start`.
    Q_INVOKABLE QString linkUrl(int row, int start) const;

    [[nodiscard]] const MarkdownBlock &block(int row) const { return m_rows.at(row); }
    [[nodiscard]] int rowCount(const QModelIndex &parent = QModelIndex()) const override;
    [[nodiscard]] QVariant data(const QModelIndex &index, int role) const override;
    [[nodiscard]] QHash<int, QByteArray> roleNames() const override;

private:
    void show();
    [[nodiscard]] const MarkdownLink *linkAt(int row, int start) const;

    MarkdownDocument m_document;
    QList<MarkdownBlock> m_rows; ///< as last announced
};

} // namespace lmp
