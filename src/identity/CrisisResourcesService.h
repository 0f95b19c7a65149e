#pragma once

#include "core/APIClient.h"

namespace lmp {

/// The verified emergency numbers of a region.
///
/// A value, any thread with an event loop. It sends no session token and records nothing: whoever looks this up leaves
/// no trace of it. Fails with APIError.
class CrisisResourcesService {
public:
    struct Item {
        QString name;
        QString phone; ///< as it came: what is to be read of it may be another number
        std::optional<QString> note;
        bool operator==(const Item &) const = default;
    };
    struct Resp {
        QString region;
        QList<Item> items;
        QString guidance;
        bool verified = false;
        std::optional<bool> assumedRegion;
        bool operator==(const Resp &) const = default;

        /// Whether there are numbers fit to be given.
        bool hasVerifiedNumbers() const { return verified && !items.isEmpty(); }
    };

    /// @param api where to ask; its token is left behind
    explicit CrisisResourcesService(APIClient api);

    /// @param region its code, see CrisisRegion
    QCoro::Task<Result<Resp>> load(const QString &region) const;

private:
    static QCoro::Task<Result<Resp>> decoded(QCoro::Task<Result<APIClient::Data>> pending);

    APIClient m_api;
};
BOOST_DESCRIBE_STRUCT(CrisisResourcesService::Item, (), (name, phone, note))
BOOST_DESCRIBE_STRUCT(CrisisResourcesService::Resp, (), (region, items, guidance, verified, assumedRegion))

} // namespace lmp
