#include "core/HandleSetup.h"

#include "core/Detach.h"
#include "core/PlainLabel.h"
#include "core/ServiceReason.h"

namespace lmp {

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace {

constexpr auto typingPause = 250ms;
constexpr qsizetype mostSuggestions = 20;

} // namespace

HandleSetup::HandleSetup(AuthService service, Clock &clock)
    : m_service(std::move(service))
    , m_clock(clock) {}

HandleSetup::~HandleSetup() {
    m_editStop.request_stop();
}

void HandleSetup::setInput(const QString &input) {
    if (input == m_input)
        return;
    m_input = input;
    ++m_edits;
    std::exchange(m_editStop, std::stop_source()).request_stop();
    m_check.reset();
    m_message.clear();
    m_checking = !input.isEmpty();
    if (m_checking)
        detach(checkSoon(), "HandleSetup::check");
    Q_EMIT changed();
}

QCoro::Task<> HandleSetup::checkSoon() {
    const QPointer self(this);
    const auto edit = m_edits;
    const bool paused = co_await m_clock.sleep(typingPause, m_editStop.get_token());
    if (!self || !paused || edit != m_edits)
        co_return;
    const auto answer = co_await m_service.checkHandle(m_input);
    if (!self || edit != m_edits)
        co_return;
    m_checking = false;
    if (answer)
        m_check = *answer;
    else
        m_message = serviceReason(answer.error(), u"查不了，检查下网络"_s);
    Q_EMIT changed();
}

QCoro::Task<> HandleSetup::loadSuggestions() {
    const QPointer self(this);
    const auto answer = co_await m_service.suggestHandles();
    if (!self || !answer)
        co_return;
    // What was made fit to be shown would be another handle than the one that was meant.
    m_suggestions.clear();
    for (const QString &handle : answer->suggestions) {
        if (m_suggestions.size() < mostSuggestions && PlainLabel::line(handle) == handle)
            m_suggestions.push_back(handle);
    }
    m_current = answer->current;
    Q_EMIT changed();
}

QCoro::Task<> HandleSetup::save() {
    const QPointer self(this);
    if (m_input.isEmpty() || m_saving)
        co_return;
    m_saving = true;
    m_message.clear();
    Q_EMIT changed();
    if (!self)
        co_return;
    const auto answer = co_await m_service.setHandle({m_input});
    if (!self)
        co_return;
    m_saving = false;
    if (answer) {
        m_saved = *answer;
        m_current = answer->handle;
    } else {
        m_message = serviceReason(answer.error(), u"没保存上，再试一次"_s);
    }
    Q_EMIT changed();
}

} // namespace lmp
