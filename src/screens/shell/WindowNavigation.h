#pragma once

#include "app/AppRouter.h"

#include <QtQml/qqmlregistration.h>

namespace lmp {

/// Where a window is: its tab, and what lies over it. Takes what the router was asked for as soon as it can be shown.
///
/// One for each window, owned by its scene, UI thread; there from the start, so that a link that started the program
/// waits in it. Nothing fails: what there is no screen for is shown as that.
class WindowNavigation : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("made with its window")
    Q_PROPERTY(Tab tab READ tab WRITE setTab NOTIFY tabChanged)
    Q_PROPERTY(Page page READ page NOTIFY tabChanged)
    Q_PROPERTY(bool crisisOpen READ crisisOpen NOTIFY overChanged)
    Q_PROPERTY(bool unavailableOpen READ unavailableOpen NOTIFY overChanged)
public:
    enum class Tab { Now, Social, Market, Studio, Me };
    Q_ENUM(Tab)
    /// The pages of the tab "me".
    enum class Page { Settings, Memory };
    Q_ENUM(Page)
    /// The parts of the settings, in their order.
    enum class Section { Account, Appearance, Privacy, Features, Updates, Keys };
    Q_ENUM(Section)

    explicit WindowNavigation(QObject *parent = nullptr);

    AppRouter &router() { return m_router; }
    /// Goes where a lumenpair:// address names.
    void openLink(const QString &link);
    /// The shell is shown, or no longer is: what needs it waits until then.
    void setShellShown(bool shown);

    Tab tab() const { return Tab(int(m_router.selectedTab())); }
    void setTab(Tab tab);
    Page page() const { return m_page; }
    bool crisisOpen() const { return m_crisisOpen; }
    bool unavailableOpen() const { return m_unavailableOpen; }

    /// Goes to a part of the settings.
    Q_INVOKABLE void openSection(lmp::WindowNavigation::Section section);
    Q_INVOKABLE void openMemory();
    Q_INVOKABLE void openCrisis();
    Q_INVOKABLE void closeCrisis();
    Q_INVOKABLE void closeUnavailable();

Q_SIGNALS:
    void tabChanged();
    void overChanged();
    void conversationRequested(const QString &id);
    void memoryRequested(const QString &id);
    void sectionRequested(lmp::WindowNavigation::Section section);

private:
    void takePending();
    void setPage(Page page);
    void setOver(bool crisis, bool unavailable);

    AppRouter m_router;
    Page m_page = Page::Settings;
    bool m_shellShown = false;
    bool m_crisisOpen = false;
    bool m_unavailableOpen = false;
};

} // namespace lmp
