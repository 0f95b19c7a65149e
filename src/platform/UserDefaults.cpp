#include "platform/UserDefaults.h"

#include "platform/FileSettings.h"

namespace lmp {

using namespace Qt::StringLiterals;

std::unique_ptr<Settings> makeUserDefaults(const ApplicationSupport &support) {
    const QString folder = support.folder({}).value_or(support.root());
    return std::make_unique<FileSettings>(folder + u"/settings.v1"_s);
}

} // namespace lmp
