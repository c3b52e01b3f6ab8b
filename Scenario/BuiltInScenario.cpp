#include "Scenario/BuiltInScenario.h"

namespace ashview {

const std::string_view builtInScenario = R"(# A short day with Drabwise, on the simulated desktop.
clock 2026-11-23 08:55 Europe/Berlin en_US

# The browser is already open when Drabwise starts.
launch chrome
start
add site news.example
set news.example gray after 20m or 3 opens per hour stay until-leave
add site video.example
set video.example gray right-away stay 10m

# Morning reading: news, then mail, then news again.
open news in chrome at https://news.example/today frame 100 80 1000 700
wait 12m
tab news https://mail.example/inbox
wait 3m
tab news https://news.example/sports
wait 9m

# Twenty-one minutes on news: the window is gray, and the gray follows it.
# The status menu tells where the front window's site stands.
menu
move news by 160 40
resize news 900 640
open notes in chrome at https://notes.example frame 40 60 700 500
focus news

# A video site is gray from the start, for ten minutes.
tab notes https://video.example/watch
wait 11m

# Lunch: the displays sleep, counting pauses, and the counters are saved.
displays sleep
wait 50m
displays wake

# Drabwise is restarted while the browser keeps running: the counters come back.
restart
wait 5s
show

# A break: everything in color for five minutes, from the menu.
choose "Show in color for" "5 minutes"
wait 6m

# Away from the browser for the afternoon, then the week's statistic.
close news
close notes
wait until 17:30
settings stats
)";

}  // namespace ashview
