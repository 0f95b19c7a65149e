#include "screens/shell/WindowScene.h"

#include "app/Application.h"
#include "conversation/ConversationTexts.h"
#include "core/Detach.h"

#include <QTimer>

namespace lmp {

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;
using Command = AppCommands::Command;

WindowScene::WindowScene(AppearanceModel &appearance, Settings &settings, MacQuitCoordinator &quitting, QObject *parent)
    : QObject(parent)
    , m_appearance(appearance)
    , m_quitting(quitting)
    , m_layout(settings)
    , m_switcher([this] { return destinations(); }) {
    connect(&m_navigation, &WindowNavigation::conversationRequested, this, &WindowScene::followToConversation);
    connect(&m_commands, &AppCommands::triggered, this, &WindowScene::onCommand);
    connect(&m_switcher, &QuickSwitcherModel::chosen, this, &WindowScene::goTo);
    // The list had gone ahead.
    connect(&m_questions, &WindowQuestions::stayed, this,
            [this] { m_conversations->select(m_chat->conversationId()); });
}

WindowScene::~WindowScene() = default;

void WindowScene::adopt(SharedModels &shared) {
    m_shared = &shared;
    Application &application = shared.application;
    m_crisis = std::make_unique<CrisisResourcesModel>(application.api(), application.opener());
    m_chat = std::make_unique<ChatModel>(application);
    m_conversations = std::make_unique<ConversationListModel>(application);
    m_conversations->follow(m_chat.get());
    m_switcher.keepUpWith(m_conversations.get());
    m_search = std::make_unique<ConversationSearchModel>(application.search());
    connect(m_search.get(), &ConversationSearchModel::chosen, this, &WindowScene::openMessage);
    adoptLedger(application);
    connect(&shared.root, &RootView::stageChanged, this, &WindowScene::settleStage);
    Q_EMIT adopted();
    enterStage();
}

void WindowScene::adoptLedger(Application &application) {
    m_ledger = std::make_unique<MemoryLedgerModel>(MemoryServices{.service = MemoryService(application.api()),
                                                                  .account = application.account(),
                                                                  .inputs = &m_shared->memoryInputs});
    for (const auto signal :
         {&AuthStore::generationChanged, &AuthStore::phaseChanged, &AuthStore::verificationFailedChanged})
        connect(&application.auth(), signal, m_ledger.get(), &MemoryLedgerModel::recheckAccount);
    connect(&m_navigation, &WindowNavigation::memoryRequested, m_ledger.get(), &MemoryLedgerModel::reveal);
    m_memoryInput = application.localInput().add([ledger = m_ledger.get()] { return ledger->preserve(); });
}

CapabilityStore *WindowScene::capabilities() {
    return m_shared ? &m_shared->application.capabilities() : nullptr;
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
    if (!m_released)
        Q_EMIT closeRequested();
    return m_released;
}

void WindowScene::saveAndClose() {
    if (!m_saving)
        detach(save(), "saving a window's input");
}

QCoro::Task<> WindowScene::save() {
    const QPointer self(this);
    m_saving = true;
    const bool saved = m_chat ? co_await preserve() : true;
    if (!self)
        co_return;
    m_saving = false;
    m_questions.setCloseWarning(!saved);
    if (saved)
        Q_EMIT readyToClose();
}

QCoro::Task<bool> WindowScene::preserve() {
    const QPointer self(this);
    const bool chat = co_await m_chat->preserve();
    const bool memories = self && co_await m_ledger->preserve();
    co_return chat &&memories;
}

void WindowScene::startConversation(bool incognito) {
    replaceConversation([this, incognito] { m_chat->begin(incognito); });
}

void WindowScene::openConversation(const QString &id) {
    if (m_chat && id == m_chat->conversationId()) {
        m_navigation.setTab(WindowNavigation::Tab::Now);
        Q_EMIT composerRequested();
    } else
        replaceConversation([this, id] { m_chat->load(id); });
}

void WindowScene::followToConversation(const QString &id) {
    if (id == m_chat->conversationId())
        openConversation(id);
    // That question says what else is lost.
    else if (m_chat->isIdle() || losesIncognito())
        replaceConversation([this, id] { m_chat->load(id); }, true);
    else
        m_questions.askToLeave(WindowQuestions::Leaving::Reply, [this, id] { openConversation(id); }, true);
}

void WindowScene::replaceConversation(std::function<void()> how, bool unasked) {
    if (m_stage != Stage::Shell)
        return;
    m_navigation.setTab(WindowNavigation::Tab::Now);
    const auto go = [this, how = std::move(how)] {
        if (m_stage != Stage::Shell)
            return;
        const bool stops = !m_chat->isIdle() && !m_chat->incognito();
        how();
        if (stops && m_chat->isIdle())
            setNotice(ConversationTexts::leftReply());
        else if (m_notice == ConversationTexts::leftReply())
            closeNotice();
        Q_EMIT composerRequested();
    };
    if (losesIncognito())
        m_questions.askToLeave(WindowQuestions::Leaving::Conversation, go, unasked);
    else
        go();
}

bool WindowScene::losesIncognito() const {
    return m_chat && m_chat->losesIncognito();
}

void WindowScene::setNotice(const QString &notice) {
    if (std::exchange(m_notice, notice) != notice)
        Q_EMIT noticeChanged();
}

void WindowScene::settleStage() {
    // The models of the account hear of the same change, and some of them after us.
    QMetaObject::invokeMethod(this, &WindowScene::enterStage, Qt::QueuedConnection);
}

void WindowScene::enterStage() {
    const Stage stage = Stage(int(m_shared->root.stage()) + 1);
    if (stage == m_stage)
        return;
    m_stage = stage;
    m_commands.setThere(m_stage == Stage::Shell ? AppCommands::Needs::Shell : AppCommands::Needs::Service);
    m_navigation.setShellShown(m_stage == Stage::Shell);
    // Before its screen is made, which takes longer than the service to answer, and so that what is typed ahead finds
    // something to be typed in.
    if (m_stage == Stage::Shell)
        enterShell();
    // Whoever signed out in another window was told there what goes.
    else
        m_questions.withdrawLeave();
    Q_EMIT stageChanged();
}

void WindowScene::enterShell() {
    m_conversations->refresh();
    indexWhenIdle();
    // A link may have opened one already.
    if (!m_chat->conversationId().isEmpty())
        return;
    // Where one was typing before the program ended; a window opened beside begins anew.
    if (std::exchange(m_shared->wentOn, true))
        m_chat->begin();
    else
        m_chat->goOn();
}

void WindowScene::indexWhenIdle() {
    // What a person waits for at the start goes first.
    QTimer::singleShot(3s, this, [this] {
        if (m_stage == Stage::Shell)
            m_shared->application.search().refresh();
    });
}

void WindowScene::openMessage(const QString &conversationId, const QString &messageId, const QString &query) {
    if (conversationId == m_chat->conversationId()) {
        m_navigation.setTab(WindowNavigation::Tab::Now);
        m_chat->loadAt(conversationId, messageId, query);
    } else
        replaceConversation(
            [this, conversationId, messageId, query] { m_chat->loadAt(conversationId, messageId, query); });
}

void WindowScene::stepConversation(int step) {
    const QString id = m_conversations->neighbour(step);
    if (!id.isEmpty())
        openConversation(id);
}

void WindowScene::onCommand(Command command) {
    switch (command) {
    case Command::NewConversation:
    case Command::NewIncognito:
        return startConversation(command == Command::NewIncognito);
    case Command::TabNow:
    case Command::TabSocial:
    case Command::TabMarket:
    case Command::TabStudio:
    case Command::TabMe:
        return m_navigation.setTab(WindowNavigation::Tab(int(command) - int(Command::TabNow)));
    case Command::Settings:
        return m_navigation.openSection(WindowNavigation::Section::Account);
    case Command::Find:
        if (m_navigation.tab() == WindowNavigation::Tab::Me && m_navigation.page() == WindowNavigation::Page::Memory) {
            Q_EMIT memoryFindRequested();
            return;
        }
        m_navigation.setTab(WindowNavigation::Tab::Now);
        return m_chat->find()->begin();
    case Command::Larger:
        return m_appearance.larger();
    case Command::Smaller:
        return m_appearance.smaller();
    case Command::ResetScale:
        return m_appearance.resetScale();
    case Command::PreviousConversation:
    case Command::NextConversation:
        return stepConversation(command == Command::NextConversation ? 1 : -1);
    case Command::ToggleSidebar:
        return m_layout.setSidebarCollapsed(!m_layout.sidebarCollapsed());
    case Command::Crisis:
        return m_navigation.openCrisis();
    case Command::CheckUpdates:
        return m_shared->updates.check(true);
    default:
        // The window's own QML and the program do the rest.
        return;
    }
}

QList<SwitcherEntry> WindowScene::destinations() const {
    QList<SwitcherEntry> unread, others, pages, commands;
    for (int row = 0; m_conversations && row < m_conversations->rowCount(); ++row) {
        const auto value = [&](ConversationListModel::Role role) {
            return m_conversations->data(m_conversations->index(row), role);
        };
        const SwitcherEntry entry{.kind = SwitcherEntry::Kind::Conversation,
                                  .key = value(ConversationListModel::ConversationIdRole).toString(),
                                  .title = value(ConversationListModel::TitleRole).toString(),
                                  .iconName = u"chat"_s,
                                  .unread = value(ConversationListModel::UnreadRole).toInt(),
                                  .draft = value(ConversationListModel::DraftRole).toBool()};
        (entry.unread > 0 ? unread : others) << entry;
    }
    for (const auto &entry : AppCommands::table()) {
        const bool page = entry.command >= Command::TabNow && entry.command <= Command::Settings;
        if (!entry.iconName.isEmpty() && m_commands.enabled(entry))
            (page ? pages : commands) << SwitcherEntry{.kind = page ? SwitcherEntry::Kind::Page
                                                                    : SwitcherEntry::Kind::Command,
                                                       .key = QString::number(int(entry.command)),
                                                       .title = entry.title,
                                                       .iconName = entry.iconName,
                                                       .shortcutText = AppCommands::keysText(entry.keys)};
    }
    return unread + others + pages + commands;
}

void WindowScene::goTo(const SwitcherEntry &entry) {
    if (entry.kind == SwitcherEntry::Kind::Conversation)
        openConversation(entry.key);
    else
        m_commands.run(Command(entry.key.toInt()));
}

} // namespace lmp
