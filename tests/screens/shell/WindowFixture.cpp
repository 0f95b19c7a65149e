#include "WindowFixture.h"

namespace lmp {

using namespace Qt::StringLiterals;

void WindowFixture::SetUp() {
    SandboxFixture::SetUp();
    qputenv("XDG_DATA_HOME", m_home.filePath(u"data"_s).toUtf8());
    qputenv("HOME", m_home.path().toUtf8());
    qputenv("XDG_RUNTIME_DIR", m_home.path().toUtf8());
}

void WindowFixture::TearDown() {
    qunsetenv("LMP_TOKEN");
    SandboxFixture::TearDown();
}

WindowOptions WindowFixture::options(const QString &link) const {
    return {.site = m_site.toString(), .profile = {}, .link = link};
}

bool WindowFixture::typesIncognito(WindowDriver &window) {
    if (!window.enterShell())
        return false;
    window.scene().startConversation(true);
    const auto takesText = [&] {
        const auto *composer = window.find(u"LMPComposer"_s);
        return composer && composer->hasActiveFocus();
    };
    if (!eventually(takesText))
        return false;
    window.type(u"只在这里说"_s);
    return true;
}

void WindowFixture::signInBefore() {
    qputenv("LMP_TOKEN", signIn(u"13900000007"_s).toUtf8());
}

} // namespace lmp
