#include "AshviewCore/Tracking/WindowKey.h"

namespace ashview {

Json::Value toJson(const WindowKey& key) { return {{"browser", key.browser}, {"window", key.window}}; }

WindowKey windowKeyFromJson(const Json::Value& value, std::string_view where) {
    Json::Object object(value, std::string(where));
    return WindowKey{object.string("browser"), object.integer("window")};
}

}  // namespace ashview
