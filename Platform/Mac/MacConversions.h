// Every conversion between the program's values and Foundation's, in one
// place: texts, optional texts, paths, instants, rectangles and the numbers
// found in dictionaries. Objective-C++ only, under ARC.
#pragma once

#import <CoreGraphics/CoreGraphics.h>
#import <Foundation/Foundation.h>

#include "AshviewCore/Foundation/Instant.h"
#include "AshviewCore/Foundation/Rect.h"

#include <cstdint>
#include <optional>
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

/// Nothing for nil and for an object that is no string.
inline std::optional<std::string> optionalString(id text) {
    if (![text isKindOfClass:NSString.class]) return std::nullopt;
    return string(static_cast<NSString*>(text));
}

/// The file-system path of a file URL; nothing for nil or another kind of URL.
inline std::optional<std::string> path(NSURL* url) {
    if (!url.isFileURL || !url.path) return std::nullopt;
    return string(url.path);
}

inline NSURL* fileURL(std::string_view path) { return [NSURL fileURLWithPath:nsString(path)]; }

inline std::optional<Instant> instant(NSDate* date) {
    if (!date) return std::nullopt;
    return Instant{date.timeIntervalSinceReferenceDate};
}

/// A number of integral value; nothing for anything else.
inline std::optional<std::int64_t> integer(id value) {
    if (![value isKindOfClass:NSNumber.class]) return std::nullopt;
    NSNumber* number = value;
    double real = number.doubleValue;
    if (real != static_cast<double>(number.longLongValue)) return std::nullopt;
    return number.longLongValue;
}

/// The localized description of an error, empty for nil.
inline std::string describe(NSError* error) { return error ? string(error.localizedDescription) : std::string(); }

}  // namespace ashview::mac
