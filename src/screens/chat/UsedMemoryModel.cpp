#include "screens/chat/UsedMemoryModel.h"

#include "conversation/ConversationTexts.h"
#include "core/PlainLabel.h"

namespace lmp {

using namespace Qt::StringLiterals;

namespace {

/// All of them are laid out at once; nobody reads more.
constexpr qsizetype mostShown = 100;

} // namespace

int UsedMemoryModel::rowCount(const QModelIndex &parent) const {
    return parent.isValid() ? 0 : int(std::min(m_memories.size(), mostShown));
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
    const QString note = ConversationTexts::usedMemoriesNote(m_memories.size());
    return m_memories.size() > mostShown ? note + u"下面只显示前 %1 条。"_s.arg(mostShown) : note;
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
