// SPDX-License-Identifier: MIT
#include "Linux/JsonFileDefaults.h"

#include "support/FakeHost.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <sys/stat.h>

namespace quenthisar {
namespace {

struct Fixture {
    QTemporaryDir home;
    QString folder = home.filePath(QStringLiteral("quenthisar"));
    QString path = folder + QStringLiteral("/defaults.json");
    FakeSystemLog log;

    JsonFileDefaults open() { return {path, log}; }

    void write(const QByteArray& text) const {
        QDir().mkpath(folder);
        QFile file(path);
        file.open(QIODevice::WriteOnly);
        file.write(text);
    }
    QByteArray read(const QString& name) const {
        QFile file(name);
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("(no file)");
    }
    QStringList corruptFiles() const {
        return QDir(folder).entryList({QStringLiteral("defaults.json.corrupt-*")});
    }
    static unsigned modeOf(const QString& name) {
        struct stat status {};
        return ::stat(QFile::encodeName(name), &status) == 0 ? status.st_mode & 0777U : 0;
    }
};

TEST(JsonFileDefaults, EveryKindOfValueSurvivesARestart) {
    Fixture f;
    DefaultsDictionary dictionary;
    dictionary["a"] = {std::string{"ä \"quoted\""}};
    dictionary["b"] = {0.25};
    const std::map<std::string, DefaultsValue> values{{"bool", {true}},
                                                      {"number", {3.0}},
                                                      {"text", {std::string{}}},
                                                      {"data", {DefaultsData{0, 255, 10, 0}}},
                                                      {"no data", {DefaultsData{}}},
                                                      {"dictionary", {dictionary}},
                                                      {"empty", {DefaultsDictionary{}}}};
    auto first = f.open();
    for (const auto& [key, value] : values) first.set(key, value);
    const auto second = f.open();
    for (const auto& [key, value] : values) EXPECT_EQ(second.object(key), value) << key;
    EXPECT_EQ(second.object("absent"), std::nullopt);
    EXPECT_EQ(Fixture::modeOf(f.path), 0600U);
    EXPECT_EQ(Fixture::modeOf(f.folder), 0700U);
    EXPECT_TRUE(f.log.lines.empty());
}

TEST(JsonFileDefaults, KeepsKeysOfOthersAndReadsWhatNoSettingHasAsSuch) {
    Fixture f;
    f.write(R"({"theirs":[1,{"x":null}],"null":null,"odd":{"$data":"!"},"nested":{"a":{"b":1}}})");
    auto defaults = f.open();
    EXPECT_EQ(defaults.object("null"), std::nullopt);
    EXPECT_EQ(defaults.object("theirs"), DefaultsValue{});
    EXPECT_EQ(defaults.object("odd"), DefaultsValue{});
    EXPECT_EQ(defaults.object("nested"), (DefaultsValue{DefaultsDictionary{{"a", {}}}}));
    defaults.set("ours", {true});
    EXPECT_TRUE(
        f.read(f.path).simplified().replace(' ', "").contains(R"("theirs":[1,{"x":null}])"));
}

TEST(JsonFileDefaults, ASetThatChangesNothingDoesNotTouchTheFile) {
    Fixture f;
    f.write(R"({ "flag":true,"one":1 })");
    auto defaults = f.open();
    defaults.set("flag", {true});
    defaults.set("one", {1.0});
    EXPECT_EQ(f.read(f.path), R"({ "flag":true,"one":1 })");
    defaults.set("flag", {false});
    EXPECT_TRUE(f.read(f.path).contains("false"));
}

TEST(JsonFileDefaults, MovesAsideWhatItCannotRead) {
    for (const char* text : {"", "{\"cut\":", "[1]", "\xFF", "7"}) {
        Fixture f;
        f.write(text);
        auto defaults = f.open();
        ASSERT_EQ(f.corruptFiles().size(), 1) << text;
        EXPECT_EQ(f.read(f.folder + u'/' + f.corruptFiles().front()), text);
        EXPECT_EQ(f.log.lines.size(), 1U);
        defaults.set("flag", {true});
        EXPECT_EQ(f.open().object("flag"), (DefaultsValue{true}));
    }
}

TEST(JsonFileDefaults, WithoutAFileThatCanBeWrittenItGoesOnInMemory) {
    Fixture f;
    QFile(f.folder).open(QIODevice::WriteOnly); // a file where the folder should be
    auto defaults = f.open();
    defaults.set("flag", {true});
    defaults.set("other", {2.0});
    EXPECT_EQ(defaults.object("flag"), (DefaultsValue{true}));
    EXPECT_EQ(f.log.lines.size(), 1U) << "logged once";
}

} // namespace
} // namespace quenthisar
