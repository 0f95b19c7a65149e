#pragma once

#include "MarkdownInline.h"

namespace lmp {

/// Writes the rich text of MarkdownInline from what the Markdown parser reports, in order.
///
/// A value for one text; any thread. What opens must close, the last first.
class InlineWriter {
public:
    void open(const QString &element);
    void close(const QString &element);
    void openEmphasis();
    void closeEmphasis();
    void openCode();
    void closeCode();
    void openLink(const QString &address);
    void closeLink();
    void openPicture(const QString &address);
    void closePicture();
    void text(QStringView part);
    /// A tag of raw HTML: shown as it is written, but for line breaks.
    void html(QStringView tag);

    [[nodiscard]] MarkdownInline finish();

    /// The character that "&name;" or "&#number;" stands for; the text itself when none is known.
    [[nodiscard]] static QString entity(const QString &text);

private:
    void flush();
    void write(QStringView part);
    void writeWithAddresses(QStringView part);
    void writeLink(QStringView text, const QString &url);
    void breakLine();

    MarkdownInline m_made;
    QString m_run;               ///< text that is not written yet, so that an address is seen whole
    QList<qsizetype> m_emphasis; ///< where the open ones begin in the rich text
    int m_code = 0;
    int m_pictures = 0; ///< open, one in the other
    QString m_alt;
    bool m_inLink = false;
    QString m_address; ///< of the open link, as written
    QString m_url;     ///< of the open link when it may be opened
    QString m_linkText;
    bool m_onlyPictures = true;
};

} // namespace lmp
