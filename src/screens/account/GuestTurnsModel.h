#pragma once

#include "core/GuestTrial.h"

#include <QAbstractListModel>
#include <QtQml/qqmlregistration.h>

namespace lmp {

/// The rounds of a guest trial, oldest first.
///
/// Owned by GuestModel, UI thread. Rounds are only ever added, or all dropped.
class GuestTurnsModel : public QAbstractListModel {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("made by GuestModel")
public:
    enum Role { MessageRole = Qt::UserRole + 1, ReplyRole, StardustRole };

    using QAbstractListModel::QAbstractListModel;

    int rowCount(const QModelIndex &parent = {}) const override;
    QVariant data(const QModelIndex &index, int role) const override;
    QHash<int, QByteArray> roleNames() const override;

    /// Takes over the rounds: what is new is added, and fewer than before begin anew.
    void setTurns(const QList<GuestTrial::Turn> &turns);

private:
    QList<GuestTrial::Turn> m_turns;
};

} // namespace lmp
