// The JSON conventions shared by every document the program writes (rules,
// counter snapshot, usage history).
//
// Written documents are UTF-8, pretty-printed, with the keys of every object in
// sorted order, so the same value always gives the same bytes. Optional fields
// that hold nothing are left out. A case without payload is its name as a
// string; a case with payload is an object whose "kind" names the case.
//
// Reading is strict: a required key that is missing, a value of the wrong JSON
// type or an unknown case name throws `Json::DecodingError` naming where, and a
// document that fails anywhere fails whole. Unknown keys are ignored, and a
// null reads as an absent optional value.
#pragma once

#include "AshviewCore/Foundation/Uuid.h"

#include <nlohmann/json.hpp>

#include <array>
#include <cstdint>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>

namespace ashview::Json {

/// A JSON value. Objects keep their keys sorted, at every level.
using Value = nlohmann::json;

struct DecodingError : std::runtime_error {
    using std::runtime_error::runtime_error;
};

/// The bytes of `document`: two-blank indentation, sorted keys, a final line
/// feed. Throws `DecodingError` if a string in it is not valid UTF-8.
std::string encode(const Value& document);
/// The value in `bytes`. Throws `DecodingError` for anything but one whole
/// JSON value in valid UTF-8.
Value parse(std::string_view bytes);
/// The integer `schemaVersion` of the object in `bytes`, decoding nothing
/// else; nothing when the bytes are no JSON object or the key is missing or
/// not an integer.
std::optional<std::int64_t> probeSchemaVersion(std::string_view bytes);

/// Strict readers of single values; `where` names the place in errors.
std::int64_t integer(const Value& value, std::string_view where);
/// A finite number; anything else throws.
double number(const Value& value, std::string_view where);
bool boolean(const Value& value, std::string_view where);
std::string string(const Value& value, std::string_view where);
Uuid uuid(const Value& value, std::string_view where);
const Value& array(const Value& value, std::string_view where);

/// A strict view of one JSON object. The viewed value must outlive the view.
class Object final {
public:
    /// Throws `DecodingError` when `value` is no object.
    Object(const Value& value, std::string where);

    bool has(std::string_view key) const;
    /// The value under `key`; throws when it is missing or null.
    const Value& required(std::string_view key) const;
    /// The value under `key`, or null when it is missing or null.
    const Value* optional(std::string_view key) const;

    std::int64_t integer(std::string_view key) const;
    std::optional<std::int64_t> optionalInteger(std::string_view key) const;
    double number(std::string_view key) const;
    std::optional<double> optionalNumber(std::string_view key) const;
    bool boolean(std::string_view key) const;
    std::string string(std::string_view key) const;
    std::optional<std::string> optionalString(std::string_view key) const;
    Uuid uuid(std::string_view key) const;
    const Value& array(std::string_view key) const;
    Object object(std::string_view key) const;
    std::optional<Object> optionalObject(std::string_view key) const;

    /// Where a member lies, for error messages: "rules.sites[2].host".
    std::string path(std::string_view key) const;
    const std::string& where() const { return where_; }

private:
    const Value* value_;
    std::string where_;
};

/// The names of the cases of a small enumeration, as they stand in documents.
template <class Enum, std::size_t N>
struct CaseNames final {
    std::array<std::pair<Enum, std::string_view>, N> entries;

    std::string_view name(Enum value) const {
        for (const auto& [item, text] : entries) {
            if (item == value) return text;
        }
        throw std::logic_error("enumeration case without a name");
    }
    std::optional<Enum> find(std::string_view text) const {
        for (const auto& [item, itemText] : entries) {
            if (itemText == text) return item;
        }
        return std::nullopt;
    }
    /// The case named by the string `value`; throws `DecodingError` for a
    /// value that is no string or names no case.
    Enum read(const Value& value, std::string_view where) const {
        std::string text = Json::string(value, where);
        if (auto found = find(text)) return *found;
        throw DecodingError(std::string(where) + ": unknown case \"" + text + "\"");
    }
};

template <class Enum, class... Pairs>
constexpr auto caseNames(Pairs... pairs) {
    return CaseNames<Enum, sizeof...(Pairs)>{{std::pair<Enum, std::string_view>(pairs)...}};
}

}  // namespace ashview::Json
