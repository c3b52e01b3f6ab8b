// The About page's content: what the program is, how it works, why color
// matters, what stays private, and the studies it rests on, with the version
// line, for a view to draw top to bottom. Plain values; the window that shows
// the page reads the bundle's version and passes it in. Any thread.
#pragma once

#include <optional>
#include <string>
#include <vector>

namespace ashview {

class AboutPage final {
public:
    /// A study: its short name (the link's text), one line on what it
    /// found, and its address.
    struct Source final {
        std::string id;
        std::string note;
        std::string url;
        friend bool operator==(const Source&, const Source&) = default;
    };
    /// A sentence or a line, and the studies it cites (shown as links).
    struct Paragraph final {
        std::string text;
        std::vector<Source> cites;
        friend bool operator==(const Paragraph&, const Paragraph&) = default;
    };
    /// A head in a heavier style above its text, then its studies, if any,
    /// each as a link with its note in a caption style.
    struct Section final {
        std::string head;
        std::vector<Paragraph> paragraphs;
        std::vector<Source> sources;
        friend bool operator==(const Section&, const Section&) = default;
    };

    static constexpr const char* windowTitle = "About Drabwise";
    /// The head: the name large and bold, the tagline in a title style, the
    /// version in a caption style.
    static constexpr const char* name = "Drabwise";
    static constexpr const char* tagline = "Bring back your focus.";

    std::string version;
    std::string opening;
    std::vector<Section> sections;

    /// "Development build" without a short version string; else "Version
    /// {short} ({build})", the build being "1" when the bundle has none.
    static std::string versionText(const std::optional<std::string>& shortVersion,
                                   const std::optional<std::string>& build);
    /// The five studies of grayscale phones the page rests on.
    static const std::vector<Source>& sources();
    /// The page for a bundle of this short version string and build.
    static AboutPage make(const std::optional<std::string>& shortVersion, const std::optional<std::string>& build);
};

}  // namespace ashview
