#include "AshviewCore/Usage/LocalDays.h"

#include <cstdio>

namespace ashview {

namespace {

Calendar gregorian(const Calendar& calendar) {
    if (calendar.identifier() == "gregorian") return calendar;
    return calendar.withIdentifier("gregorian");
}

}  // namespace

LocalDays::LocalDays(const Calendar& given) : calendar(gregorian(given)) {}

std::string LocalDays::key(Instant date) const {
    DateComponents parts = calendar.components(date);
    char text[64];
    std::snprintf(text, sizeof text, "%04ld-%02ld-%02ld", parts.year, parts.month, parts.day);
    return text;
}

std::vector<LocalDays::Piece> LocalDays::split(Instant from, Instant to) const {
    std::vector<Piece> pieces;
    Instant cursor = from;
    while (cursor < to) {
        DateInterval day = calendar.dayInterval(cursor);
        // A day that does not reach past the cursor means the calendar could
        // not place it (an instant out of its range): stop with what we have.
        if (!(cursor < day.end)) break;
        Instant end = day.end < to ? day.end : to;
        pieces.push_back(Piece{key(cursor), end - cursor});
        cursor = end;
    }
    return pieces;
}

Instant LocalDays::start(long ofDay, Instant from) const {
    Instant dayStart = calendar.startOfDay(from);
    Instant moved = calendar.addingDays(dayStart, ofDay);
    // The calendar hands back its input when it cannot add; a real move of
    // one day or more never lands on the same instant.
    if (ofDay != 0 && moved == dayStart) moved = from + static_cast<double>(ofDay) * 86400.0;
    return calendar.startOfDay(moved);
}

}  // namespace ashview
