#include "screens/shell/WindowScene.h"

#include "app/Application.h"

namespace lmp {

WindowScene::WindowScene(AppearanceModel &appearance, QObject *parent)
    : QObject(parent)
    , m_appearance(appearance) {}

WindowScene::~WindowScene() = default;

void WindowScene::adopt(Application &application) {
    m_application = &application;
    connect(&application.auth(), &AuthStore::phaseChanged, this, &WindowScene::settleStage);
    settleStage();
}

void WindowScene::setOpenError(const QString &error) {
    if (error == m_openError)
        return;
    m_openError = error;
    Q_EMIT openErrorChanged();
}

void WindowScene::reopen() {
    setOpenError({});
    Q_EMIT reopenRequested();
}

bool WindowScene::mayClose() {
    Q_EMIT closeRequested();
    return true;
}

void WindowScene::settleStage() {
    const Stage before = m_stage;
    switch (m_application->auth().phase()) {
    case AuthStore::Phase::loading:
        m_stage = Stage::Launch;
        break;
    case AuthStore::Phase::signedOut:
        m_stage = Stage::SignedOut;
        break;
    case AuthStore::Phase::signedIn:
        m_stage = Stage::Shell;
        break;
    }
    if (m_stage != before)
        Q_EMIT stageChanged();
}

} // namespace lmp
