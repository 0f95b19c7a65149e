#include "screens/memory/MemoryImportModel.h"

#include "core/Detach.h"
#include "core/PoolAwaiter.h"
#include "core/TextFile.h"
#include "identity/MemoryTexts.h"
#include "screens/memory/MemoryInputs.h"

#include <QPointer>

#include <algorithm>

namespace lmp {

using namespace Qt::StringLiterals;
using ImportStep = MemoryImport::Step;

namespace {

/// What each source's text is kept under.
QString keyOf(MemoryImport::Source source) {
    return source == MemoryImport::Source::chatFile ? u"import:chatFile"_s : u"import:manual"_s;
}

} // namespace

MemoryImportModel::MemoryImportModel(MemoryServices services, QObject *parent)
    : QObject(parent)
    , m_services(std::move(services)) {
    connect(m_services.inputs, &MemoryInputs::replaced, this, &MemoryImportModel::onInputs);
    onInputs();
}

QStringList MemoryImportModel::sources() {
    return {MemoryTexts::importChatFile(), u"自己写"_s};
}

QString MemoryImportModel::readsOnly() {
    return MemoryTexts::importReadsOnly();
}

QString MemoryImportModel::costNote() {
    return MemoryTexts::extractNote();
}

QString MemoryImportModel::nothingTitle() {
    return MemoryTexts::importNothingTitle();
}

QString MemoryImportModel::nothingText() {
    return MemoryTexts::importNothingText();
}

QString MemoryImportModel::skippedNote() {
    return MemoryTexts::importSkippedNote();
}

QString MemoryImportModel::cutText() const {
    return m_pieces > MemoryImport::maxPieces ? MemoryTexts::importCut(MemoryImport::maxPieces, m_pieces) : QString();
}

QString MemoryImportModel::chargeText() const {
    return m_charged ? MemoryTexts::extractCost(*m_charged) : QString();
}

int MemoryImportModel::picked() const {
    return int(std::ranges::count_if(m_candidates.records(), &MemoryCandidateRow::picked));
}

// The text

void MemoryImportModel::open() {
    if (m_step == ImportStep::done && !m_writing)
        drop();
    else if (takesText())
        onInputs(); // another window may have typed on
    Q_EMIT changed();
}

void MemoryImportModel::setSource(Source source) {
    if (MemoryImport::Source(int(source)) == m_source || !takesText())
        return;
    m_source = MemoryImport::Source(int(source));
    m_errorText.clear();
    onInputs();
    Q_EMIT changed();
}

void MemoryImportModel::setText(const QString &text) {
    if (text == m_text || !takesText())
        return;
    m_text = text;
    m_pieces = MemoryImport::countPieces(text);
    m_services.inputs->setText(keyOf(m_source), text);
    Q_EMIT textChanged();
}

void MemoryImportModel::onInputs() {
    const QString kept = m_services.inputs->text(keyOf(m_source));
    if (kept == m_text)
        return;
    m_text = kept;
    m_pieces = MemoryImport::countPieces(kept);
    Q_EMIT textChanged();
}

void MemoryImportModel::readFile(const QString &place) {
    const QUrl url(place.trimmed());
    const QString path = url.isLocalFile() ? url.toLocalFile() : place.trimmed();
    if (!path.isEmpty() && takesText())
        detach(readFileNow(path), "reading a text to import");
}

QCoro::Task<> MemoryImportModel::readFileNow(QString path) {
    const QPointer self(this);
    const auto generation = m_generation;
    const auto source = m_source;
    const auto read = co_await PoolAwaiter([path] { return TextFile::read(path); });
    if (!self || m_generation != generation || m_source != source || m_step != ImportStep::source)
        co_return;
    const QString all = !read ? QString() : m_text.isEmpty() ? *read : m_text + u'\n' + *read;
    if (!read)
        m_errorText = read.error();
    else if (m_scanning)
        m_errorText = u"这个文件读到时已经开始扫描，没有加进来，扫完再读一次。"_s;
    else
        m_errorText = all.size() > maxTextSize ? u"内容太长了，请先截取要导入的一段。"_s : QString();
    if (m_errorText.isEmpty())
        setText(all);
    if (self)
        Q_EMIT changed();
}

// The candidates

void MemoryImportModel::scan() {
    if (m_step != ImportStep::source || m_scanning || m_pieces == 0)
        return;
    m_scanning = true;
    m_errorText.clear();
    const QString rest = MemoryImport::rest(m_text);
    m_sent = m_text.chopped(rest.size());
    m_rest = MemoryImport::countPieces(rest);
    detach(scanNow(), "reading a text for memories");
    Q_EMIT changed();
}

QCoro::Task<> MemoryImportModel::scanNow() {
    const QPointer self(this);
    const auto generation = m_generation;
    const QString owner = m_services.account.owner();
    const auto answer = co_await m_services.service.extract(MemoryImport::messages(m_text));
    if (!self || !isStill(generation, owner))
        co_return;
    m_scanning = false;
    if (!answer) {
        m_errorText = MemoryTexts::importScanFailed();
        Q_EMIT changed();
        co_return;
    }
    m_charged = answer->pipCharged;
    std::vector<MemoryCandidateRow> rows;
    for (const auto &candidate : answer->candidates)
        rows.push_back(MemoryCandidateRow::of(candidate));
    m_candidates.setRecords(std::move(rows));
    m_step = ImportStep::review;
    Q_EMIT changed();
    if (self && !answer->candidates.isEmpty())
        Q_EMIT ledgerChanged();
}

bool MemoryImportModel::isStill(quint64 generation, const QString &owner) {
    if (m_generation != generation)
        return false;
    if (m_services.account.isStill(owner))
        return true;
    drop(MemoryTexts::accountChanged());
    return false;
}

void MemoryImportModel::pick(const QString &candidateId, bool picked) {
    auto rows = m_candidates.records();
    const auto row = std::ranges::find(rows, candidateId, &MemoryCandidateRow::candidateId);
    if (row == rows.end() || m_step != ImportStep::review)
        return;
    row->picked = picked;
    m_candidates.setRecords(std::move(rows));
    Q_EMIT changed();
}

void MemoryImportModel::goToConfirm() {
    if (m_step != ImportStep::review || picked() == 0)
        return;
    m_step = ImportStep::confirm;
    Q_EMIT changed();
}

void MemoryImportModel::back() {
    if (m_scanning || m_writing)
        return;
    if (m_step == ImportStep::confirm)
        m_step = ImportStep::review;
    else if (m_step == ImportStep::review)
        m_step = ImportStep::source;
    Q_EMIT changed();
}

// The writing

void MemoryImportModel::write() {
    if (m_step != ImportStep::confirm || m_writing || picked() == 0)
        return;
    m_writing = true;
    m_toWrite = picked();
    m_written = m_superseded = m_failed = 0;
    detach(writeNow(), "writing imported memories");
    Q_EMIT changed();
}

QCoro::Task<> MemoryImportModel::writeNow() {
    const QPointer self(this);
    const auto generation = m_generation;
    const QString owner = m_services.account.owner();
    const auto rows = m_candidates.records();
    for (const auto &row : rows) {
        if (!row.picked)
            continue;
        const auto answer = co_await m_services.service.confirm(row.candidateId);
        if (!self || !isStill(generation, owner))
            co_return;
        ++(answer ? m_written : m_failed);
        if (answer && answer->supersededContent)
            ++m_superseded;
        Q_EMIT changed();
        if (!self || m_generation != generation)
            co_return;
    }
    m_writing = false;
    m_step = ImportStep::done;
    // What was found in it is no longer only here.
    if (m_written > 0)
        removeSent();
    if (!self)
        co_return;
    Q_EMIT changed();
    if (self)
        Q_EMIT ledgerChanged();
}

QString MemoryImportModel::progressText() const {
    return m_writing ? u"正在写入：%1 / %2"_s.arg(m_written + m_failed).arg(m_toWrite) : QString();
}

QStringList MemoryImportModel::results() const {
    if (m_step != ImportStep::done)
        return {};
    if (m_written == 0)
        return {MemoryTexts::importNothingWritten()};
    QStringList lines{MemoryTexts::importWritten(m_written)};
    if (m_failed > 0)
        lines << MemoryTexts::importFailedItems(m_failed);
    if (m_superseded > 0)
        lines << MemoryTexts::importSupersededItems(m_superseded);
    return lines;
}

QString MemoryImportModel::restText() const {
    const bool told = m_step == ImportStep::done || (m_step == ImportStep::review && found() == 0);
    return told && m_rest > 0 ? MemoryTexts::importRest(m_rest) : QString();
}

void MemoryImportModel::goOn() {
    if (restText().isEmpty())
        return;
    removeSent();
    drop();
}

void MemoryImportModel::removeSent() {
    // Whatever stands there now that was not sent stays.
    const QString key = keyOf(m_source);
    const QString kept = m_services.inputs->text(key);
    if (!m_sent.isEmpty() && kept.startsWith(m_sent))
        m_services.inputs->setText(key, kept.sliced(m_sent.size()));
    m_sent.clear();
    onInputs();
}

void MemoryImportModel::discard() {
    if (m_writing)
        return;
    m_services.inputs->setText(keyOf(m_source), {});
    drop();
}

void MemoryImportModel::drop(const QString &why) {
    ++m_generation;
    m_step = ImportStep::source;
    m_scanning = m_writing = false;
    m_errorText = why;
    m_charged.reset();
    m_sent.clear();
    m_rest = 0;
    m_candidates.setRecords({});
    onInputs();
    Q_EMIT changed();
}

} // namespace lmp
