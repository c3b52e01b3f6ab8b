// The per-user data folder on the Mac: the user-domain Application Support.
#include "AshviewCore/Rules/RuleStore.h"

#import <Foundation/Foundation.h>

namespace ashview {

std::filesystem::path RuleStore::userDataFolder() {
    @autoreleasepool {
        NSURL* folder = [NSFileManager.defaultManager URLsForDirectory:NSApplicationSupportDirectory
                                                             inDomains:NSUserDomainMask]
                            .firstObject;
        if (folder != nil) return std::filesystem::path(folder.fileSystemRepresentation);
        return std::filesystem::path(NSHomeDirectory().fileSystemRepresentation) / "Library" / "Application Support";
    }
}

}  // namespace ashview
