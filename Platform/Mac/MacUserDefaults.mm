#import <Foundation/Foundation.h>

#include "Platform/Mac/MacAdapters.h"
#include "Platform/Mac/MacConversions.h"

namespace ashview {
namespace {

// The standard user defaults. A flag reads true only when a number that is
// true was stored; a text only when a string was.
class MacUserDefaults final : public UserDefaults {
public:
    bool boolValue(std::string_view key) const override {
        id value = [NSUserDefaults.standardUserDefaults objectForKey:mac::nsString(key)];
        return [value isKindOfClass:NSNumber.class] && [value boolValue];
    }
    void setBool(std::string_view key, bool value) override {
        [NSUserDefaults.standardUserDefaults setBool:value forKey:mac::nsString(key)];
    }
    std::optional<std::string> stringValue(std::string_view key) const override {
        return mac::optionalString([NSUserDefaults.standardUserDefaults objectForKey:mac::nsString(key)]);
    }
    void setString(std::string_view key, const std::string& value) override {
        [NSUserDefaults.standardUserDefaults setObject:mac::nsString(value) forKey:mac::nsString(key)];
    }
    void remove(std::string_view key) override {
        [NSUserDefaults.standardUserDefaults removeObjectForKey:mac::nsString(key)];
    }
};

}  // namespace

std::unique_ptr<UserDefaults> makeMacUserDefaults() { return std::make_unique<MacUserDefaults>(); }

}  // namespace ashview
