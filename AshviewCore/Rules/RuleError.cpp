#include "AshviewCore/Rules/RuleError.h"

namespace ashview {

namespace {

std::string describe(RuleError::Kind kind, const std::optional<std::string>& message) {
    if (message) return *message;
    switch (kind) {
        case RuleError::Kind::invalidSettings: return "invalid settings";
        case RuleError::Kind::invalidHost: return "invalid host";
        case RuleError::Kind::duplicateHost: return "duplicate host";
        case RuleError::Kind::invalidApp: return "invalid app";
        case RuleError::Kind::duplicateApp: return "duplicate app";
        case RuleError::Kind::unknownSite: return "unknown site";
    }
    return "rule error";
}

}  // namespace

RuleError::RuleError(Kind kind) : RuleError(kind, std::nullopt) {}

RuleError::RuleError(Kind kind, std::optional<std::string> message)
    : std::runtime_error(describe(kind, message)), kind_(kind), message_(std::move(message)) {}

RuleError RuleError::invalidSettings(std::string message) {
    return RuleError(Kind::invalidSettings, std::move(message));
}

}  // namespace ashview
