#pragma once

#include "conversation/UsedMemory.h"

#include <QAbstractListModel>
#include <QtQmlIntegration>

namespace lmp {

/// The memories that one reply drew on, as its sheet lists them.
///
/// Owned by the chat's model; UI thread. Nothing fails.
class UsedMemoryModel : public QAbstractListModel {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("part of a ChatModel")
    /// The line over the list.
    Q_PROPERTY(QString note READ note NOTIFY noteChanged)
public:
    enum Role {
        ContentRole = Qt::UserRole + 1, ///< content: QString
        TruthRole,                      ///< truth: QString, as the service says it
        TruthTextRole,                  ///< truthText: QString, in Chinese where it is known
    };

    using QAbstractListModel::QAbstractListModel;

    int rowCount(const QModelIndex &parent = {}) const override;
    QVariant data(const QModelIndex &index, int role) const override;
    QHash<int, QByteArray> roleNames() const override;

    QString note() const;
    void show(const QList<UsedMemory> &memories);

Q_SIGNALS:
    void noteChanged();

private:
    QList<UsedMemory> m_memories;
};

} // namespace lmp
