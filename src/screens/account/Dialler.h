#pragma once

#include <QCoroTask>

#include <QObject>

namespace lmp {

class ExternalOpener;

/// Hands numbers from the service to the telephone, and says so where it cannot.
///
/// Part of a model that shows numbers; the opener outlives it. UI thread. A number comes from elsewhere: with anything
/// in it but digits, plus, minus and blanks it is not dialled, since what is left of it might be another number.
class Dialler : public QObject {
    Q_OBJECT
public:
    explicit Dialler(ExternalOpener &opener)
        : m_opener(opener) {}

    static bool mayDial(const QString &phone);
    /// @param number as it came
    void dial(const QString &number);
    /// What is to be said of the last call, with the number to be dialled by hand; empty when the telephone took it.
    const QString &message() const { return m_message; }
    /// Nothing is said any more of the calls so far, nor announced.
    void forget();

Q_SIGNALS:
    void messageChanged();

private:
    QCoro::Task<> dialNow(QString number);
    QCoro::Task<QString> call(QString number);

    ExternalOpener &m_opener;
    QString m_message;
    quint64 m_calls = 0; ///< calls, and ends of what was said of them
};

} // namespace lmp
