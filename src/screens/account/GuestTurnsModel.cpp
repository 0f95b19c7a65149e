#include "screens/account/GuestTurnsModel.h"

namespace lmp {

int GuestTurnsModel::rowCount(const QModelIndex &parent) const {
    return parent.isValid() ? 0 : int(m_turns.size());
}

QVariant GuestTurnsModel::data(const QModelIndex &index, int role) const {
    if (!checkIndex(index, CheckIndexOption::IndexIsValid))
        return {};
    const GuestTrial::Turn &turn = m_turns[index.row()];
    switch (role) {
    case MessageRole:
        return turn.message;
    case Qt::DisplayRole:
    case ReplyRole:
        return turn.reply;
    case StardustRole:
        return turn.stardust.value_or(QString());
    default:
        return {};
    }
}

QHash<int, QByteArray> GuestTurnsModel::roleNames() const {
    return {{MessageRole, "message"}, {ReplyRole, "reply"}, {StardustRole, "stardust"}};
}

void GuestTurnsModel::setTurns(const QList<GuestTrial::Turn> &turns) {
    if (turns.size() < m_turns.size()) {
        beginResetModel();
        m_turns = turns;
        endResetModel();
    } else if (turns.size() > m_turns.size()) {
        beginInsertRows({}, int(m_turns.size()), int(turns.size()) - 1);
        m_turns = turns;
        endInsertRows();
    }
}

} // namespace lmp
