// Any text given to the scenario language is refused with its file and line,
// or played to its end on the simulated desktop without a crash: what the
// parser accepts the player can carry out, and the program under it survives
// whatever a scenario makes the desktop and the user do.
//
// Only scripts that wait an hour at most in all, and say nothing of the time
// of day, are played, so that each run stays short. Every run starts on a
// fresh data folder, in memory where the system offers one, as runs write.
#include "Scenario/ScenarioPlayer.h"
#include "Scenario/ScenarioScript.h"

#include <unistd.h>

#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <sstream>
#include <string>
#include <string_view>
#include <vector>

using namespace ashview;

namespace {

/// A fresh folder for one run, removed with what the run wrote.
class Folder final {
public:
    Folder() {
        std::filesystem::path base = "/dev/shm";
        if (!std::filesystem::is_directory(base)) base = std::filesystem::temp_directory_path();
        std::string pattern = (base / "drabwise-fuzz-XXXXXX").string();
        std::vector<char> name(pattern.begin(), pattern.end());
        name.push_back('\0');
        if (!::mkdtemp(name.data())) std::abort();
        path = name.data();
    }
    ~Folder() {
        std::error_code ignored;
        std::filesystem::remove_all(path, ignored);
    }
    Folder(const Folder&) = delete;
    Folder& operator=(const Folder&) = delete;

    std::filesystem::path path;
};

bool isShort(const ScenarioScript& script) {
    double waited = 0;
    for (const ScenarioCommand& command : script.commands) {
        if (command.kind == ScenarioCommand::Kind::waitUntil) return false;
        if (command.kind == ScenarioCommand::Kind::wait) waited += command.seconds;
    }
    return waited <= 3600 && script.commands.size() <= 200;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    std::string_view text(reinterpret_cast<const char*>(data), size);
    auto parsed = ScenarioScript::parse(text, "fuzz.scenario");
    if (const auto* error = std::get_if<ScenarioError>(&parsed)) {
        if (error->line < 1 || !error->message().starts_with("fuzz.scenario:")) __builtin_trap();
        return 0;
    }
    const ScenarioScript& script = std::get<ScenarioScript>(parsed);
    if (!isShort(script)) return 0;
    Folder folder;
    std::ostringstream out;
    std::ostringstream log;
    int status = ScenarioPlayer({folder.path, "fuzz.scenario", out, log}).play(script);
    if (status != ScenarioPlayer::finished && status != ScenarioPlayer::failedLine) __builtin_trap();
    return 0;
}
