// The error of every rule operation and of rule validation.
//
// `invalidSettings` carries the words the user is shown, as they stand. The
// other cases carry none: the settings window supplies their words, and the
// logic never shows `what()` of those to the user.
#pragma once

#include <optional>
#include <stdexcept>
#include <string>

namespace ashview {

class RuleError final : public std::runtime_error {
public:
    enum class Kind { invalidSettings, invalidHost, duplicateHost, invalidApp, duplicateApp, unknownSite };

    /// One of the cases without words. Use `invalidSettings` for that case.
    explicit RuleError(Kind kind);
    static RuleError invalidSettings(std::string message);

    Kind kind() const { return kind_; }
    /// The user's words of `invalidSettings`; nothing for the other cases.
    const std::optional<std::string>& message() const { return message_; }

    friend bool operator==(const RuleError& a, const RuleError& b) {
        return a.kind_ == b.kind_ && a.message_ == b.message_;
    }

private:
    RuleError(Kind kind, std::optional<std::string> message);
    Kind kind_;
    std::optional<std::string> message_;
};

}  // namespace ashview
