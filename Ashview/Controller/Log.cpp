#include "Ashview/Controller/Log.h"

#include "Platform/MainLoop.h"

#include <cstdio>
#include <iostream>

namespace ashview {

Log::Log(std::ostream& stream, const MainLoop& loop) : stream_(&stream), loop_(&loop) {}

std::string Log::clockText(Instant now, const Calendar& calendar) {
    DateComponents parts = calendar.components(now);
    char text[16];
    std::snprintf(text, sizeof text, "%02ld:%02ld:%02ld", parts.hour, parts.minute, parts.second);
    return text;
}

std::string Log::line(Instant now, const Calendar& calendar, std::string_view text) {
    std::string result = clockText(now, calendar);
    result += ' ';
    result += text;
    return result;
}

void Log::write(std::string_view text) const {
    *stream_ << line(loop_->now(), loop_->calendar(), text) << '\n' << std::flush;
}

void Log::plain(std::ostream& stream, std::string_view text) { stream << text << '\n' << std::flush; }

void Log::plain(std::string_view text) { plain(std::cerr, text); }

}  // namespace ashview
