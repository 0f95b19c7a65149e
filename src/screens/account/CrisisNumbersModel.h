#pragma once

#include <QAbstractListModel>
#include <QtQml/qqmlregistration.h>

namespace lmp {

/// Numbers that a person in distress can call, of the crisis card or the crisis page.
///
/// Owned by its card's or page's model, UI thread.
class CrisisNumbersModel : public QAbstractListModel {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("made by SafetyModel and CrisisResourcesModel")
    Q_PROPERTY(int count READ count NOTIFY countChanged)
public:
    struct Number {
        QString label;
        QString phone;
        QString note;
        bool operator==(const Number &) const = default;
    };
    enum Role { LabelRole = Qt::UserRole + 1, PhoneRole, NoteRole, DialLinkRole };

    using QAbstractListModel::QAbstractListModel;

    int count() const { return int(m_numbers.size()); }
    int rowCount(const QModelIndex &parent = {}) const override;
    QVariant data(const QModelIndex &index, int role) const override;
    QHash<int, QByteArray> roleNames() const override;

    void setNumbers(QList<Number> numbers);

Q_SIGNALS:
    void countChanged();

private:
    QList<Number> m_numbers;
};

} // namespace lmp
