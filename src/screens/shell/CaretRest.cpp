#include "screens/shell/CaretRest.h"

#include <QEvent>
#include <QGuiApplication>
#include <QStyleHints>

namespace lmp {

namespace {

/// What Qt takes for nothing set.
constexpr int asTheDesktopHasIt = -1;

} // namespace

CaretRest::CaretRest(std::chrono::milliseconds after) {
    m_quiet.setInterval(after);
    m_quiet.setSingleShot(true);
    connect(&m_quiet, &QTimer::timeout, this, [] { flashEvery(0); });
    qGuiApp->installEventFilter(this);
    m_quiet.start();
}

CaretRest::~CaretRest() {
    flashEvery(asTheDesktopHasIt);
}

void CaretRest::flashEvery(int ms) {
    QGuiApplication::styleHints()->setCursorFlashTime(ms);
}

bool CaretRest::eventFilter(QObject *watched, QEvent *event) {
    switch (event->type()) {
    case QEvent::KeyPress:
    case QEvent::InputMethod:
    case QEvent::MouseButtonPress:
    case QEvent::TouchBegin:
    case QEvent::FocusIn:
        flashEvery(asTheDesktopHasIt);
        m_quiet.start();
        break;
    default:
        break;
    }
    return QObject::eventFilter(watched, event);
}

} // namespace lmp
