#include "Ashview/Reading/WebAppHosts.h"

#include "TempFolder.h"

#include <gtest/gtest.h>
#include <plist/plist.h>

#include <sys/stat.h>

#include <cstdlib>
#include <fstream>

namespace ashview {
namespace {

namespace fs = std::filesystem;

void write(const fs::path& path, std::string_view bytes) {
    fs::create_directories(path.parent_path());
    std::ofstream(path, std::ios::binary) << bytes;
}

std::string xmlPlist(std::string_view body) {
    return std::string(R"(<?xml version="1.0" encoding="UTF-8"?>
<!DOCTYPE plist PUBLIC "-//Apple//DTD PLIST 1.0//EN" "http://www.apple.com/DTDs/PropertyList-1.0.dtd">
<plist version="1.0"><dict>)") + std::string(body) + "</dict></plist>\n";
}

std::string binaryPlist(const std::string& key, const std::string& value) {
    plist_t dict = plist_new_dict();
    plist_dict_set_item(dict, key.c_str(), plist_new_string(value.c_str()));
    plist_dict_set_item(dict, "CFBundleIdentifier", plist_new_string("com.google.Chrome.app.x"));
    char* bytes = nullptr;
    std::uint32_t length = 0;
    plist_to_bin(dict, &bytes, &length);
    std::string result(bytes, length);
    std::free(bytes);
    plist_free(dict);
    return result;
}

class WebAppBundles : public ::testing::Test {
protected:
    fs::path bundle(const std::string& name) { return folder.path() / (name + ".app"); }
    TempFolder folder;
};

TEST_F(WebAppBundles, FindTheSiteOfSafariWebAppsAndChromiumShims) {
    // A Safari web app keeps its address nested, under a key of its own.
    write(bundle("Mail") / "Contents/Info.plist",
          xmlPlist("<key>CFBundleName</key><string>Mail</string>"
                   "<key>WebApp</key><dict><key>Manifest_Start_URL</key>"
                   "<string>https://Mail.Example.com/inbox</string></dict>"));
    EXPECT_EQ(WebAppHosts::host(bundle("Mail")), "mail.example.com");

    // A Chromium shim writes its property list in binary form.
    write(bundle("Shim") / "Contents/Info.plist", binaryPlist("CrAppModeShortcutURL", "https://www.youtube.com/"));
    EXPECT_EQ(WebAppHosts::host(bundle("Shim")), "www.youtube.com");

    // With nothing in the property list, the manifests directly under
    // Resources are read by name, and the first with a host wins; one in a
    // sub-folder is never seen.
    write(bundle("Manifests") / "Contents/Info.plist", xmlPlist("<key>CFBundleName</key><string>M</string>"));
    write(bundle("Manifests") / "Contents/Resources/sub/manifest.json", R"({"start_url": "https://sub.example"})");
    write(bundle("Manifests") / "Contents/Resources/a.webmanifest", R"({"start_url": "/relative"})");
    write(bundle("Manifests") / "Contents/Resources/b.webmanifest", R"({"start_url": "https://b.example"})");
    write(bundle("Manifests") / "Contents/Resources/manifest.json", R"({"start_url": "https://m.example"})");
    write(bundle("Manifests") / "Contents/Resources/other.json", R"({"start_url": "https://other.example"})");
    EXPECT_EQ(WebAppHosts::host(bundle("Manifests")), "b.example");
    fs::remove(bundle("Manifests") / "Contents/Resources/b.webmanifest");
    EXPECT_EQ(WebAppHosts::host(bundle("Manifests")), "m.example");
}

TEST_F(WebAppBundles, BrokenBundlesGiveNoHost) {
    const std::string good = xmlPlist("<key>StartURL</key><string>https://example.com</string>");

    EXPECT_EQ(WebAppHosts::host(bundle("Missing")), std::nullopt);
    fs::create_directories(bundle("Empty") / "Contents");
    EXPECT_EQ(WebAppHosts::host(bundle("Empty")), std::nullopt);
    const std::vector<std::pair<std::string, std::string>> broken{
        {"Garbage", "\x01\x02 this is not a property list <dict>"},
        {"BadBinary", std::string("bplist00\xd1\x01\x02\x51\x61\x51", 14) + "junk"},
        {"NotADictionary",
         R"(<?xml version="1.0"?><plist version="1.0"><array><string>https://example.com</string></array></plist>)"},
    };
    for (const auto& [name, bytes] : broken) {
        write(bundle(name) / "Contents/Info.plist", bytes);
        EXPECT_EQ(WebAppHosts::host(bundle(name)), std::nullopt) << name;
    }

    // A huge file is not read at all, however good its content.
    std::string padded = good;
    padded.insert(padded.find("<plist"), WebAppHosts::largestFile, ' ');
    write(bundle("Huge") / "Contents/Info.plist", padded);
    EXPECT_EQ(WebAppHosts::host(bundle("Huge")), std::nullopt);
    write(bundle("Huge") / "Contents/Resources/manifest.json",
          R"({"start_url": "https://example.com", "pad": ")" + std::string(WebAppHosts::largestFile, 'x') + "\"}");
    EXPECT_EQ(WebAppHosts::host(bundle("Huge")), std::nullopt);

    // Links leading out of the bundle are not followed; links inside it are.
    write(folder.path() / "outside/Info.plist", good);
    write(folder.path() / "outside/manifest.json", R"({"start_url": "https://example.com"})");
    fs::create_directories(bundle("Escape") / "Contents/Resources");
    fs::create_symlink(folder.path() / "outside/Info.plist", bundle("Escape") / "Contents/Info.plist");
    fs::create_symlink("../../../outside/manifest.json", bundle("Escape") / "Contents/Resources/manifest.json");
    EXPECT_EQ(WebAppHosts::host(bundle("Escape")), std::nullopt);
    fs::create_directories(bundle("EscapeFolder") / "Contents");
    fs::create_symlink(folder.path() / "outside", bundle("EscapeFolder") / "Contents/Resources");
    EXPECT_EQ(WebAppHosts::host(bundle("EscapeFolder")), std::nullopt);
    write(bundle("Inner") / "Contents/Real.plist", good);
    fs::create_symlink("Real.plist", bundle("Inner") / "Contents/Info.plist");
    EXPECT_EQ(WebAppHosts::host(bundle("Inner")), "example.com");

    // A manifest that is a pipe would never end; it is not read.
    fs::create_directories(bundle("Pipe") / "Contents/Resources");
    ASSERT_EQ(::mkfifo((bundle("Pipe") / "Contents/Resources/manifest.json").c_str(), 0600), 0);
    EXPECT_EQ(WebAppHosts::host(bundle("Pipe")), std::nullopt);
}

TEST(WebAppPropertyList, KeepsDictionariesAndTextAndCutsDeepNesting) {
    auto parsed = WebAppHosts::propertyList(
        xmlPlist("<key>a</key><integer>3</integer><key>b</key><true/><key>c</key><array><string>x</string></array>"
                 "<key>d</key><dict><key>e</key><string>f</string></dict><key>g</key><data>AAEC</data>"));
    ASSERT_TRUE(parsed);
    EXPECT_EQ(*parsed, (Json::Value{{"a", 3}, {"b", true}, {"c", nullptr}, {"d", {{"e", "f"}}}, {"g", nullptr}}));

    std::string deep;
    for (int i = 0; i < 200; ++i) deep += "<key>k</key><dict>";
    deep += "<key>StartURL</key><string>https://deep.example</string>";
    for (int i = 0; i < 200; ++i) deep += "</dict>";
    auto nested = WebAppHosts::propertyList(xmlPlist(deep));
    ASSERT_TRUE(nested);
    EXPECT_EQ(nested->dump().find("deep.example"), std::string::npos) << "nesting past the limit is cut";
    EXPECT_EQ(WebAppHosts::propertyList(""), std::nullopt);

    // A zero byte inside a string still gives a string, never an abort.
    using namespace std::string_literals;
    auto zero = WebAppHosts::propertyList(xmlPlist("<key>s</key><string>a\0b</string>"s));
    ASSERT_TRUE(zero);
    EXPECT_TRUE((*zero)["s"].is_string());
}

}  // namespace
}  // namespace ashview
