#import <AppKit/AppKit.h>
#import <QuartzCore/QuartzCore.h>
#import <objc/runtime.h>

#include "Platform/Mac/MacAdapters.h"
#include "Platform/Mac/MacConversions.h"

#include <dlfcn.h>

namespace ashview {
namespace {

id objectValue(const KeyValue& value) {
    if (const bool* flag = std::get_if<bool>(&value)) return @(*flag);
    if (const double* number = std::get_if<double>(&value)) return @(*number);
    return mac::nsString(std::get<std::string>(value));
}

class MacFilter final : public OverlayFilter {
public:
    explicit MacFilter(id filter) : filter(filter) {}
    void setValue(const KeyValue& value, std::string_view key) override {
        [filter setValue:objectValue(value) forKey:mac::nsString(key)];
    }
    id filter;
};

class MacLayer final : public OverlayLayer {
public:
    explicit MacLayer(CALayer* layer) : layer(layer) {}
    void setFrame(Rect frame) override { layer.frame = mac::cgRect(frame); }
    void setAutoresizingMask(std::uint32_t mask) override { layer.autoresizingMask = mask; }
    void setValue(const KeyValue& value, std::string_view key) override {
        [layer setValue:objectValue(value) forKey:mac::nsString(key)];
    }
    void setFilters(std::optional<std::vector<std::shared_ptr<OverlayFilter>>> filters) override {
        if (!filters) {
            layer.filters = nil;
            return;
        }
        NSMutableArray* array = [NSMutableArray array];
        for (const auto& filter : *filters)
            if (auto* mac = dynamic_cast<MacFilter*>(filter.get())) [array addObject:mac->filter];
        layer.filters = array;
    }
    void addSublayer(std::shared_ptr<OverlayLayer> sublayer) override {
        if (auto* mac = dynamic_cast<MacLayer*>(sublayer.get())) [layer addSublayer:mac->layer];
    }
    CALayer* layer;
};

class MacView final : public OverlayView {
public:
    explicit MacView(NSView* view) : view(view) {}
    void setWantsLayer(bool wants) override { view.wantsLayer = wants; }
    void setLayerUsesCoreImageFilters(bool uses) override { view.layerUsesCoreImageFilters = uses; }
    Rect bounds() const override { return mac::rect(NSRectToCGRect(view.bounds)); }
    std::shared_ptr<OverlayLayer> layer() override {
        if (!view.layer) return nullptr;
        return std::make_shared<MacLayer>(view.layer);
    }
    NSView* view;
};

class MacWindow final : public OverlayWindow {
public:
    explicit MacWindow(NSWindow* window) : window_(window) {}
    void setReleasedWhenClosed(bool released) override { window_.releasedWhenClosed = released; }
    void setOpaque(bool opaque) override { window_.opaque = opaque; }
    void setBackgroundColor(double white, double alpha) override {
        window_.backgroundColor = [NSColor colorWithWhite:white alpha:alpha];
    }
    void setHasShadow(bool hasShadow) override { window_.hasShadow = hasShadow; }
    void setIgnoresMouseEvents(bool ignores) override { window_.ignoresMouseEvents = ignores; }
    void setAnimationBehavior(std::int64_t behavior) override {
        window_.animationBehavior = static_cast<NSWindowAnimationBehavior>(behavior);
    }
    void setCollectionBehavior(std::uint64_t behavior) override {
        window_.collectionBehavior = static_cast<NSWindowCollectionBehavior>(behavior);
    }
    void setContentView(std::shared_ptr<OverlayView> view) override {
        if (auto* mac = dynamic_cast<MacView*>(view.get())) window_.contentView = mac->view;
    }
    void setValue(const KeyValue& value, std::string_view key) override {
        [window_ setValue:objectValue(value) forKey:mac::nsString(key)];
    }
    void orderOut() override { [window_ orderOut:nil]; }
    void orderWindow(WindowOrderingMode mode, std::int64_t relativeTo) override {
        [window_ orderWindow:(mode == WindowOrderingMode::above ? NSWindowAbove : NSWindowBelow)
                  relativeTo:static_cast<NSInteger>(relativeTo)];
    }
    void setFrame(Rect frame, bool display) override {
        [window_ setFrame:NSRectFromCGRect(mac::cgRect(frame)) display:display];
    }
    Rect frame() const override { return mac::rect(NSRectToCGRect(window_.frame)); }
    std::int64_t windowNumber() const override { return window_.windowNumber; }

private:
    NSWindow* window_;
};

class MacOverlayWindows final : public OverlayWindowSystem {
public:
    bool hasBackdropClass() override {
        Class backdrop = NSClassFromString(@"CABackdropLayer");
        return backdrop != nil && [backdrop isSubclassOfClass:CALayer.class];
    }

    std::shared_ptr<OverlayFilter> makeSaturateFilter() override {
        SEL filterWithType = NSSelectorFromString(@"filterWithType:");
        void* runtime = dlopen("/usr/lib/libobjc.A.dylib", 1);
        void* send = runtime ? dlsym(runtime, "objc_msgSend") : nullptr;
        if (!send) return nullptr;
        Class factory = NSClassFromString(@"CAFilter");
        if (!factory || !class_getClassMethod(factory, filterWithType)) return nullptr;
        id filter = reinterpret_cast<id (*)(Class, SEL, NSString*)>(send)(factory, filterWithType, @"colorSaturate");
        if (!filter) return nullptr;
        return std::make_shared<MacFilter>(filter);
    }

    std::shared_ptr<OverlayLayer> makeBackdropLayer() override {
        Class backdrop = NSClassFromString(@"CABackdropLayer");
        if (!backdrop) return nullptr;
        CALayer* layer = [[backdrop alloc] init];
        if (!layer) return nullptr;
        return std::make_shared<MacLayer>(layer);
    }

    std::shared_ptr<OverlayWindow> makeWindow(Rect contentRect, std::uint64_t styleMask, std::int64_t backing,
                                              bool defer) override {
        NSWindow* window = [[NSWindow alloc] initWithContentRect:NSRectFromCGRect(mac::cgRect(contentRect))
                                                       styleMask:static_cast<NSWindowStyleMask>(styleMask)
                                                         backing:static_cast<NSBackingStoreType>(backing)
                                                           defer:defer];
        return std::make_shared<MacWindow>(window);
    }

    std::shared_ptr<OverlayView> makeView(Rect frame) override {
        return std::make_shared<MacView>([[NSView alloc] initWithFrame:NSRectFromCGRect(mac::cgRect(frame))]);
    }
};

}  // namespace

std::unique_ptr<OverlayWindowSystem> makeMacOverlayWindows() { return std::make_unique<MacOverlayWindows>(); }

}  // namespace ashview
