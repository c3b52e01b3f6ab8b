#include "Scenario/RealTimePlayback.h"

#include "Ashview/Controller/Log.h"
#include "Platform/Sim/SimDesktop.h"

#include <algorithm>
#include <ostream>

namespace ashview {

void RealTimePlayback::advance(double seconds) {
    while (status_ == ScenarioPlayer::finished && !isAtEnd()) {
        const ScenarioCommand& command = script_.commands[next_];
        if (!waiting_) {
            std::optional<double> wait = player_.waitSeconds(command);
            if (!wait) {
                status_ = player_.step(command);
                ++next_;
                continue;
            }
            if (SimDesktop* desktop = player_.desktop())
                out_ << Log::clockText(desktop->clock().now(), desktop->clock().calendar());
            out_ << " > " << command.text << "\n" << std::flush;
            waiting_ = *wait;
        }
        const double slice = std::min(*waiting_, seconds);
        player_.pass(slice);
        seconds -= slice;
        *waiting_ -= slice;
        if (*waiting_ > 0) return;
        waiting_.reset();
        ++next_;
    }
    if (status_ == ScenarioPlayer::finished && seconds > 0) player_.pass(seconds);
}

}  // namespace ashview
