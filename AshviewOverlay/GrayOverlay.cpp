#include "AshviewOverlay/GrayOverlay.h"

#include "AshviewCore/Foundation/Uuid.h"

namespace ashview {

void GrayOverlay::lookUp() {
    if (looked_) return;
    looked_ = true;
    backdropClass_ = system_->hasBackdropClass();
    hasSaturateFilter_ = saturateZero() != nullptr;  // made only to see that it can be
}

std::shared_ptr<OverlayFilter> GrayOverlay::saturateZero() {
    std::shared_ptr<OverlayFilter> filter = system_->makeSaturateFilter();
    if (filter) filter->setValue(KeyValue{0.0}, "inputAmount");
    return filter;
}

bool GrayOverlay::isAvailable() {
    lookUp();
    return backdropClass_ && hasSaturateFilter_;
}

std::shared_ptr<OverlayWindow> GrayOverlay::make(Rect frame) {
    lookUp();
    std::shared_ptr<OverlayWindow> window = system_->makeWindow(frame, styleMask, backing, false);
    window->setReleasedWhenClosed(false);
    window->setOpaque(false);
    window->setBackgroundColor(1.0, backgroundAlpha);
    window->setHasShadow(false);
    window->setIgnoresMouseEvents(true);
    window->setAnimationBehavior(animationBehavior);
    window->setCollectionBehavior(collectionBehavior);

    std::shared_ptr<OverlayView> view = system_->makeView(Rect{0, 0, frame.width, frame.height});
    view->setWantsLayer(true);
    view->setLayerUsesCoreImageFilters(false);

    if (backdropClass_ && hasSaturateFilter_) {
        if (std::shared_ptr<OverlayLayer> backdrop = system_->makeBackdropLayer()) {
            backdrop->setFrame(view->bounds());
            backdrop->setAutoresizingMask(autoresizingMask);
            backdrop->setValue(KeyValue{true}, "windowServerAware");
            backdrop->setValue(KeyValue{"ashview-" + Uuid::random().text()}, "groupName");
            backdrop->setValue(KeyValue{1.0}, "scale");
            if (std::shared_ptr<OverlayFilter> filter = saturateZero())
                backdrop->setFilters(std::vector<std::shared_ptr<OverlayFilter>>{filter});
            else
                backdrop->setFilters(std::nullopt);
            if (std::shared_ptr<OverlayLayer> host = view->layer()) host->addSublayer(backdrop);
        }
    }

    window->setContentView(view);
    rearm(*window);
    return window;
}

void GrayOverlay::rearm(OverlayWindow& window) {
    lookUp();
    if (!backdropClass_ || !hasSaturateFilter_) return;
    window.setValue(KeyValue{false}, "shouldAutoFlattenLayerTree");
    window.setValue(KeyValue{false}, "canHostLayersInWindowServer");
    window.setValue(KeyValue{true}, "canHostLayersInWindowServer");
}

}  // namespace ashview
