// SPDX-License-Identifier: MIT
#include "Model/StoredProfiles.h"

#include <gtest/gtest.h>

namespace quenthisar {
namespace {

constexpr const char* idText = "0A1B2C3D-4E5F-6071-8293-A4B5C6D7E8F9";
const Uuid id = *Uuid::parse(idText);

TEST(StoredProfiles, ReadBackEqual) {
    const std::vector<Profile> profiles{
        {id, "Büro \"1\"", {{"right|D1", id}, {"left|D1", id}}, "a", "b", "cmd+l"},
        {Uuid::random(), "", {}, "", "", ""}};
    EXPECT_EQ(decodeProfiles(encodeProfiles(profiles).value()), profiles);
    EXPECT_EQ(decodeProfiles("[]"), std::vector<Profile>{});
    EXPECT_EQ(encodeProfiles({{id, "", {{"left|\xC3", id}}, "", "", ""}}), std::nullopt);
}

/// A profile with `members` added to a valid id and name.
std::string with(const std::string& members) {
    return R"([{"id":"0a1b2c3d-4e5f-6071-8293-a4b5c6d7e8f9","name":"N")" + members + "}]";
}

TEST(StoredProfiles, ReadAsMuchAsMakesSense) {
    std::vector<Profile> expected{{id, "N", {}, "", "", ""}};
    EXPECT_EQ(decodeProfiles(with("")), expected);
    EXPECT_EQ(decodeProfiles(with(R"(,"bindings":null,"activateCommand":null,"other":[1])")),
              expected);
    expected[0].bindings = {{"odd key", id}};
    EXPECT_EQ(decodeProfiles(with(R"(,"bindings":{"left|D1":"no id","odd key":")" +
                                  std::string{idText} + "\"}")),
              expected);
}

TEST(StoredProfiles, AreReadWholeOrNotAtAll) {
    const std::string good = R"({"id":"0A1B2C3D-4E5F-6071-8293-A4B5C6D7E8F9","name":"N"})";
    for (const std::string& json :
         {std::string{}, std::string{"{}"}, std::string{"[1]"}, "[" + good, "[" + good + ",7]",
          "[" + good + R"(,{"name":"N"}])", "[" + good + R"(,{"id":"x","name":"N"}])",
          std::string{R"([{"id":"0A1B2C3D-4E5F-6071-8293-A4B5C6D7E8F9","name":null}])"},
          std::string{R"([{"id":7,"name":"N"}])"}, with(R"(,"bindings":[])"),
          with(R"(,"bindings":{"left|D1":7})"), with(R"(,"targetCommand":false)"),
          with(",\"activateCommand\":\"\xFF\"")})
        EXPECT_EQ(decodeProfiles(json), std::nullopt) << json;
}

} // namespace
} // namespace quenthisar
