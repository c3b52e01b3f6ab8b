// The program's log: one line per event, "HH:mm:ss", one blank, the text,
// a line feed. There are no levels and no log file.
//
// A `Log` stamps each line with the main loop's wall clock in the user's
// current time zone, read at the moment of writing. Code that runs before the
// controller exists writes plain lines, without a time, through `Log::plain`.
// Lines go to standard error in the program; tests hand in a string stream and
// read it back.
#pragma once

#include "AshviewCore/Foundation/Calendar.h"
#include "AshviewCore/Foundation/Instant.h"

#include <iosfwd>
#include <string>
#include <string_view>

namespace ashview {

class MainLoop;

class Log final {
public:
    /// A log that writes to `stream` with the clock of `loop`. Both must
    /// outlive the log; the log owns neither.
    Log(std::ostream& stream, const MainLoop& loop);

    /// Writes one stamped line and flushes it.
    void write(std::string_view text) const;
    void operator()(std::string_view text) const { write(text); }

    /// The line as `write` prints it, without the line feed: "09:41:07 text".
    static std::string line(Instant now, const Calendar& calendar, std::string_view text);
    /// "HH:mm:ss" of `now` in `calendar`'s time zone, 24-hour, zero-padded.
    static std::string clockText(Instant now, const Calendar& calendar);

    /// Writes `text` and a line feed to `stream`, with no time, and flushes.
    static void plain(std::ostream& stream, std::string_view text);
    /// The same, on standard error.
    static void plain(std::string_view text);

private:
    std::ostream* stream_;
    const MainLoop* loop_;
};

}  // namespace ashview
