#import <AppKit/AppKit.h>

#include "Platform/Mac/MacAdapters.h"
#include "Platform/Mac/MacConversions.h"
#include "Platform/Mac/MacObservation.h"

namespace ashview {
namespace {

RunningApplication running(NSRunningApplication* app) {
    RunningApplication result;
    result.processIdentifier = app.processIdentifier;
    result.bundleIdentifier = mac::optionalString(app.bundleIdentifier);
    result.launchDate = mac::instant(app.launchDate);
    result.isTerminated = app.isTerminated;
    result.activationPolicy = static_cast<std::int64_t>(app.activationPolicy);
    result.bundlePath = mac::path(app.bundleURL);
    result.localizedName = mac::string(app.localizedName);
    return result;
}

std::vector<RunningApplication> list(NSArray<NSRunningApplication*>* apps) {
    std::vector<RunningApplication> result;
    for (NSRunningApplication* app in apps) result.push_back(running(app));
    return result;
}

NSNotificationName notificationName(ApplicationEvent event) {
    switch (event) {
        case ApplicationEvent::didLaunch:
            return NSWorkspaceDidLaunchApplicationNotification;
        case ApplicationEvent::didTerminate:
            return NSWorkspaceDidTerminateApplicationNotification;
        case ApplicationEvent::didActivate:
            return NSWorkspaceDidActivateApplicationNotification;
        case ApplicationEvent::didHide:
            return NSWorkspaceDidHideApplicationNotification;
        case ApplicationEvent::didUnhide:
            return NSWorkspaceDidUnhideApplicationNotification;
    }
    return NSWorkspaceDidLaunchApplicationNotification;
}

class MacIcon final : public AppIcon {
public:
    explicit MacIcon(NSImage* image) : image(image) {}
    NSImage* image;
};

class MacWorkspace final : public Workspace {
public:
    std::vector<RunningApplication> runningApplications() override {
        return list(NSWorkspace.sharedWorkspace.runningApplications);
    }
    std::vector<RunningApplication> runningApplications(const std::string& bundleIdentifier) override {
        return list([NSRunningApplication runningApplicationsWithBundleIdentifier:mac::nsString(bundleIdentifier)]);
    }
    std::optional<RunningApplication> frontmostApplication() override {
        NSRunningApplication* front = NSWorkspace.sharedWorkspace.frontmostApplication;
        if (!front) return std::nullopt;
        return running(front);
    }

    std::unique_ptr<NotificationObservation> observe(
        ApplicationEvent event, std::function<void(const std::optional<RunningApplication>&)> handler) override {
        return std::make_unique<mac::Observation>(
            NSWorkspace.sharedWorkspace.notificationCenter, notificationName(event),
            [handler = std::move(handler)](NSNotification* notification) {
                id app = [notification.userInfo objectForKey:NSWorkspaceApplicationKey];
                if ([app isKindOfClass:NSRunningApplication.class])
                    handler(running(app));
                else
                    handler(std::nullopt);
            });
    }

    std::optional<std::string> urlForApplication(const std::string& bundleIdentifier) override {
        return mac::path([NSWorkspace.sharedWorkspace URLForApplicationWithBundleIdentifier:mac::nsString(bundleIdentifier)]);
    }
    std::shared_ptr<const AppIcon> iconForFile(const std::string& path) override {
        NSImage* image = [NSWorkspace.sharedWorkspace iconForFile:mac::nsString(path)];
        if (!image) return nullptr;
        return std::make_shared<MacIcon>(image);
    }
    bool openURL(const std::string& url) override {
        NSURL* address = [NSURL URLWithString:mac::nsString(url)];
        return address && [NSWorkspace.sharedWorkspace openURL:address];
    }
    std::string displayName(const std::string& path) override {
        return mac::string([NSFileManager.defaultManager displayNameAtPath:mac::nsString(path)]);
    }
    std::optional<std::string> bundleIdentifier(const std::string& path) override {
        return mac::optionalString([NSBundle bundleWithURL:mac::fileURL(path)].bundleIdentifier);
    }
    std::optional<std::string> mainBundleIdentifier() override {
        return mac::optionalString(NSBundle.mainBundle.bundleIdentifier);
    }
    std::int32_t ownProcessIdentifier() override { return NSProcessInfo.processInfo.processIdentifier; }
};

}  // namespace

std::unique_ptr<Workspace> makeMacWorkspace() { return std::make_unique<MacWorkspace>(); }

std::vector<unsigned char> macIconPNG(const AppIcon& icon, int pixels) {
    auto* macIcon = dynamic_cast<const MacIcon*>(&icon);
    if (!macIcon || pixels <= 0) return {};
    NSRect frame = NSMakeRect(0, 0, pixels, pixels);
    CGImageRef image = [macIcon->image CGImageForProposedRect:&frame context:nil hints:nil];
    if (!image) return {};
    NSBitmapImageRep* bitmap = [[NSBitmapImageRep alloc] initWithCGImage:image];
    NSData* png = [bitmap representationUsingType:NSBitmapImageFileTypePNG properties:@{}];
    if (!png) return {};
    auto* bytes = static_cast<const unsigned char*>(png.bytes);
    return std::vector<unsigned char>(bytes, bytes + png.length);
}

}  // namespace ashview
