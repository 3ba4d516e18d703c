// SPDX-License-Identifier: MIT
#include "Model/Dongle.h"
#include "Model/Edge.h"
#include "Model/StoredProfiles.h"
#include "Model/Takeover.h"

#include <gtest/gtest.h>

#include <set>

namespace quenthisar {
namespace {

constexpr const char* idText = "0A1B2C3D-4E5F-6071-8293-A4B5C6D7E8F9";
const Uuid id = *Uuid::parse(idText);

TEST(Uuid, ReadsEitherCaseAndWritesUpperCase) {
    EXPECT_EQ(Uuid::parse("0a1b2c3d-4e5f-6071-8293-a4b5c6d7e8f9"), id);
    EXPECT_EQ(id.text(), idText);
    EXPECT_EQ(id.bytes[0], 0x0A);
    EXPECT_EQ(id.bytes[15], 0xF9);
}

TEST(Uuid, ReadsNothingElse) {
    for (const char* text :
         {"", "0A1B2C3D4E5F60718293A4B5C6D7E8F9", "{0A1B2C3D-4E5F-6071-8293-A4B5C6D7E8F9}",
          "0A1B2C3D-4E5F-6071-8293-A4B5C6D7E8F", "0A1B2C3D-4E5F-6071-8293-A4B5C6D7E8F90",
          "0A1B2C3D-4E5F-6071-8293-A4B5C6D7E8FG", "0A1B2C3D-4E5F-60718-293-A4B5C6D7E8F9",
          " 0A1B2C3D-4E5F-6071-8293-A4B5C6D7E8F"})
        EXPECT_EQ(Uuid::parse(text), std::nullopt) << text;
}

TEST(Uuid, RandomOnesAreVersionFourAndDiffer) {
    std::set<Uuid> seen;
    for (int i = 0; i < 100; ++i) {
        const Uuid random = Uuid::random();
        EXPECT_EQ(random.bytes[6] >> 4, 4);
        EXPECT_EQ(random.bytes[8] >> 6, 2);
        seen.insert(random);
    }
    EXPECT_EQ(seen.size(), 100U);
}

TEST(RawTexts, ConvertBothWaysAndCaseSensitively) {
    EXPECT_EQ(edgeFrom("top"), Edge::top);
    EXPECT_EQ(edgeFrom("right"), Edge::right);
    EXPECT_EQ(edgeFrom("Left"), std::nullopt);
    EXPECT_EQ(edgeFrom(""), std::nullopt);
    EXPECT_EQ(rawText(Edge::bottom), "bottom");
    EXPECT_EQ(dongleConnectionStateFrom("connecting"), DongleConnectionState::connecting);
    EXPECT_EQ(dongleConnectionStateFrom("Connected"), std::nullopt);
    EXPECT_EQ(bindingKey(Edge::right, "D1"), "right|D1");
}

TEST(Takeover, WithAndWithoutAnEdgeDiffer) {
    EXPECT_NE((Takeover{id, std::nullopt, std::nullopt}), (Takeover{id, Edge::left, "D1"}));
    EXPECT_NE((Takeover{id, Edge::left, std::nullopt}), (Takeover{id, Edge::left, "D1"}));
    EXPECT_EQ((Takeover{id, Edge::left, "D1"}), (Takeover{id, Edge::left, "D1"}));
}

const Profile full{id, "Büro \"1\"", {{"right|D1", id}, {"left|D1", id}}, "a", "b", "cmd+l"};

TEST(StoredProfiles, ReadBackEqual) {
    const std::vector<Profile> profiles{full, {Uuid::random(), "", {}, "", "", ""}};
    EXPECT_EQ(decodeProfiles(encodeProfiles(profiles).value()), profiles);
    EXPECT_EQ(decodeProfiles("[]"), std::vector<Profile>{});
}

TEST(StoredProfiles, AlwaysWriteAllSixMembersCompactly) {
    const std::string json = encodeProfiles({{id, "Default", {}, "", "", ""}}).value();
    for (const char* member : {R"("id":"0A1B2C3D-4E5F-6071-8293-A4B5C6D7E8F9")",
                               R"("name":"Default")", R"("bindings":{})", R"("activateCommand":"")",
                               R"("deactivateCommand":"")", R"("targetCommand":"")"})
        EXPECT_NE(json.find(member), std::string::npos) << json;
    EXPECT_EQ(json.find_first_of(" \n"), std::string::npos);
}

TEST(StoredProfiles, TextThatIsNoUtf8IsNotEncoded) {
    EXPECT_EQ(encodeProfiles({{id, "\xFF", {}, "", "", ""}}), std::nullopt);
    EXPECT_EQ(encodeProfiles({{id, "", {{"left|\xC3", id}}, "", "", ""}}), std::nullopt);
}

/// A profile with `members` added to a valid id and name.
std::string with(const std::string& members) {
    return R"([{"id":"0a1b2c3d-4e5f-6071-8293-a4b5c6d7e8f9","name":"N")" + members + "}]";
}

TEST(StoredProfiles, AbsentAndNullReadAsEmpty) {
    const std::vector<Profile> expected{{id, "N", {}, "", "", ""}};
    EXPECT_EQ(decodeProfiles(with("")), expected);
    EXPECT_EQ(decodeProfiles(with(R"(,"bindings":null,"activateCommand":null,"other":[1])")),
              expected);
}

TEST(StoredProfiles, DropOnlyTheBindingWhoseTextIsNoUuid) {
    const auto read = decodeProfiles(with(
        R"(,"bindings":{"left|D1":"nonsense","odd key":"0a1b2c3d-4e5f-6071-8293-a4b5c6d7e8f9"})"));
    ASSERT_TRUE(read);
    EXPECT_EQ(read->front().bindings, (Bindings{{"odd key", id}}));
}

TEST(StoredProfiles, AreReadWholeOrNotAtAll) {
    const std::string good = R"({"id":"0A1B2C3D-4E5F-6071-8293-A4B5C6D7E8F9","name":"N"})";
    for (const std::string& json :
         {std::string{}, std::string{"{}"}, std::string{"[1]"}, "[" + good, "[" + good + ",7]",
          "[" + good + R"(,{"name":"N"}])", "[" + good + R"(,{"id":"x","name":"N"}])",
          std::string{R"([{"id":"0A1B2C3D-4E5F-6071-8293-A4B5C6D7E8F9"}])"},
          std::string{R"([{"id":"0A1B2C3D-4E5F-6071-8293-A4B5C6D7E8F9","name":null}])"},
          std::string{R"([{"id":7,"name":"N"}])"}, with(R"(,"bindings":[])"),
          with(R"(,"bindings":{"left|D1":null})"), with(R"(,"bindings":{"left|D1":7})"),
          with(R"(,"targetCommand":false)"), with(",\"activateCommand\":\"\xFF\"")})
        EXPECT_EQ(decodeProfiles(json), std::nullopt) << json;
}

} // namespace
} // namespace quenthisar
