#include "screens/shell/SharedModels.h"

#include "app/Application.h"

namespace lmp {

SharedModels::SharedModels(Application &opened)
    : application(opened)
    , root(opened.auth(), *opened.settings())
    , session(opened)
    , safety(opened.safety(), opened.opener())
    , telemetry(opened.telemetry())
    , updates(opened.site().downloads, opened.opener())
    , memoryInputs(opened.support(), opened.account(), opened.clock(), opened.scope()) {}

} // namespace lmp
