#pragma once

#include "identity/MemoryImport.h"
#include "screens/kit/RecordListModel.h"
#include "screens/memory/MemoryCandidateRow.h"
#include "screens/memory/MemoryServices.h"

#include <QUrl>
#include <QtQml/qqmlregistration.h>

namespace lmp {

/// Brings memories in from a text, in four steps: a text, what was found in it, what is to be written, what was.
///
/// Part of the ledger's model; UI thread. The text is kept (`MemoryInputs`) until the import is done or given up, and
/// what of it was never read longer than that; candidates that were found wait at the service whatever happens here.
class MemoryImportModel : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("part of a MemoryLedgerModel")
    Q_PROPERTY(Step step READ step NOTIFY changed)
    Q_PROPERTY(Source source READ source WRITE setSource NOTIFY changed)
    Q_PROPERTY(QList<QString> sources READ sources CONSTANT)
    Q_PROPERTY(QString text READ text WRITE setText NOTIFY textChanged)
    Q_PROPERTY(int pieces READ pieces NOTIFY textChanged)
    /// Said of a text that is longer than what is read at once; else empty.
    Q_PROPERTY(QString cutText READ cutText NOTIFY textChanged)
    Q_PROPERTY(QString readsOnly READ readsOnly CONSTANT)
    Q_PROPERTY(QString costNote READ costNote CONSTANT)
    Q_PROPERTY(bool scanning READ scanning NOTIFY changed)
    /// Why there is nothing new to show.
    Q_PROPERTY(QString errorText READ errorText NOTIFY changed)
    Q_PROPERTY(QString chargeText READ chargeText NOTIFY changed)
    Q_PROPERTY(QAbstractItemModel *candidates READ candidates CONSTANT)
    Q_PROPERTY(int found READ found NOTIFY changed)
    Q_PROPERTY(int picked READ picked NOTIFY changed)
    Q_PROPERTY(QString nothingTitle READ nothingTitle CONSTANT)
    Q_PROPERTY(QString nothingText READ nothingText CONSTANT)
    Q_PROPERTY(QString skippedNote READ skippedNote CONSTANT)
    Q_PROPERTY(bool writing READ writing NOTIFY changed)
    /// How far the writing is.
    Q_PROPERTY(QString progressText READ progressText NOTIFY changed)
    Q_PROPERTY(QList<QString> results READ results NOTIFY changed)
    /// Said of a longer text when a part of it has been dealt with; `goOn` goes on with the rest.
    Q_PROPERTY(QString restText READ restText NOTIFY changed)
public:
    enum class Source { ChatFile, Manual };
    Q_ENUM(Source)
    enum class Step { Text, Review, Confirm, Done };
    Q_ENUM(Step)
    static constexpr qsizetype maxTextSize = 400'000;

    explicit MemoryImportModel(MemoryServices services, QObject *parent = nullptr);

    Step step() const { return Step(int(m_step)); }
    Source source() const { return Source(int(m_source)); }
    void setSource(Source source);
    static QStringList sources();
    QString text() const { return m_text; }
    void setText(const QString &text);
    int pieces() const { return int(m_pieces); }
    QString cutText() const;
    static QString readsOnly();
    static QString costNote();
    bool scanning() const { return m_scanning; }
    const QString &errorText() const { return m_errorText; }
    QString chargeText() const;
    QAbstractItemModel *candidates() { return &m_candidates; }
    int found() const { return int(m_candidates.records().size()); }
    int picked() const;
    static QString nothingTitle();
    static QString nothingText();
    static QString skippedNote();
    bool writing() const { return m_writing; }
    QString progressText() const;
    QStringList results() const;
    QString restText() const;

    /// Begins where it was left; after an import with what of its text was not read.
    Q_INVOKABLE void open();
    /// Takes the text of a file, in place of nothing or after what is there. Not while a text is read for memories:
    /// what is sent is what was seen.
    /// @param place a path, or a file's address
    Q_INVOKABLE void readFile(const QString &place);
    Q_INVOKABLE void scan();
    Q_INVOKABLE void pick(const QString &candidateId, bool picked);
    Q_INVOKABLE void goToConfirm();
    Q_INVOKABLE void back();
    Q_INVOKABLE void write();
    /// Leaves what has been read behind and begins with the rest of the text.
    Q_INVOKABLE void goOn();
    /// Gives up the text and what was found, and begins anew.
    Q_INVOKABLE void discard();
    /// Lets go of everything, since somebody else is signed in.
    void drop(const QString &why = {});

Q_SIGNALS:
    void changed();
    void textChanged();
    /// There are other candidates or memories at the service.
    void ledgerChanged();

private:
    bool takesText() const { return m_step == MemoryImport::Step::source && !m_scanning; }
    QCoro::Task<> readFileNow(QString path);
    QCoro::Task<> scanNow();
    QCoro::Task<> writeNow();
    bool isStill(quint64 generation, const QString &owner);
    void removeSent();
    void onInputs();

    MemoryServices m_services;
    quint64 m_generation = 0;
    MemoryImport::Step m_step = MemoryImport::Step::source;
    MemoryImport::Source m_source = MemoryImport::Source::chatFile;
    QString m_text;
    qsizetype m_pieces = 0;
    QString m_sent; ///< as much of the text as was read for memories
    bool m_scanning = false;
    bool m_writing = false;
    QString m_errorText;
    std::optional<qint64> m_charged; ///< Pip
    qsizetype m_rest = 0;            ///< pieces behind it
    qsizetype m_toWrite = 0;
    qsizetype m_written = 0;
    qsizetype m_superseded = 0;
    qsizetype m_failed = 0;
    RecordListModel<MemoryCandidateRow, &MemoryCandidateRow::candidateId> m_candidates;
};

} // namespace lmp
