// SPDX-License-Identifier: MIT
// Runs each *.scenario file beside this one as a test of its name. What happens stands on the left
// margin, what must come of it is indented beneath, all of it and in this order; # begins a
// comment. support/Steps.cpp has the commands.
#include "support/Scribe.h"
#include "support/Steps.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <utility>

namespace quenthisar {
namespace {

struct Happening {
    std::size_t lineNumber = 0;
    std::string line;
    std::vector<std::string> expected;
};

std::vector<Happening> read(const std::filesystem::path& file) {
    std::vector<Happening> result;
    std::ifstream stream(file);
    std::size_t number = 0;
    for (std::string line; std::getline(stream, line);) {
        ++number;
        const auto begin = line.find_first_not_of(' ');
        if (begin == std::string::npos || line[begin] == '#') continue;
        if (begin == 0)
            result.push_back({number, line, {}});
        else if (!result.empty())
            result.back().expected.push_back(line.substr(begin));
        else
            ADD_FAILURE() << file.string() << ':' << number << ": nothing happened before this";
    }
    EXPECT_FALSE(result.empty()) << file;
    return result;
}

class ScenarioTest : public testing::Test {
public:
    explicit ScenarioTest(std::filesystem::path path) : file(std::move(path)) {}

    void TestBody() override {
        Scribe scribe;
        World world(scribe);
        for (const auto& happening : read(file)) {
            const auto step = Steps::parse(happening.line);
            ASSERT_TRUE(step) << file.filename().string() << ':' << happening.lineNumber
                              << ": unknown command: " << happening.line;
            Steps::perform(*step, world);
            const auto came = scribe.take();
            if (Steps::isArrangement(*step) && happening.expected.empty()) continue;
            EXPECT_EQ(happening.expected, came) << file.filename().string() << ':'
                                                << happening.lineNumber << ": " << happening.line;
        }
    }

private:
    std::filesystem::path file;
};

void registerScenarios() {
    std::vector<std::filesystem::path> files;
    for (const auto& entry : std::filesystem::directory_iterator(QUENTHISAR_SCENARIOS))
        if (entry.path().extension() == ".scenario") files.push_back(entry.path());
    std::ranges::sort(files);
    for (const auto& file : files)
        testing::RegisterTest("Scenario", file.stem().c_str(), nullptr, nullptr, file.c_str(), 1,
                              [file]() -> testing::Test* { return new ScenarioTest(file); });
}

} // namespace
} // namespace quenthisar

int main(int count, char** arguments) {
    testing::InitGoogleTest(&count, arguments);
    quenthisar::registerScenarios();
    return RUN_ALL_TESTS();
}
