#import <CoreServices/CoreServices.h>
#import <Foundation/Foundation.h>

#include "Platform/Mac/MacAdapters.h"
#include "Platform/Mac/MacConversions.h"

#include <cstring>

namespace ashview {
namespace {

class MacScript final : public CompiledScript {
public:
    explicit MacScript(NSAppleScript* script) : script(script) {}
    NSAppleScript* script;
};

std::int64_t wideInteger(NSAppleEventDescriptor* descriptor) {
    NSData* data = [descriptor coerceToDescriptorType:typeSInt64].data;
    std::int64_t value = 0;
    if (data.length == sizeof value) std::memcpy(&value, data.bytes, sizeof value);
    return value;
}

// The reply tree as the descriptor holds it. Text, numbers and Booleans keep
// their own kind; `missing value` and every other kind of descriptor read as
// missing. An item the list cannot give reads as missing too.
ScriptValue value(NSAppleEventDescriptor* descriptor) {
    if (!descriptor) return ScriptValue::missingValue();
    switch (descriptor.descriptorType) {
        case typeAEList: {
            std::vector<ScriptValue> items;
            for (NSInteger index = 1; index <= descriptor.numberOfItems; ++index)
                items.push_back(value([descriptor descriptorAtIndex:index]));
            return ScriptValue::list(std::move(items));
        }
        case typeUnicodeText:
        case typeUTF8Text:
            return ScriptValue::string(mac::string(descriptor.stringValue));
        case typeSInt16:
        case typeSInt32:
            return ScriptValue::number(descriptor.int32Value);
        case typeSInt64:
        case typeUInt32:
            return ScriptValue::number(wideInteger(descriptor));
        case typeIEEE32BitFloatingPoint:
        case typeIEEE64BitFloatingPoint:
            return ScriptValue::decimal(descriptor.doubleValue);
        case typeBoolean:
        case typeTrue:
        case typeFalse:
            return ScriptValue::truth(descriptor.booleanValue);
        default:
            return ScriptValue::missingValue();
    }
}

class MacAppleEvents final : public AppleEvents {
public:
    std::shared_ptr<CompiledScript> makeScript(const std::string& source) override {
        NSAppleScript* script = [[NSAppleScript alloc] initWithSource:mac::nsString(source)];
        if (!script) return nullptr;
        return std::make_shared<MacScript>(script);
    }

    void compile(CompiledScript& script) override {
        [static_cast<MacScript&>(script).script compileAndReturnError:nullptr];
    }

    // Blocks the main thread until the script returns; its `with timeout`
    // bounds how long a silent browser can hold it.
    ScriptOutcome execute(CompiledScript& script) override {
        NSDictionary<NSString*, id>* error = nil;
        NSAppleEventDescriptor* reply = [static_cast<MacScript&>(script).script executeAndReturnError:&error];
        if (error || !reply) return ScriptError{mac::integer([error objectForKey:NSAppleScriptErrorNumber])};
        return value(reply);
    }

    // Safe off the main thread: the setup's prompt runs on a background queue.
    std::int32_t determinePermissionToAutomate(const std::string& bundleIdentifier, std::uint32_t eventClass,
                                               std::uint32_t eventID, bool askUserIfNeeded) override {
        NSAppleEventDescriptor* target =
            [NSAppleEventDescriptor descriptorWithBundleIdentifier:mac::nsString(bundleIdentifier)];
        if (!target) return procNotFound;
        return AEDeterminePermissionToAutomateTarget(target.aeDesc, eventClass, eventID, askUserIfNeeded);
    }
};

}  // namespace

std::unique_ptr<AppleEvents> makeMacAppleEvents() { return std::make_unique<MacAppleEvents>(); }

}  // namespace ashview
