// A 128-bit identity, written in the canonical 8-4-4-4-12 form in upper case.
#pragma once

#include <array>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

namespace ashview {

class Uuid final {
public:
    /// The nil identity, all zero.
    Uuid() = default;

    /// A new random identity.
    static Uuid random();
    /// The identity written in `text`: exactly 36 characters in the canonical
    /// form, hexadecimal digits in either case. Nothing for anything else.
    static std::optional<Uuid> parse(std::string_view text);

    /// The canonical form in upper case, such as
    /// "E621E1F8-C36C-495A-93FC-0C247A3E6E5F".
    std::string text() const;
    const std::array<std::uint8_t, 16>& bytes() const { return bytes_; }

    friend bool operator==(const Uuid&, const Uuid&) = default;
    friend auto operator<=>(const Uuid&, const Uuid&) = default;

private:
    std::array<std::uint8_t, 16> bytes_{};
};

}  // namespace ashview

template <>
struct std::hash<ashview::Uuid> {
    std::size_t operator()(const ashview::Uuid& uuid) const noexcept {
        std::size_t value = 0;
        for (auto byte : uuid.bytes()) value = value * 131 + byte;
        return value;
    }
};
