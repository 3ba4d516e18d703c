// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <map>
#include <set>
#include <string>
#include <string_view>

namespace {

namespace fs = std::filesystem;
using Words = std::set<std::string>;

/// Who may include whom. "system": any library.
const std::map<std::string, Words> table{
    {"Support", {"utf8proc"}},
    {"Model", {"Support", "nlohmann"}},
    {"Protocol", {"Support"}},
    {"Platform", {"Support", "Model", "Protocol"}},
    {"Geometry", {"Support", "Model", "Platform"}},
    {"LoginItem", {"Platform"}},
    {"AppState", {"Support", "Model", "Protocol", "Platform", "Geometry", "LoginItem"}},
    {"BLE", {"Support", "Model", "Protocol", "Platform", "Geometry", "AppState"}},
    {"Capture", {"Support", "Model", "Protocol", "Platform", "Geometry", "AppState", "BLE"}},
    {"UI", {"Support", "Model", "Protocol", "Platform", "Geometry", "AppState"}},
    {"UI/Qt", {"Support", "Model", "Platform", "AppState", "UI", "Qt"}},
    {"HotkeyManager", {"Support", "Platform"}},
    {"AppDelegate",
     {"Support", "Model", "Protocol", "Platform", "Geometry", "AppState", "BLE", "Capture", "UI",
      "HotkeyManager"}},
    {"Linux", {"Support", "Model", "Protocol", "Platform", "system"}},
};

/// The unit that a path below src belongs to: its folder, or its name at the top.
std::string unitOf(const fs::path& path) {
    if (path.string().starts_with("UI/Qt/")) return "UI/Qt";
    return path.has_parent_path() ? path.begin()->string() : path.stem().string();
}

/// The word for a header of none of ours; empty for the standard library's.
std::string libraryOf(const std::string& header) {
    const auto end = header.find_first_of("/.");
    if (header.starts_with("Q")) return "Qt";
    return end != std::string::npos ? header.substr(0, end) : "";
}

TEST(IncludeTable, EachFolderIncludesOnlyWhatItMay) {
    constexpr std::string_view directive = "#include ";
    const fs::path root = QUENTHISAR_SOURCE_DIR "/src";
    std::size_t checked = 0;
    for (const auto& entry : fs::recursive_directory_iterator(root)) {
        if (entry.path().extension() != ".h" && entry.path().extension() != ".cpp") continue;
        const std::string unit = unitOf(entry.path().lexically_relative(root));
        if (unit == "main") continue; // the one place where adapters meet the core
        const auto row = table.find(unit);
        ASSERT_NE(row, table.end()) << entry << " stands in no row of the table";
        std::ifstream in(entry.path());
        for (std::string line; std::getline(in, line);) {
            if (!line.starts_with(directive)) continue;
            const auto name = line.substr(directive.size());
            const auto header = name.substr(1, name.find_first_of("\">", 1) - 1);
            const bool ours = name.front() == '"';
            const std::string used = ours ? unitOf(header) : libraryOf(header);
            EXPECT_TRUE(used == unit || used.empty() || row->second.contains(used) ||
                        (!ours && row->second.contains("system")))
                << entry << " includes " << header;
            ++checked;
        }
    }
    EXPECT_GT(checked, 100U);
}

} // namespace
