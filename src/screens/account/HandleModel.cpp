#include "screens/account/HandleModel.h"

#include "core/Detach.h"
#include "core/PlainLabel.h"

#include <QPointer>

#include <utility>

namespace lmp {

using namespace Qt::StringLiterals;

HandleModel::HandleModel(AuthService service, Clock &clock, QObject *parent)
    : QObject(parent)
    , m_service(std::move(service))
    , m_clock(clock) {
    restart();
}

void HandleModel::setInput(const QString &input) {
    m_setup->setInput(input);
}

QString HandleModel::current() const {
    return PlainLabel::line(m_setup->current().value_or(QString()));
}

bool HandleModel::canSave() const {
    return !input().trimmed().isEmpty() && !isSaving() && !isChecking() && (!m_setup->check() || isAvailable());
}

QString HandleModel::checkText() const {
    if (isChecking())
        return u"正在查……"_s;
    if (!isAvailable())
        return {};
    const QString twin = PlainLabel::line(m_setup->check()->twinHandle.value_or(QString()));
    return twin.isEmpty() ? u"可以用"_s : u"可以用 · 你的分身会是 %1"_s.arg(twin);
}

QString HandleModel::errorText() const {
    if (!m_setup->message().isEmpty())
        return m_setup->message();
    if (!m_setup->check() || isAvailable())
        return {};
    const QString reason = PlainLabel::lines(m_setup->check()->reason.value_or(QString()));
    return reason.isEmpty() ? u"这个不能用，换一个试试"_s : reason;
}

QString HandleModel::savedText() const {
    if (!m_setup->saved())
        return {};
    const QString note = PlainLabel::lines(m_setup->saved()->note.value_or(QString()));
    const QString text = u"主页名已设为 %1"_s.arg(PlainLabel::line(m_setup->saved()->handle));
    return note.isEmpty() ? text : text + u'\n' + note;
}

void HandleModel::save() {
    if (canSave())
        detach(saveNow(), "HandleModel::save");
}

QCoro::Task<> HandleModel::saveNow() {
    const QPointer self(this);
    const QPointer setup(m_setup.get());
    co_await setup->save();
    if (!self || !setup || setup != m_setup.get())
        co_return;
    if (setup->message().isEmpty() && setup->saved()) {
        Q_EMIT saved(setup->saved()->handle);
    } else if (m_views == 0) {
        m_unseen = true;
        Q_EMIT unseenRefusal(setup->message());
    }
}

void HandleModel::open() {
    ++m_views;
    if (std::exchange(m_unseen, false)) {
        Q_EMIT unseenRefusal({});
    } else if (!isSaving() && (m_views == 1 || m_setup->saved())) {
        restart();
        detach(m_setup->loadSuggestions(), "HandleSetup::loadSuggestions");
    }
}

void HandleModel::close() {
    --m_views;
}

void HandleModel::restart() {
    m_unseen = false;
    m_setup = std::make_unique<HandleSetup>(m_service, m_clock);
    connect(m_setup.get(), &HandleSetup::changed, this, &HandleModel::changed);
    Q_EMIT changed();
}

} // namespace lmp
