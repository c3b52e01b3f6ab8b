// Reading a web-app bundle must be total: any Info.plist and manifest bytes,
// in any link arrangement, give a host or none, never a crash or a throw.
//
// The input's first byte picks the layout; the rest is split at the first
// 0x00 0x00 pair into the Info.plist and the manifest.
#include "Ashview/Reading/WebAppHosts.h"
#include "AshviewCore/Reading/WebAppStart.h"

#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <string_view>

namespace {

namespace fs = std::filesystem;

const fs::path& workFolder() {
    static const fs::path folder = [] {
        std::string pattern = (fs::temp_directory_path() / "drabwise-fuzz-XXXXXX").string();
        return fs::path(::mkdtemp(pattern.data()));
    }();
    return folder;
}

void write(const fs::path& path, std::string_view bytes) {
    std::ofstream(path, std::ios::binary | std::ios::trunc) << bytes;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size == 0) return 0;
    std::uint8_t layout = data[0];
    std::string_view rest(reinterpret_cast<const char*>(data + 1), size - 1);
    std::size_t cut = rest.find(std::string_view("\0\0", 2));
    std::string_view plist = rest.substr(0, cut);
    std::string_view manifest = cut == std::string_view::npos ? std::string_view() : rest.substr(cut + 2);

    // Every in-memory reading is total on its own.
    if (auto dictionary = ashview::WebAppHosts::propertyList(plist)) (void)ashview::WebAppStart::host(*dictionary);
    (void)ashview::WebAppStart::host(manifest);

    const fs::path bundle = workFolder() / "Fuzz.app";
    std::error_code ignored;
    fs::remove_all(bundle, ignored);
    fs::create_directories(bundle / "Contents/Resources");
    if (layout & 1) write(bundle / "Contents/Info.plist", plist);
    if (layout & 2) write(bundle / "Contents/Resources/manifest.json", manifest);
    if (layout & 4) write(bundle / "Contents/Resources/app.webmanifest", plist);
    if (layout & 8) fs::create_symlink("/etc/hostname", bundle / "Contents/Resources/z.webmanifest", ignored);
    if (layout & 16) fs::create_symlink("Info.plist", bundle / "Contents/Resources/x.webmanifest", ignored);
    if (layout & 32) fs::create_symlink("..", bundle / "Contents/Resources/loop", ignored);
    (void)ashview::WebAppHosts::host(bundle);
    return 0;
}
