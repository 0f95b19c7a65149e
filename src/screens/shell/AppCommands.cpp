#include "screens/shell/AppCommands.h"

#include <QKeySequence>

namespace lmp {

using namespace Qt::StringLiterals;

const QList<AppCommands::Entry> &AppCommands::table() {
    static const QList<Entry> entries{
        {Command::NewConversation, u"新对话"_s, u"plus"_s, {u"Ctrl+N"_s}},
        {Command::NewIncognito, u"新的无痕对话"_s, u"incognito"_s, {}},
        {Command::Find, u"在这段对话里查找"_s, u"search"_s, {u"Ctrl+F"_s}},
        {Command::FindEverywhere, u"在所有对话里查找"_s, u"search"_s, {u"Ctrl+Shift+F"_s}},
        {Command::FindList, u"在对话列表里查找"_s, u"search"_s, {}},
        {Command::Switcher, u"快速切换"_s, {}, {u"Ctrl+K"_s}},
        {Command::TabNow, u"当下"_s, u"now"_s, {u"Ctrl+1"_s}},
        {Command::TabSocial, u"社交"_s, u"social"_s, {u"Ctrl+2"_s}},
        {Command::TabMarket, u"市场"_s, u"market"_s, {u"Ctrl+3"_s}},
        {Command::TabStudio, u"工坊"_s, u"studio"_s, {u"Ctrl+4"_s}},
        {Command::TabMe, u"我的"_s, u"me"_s, {u"Ctrl+5"_s}},
        {Command::Settings, u"设置"_s, u"settings"_s, {u"Ctrl+,"_s}},
        {Command::Larger, u"放大界面"_s, u"plus"_s, {u"Ctrl++"_s, u"Ctrl+="_s}, Needs::Nothing},
        {Command::Smaller, u"缩小界面"_s, u"minus"_s, {u"Ctrl+-"_s}, Needs::Nothing},
        {Command::ResetScale, u"恢复原来的大小"_s, u"retry"_s, {u"Ctrl+0"_s}, Needs::Nothing},
        {Command::PreviousConversation, u"上一段对话"_s, {}, {u"Alt+Up"_s}},
        {Command::NextConversation, u"下一段对话"_s, {}, {u"Alt+Down"_s}},
        {Command::NextPane, u"到下一个区域"_s, {}, {u"F6"_s}},
        {Command::PreviousPane, u"到上一个区域"_s, {}, {u"Shift+F6"_s}},
        {Command::ToggleSidebar, u"收起或展开侧栏"_s, u"sidebar"_s, {u"Ctrl+B"_s}},
        {Command::Crisis, u"求助热线"_s, u"care"_s, {}, Needs::Nothing},
        {Command::CheckUpdates, u"检查更新"_s, u"download"_s, {}, Needs::Service},
        {Command::NewWindow, u"新窗口"_s, u"external"_s, {u"Ctrl+Shift+N"_s}, Needs::Nothing},
        {Command::CloseWindow, u"关闭窗口"_s, u"close"_s, {u"Ctrl+W"_s}, Needs::Nothing},
        {Command::Quit, u"退出"_s, u"logout"_s, {u"Ctrl+Q"_s}, Needs::Nothing},
    };
    return entries;
}

QString AppCommands::keysText(const QStringList &keys) {
    return keys.isEmpty() ? QString() : QKeySequence(keys.first()).toString(QKeySequence::NativeText);
}

AppCommands::AppCommands(QObject *parent)
    : QAbstractListModel(parent) {}

int AppCommands::rowCount(const QModelIndex &parent) const {
    return parent.isValid() ? 0 : int(table().size());
}

QVariant AppCommands::data(const QModelIndex &index, int role) const {
    if (!checkIndex(index, CheckIndexOption::IndexIsValid | CheckIndexOption::ParentIsInvalid))
        return {};
    const Entry &entry = table()[index.row()];
    switch (role) {
    case Qt::DisplayRole:
    case TitleRole:
        return entry.title;
    case CommandRole:
        return int(entry.command);
    case KeysRole:
        return entry.keys;
    case KeysTextRole:
        return keysText(entry.keys);
    case AvailableRole:
        return enabled(entry);
    default:
        return {};
    }
}

QHash<int, QByteArray> AppCommands::roleNames() const {
    return {{CommandRole, "command"},
            {TitleRole, "title"},
            {KeysRole, "keys"},
            {KeysTextRole, "keysText"},
            {AvailableRole, "available"}};
}

void AppCommands::setThere(Needs there) {
    if (there == m_there)
        return;
    m_there = there;
    Q_EMIT thereChanged();
    Q_EMIT dataChanged(index(0), index(rowCount() - 1), {AvailableRole});
}

AppCommands::Needs AppCommands::needsOf(Command command) const {
    return table().at(qsizetype(command)).needs;
}

void AppCommands::run(Command command) {
    if (enabled(table().at(qsizetype(command))))
        Q_EMIT triggered(command);
}

} // namespace lmp
