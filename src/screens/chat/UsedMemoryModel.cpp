#include "screens/chat/UsedMemoryModel.h"

#include "conversation/ConversationTexts.h"
#include "core/PlainLabel.h"

namespace lmp {

using namespace Qt::StringLiterals;

int UsedMemoryModel::rowCount(const QModelIndex &parent) const {
    return parent.isValid() ? 0 : int(m_memories.size());
}

QVariant UsedMemoryModel::data(const QModelIndex &index, int role) const {
    if (!checkIndex(index, CheckIndexOption::IndexIsValid | CheckIndexOption::ParentIsInvalid))
        return {};
    const UsedMemory &memory = m_memories.at(index.row());
    switch (role) {
    case Qt::DisplayRole:
    case ContentRole:
        return PlainLabel::content(memory.content);
    case TruthRole:
        return memory.truth;
    case TruthTextRole:
        return truthText(memory.truth);
    default:
        return {};
    }
}

QHash<int, QByteArray> UsedMemoryModel::roleNames() const {
    return {{ContentRole, "content"}, {TruthRole, "truth"}, {TruthTextRole, "truthText"}};
}

QString UsedMemoryModel::note() const {
    return ConversationTexts::usedMemoriesNote(m_memories.size());
}

void UsedMemoryModel::show(const QList<UsedMemory> &memories) {
    if (memories == m_memories)
        return;
    beginResetModel();
    m_memories = memories;
    endResetModel();
    Q_EMIT noteChanged();
}

QString UsedMemoryModel::truthText(const QString &truth) {
    static const QHash<QString, QString> known{
        {u"fact"_s, u"事实"_s}, {u"pref"_s, u"偏好"_s}, {u"inf"_s, u"推断"_s}, {u"canon"_s, u"设定"_s}};
    return known.value(truth, PlainLabel::line(truth));
}

} // namespace lmp
