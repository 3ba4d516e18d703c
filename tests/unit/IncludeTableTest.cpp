// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <map>
#include <set>
#include <string>
#include <string_view>
#include <vector>

namespace {

namespace fs = std::filesystem;
using Words = std::set<std::string>;

/// Who may include whom. Libraries: Qt, xcb, json, utf8proc, system (POSIX headers).
const std::map<std::string, Words> table{
    {"Support", {"utf8proc"}},
    {"Model", {"Support", "json"}},
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
    {"Linux", {"Support", "Model", "Protocol", "Platform", "Qt", "xcb", "json", "system"}},
};

/// The unit that a path below src belongs to: its folder, or its name at the top.
std::string unitOf(const fs::path& path) {
    if (path.string().starts_with("UI/Qt/")) return "UI/Qt";
    return path.has_parent_path() ? path.begin()->string() : path.stem().string();
}

std::string libraryOf(const std::string& header) {
    if (header.starts_with("Q")) return "Qt";
    if (header.starts_with("xcb/")) return "xcb";
    if (header.starts_with("nlohmann/")) return "json";
    if (header == "utf8proc.h") return "utf8proc";
    const bool standard = header.find_first_of("/.") == std::string::npos;
    return standard ? "standard" : "system";
}

struct Include {
    std::string header;
    bool ours; // in quotes
};

std::vector<Include> includesOf(const fs::path& file) {
    constexpr std::string_view directive = "#include ";
    std::vector<Include> includes;
    std::ifstream in(file);
    for (std::string line; std::getline(in, line);) {
        if (!line.starts_with(directive)) continue;
        const auto end = line.find_first_of("\">", directive.size() + 1);
        includes.push_back({line.substr(directive.size() + 1, end - directive.size() - 1),
                            line[directive.size()] == '"'});
    }
    return includes;
}

std::vector<fs::path> sourcesBelow(const fs::path& folder) {
    std::vector<fs::path> files;
    for (const auto& entry : fs::recursive_directory_iterator(folder)) {
        const auto extension = entry.path().extension();
        if (extension == ".h" || extension == ".cpp") files.push_back(entry.path());
    }
    return files;
}

const fs::path root = QUENTHISAR_SOURCE_DIR;

TEST(IncludeTable, EachFolderIncludesOnlyWhatItMay) {
    std::size_t checked = 0;
    for (const auto& file : sourcesBelow(root / "src")) {
        const std::string unit = unitOf(file.lexically_relative(root / "src"));
        if (unit == "main") continue; // the one place where adapters meet the core
        const auto row = table.find(unit);
        ASSERT_NE(row, table.end()) << file << " stands in no row of the table";
        for (const auto& [header, ours] : includesOf(file)) {
            const std::string used = ours ? unitOf(header) : libraryOf(header);
            EXPECT_TRUE(used == unit || used == "standard" || row->second.contains(used))
                << file << " includes " << header;
            ++checked;
        }
    }
    EXPECT_GT(checked, 100U);
}

TEST(IncludeTable, OtherProgramsShareNothingWithIt) {
    for (const char* folder : {"dongle", "demo", "bench", "guard"}) {
        for (const auto& file : sourcesBelow(root / folder)) {
            if (file.filename() == "micro.cpp") continue; // it measures the core by itself
            for (const auto& [header, ours] : includesOf(file))
                EXPECT_FALSE(ours && fs::exists(root / "src" / header) &&
                             !fs::exists(file.parent_path() / header))
                    << file << " includes " << header;
        }
    }
}

} // namespace
