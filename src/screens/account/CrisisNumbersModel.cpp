#include "screens/account/CrisisNumbersModel.h"

#include "identity/CrisisTexts.h"

namespace lmp {

int CrisisNumbersModel::rowCount(const QModelIndex &parent) const {
    return parent.isValid() ? 0 : count();
}

QVariant CrisisNumbersModel::data(const QModelIndex &index, int role) const {
    if (!checkIndex(index, CheckIndexOption::IndexIsValid))
        return {};
    const Number &number = m_numbers[index.row()];
    switch (role) {
    case Qt::DisplayRole:
    case LabelRole:
        return number.label;
    case PhoneRole:
        return number.phone;
    case NoteRole:
        return number.note;
    case DialLinkRole:
        return CrisisTexts::dialLink(number.phone);
    default:
        return {};
    }
}

QHash<int, QByteArray> CrisisNumbersModel::roleNames() const {
    return {{LabelRole, "label"}, {PhoneRole, "phone"}, {NoteRole, "note"}, {DialLinkRole, "dialLink"}};
}

void CrisisNumbersModel::setNumbers(QList<Number> numbers) {
    if (numbers == m_numbers)
        return;
    beginResetModel();
    m_numbers = std::move(numbers);
    endResetModel();
    Q_EMIT countChanged();
}

} // namespace lmp
