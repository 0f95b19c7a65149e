#pragma once

#include <QAbstractListModel>
#include <QtQml/qqmlregistration.h>

namespace lmp {

/// Everything that a key, a menu or the quick switcher can be asked to do in a window: one table for all of them.
///
/// One for each window, owned by its scene, UI thread. A command that makes no sense where the window is does nothing,
/// and is not offered.
class AppCommands : public QAbstractListModel {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("made with its window")
    Q_PROPERTY(Needs there READ there NOTIFY thereChanged)
public:
    /// What a command needs to be there, each with all before it: nothing, the service's stores, the shell.
    enum class Needs { Nothing, Service, Shell };
    Q_ENUM(Needs)
    /// In the order of the table.
    enum class Command {
        NewConversation,
        NewIncognito,
        Find,
        FindEverywhere,
        FindList,
        Switcher,
        TabNow,
        TabSocial,
        TabMarket,
        TabStudio,
        TabMe,
        Settings,
        Larger,
        Smaller,
        ResetScale,
        PreviousConversation,
        NextConversation,
        NextPane,
        PreviousPane,
        ToggleSidebar,
        Crisis,
        CheckUpdates,
        NewWindow,
        CloseWindow,
        Quit
    };
    Q_ENUM(Command)
    enum Role {
        CommandRole = Qt::UserRole + 1, ///< command: int
        TitleRole,                      ///< title: QString
        KeysRole,                       ///< keys: QStringList, as a Shortcut takes them
        KeysTextRole,                   ///< keysText: QString, as the platform writes them
        AvailableRole,                  ///< available: bool
    };
    struct Entry {
        Command command;
        QString title;
        QString iconName; ///< empty: not worth an entry of the switcher
        QStringList keys;
        Needs needs = Needs::Shell;
    };

    explicit AppCommands(QObject *parent = nullptr);

    static const QList<Entry> &table();
    static QString keysText(const QStringList &keys);

    int rowCount(const QModelIndex &parent = {}) const override;
    QVariant data(const QModelIndex &index, int role) const override;
    QHash<int, QByteArray> roleNames() const override;

    Needs there() const { return m_there; }
    void setThere(Needs there);
    bool enabled(const Entry &entry) const { return entry.needs <= m_there; }

    Q_INVOKABLE lmp::AppCommands::Needs needsOf(lmp::AppCommands::Command command) const;
    Q_INVOKABLE void run(lmp::AppCommands::Command command);

Q_SIGNALS:
    void thereChanged();
    /// To be done by whoever can: the scene, the window's QML or the program.
    void triggered(lmp::AppCommands::Command command);

private:
    Needs m_there = Needs::Nothing;
};

} // namespace lmp
