#pragma once

#include "app/LocalInputRegistry.h"
#include "app/MacQuitCoordinator.h"
#include "screens/shell/AppCommands.h"
#include "screens/shell/AppearanceModel.h"
#include "screens/shell/QuickSwitcherModel.h"
#include "screens/shell/SharedModels.h"
#include "screens/shell/WindowLayout.h"
#include "screens/shell/WindowNavigation.h"
#include "screens/shell/WindowQuestions.h"

#include "screens/account/CrisisResourcesModel.h"
#include "screens/chat/ChatModel.h"
#include "screens/chat/ConversationListModel.h"
#include "screens/chat/ConversationSearchModel.h"
#include "screens/memory/MemoryLedgerModel.h"

namespace lmp {

class CapabilityStore;

/// What one window shows: the screen it is at, and the models its screens draw from.
///
/// One for each window, owned by WindowApplication and gone with its window; UI thread. It is there before the stores
/// are, so that something can be drawn at once: until `adopt` its stage is `Opening` and the models of the stores are
/// null.
class WindowScene : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("made with its window")
    Q_PROPERTY(lmp::AppearanceModel *appearance READ appearance CONSTANT)
    Q_PROPERTY(lmp::WindowLayout *layout READ layout CONSTANT)
    Q_PROPERTY(lmp::WindowNavigation *navigation READ navigation CONSTANT)
    Q_PROPERTY(lmp::AppCommands *commands READ commands CONSTANT)
    Q_PROPERTY(lmp::QuickSwitcherModel *switcher READ switcher CONSTANT)
    Q_PROPERTY(lmp::WindowQuestions *questions READ questions CONSTANT)
    Q_PROPERTY(lmp::WindowScene::Stage stage READ stage NOTIFY stageChanged)
    /// Why there is no service; empty while it is being looked for.
    Q_PROPERTY(QString openError READ openError NOTIFY openErrorChanged)
    Q_PROPERTY(lmp::MacQuitCoordinator *quitting READ quitting CONSTANT)
    /// Something to be known in this window, whatever it shows; `closeNotice` puts it away.
    Q_PROPERTY(QString notice READ notice NOTIFY noticeChanged)
    // Null before `adopt`.
    Q_PROPERTY(lmp::RootView *rootView READ rootView NOTIFY adopted)
    Q_PROPERTY(lmp::SessionModel *session READ session NOTIFY adopted)
    Q_PROPERTY(lmp::SafetyModel *safety READ safety NOTIFY adopted)
    Q_PROPERTY(lmp::TelemetryModel *telemetry READ telemetry NOTIFY adopted)
    Q_PROPERTY(lmp::UpdateChecker *updates READ updates NOTIFY adopted)
    Q_PROPERTY(lmp::CapabilityStore *capabilities READ capabilities NOTIFY adopted)
    Q_PROPERTY(lmp::CrisisResourcesModel *crisis READ crisis NOTIFY adopted)
    Q_PROPERTY(lmp::ChatModel *chat READ chat NOTIFY adopted)
    Q_PROPERTY(lmp::ConversationListModel *conversations READ conversations NOTIFY adopted)
    Q_PROPERTY(lmp::ConversationSearchModel *search READ search NOTIFY adopted)
    Q_PROPERTY(lmp::MemoryLedgerModel *ledger READ ledger NOTIFY adopted)
public:
    enum class Stage { Opening, Launch, SignedOut, Migration, Onboarding, HandleSetup, Shell };
    Q_ENUM(Stage)

    /// @param appearance, settings, quitting outlive the scene
    WindowScene(AppearanceModel &appearance, Settings &settings, MacQuitCoordinator &quitting,
                QObject *parent = nullptr);
    ~WindowScene() override;

    /// Takes the models that all windows share and makes its own; once, when the application is open. They outlive it.
    void adopt(SharedModels &shared);
    void setOpenError(const QString &error);
    /// The window may close from now on without being asked.
    void release() { m_released = true; }

