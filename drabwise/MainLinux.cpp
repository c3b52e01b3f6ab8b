// The Linux entry of `drabwise`: the real application over the simulated
// desktop, driven by a scenario. (The Mac program takes no arguments; this
// file is its Linux counterpart and is built only there.)
#include "drabwise/Gui.h"
#include "Scenario/BuiltInScenario.h"
#include "Scenario/ScenarioPlayer.h"
#include "Scenario/ScenarioScript.h"

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <sstream>
#include <string>
#include <vector>

namespace {

constexpr int badUsage = 2;

const char* const usage =
    "usage: drabwise [--data-dir DIR] [SCENARIO-FILE]\n"
    "       drabwise --gui [--speed N] [--data-dir DIR] [SCENARIO-FILE]\n"
    "\n"
    "Runs Drabwise on a simulated desktop, driven by a scenario (see\n"
    "docs/scenarios.md). Without a file it plays a built-in short day.\n"
    "\n"
    "  --gui           show the desktop, the status item and the windows in a\n"
    "                  window and play the scenario in real time; you can\n"
    "                  click, drag and retype windows and use the menu\n"
    "  --speed N       with --gui, N virtual seconds for each real one (1)\n"
    "  --data-dir DIR  keep the rules, counters and history in DIR (kept\n"
    "                  afterwards); else $DRABWISE_DATA_DIR; else a fresh\n"
    "                  temporary folder, removed at the end\n"
    "  -h, --help      show this help\n"
    "\n"
    "Standard error carries the program's log (\"HH:mm:ss text\", virtual\n"
    "time); standard output what a person would see at each step.\n"
    "Exit status: 0 done, 1 a line could not be carried out, 2 bad arguments\n"
    "or a bad scenario (nothing played), 3 another copy uses the data folder.\n";

/// A temporary data folder, removed with its contents at the end.
class TemporaryFolder {
public:
    TemporaryFolder() {
        std::string pattern = (std::filesystem::temp_directory_path() / "drabwise-XXXXXX").string();
        std::vector<char> name(pattern.begin(), pattern.end());
        name.push_back('\0');
        if (::mkdtemp(name.data())) path_ = name.data();
    }
    ~TemporaryFolder() {
        std::error_code ignored;
        if (!path_.empty()) std::filesystem::remove_all(path_, ignored);
    }
    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;
    const std::filesystem::path& path() const { return path_; }

private:
    std::filesystem::path path_;
};

}  // namespace

int main(int argc, char** argv) {
    std::optional<std::string> dataDir;
    std::optional<std::string> file;
    bool gui = false;
    std::optional<double> speed;
    for (int i = 1; i < argc; ++i) {
        std::string argument = argv[i];
        if (argument == "-h" || argument == "--help") {
            std::cout << usage;
            return 0;
        }
        if (argument == "--gui") {
            gui = true;
            continue;
        }
        if (argument == "--speed") {
            char* end = nullptr;
            speed = i + 1 < argc ? std::strtod(argv[++i], &end) : 0;
            if (!end || *end != '\0' || !(*speed > 0)) {
                std::cerr << "drabwise: --speed needs a number above 0\n" << usage;
                return badUsage;
            }
            continue;
        }
        if (argument == "--data-dir" || argument.starts_with("--data-dir=")) {
            if (argument == "--data-dir") {
                if (i + 1 >= argc) {
                    std::cerr << "drabwise: --data-dir needs a folder\n" << usage;
                    return badUsage;
                }
                dataDir = argv[++i];
            } else {
                dataDir = argument.substr(std::string("--data-dir=").size());
            }
            if (dataDir->empty()) {
                std::cerr << "drabwise: --data-dir needs a folder\n" << usage;
                return badUsage;
            }
        } else if (argument.starts_with("-") && argument != "-") {
            std::cerr << "drabwise: unknown option " << argument << "\n" << usage;
            return badUsage;
        } else if (file) {
            std::cerr << "drabwise: one scenario file at most\n" << usage;
            return badUsage;
        } else {
            file = argument;
        }
    }

    std::string text;
    std::string name = "built-in scenario";
    if (file) {
        name = *file;
        std::ostringstream content;
        if (*file == "-") {
            name = "standard input";
            content << std::cin.rdbuf();
        } else {
            // A folder opens like a file here and reads as nothing at all.
            std::error_code ignored;
            if (std::filesystem::is_directory(*file, ignored)) {
                std::cerr << "drabwise: cannot read " << *file << ": it is a folder\n";
                return badUsage;
            }
            std::ifstream in(*file, std::ios::binary);
            if (!in) {
                std::cerr << "drabwise: cannot read " << *file << "\n";
                return badUsage;
            }
            content << in.rdbuf();
        }
        text = content.str();
    } else {
        text = std::string(ashview::builtInScenario);
    }

    if (speed && !gui) {
        std::cerr << "drabwise: --speed goes with --gui\n" << usage;
        return badUsage;
    }
    auto parsed = ashview::ScenarioScript::parse(text, name);
    if (auto* error = std::get_if<ashview::ScenarioError>(&parsed)) {
        std::cerr << error->message() << "\n";
        return badUsage;
    }

    if (!dataDir) {
        const char* fromEnvironment = std::getenv("DRABWISE_DATA_DIR");
        if (fromEnvironment && *fromEnvironment) dataDir = fromEnvironment;
    }
    std::optional<TemporaryFolder> temporary;
    if (!dataDir) {
        temporary.emplace();
        if (temporary->path().empty()) {
            std::cerr << "drabwise: cannot make a temporary data folder\n";
            return 1;
        }
        dataDir = temporary->path().string();
    }

    if (gui) {
        return ashview::runGui(argc, argv, std::get<ashview::ScenarioScript>(parsed),
                               {std::filesystem::absolute(*dataDir), name, speed.value_or(1.0)});
    }
    int status = 0;
    {
        ashview::ScenarioPlayer player({std::filesystem::absolute(*dataDir), name, std::cout, std::cerr});
        status = player.play(std::get<ashview::ScenarioScript>(parsed));
    }
    std::cout << std::flush;
    return status;
}
