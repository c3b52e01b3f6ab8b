// The pictures of the program's face: each window in a fixed, realistic
// state (a few sites with figures, two weeks of history, days off, a browser
// not yet allowed), drawn offscreen at twice the point size inside a Mac-like
// window frame, and written as PNG files. Deterministic: the same build gives
// the same pixels. Needs the QApplication with the program's theme.
#pragma once

#include <filesystem>
#include <string>
#include <vector>

namespace ashview::Pictures {

/// Writes every picture into `folder`; the file names written.
std::vector<std::string> render(const std::filesystem::path& folder);

}  // namespace ashview::Pictures