    AppearanceModel *appearance() { return &m_appearance; }
    WindowLayout *layout() { return &m_layout; }
    WindowNavigation *navigation() { return &m_navigation; }
    AppCommands *commands() { return &m_commands; }
    QuickSwitcherModel *switcher() { return &m_switcher; }
    WindowQuestions *questions() { return &m_questions; }
    Stage stage() const { return m_stage; }
    const QString &openError() const { return m_openError; }
    MacQuitCoordinator *quitting() { return &m_quitting; }
    const QString &notice() const { return m_notice; }
    void setNotice(const QString &notice);
    /// Whether something is open, or being written, that cannot be found again once it is put away.
    bool losesIncognito() const;
    RootView *rootView() { return m_shared ? &m_shared->root : nullptr; }
    SessionModel *session() { return m_shared ? &m_shared->session : nullptr; }
    SafetyModel *safety() { return m_shared ? &m_shared->safety : nullptr; }
    TelemetryModel *telemetry() { return m_shared ? &m_shared->telemetry : nullptr; }
    UpdateChecker *updates() { return m_shared ? &m_shared->updates : nullptr; }
    CapabilityStore *capabilities();
    CrisisResourcesModel *crisis() { return m_crisis.get(); }
    ChatModel *chat() { return m_chat.get(); }
    ConversationListModel *conversations() { return m_conversations.get(); }
    ConversationSearchModel *search() { return m_search.get(); }
    MemoryLedgerModel *ledger() { return m_ledger.get(); }

    /// Tries again to find the service.
    Q_INVOKABLE void reopen();
    /// The window would close. @return whether it may do so now; otherwise what is typed is seen to first
    Q_INVOKABLE bool mayClose();
    /// Saves what is typed in this window, and closes it when that succeeds.
    Q_INVOKABLE void saveAndClose();
    Q_INVOKABLE void closeNotice() { setNotice({}); }
    Q_INVOKABLE void startConversation(bool incognito = false);
    Q_INVOKABLE void openConversation(const QString &id);

Q_SIGNALS:
    void adopted();
    void stageChanged();
    void openErrorChanged();
    void noticeChanged();
    void reopenRequested();
    void closeRequested();
    void readyToClose();
    /// Something has been opened to be written in.
    void composerRequested();
    /// The ledger that is shown is to be searched.
    void memoryFindRequested();

private:
    void settleStage();
    void enterStage();
    void enterShell();
    void onCommand(AppCommands::Command command);
    void goTo(const SwitcherEntry &entry);
    QList<SwitcherEntry> destinations() const;
    QCoro::Task<> save();
    /// Goes to another conversation, after asking where the one that is open would be lost.
    void replaceConversation(std::function<void()> how, bool unasked = false);
    /// Goes where a link leads, after asking where a reply would be stopped by it: anybody can make a link.
    void followToConversation(const QString &id);
    void stepConversation(int step);
    void openMessage(const QString &conversationId, const QString &messageId, const QString &query);
    void indexWhenIdle();
    void adoptLedger(Application &application);
    /// Keeps everything typed in this window. @return false when something could be lost
    QCoro::Task<bool> preserve();

    AppearanceModel &m_appearance;
    MacQuitCoordinator &m_quitting;
    WindowLayout m_layout;
    WindowNavigation m_navigation;
    AppCommands m_commands;
    QuickSwitcherModel m_switcher;
    WindowQuestions m_questions;
    SharedModels *m_shared = nullptr;
    std::unique_ptr<CrisisResourcesModel> m_crisis;
    std::unique_ptr<ChatModel> m_chat;
    std::unique_ptr<ConversationListModel> m_conversations;
    std::unique_ptr<ConversationSearchModel> m_search;
    std::unique_ptr<MemoryLedgerModel> m_ledger;
    LocalInputRegistry::Registration m_memoryInput;
    Stage m_stage = Stage::Opening;
    QString m_openError;
    QString m_notice;
    bool m_saving = false;
    bool m_released = false;
};

} // namespace lmp
