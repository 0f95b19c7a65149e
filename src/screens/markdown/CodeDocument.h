#pragma once

#include <QObject>
#include <QPointer>
#include <QQuickTextDocument>
#include <QVariant>
#include <QtQml/qqmlregistration.h>

namespace lmp {

/// Puts code into a TextEdit: what is added is added to what is laid out already, and colours are given in place, so
/// that no text moves and another theme costs no other parse.
///
/// Lives on the UI thread beside its TextEdit, which must have no text of its own. Colours come through the event loop,
/// once for however many properties changed. Cannot fail: what it does not know keeps the colour of the text.
class CodeDocument : public QObject {
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(QQuickTextDocument *document MEMBER m_document NOTIFY textChanged)
    Q_PROPERTY(QString code MEMBER m_code NOTIFY textChanged)
    /// In pixels.
    Q_PROPERTY(int lineHeight MEMBER m_lineHeight NOTIFY textChanged)
    /// As it stands after the fence.
    Q_PROPERTY(QString language MEMBER m_language NOTIFY coloursChanged)
    /// Whether the code is whole: half a string would colour all that follows it.
    Q_PROPERTY(bool whole MEMBER m_whole NOTIFY coloursChanged)
    /// One for each CodeHighlighter::Kind, in that order.
    Q_PROPERTY(QVariantList colours MEMBER m_colours NOTIFY coloursChanged)

public:
    explicit CodeDocument(QObject *parent = nullptr);

Q_SIGNALS:
    void textChanged();
    void coloursChanged();

private:
    void show();
    void schedule();
    void colour();

    QPointer<QQuickTextDocument> m_document;
    QString m_code;
    QString m_shown; ///< what the document holds
    QString m_language;
    QVariantList m_colours;
    int m_lineHeight = 0;
    int m_shownHeight = 0;
    bool m_whole = false;
    bool m_scheduled = false;
};

} // namespace lmp
