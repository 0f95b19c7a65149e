#pragma once

#include <QCoroTask>

#include <QString>

namespace lmp {

class ExternalOpener;

/// Hands a number from the service to the telephone, and says so where it cannot.
///
/// Free of state; UI thread. A number comes from elsewhere: with anything in it but digits, plus, minus and blanks it
/// is not dialled, since what is left of it might be another number.
class Dialler {
public:
    static bool mayDial(const QString &phone);
    /// @return empty when the telephone took it, else a sentence for the person, with the number to be dialled by hand
    static QCoro::Task<QString> dial(ExternalOpener &opener, QString phone);
};

} // namespace lmp
