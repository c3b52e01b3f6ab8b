#import <AppKit/AppKit.h>
#import <CoreGraphics/CoreGraphics.h>

#include "Platform/Mac/MacAdapters.h"
#include "Platform/Mac/MacConversions.h"

#include <cmath>
#include <dlfcn.h>

namespace ashview {
namespace {

// A number read as an integer: absent for anything but a number of integral
// value within 64 bits.
std::optional<std::int64_t> integer(CFTypeRef value) {
    if (!value || CFGetTypeID(value) != CFNumberGetTypeID()) return std::nullopt;
    auto number = static_cast<CFNumberRef>(value);
    if (CFNumberIsFloatType(number)) {
        double real = 0;
        CFNumberGetValue(number, kCFNumberDoubleType, &real);
        if (!std::isfinite(real) || real != std::floor(real) || std::fabs(real) > 9.2e18) return std::nullopt;
        return static_cast<std::int64_t>(real);
    }
    std::int64_t whole = 0;
    if (!CFNumberGetValue(number, kCFNumberSInt64Type, &whole)) return std::nullopt;
    return whole;
}

std::optional<double> real(CFTypeRef value) {
    if (!value || CFGetTypeID(value) != CFNumberGetTypeID()) return std::nullopt;
    double result = 0;
    CFNumberGetValue(static_cast<CFNumberRef>(value), kCFNumberDoubleType, &result);
    return result;
}

std::optional<std::string> text(CFTypeRef value) {
    if (!value || CFGetTypeID(value) != CFStringGetTypeID()) return std::nullopt;
    return mac::string((__bridge NSString*)value);
}

std::optional<Rect> bounds(CFTypeRef value) {
    if (!value || CFGetTypeID(value) != CFDictionaryGetTypeID()) return std::nullopt;
    CGRect rect;
    if (!CGRectMakeWithDictionaryRepresentation(static_cast<CFDictionaryRef>(value), &rect)) return std::nullopt;
    return mac::rect(rect);
}

class MacWindowServer final : public WindowServer {
public:
    RawWindowList copyWindowInfo(std::uint32_t options, std::uint32_t relativeToWindow) override {
        CFArrayRef list = CGWindowListCopyWindowInfo(options, relativeToWindow);
        if (!list) return std::nullopt;
        RawWindowList result;
        if (CFGetTypeID(list) == CFArrayGetTypeID()) {
            std::vector<std::optional<WindowInfo>> entries;
            for (CFIndex index = 0; index < CFArrayGetCount(list); ++index) {
                CFTypeRef element = CFArrayGetValueAtIndex(list, index);
                if (!element || CFGetTypeID(element) != CFDictionaryGetTypeID()) {
                    entries.push_back(std::nullopt);
                    continue;
                }
                auto entry = static_cast<CFDictionaryRef>(element);
                entries.push_back(WindowInfo{
                    integer(CFDictionaryGetValue(entry, kCGWindowNumber)),
                    integer(CFDictionaryGetValue(entry, kCGWindowOwnerPID)),
                    text(CFDictionaryGetValue(entry, kCGWindowOwnerName)),
                    integer(CFDictionaryGetValue(entry, kCGWindowLayer)),
                    real(CFDictionaryGetValue(entry, kCGWindowAlpha)),
                    bounds(CFDictionaryGetValue(entry, kCGWindowBounds)),
                });
            }
            result = std::move(entries);
        }
        CFRelease(list);
        return result;
    }

    std::optional<double> primaryScreenHeight() override {
        NSScreen* primary = NSScreen.screens.firstObject;
        if (!primary) return std::nullopt;
        return primary.frame.size.height;
    }

    const SkyLightEntryPoints& skyLight() override {
        if (looked_) return entry_;
        looked_ = true;
        void* library = dlopen("/System/Library/PrivateFrameworks/SkyLight.framework/SkyLight", 1);
        if (!library) return entry_;
        using Connection = std::int32_t (*)();
        using GetBounds = std::int32_t (*)(std::int32_t, std::uint32_t, CGRect*);
        using Register = std::int32_t (*)(NotifyProc, std::uint32_t, void*);
        using Request = std::int32_t (*)(std::int32_t, const std::uint32_t*, std::int32_t);
        if (auto call = reinterpret_cast<Connection>(dlsym(library, "SLSMainConnectionID")))
            entry_.mainConnectionID = [call] { return call(); };
        if (auto call = reinterpret_cast<GetBounds>(dlsym(library, "SLSGetWindowBounds")))
            entry_.getWindowBounds = [call](std::int32_t connection, std::uint32_t window, Rect* out) {
                CGRect rect = CGRectZero;
                std::int32_t status = call(connection, window, &rect);
                *out = mac::rect(rect);
                return status;
            };
        if (auto call = reinterpret_cast<Register>(dlsym(library, "SLSRegisterNotifyProc")))
            entry_.registerNotifyProc = [call](NotifyProc proc, std::uint32_t event, void* context) {
                return call(proc, event, context);
            };
        if (auto call = reinterpret_cast<Request>(dlsym(library, "SLSRequestNotificationsForWindows")))
            entry_.requestNotificationsForWindows = [call](std::int32_t connection, const std::uint32_t* windows,
                                                           std::int32_t count) {
                return call(connection, windows, count);
            };
        return entry_;
    }

    std::int32_t processIdentifier() override { return NSProcessInfo.processInfo.processIdentifier; }

private:
    bool looked_ = false;
    SkyLightEntryPoints entry_;
};

}  // namespace

std::unique_ptr<WindowServer> makeMacWindowServer() { return std::make_unique<MacWindowServer>(); }

}  // namespace ashview
