// Decoding a browser's reply must be total: any reply tree, any window list
// and any earlier pairing give a list of windows, never a crash or a throw.
//
// The input is read as a small program that builds the reply tree: one byte
// picks a value kind, the following bytes give its payload. What is left
// after the tree describes the browser's screen windows.
#include "Ashview/Reading/BrowserProbe.h"

#include <cstdint>
#include <cstring>
#include <string>
#include <unordered_map>
#include <vector>

namespace {

using ashview::ScriptValue;

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
    double real() {
        std::int64_t bits = integer();
        double value;
        std::memcpy(&value, &bits, sizeof value);
        return value;
    }
    std::string text() {
        std::size_t length = byte();
        std::string value;
        while (length-- > 0 && !empty()) value.push_back(static_cast<char>(byte()));
        return value;
    }

private:
    const std::uint8_t* data_;
    std::size_t size_;
    std::size_t at_ = 0;
};

ScriptValue value(Reader& in, int depth) {
    switch (in.byte() % 8) {
    case 0:
        return ScriptValue::missingValue();
    case 1:
        return ScriptValue::string(in.text());
    case 2:
        return ScriptValue::number(in.integer());
    case 3:
        return ScriptValue::number(static_cast<std::int8_t>(in.byte()) * 100);
    case 4:
        return ScriptValue::decimal(in.real());
    case 5:
        return ScriptValue::truth(in.byte() & 1);
    case 6:
        return ScriptValue::string("https://" + in.text() + ".example/");
    default: {
        if (depth >= 6) return ScriptValue::list({});
        std::size_t count = in.byte() % 12;
        std::vector<ScriptValue> items;
        for (std::size_t i = 0; i < count && !in.empty(); ++i) items.push_back(value(in, depth + 1));
        return ScriptValue::list(std::move(items));
    }
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    Reader in(data, size);
    ScriptValue reply = value(in, 0);
    std::vector<ashview::ReplyItem> items = ashview::BrowserProbe::items(reply);

    std::vector<ashview::ForeignWindow> screen;
    std::unordered_map<ashview::WindowKey, std::int64_t> previous;
    while (!in.empty() && screen.size() < 64) {
        ashview::ForeignWindow window{in.byte(),
                                      ashview::Rect{static_cast<double>(static_cast<std::int8_t>(in.byte())),
                                                    static_cast<double>(in.byte()), static_cast<double>(in.byte()),
                                                    static_cast<double>(in.byte())},
                                      (in.byte() & 1) != 0};
        screen.push_back(window);
        if (in.byte() & 1) previous[ashview::WindowKey{"com.google.Chrome", in.byte()}] = in.byte();
    }
    std::vector<ashview::ProbedWindow> windows =
        ashview::BrowserProbe::windows("com.google.Chrome", items, screen, previous, 900);
    if (windows.size() != items.size()) __builtin_trap();
    return 0;
}
