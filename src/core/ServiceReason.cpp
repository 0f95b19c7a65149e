#include "core/ServiceReason.h"

#include "core/APIErrorBody.h"
#include "core/Json.h"

namespace lmp {

QString serviceReason(const APIError &error, const QString &otherwise) {
    const auto said = Json::decode<APIErrorBody>(error.body.value_or(QByteArray())).value_or(APIErrorBody{});
    const bool given = said.reason ? !said.reason->isEmpty() : said.error && !said.error->isEmpty();
    return given && !error.reason.isEmpty() ? error.reason : otherwise;
}

} // namespace lmp
