#include "AshviewCore/Foundation/Uuid.h"

#include <uuid/uuid.h>

namespace ashview {

Uuid Uuid::random() {
    Uuid made;
    uuid_generate_random(made.bytes_.data());
    return made;
}

std::optional<Uuid> Uuid::parse(std::string_view text) {
    if (text.size() != 36) return std::nullopt;
    std::string terminated(text);
    Uuid parsed;
    if (uuid_parse(terminated.c_str(), parsed.bytes_.data()) != 0) return std::nullopt;
    return parsed;
}

std::string Uuid::text() const {
    char buffer[37];
    uuid_unparse_upper(bytes_.data(), buffer);
    return std::string(buffer, 36);
}

}  // namespace ashview
