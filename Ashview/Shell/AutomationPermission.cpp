#include "Ashview/Shell/AutomationPermission.h"

#include "Platform/AppleEvents.h"

namespace ashview::AutomationPermission {

Access access(std::int32_t status) {
    switch (status) {
        case 0:
            return Access::allowed;
        case static_cast<std::int32_t>(AppleEvents::eventNotPermitted):
            return Access::denied;
        case processNotFound:
            return Access::notRunning;
        default:
            return Access::notAsked;
    }
}

}  // namespace ashview::AutomationPermission
