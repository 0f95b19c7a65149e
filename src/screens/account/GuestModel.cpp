#include "screens/account/GuestModel.h"

#include "core/Detach.h"
#include "core/PlainLabel.h"

#include <QPointer>

namespace lmp {

using namespace Qt::StringLiterals;

namespace {

/// A round of the trial is a few sentences; all of it is laid out at once.
constexpr qsizetype longestReply = 20'000;
constexpr int mostReplyLines = 500;

} // namespace

GuestModel::GuestModel(AuthService service, QObject *parent)
    : QObject(parent)
    , m_service(std::move(service)) {}

QString GuestModel::exhaustedText() {
    return u"试聊的轮数用完了。注册之后可以接着聊。"_s;
}

QString GuestModel::roundsText() const {
    return isOpen() ? u"还剩 %1 轮"_s.arg(m_trial->roundsLeft()) : QString();
}

void GuestModel::setInput(const QString &input) {
    if (std::exchange(m_input, input) == input)
        return;
    Q_EMIT inputChanged();
    Q_EMIT changed();
}

void GuestModel::start() {
    if (!m_trial) {
        m_trial = std::make_unique<GuestTrial>(m_service);
        connect(m_trial.get(), &GuestTrial::changed, this, &GuestModel::changed);
    }
    detach(m_trial->open(), "GuestTrial::open");
}

bool GuestModel::send() {
    if (!canSend())
        return false;
    detach(sendNow(), "GuestModel::send");
    return true;
}

QCoro::Task<> GuestModel::sendNow() {
    const QPointer self(this);
    const QPointer trial(m_trial.get());
    const QString text = m_input;
    m_pending = text;
    setInput({});
    if (!self || !trial)
        co_return;
    co_await trial->send(text);
    if (!self || !trial || trial != m_trial.get())
        co_return;
    m_pending.clear();
    const bool answered = trial->turns().size() > m_turns.rowCount();
    showTurns();
    Q_EMIT changed();
    if (self && !answered)
        setInput(m_input.isEmpty() ? text : text + u'\n' + m_input);
}

void GuestModel::showTurns() {
    std::vector<GuestTurn> turns;
    for (const GuestTrial::Turn &turn : m_trial ? m_trial->turns() : QList<GuestTrial::Turn>())
        turns.push_back({turn.message, PlainLabel::lines(turn.reply, longestReply, mostReplyLines),
                         PlainLabel::lines(turn.stardust.value_or(QString()))});
    m_turns.setRecords(std::move(turns));
}

void GuestModel::leave() {
    m_trial.reset();
    m_pending.clear();
    showTurns();
    setInput({});
    Q_EMIT changed();
}

} // namespace lmp
