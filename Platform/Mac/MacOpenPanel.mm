#import <AppKit/AppKit.h>
#import <UniformTypeIdentifiers/UniformTypeIdentifiers.h>

#include "Platform/Mac/MacAdapters.h"
#include "Platform/Mac/MacConversions.h"

namespace ashview {
namespace {

class MacOpenPanel final : public OpenPanel {
public:
    OpenPanelResult runModal(const OpenPanelSettings& settings) override {
        NSOpenPanel* panel = [NSOpenPanel openPanel];
        if (!settings.directory.empty()) panel.directoryURL = mac::fileURL(settings.directory);
        if (settings.applicationsOnly) panel.allowedContentTypes = @[ UTTypeApplication ];
        panel.canChooseFiles = YES;
        panel.canChooseDirectories = settings.canChooseDirectories;
        panel.allowsMultipleSelection = settings.allowsMultipleSelection;
        if (!settings.prompt.empty()) panel.prompt = mac::nsString(settings.prompt);
        if (!settings.message.empty()) panel.message = mac::nsString(settings.message);
        OpenPanelResult result;
        result.response = static_cast<long>([panel runModal]);
        result.path = mac::path(panel.URL);
        return result;
    }
};

}  // namespace

std::unique_ptr<OpenPanel> makeMacOpenPanel() { return std::make_unique<MacOpenPanel>(); }

}  // namespace ashview
