// The window server's lists, whatever they hold (null lists, entries that are
// no dictionary, missing fields, numbers of any size, frames of any double),
// give windows the rest of a read pass can use: no crash, every window number
// one the window server's private calls take, every share of a window seen
// between 0 and 1, and each process's windows the same read one by one or
// all at once.
//
// The input is read as a small program: one list of entries for the
// on-screen list, one for the list of all windows, then the primary display's
// height and a browser's reported windows, each from the bytes that follow.
#include "Ashview/Reading/BrowserProbe.h"
#include "AshviewCore/Reading/Visibility.h"
#include "AshviewOverlay/Geometry.h"
#include "AshviewOverlay/SkyLight.h"
#include "AshviewOverlay/WindowList.h"
#include "Platform/WindowServer.h"

#include <cstdint>
#include <cstring>
#include <string>
#include <unordered_map>
#include <vector>

using namespace ashview;

namespace {

class Reader {
public:
    Reader(const std::uint8_t* data, std::size_t size) : data_(data), size_(size) {}
    bool empty() const { return at_ >= size_; }
    std::uint8_t byte() { return empty() ? 0 : data_[at_++]; }
    std::int64_t integer() {
        std::uint64_t value = 0;
        for (int i = 0; i < 8; ++i) value = (value << 8) | byte();
        return static_cast<std::int64_t>(value);
    }
    /// Small, negative, near 32 bits, or any 64 bits.
    std::int64_t number() {
        switch (byte() % 4) {
            case 0: return byte();
            case 1: return -static_cast<std::int64_t>(byte());
            case 2: return 0xFFFFFFFFLL - 2 + byte() % 4;
            default: return integer();
        }
    }
    /// A coordinate in points, or any double at all (NaN and infinities too).
    double coordinate() {
        switch (byte() % 4) {
            case 0: return static_cast<std::int8_t>(byte()) * 10.0;
            case 1: return byte() * 8.0;
            case 2: {
                int high = byte();
                return static_cast<std::int16_t>(high << 8 | byte());
            }
            default: {
                std::int64_t bits = integer();
                double value;
                std::memcpy(&value, &bits, sizeof value);
                return value;
            }
        }
    }
    Rect rect() { return Rect{coordinate(), coordinate(), coordinate(), coordinate()}; }

private:
    const std::uint8_t* data_;
    std::size_t size_;
    std::size_t at_ = 0;
};

RawWindowList list(Reader& in) {
    if (in.byte() % 16 == 0) return std::nullopt;
    std::vector<std::optional<WindowInfo>> entries;
    for (std::size_t count = in.byte() % 24; count > 0 && !in.empty(); --count) {
        std::uint8_t present = in.byte();
        if (present == 0xFF) {
            entries.push_back(std::nullopt);  // not a dictionary
            continue;
        }
        WindowInfo info;
        if (present & 1) info.number = in.number();
        if (present & 2) info.ownerPID = in.byte() % 4 == 0 ? in.number() : 500 + in.byte() % 3;
        if (present & 4) info.ownerName = in.byte() % 2 ? "Google Chrome" : "Notes";
        if (present & 8) info.layer = in.byte() % 2 ? 0 : in.number();
        if (present & 16) info.alpha = in.coordinate();
        if (present & 32) info.bounds = in.rect();
        entries.push_back(info);
    }
    return entries;
}

/// A window server that hands out the lists made from the input, with every
/// private entry point there.
class ListServer final : public WindowServer {
public:
    RawWindowList onScreen;
    RawWindowList all;
    std::optional<double> height;

    RawWindowList copyWindowInfo(std::uint32_t options, std::uint32_t) override {
        return options & onScreenOnly ? onScreen : all;
    }
    std::optional<double> primaryScreenHeight() override { return height; }
    const SkyLightEntryPoints& skyLight() override { return entries_; }
    std::int32_t processIdentifier() override { return 400; }

private:
    SkyLightEntryPoints entries_{
        [] { return 7; },
        [](std::int32_t, std::uint32_t window, Rect* bounds) {
            *bounds = Rect{0, 0, static_cast<double>(window % 100), 10};
            return 0;
        },
        [](NotifyProc, std::uint32_t, void*) { return 0; },
        [](std::int32_t, const std::uint32_t*, std::int32_t) { return 0; },
    };
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    Reader in(data, size);
    ListServer server;
    server.onScreen = list(in);
    server.all = list(in);
    if (in.byte() % 8) server.height = in.coordinate();
    WindowList windows(server);
    Geometry geometry(server);
    SkyLight skyLight(server);
    std::vector<std::int64_t> numbers;

    std::vector<StackedWindow> stack = windows.stack();
    std::vector<Visibility::Window> visible;
    for (const StackedWindow& entry : stack) {
        visible.push_back(Visibility::Window{entry.number, entry.bounds, entry.ownerPID, entry.layer, entry.alpha});
        numbers.push_back(entry.number);
        (void)geometry.cocoa(entry.bounds);
    }
    for (const Visibility::Window& window : visible) {
        std::optional<double> share = Visibility::uncoveredFraction(window.number, visible, 400);
        if (!share || !(*share >= 0 && *share <= 1)) __builtin_trap();
    }

    ScreenWindows screen = ScreenWindows::take(server);
    std::vector<ReplyItem> items;
    while (!in.empty() && items.size() < 16) {
        items.push_back(ReplyItem{in.byte(), in.rect(), std::string("https://news.example/")});
    }
    for (const auto& [pid, found] : screen.byProcess) {
        std::vector<ForeignWindow> alone = windows.windows(pid);
        if (alone.size() != found.size()) __builtin_trap();
        for (std::size_t i = 0; i < found.size(); ++i) {
            if (alone[i].number != found[i].number || alone[i].isOnScreen != found[i].isOnScreen) __builtin_trap();
            numbers.push_back(found[i].number);
        }
        const double height = screen.screenHeight;
        for (const ProbedWindow& probed : BrowserProbe::windows("com.google.Chrome", items, found, {}, height)) {
            if (probed.screenWindow) numbers.push_back(probed.screenWindow->number);
        }
    }
    for (const char* owner : {"Google Chrome", "Notes"})
        for (const ForeignWindow& window : windows.windows(std::string(owner))) numbers.push_back(window.number);

    if (windows.positions(numbers).size() != numbers.size()) __builtin_trap();
    // Ends the process on a number the private calls cannot take.
    (void)skyLight.requestEvents(numbers);
    for (std::int64_t number : numbers) (void)skyLight.bounds(number);
    return 0;
}
