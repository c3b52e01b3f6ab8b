#include "AshviewCore/Foundation/Json.h"

#include <cmath>
#include <limits>

namespace ashview::Json {

namespace {

[[noreturn]] void fail(std::string_view where, std::string_view what) {
    throw DecodingError(std::string(where) + ": " + std::string(what));
}

}  // namespace

std::string encode(const Value& document) {
    try {
        return document.dump(2) + "\n";
    } catch (const nlohmann::json::exception& error) {
        throw DecodingError(error.what());
    }
}

Value parse(std::string_view bytes) {
    try {
        return Value::parse(bytes.begin(), bytes.end());
    } catch (const nlohmann::json::exception& error) {
        throw DecodingError(error.what());
    }
}

std::optional<std::int64_t> probeSchemaVersion(std::string_view bytes) {
    try {
        Value document = parse(bytes);
        return Object(document, "document").integer("schemaVersion");
    } catch (const DecodingError&) {
        return std::nullopt;
    }
}

std::int64_t integer(const Value& value, std::string_view where) {
    if (value.is_number_integer() && !value.is_number_unsigned()) return value.get<std::int64_t>();
    if (value.is_number_unsigned()) {
        auto unsignedValue = value.get<std::uint64_t>();
        if (unsignedValue <= static_cast<std::uint64_t>(std::numeric_limits<std::int64_t>::max())) {
            return static_cast<std::int64_t>(unsignedValue);
        }
        fail(where, "integer out of range");
    }
    if (value.is_number_float()) {
        // A float with no fraction that fits is the same integer.
        double number = value.get<double>();
        if (std::isfinite(number) && std::trunc(number) == number && number >= -9.2e18 && number <= 9.2e18) {
            return static_cast<std::int64_t>(number);
        }
    }
    fail(where, "expected an integer");
}

double number(const Value& value, std::string_view where) {
    if (!value.is_number()) fail(where, "expected a number");
    // A number too large for a double reads as infinite; no document the
    // program writes holds one, and it could not be written back.
    double read = value.get<double>();
    if (!std::isfinite(read)) fail(where, "not a finite number");
    return read;
}

bool boolean(const Value& value, std::string_view where) {
    if (!value.is_boolean()) fail(where, "expected true or false");
    return value.get<bool>();
}

std::string string(const Value& value, std::string_view where) {
    if (!value.is_string()) fail(where, "expected a string");
    return value.get<std::string>();
}

Uuid uuid(const Value& value, std::string_view where) {
    auto parsed = Uuid::parse(string(value, where));
    if (!parsed) fail(where, "expected a UUID");
    return *parsed;
}

const Value& array(const Value& value, std::string_view where) {
    if (!value.is_array()) fail(where, "expected an array");
    return value;
}

Object::Object(const Value& value, std::string where) : value_(&value), where_(std::move(where)) {
    if (!value.is_object()) fail(where_, "expected an object");
}

bool Object::has(std::string_view key) const { return optional(key) != nullptr; }

const Value* Object::optional(std::string_view key) const {
    auto found = value_->find(key);
    if (found == value_->end() || found->is_null()) return nullptr;
    return &*found;
}

const Value& Object::required(std::string_view key) const {
    const Value* found = optional(key);
    if (!found) fail(path(key), "missing");
    return *found;
}

std::string Object::path(std::string_view key) const { return where_ + "." + std::string(key); }

std::int64_t Object::integer(std::string_view key) const { return Json::integer(required(key), path(key)); }

std::optional<std::int64_t> Object::optionalInteger(std::string_view key) const {
    const Value* found = optional(key);
    if (!found) return std::nullopt;
    return Json::integer(*found, path(key));
}

double Object::number(std::string_view key) const { return Json::number(required(key), path(key)); }

std::optional<double> Object::optionalNumber(std::string_view key) const {
    const Value* found = optional(key);
    if (!found) return std::nullopt;
    return Json::number(*found, path(key));
}

bool Object::boolean(std::string_view key) const { return Json::boolean(required(key), path(key)); }

std::string Object::string(std::string_view key) const { return Json::string(required(key), path(key)); }

std::optional<std::string> Object::optionalString(std::string_view key) const {
    const Value* found = optional(key);
    if (!found) return std::nullopt;
    return Json::string(*found, path(key));
}

Uuid Object::uuid(std::string_view key) const { return Json::uuid(required(key), path(key)); }

const Value& Object::array(std::string_view key) const { return Json::array(required(key), path(key)); }

Object Object::object(std::string_view key) const { return Object(required(key), path(key)); }

std::optional<Object> Object::optionalObject(std::string_view key) const {
    const Value* found = optional(key);
    if (!found) return std::nullopt;
    return Object(*found, path(key));
}

}  // namespace ashview::Json
