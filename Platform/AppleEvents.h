// Scripting other applications: compiling and running an AppleScript text,
// and asking, without prompting, whether this program may send events to an
// application at all.
//
// Raw: a run answers the reply tree the script returned or the error number
// the scripting system reported; what the reply means is decided above.
// Main thread only. A run blocks until the script ends; the script's own
// `with timeout` is what bounds a silent target.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <variant>
#include <vector>

namespace ashview {

/// One value of a script's reply: a list, a text, an integer, a real, a
/// Boolean or `missing value`.
struct ScriptValue final {
    enum class Kind { list, text, integer, real, boolean, missing };

    Kind kind = Kind::missing;
    std::vector<ScriptValue> items;  // list
    std::string text;  // text
    std::int64_t integer = 0;  // integer
    double real = 0;  // real
    bool boolean = false;  // boolean

    static ScriptValue list(std::vector<ScriptValue> items) { return {Kind::list, std::move(items), {}, 0, 0, false}; }
    static ScriptValue string(std::string text) { return {Kind::text, {}, std::move(text), 0, 0, false}; }
    static ScriptValue number(std::int64_t value) { return {Kind::integer, {}, {}, value, 0, false}; }
    static ScriptValue decimal(double value) { return {Kind::real, {}, {}, 0, value, false}; }
    static ScriptValue truth(bool value) { return {Kind::boolean, {}, {}, 0, 0, value}; }
    static ScriptValue missingValue() { return {}; }

    /// How many items a list holds; 0 for anything else.
    std::size_t numberOfItems() const { return kind == Kind::list ? items.size() : 0; }
    /// The item at `index`, counting from 1; nothing outside 1...count.
    const ScriptValue* descriptorAtIndex(std::size_t index) const {
        if (kind != Kind::list || index == 0 || index > items.size()) return nullptr;
        return &items[index - 1];
    }
    /// The value as a signed 32-bit integer: an integer in range, or a real
    /// whose integral part is in range; 0 for anything else.
    std::int32_t int32Value() const;
    /// The text of a text value; nothing for anything else.
    std::optional<std::string> stringValue() const;

    friend bool operator==(const ScriptValue&, const ScriptValue&) = default;
};

/// A run that failed: the error dictionary's number, absent when it held
/// none or held one that is no integer.
struct ScriptError final {
    std::optional<std::int64_t> number;

    friend bool operator==(const ScriptError&, const ScriptError&) = default;
};

using ScriptOutcome = std::variant<ScriptValue, ScriptError>;

/// A script object made from a text; opaque to the program.
class CompiledScript {
public:
    virtual ~CompiledScript() = default;
};

class AppleEvents {
public:
    /// The error numbers the program tells apart.
    static constexpr std::int64_t eventNotPermitted = -1743;  // errAEEventNotPermitted
    static constexpr std::int64_t eventTimedOut = -1712;  // errAETimeout
    /// '****': any event class, any event id.
    static constexpr std::uint32_t anyEvent = 0x2A2A2A2A;

    AppleEvents() = default;
    AppleEvents(const AppleEvents&) = delete;
    AppleEvents& operator=(const AppleEvents&) = delete;
    virtual ~AppleEvents() = default;

    /// A script object of `source`, or null when the system gives none.
    virtual std::shared_ptr<CompiledScript> makeScript(const std::string& source) = 0;
    /// Compiles ahead of the first run; a failure shows at the run.
    virtual void compile(CompiledScript& script) = 0;
    /// Runs the script to its end, synchronously.
    virtual ScriptOutcome execute(CompiledScript& script) = 0;

    /// The status of AEDeterminePermissionToAutomateTarget for the
    /// application `bundleIdentifier`: 0 when events may be sent. Never shows
    /// the user a prompt when `askUserIfNeeded` is false.
    virtual std::int32_t determinePermissionToAutomate(const std::string& bundleIdentifier, std::uint32_t eventClass,
                                                       std::uint32_t eventID, bool askUserIfNeeded) = 0;
};

}  // namespace ashview
