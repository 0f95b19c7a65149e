#include "core/GuestTrial.h"

#include "core/PlainLabel.h"
#include "core/ServiceReason.h"

namespace lmp {

using namespace Qt::StringLiterals;

GuestTrial::GuestTrial(AuthService service)
    : m_service(std::move(service)) {}

QCoro::Task<> GuestTrial::open() {
    const QPointer self(this);
    if (m_token || m_busy)
        co_return;
    begin();
    const auto answer = co_await m_service.guestSession();
    if (!self)
        co_return;
    if (!answer) {
        end(serviceReason(answer.error(), u"试聊暂时开不了，稍后再来。"_s));
        co_return;
    }
    m_token = answer->guest.token;
    m_roundsLeft = answer->guest.roundsLeft;
    m_note = PlainLabel::lines(answer->guest.note.value_or(QString()));
    end({});
}

QCoro::Task<> GuestTrial::send(QString message) {
    const QPointer self(this);
    if (!m_token || m_busy || isExhausted() || message.trimmed().isEmpty())
        co_return;
    begin();
    const auto answer = co_await m_service.guestChat({*m_token, message});
    if (!self)
        co_return;
    if (!answer) {
        end(answer.error().reason);
        co_return;
    }
    m_turns.push_back({message, answer->reply, answer->stardust});
    m_roundsLeft = answer->roundsLeft;
    end({});
}

void GuestTrial::begin() {
    m_busy = true;
    m_message.clear();
    Q_EMIT changed();
}

void GuestTrial::end(const QString &failure) {
    m_busy = false;
    m_message = failure;
    Q_EMIT changed();
}

} // namespace lmp
