// Every conversion between the program's values and Foundation's, in one
// place. Objective-C++ only.
#pragma once

#import <CoreGraphics/CoreGraphics.h>
#import <Foundation/Foundation.h>

#include "AshviewCore/Foundation/Rect.h"

#include <string>
#include <string_view>

namespace ashview::mac {

inline CGRect cgRect(Rect rect) { return CGRectMake(rect.x, rect.y, rect.width, rect.height); }
inline Rect rect(CGRect rect) { return Rect{rect.origin.x, rect.origin.y, rect.size.width, rect.size.height}; }

inline NSString* nsString(std::string_view text) {
    return [[NSString alloc] initWithBytes:text.data() length:text.size() encoding:NSUTF8StringEncoding];
}

inline std::string string(NSString* text) {
    const char* bytes = text.UTF8String;
    return bytes ? std::string(bytes) : std::string();
}

}  // namespace ashview::mac
