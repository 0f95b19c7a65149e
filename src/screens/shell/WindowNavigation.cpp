#include "screens/shell/WindowNavigation.h"

#include "app/DeepLink.h"

#include <utility>

namespace lmp {

using namespace Qt::StringLiterals;

WindowNavigation::WindowNavigation(QObject *parent)
    : QObject(parent) {
    m_router.setShownKinds({u"memory"_s});
    connect(&m_router, &AppRouter::selectedTabChanged, this, &WindowNavigation::tabChanged);
    connect(&m_router, &AppRouter::pendingChanged, this, &WindowNavigation::takePending);
}

void WindowNavigation::openLink(const QString &link) {
    // A tab alone asks for nothing more, and is not to be hidden by what lies over it. The crisis page stays: anybody
    // can make a link, and only who reads that page puts it away.
    closeUnavailable();
    DeepLink::open(m_router, link);
}

void WindowNavigation::setShellShown(bool shown) {
    // Whoever signs in next has not been at the settings, where one signs out.
    if (std::exchange(m_shellShown, shown) && !shown)
        m_router.setSelectedTab(AppRouter::Tab::now);
    if (!shown)
        setOver(m_crisisOpen, false);
    takePending();
}

void WindowNavigation::setTab(Tab tab) {
    closeUnavailable();
    m_router.setSelectedTab(AppRouter::Tab(int(tab)));
}

void WindowNavigation::setPage(Page page) {
    if (std::exchange(m_page, page) != page)
        Q_EMIT tabChanged();
}

void WindowNavigation::openMemory() {
    setPage(Page::Memory);
    setTab(Tab::Me);
}

void WindowNavigation::openSection(Section section) {
    setPage(Page::Settings);
    setTab(Tab::Me);
    Q_EMIT sectionRequested(section);
}

void WindowNavigation::openCrisis() {
    setOver(true, m_unavailableOpen);
}

void WindowNavigation::closeCrisis() {
    setOver(false, m_unavailableOpen);
}

void WindowNavigation::closeUnavailable() {
    setOver(m_crisisOpen, false);
}

void WindowNavigation::takePending() {
    if (!m_router.isPending())
        return;
    if (std::holds_alternative<AppRouter::Crisis>(*m_router.pending())) {
        m_router.consume();
        openCrisis();
        return;
    }
    if (!m_shellShown)
        return;
    const auto destination = m_router.consume();
    if (const auto *conversation = std::get_if<AppRouter::Conversation>(&*destination)) {
        closeUnavailable();
        Q_EMIT conversationRequested(conversation->id);
    } else if (const auto *memory = std::get_if<AppRouter::Memory>(&*destination)) {
        openMemory();
        Q_EMIT memoryRequested(memory->id);
    } else
        setOver(m_crisisOpen, true);
}

void WindowNavigation::setOver(bool crisis, bool unavailable) {
    if (crisis == m_crisisOpen && unavailable == m_unavailableOpen)
        return;
    m_crisisOpen = crisis;
    m_unavailableOpen = unavailable;
    Q_EMIT overChanged();
}

} // namespace lmp
