#include "AshviewCore/Tracking/TrackerSnapshotStore.h"

#include "AshviewCore/Foundation/AtomicFile.h"

#include <exception>

namespace ashview {

void TrackerSnapshotStore::save(const TrackerSnapshot& snapshot) const {
    AtomicFile::makeFolder(directory);
    AtomicFile::write(fileURL(), Json::encode(snapshot.toJson()));
}

std::optional<TrackerSnapshot> TrackerSnapshotStore::load() const noexcept {
    try {
        std::optional<std::string> bytes = AtomicFile::read(fileURL());
        if (!bytes) return std::nullopt;
        if (Json::probeSchemaVersion(*bytes) != TrackerSnapshot::currentSchemaVersion) return std::nullopt;
        TrackerSnapshot snapshot = TrackerSnapshot::fromJson(Json::parse(*bytes));
        if (snapshot.schemaVersion != TrackerSnapshot::currentSchemaVersion) return std::nullopt;
        return snapshot;
    } catch (const std::exception&) {
        return std::nullopt;
    }
}

}  // namespace ashview
