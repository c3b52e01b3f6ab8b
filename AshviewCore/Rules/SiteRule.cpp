#include "AshviewCore/Rules/SiteRule.h"

#include "AshviewCore/Rules/AppKey.h"

namespace ashview {

bool SiteRule::isApp() const { return AppKey::isApp(host); }

std::optional<std::string> SiteRule::bundleID() const { return AppKey::bundleID(host); }

}  // namespace ashview
