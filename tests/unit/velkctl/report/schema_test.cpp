// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

#include <fstream>
#include <set>
#include <sstream>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "velkctl/cli/command_line.h"
#include "velkctl/cli/verbs.h"
#include "velkctl/report/report.h"
#include <nlohmann/json.hpp>

namespace {

using velkctl::Json;
using velkctl::Report;
using velkctl::Verb;
using velkctl::Verbs;

std::string Text(const std::string& path) {
    const std::ifstream file(VELK_SOURCE_DIR + path);
    std::ostringstream text;
    text << file.rdbuf();
    return text.str();
}

Json Schema() {
    return Json::parse(Text("/docs/velkctl.schema.json"));
}

// The names of the members of an object, in their order.
std::vector<std::string> MembersOf(const Json& object) {
    std::vector<std::string> names;
    for (const auto& [name, value] : object.items()) {
        names.push_back(name);
    }
    return names;
}

Json DocumentOf(const std::vector<std::string>& arguments) {
    Report report(Report::Form::kJson);
    testing::internal::CaptureStdout();
    report.Finish(velkctl::RunCommandLine(arguments, report));
    fflush(stdout);
    return Json::parse(testing::internal::GetCapturedStdout());
}

// The documents in docs/json.md.
std::vector<Json> Examples() {
    const std::string page = Text("/docs/json.md");
    const std::string opening = "```json\n";
    std::vector<Json> examples;
    for (size_t begin = page.find(opening); begin != std::string::npos;
         begin = page.find(opening, begin)) {
        begin += opening.size();
        examples.push_back(Json::parse(page.substr(begin, page.find("```", begin) - begin)));
    }
    return examples;
}

TEST(Schema, HasTheVersionOfTheDocument) {
    EXPECT_EQ(Schema()["properties"]["schema"]["const"], 3);
    EXPECT_EQ(DocumentOf({"list"})["schema"], 3);
    EXPECT_EQ(Schema()["$id"], "urn:velk:velkctl:3");
}

TEST(Schema, HasEveryVerbAndNoOther) {
    Json expected = Json::array();
    for (const Verb& verb : Verbs()) {
        expected.push_back(verb.name);
    }
    expected.push_back(nullptr);
    EXPECT_EQ(Schema()["properties"]["verb"]["enum"], expected);
}

TEST(Schema, HasEveryExitStatus) {
    const Json statuses = Schema()["properties"]["status"]["anyOf"];
    EXPECT_EQ(statuses[0]["minimum"], static_cast<int>(velkctl::ExitStatus::kDone));
    EXPECT_EQ(statuses[0]["maximum"], static_cast<int>(velkctl::ExitStatus::kPartlyBack));
}

TEST(Schema, AsksForTheMembersOfASettingInTheirOrder) {
    const Json list = DocumentOf({"list"});
    EXPECT_EQ(Json(MembersOf(list["settings"][0])), Schema()["$defs"]["description"]["required"]);
    const Json describe = DocumentOf({"describe", "eth1.psk"});
    EXPECT_EQ(describe["settings"][0]["values"], Json::array());
}

TEST(Schema, AsksForTheMembersOfAnErrorInTheirOrder) {
    const Json document = DocumentOf({"describe", "nonsense"});
    EXPECT_EQ(Json(MembersOf(document["errors"][0])), Schema()["$defs"]["error"]["required"]);
    EXPECT_EQ(MembersOf(document),
              (std::vector<std::string>{"schema", "verb", "status", "notes", "errors"}));
}

TEST(JsonPage, HasAnExampleOfEveryVerb) {
    std::set<std::string> found;
    for (const Json& example : Examples()) {
        found.insert(example["verb"].get<std::string>());
    }
    std::set<std::string> expected;
    for (const Verb& verb : Verbs()) {
        expected.emplace(verb.name);
    }
    EXPECT_EQ(found, expected);
}

TEST(JsonPage, ShowsSettingsAndResultsAsTheyAre) {
    for (const Json& example : Examples()) {
        if (example["verb"] == "list") {
            EXPECT_EQ(example["settings"][0].dump(),
                      DocumentOf({"describe", "ntp"})["settings"][0].dump());
        } else if (example["verb"] == "describe") {
            EXPECT_EQ(example.dump(), DocumentOf({"describe", "eth1.psk"}).dump());
        } else if (example["verb"] == "explain") {
            const char* word = example.contains("result") ? "-3" : "3";
            EXPECT_EQ(example.dump(), DocumentOf({"explain", word}).dump());
        }
    }
}

TEST(Explain, KnowsResultsByNegativeNumbersAndExitStatusesByPositiveOnes) {
    const auto members = [](const char* word) { return MembersOf(DocumentOf({"explain", word})); };
    using Members = std::vector<std::string>;
    const Members result{"schema", "verb", "status", "result", "notes", "errors"};
    const Members status{"schema", "verb", "status", "exit_status", "notes", "errors"};
    const Members both{"schema", "verb", "status", "result", "exit_status", "notes", "errors"};
    EXPECT_EQ(members("-1"), result);
    EXPECT_EQ(members("-99"), result);
    EXPECT_EQ(members("SUCCESS"), result);
    EXPECT_EQ(members("LIB_VELK_LOCKED"), result);
    for (const char* word : {"1", "2", "3", "4", "5", "6", "7", "8", "9"}) {
        EXPECT_EQ(members(word), status);
        EXPECT_EQ(DocumentOf({"explain", word})["exit_status"]["status"].dump(), word);
    }
    EXPECT_EQ(members("0"), both);
    EXPECT_EQ(DocumentOf({"explain", "6"})["exit_status"]["results"], Json::array());
    EXPECT_EQ(DocumentOf({"explain", "5"})["exit_status"]["results"][0]["code"], -6);
    for (const char* word : {"10", "99", "-", "", "3x", "0x3", "99999999999", "locked"}) {
        EXPECT_EQ(DocumentOf({"explain", word})["status"], 2) << word;
    }
}

// The values that the catalogue's kinds name, as completion offers them.
TEST(Describe, NamesTheValuesOfASettingThatHasAFew) {
    const auto values = [](const char* name) {
        return DocumentOf({"describe", name})["settings"][0]["values"].dump();
    };
    EXPECT_EQ(values("ntp"), R"(["on","off"])");
    EXPECT_EQ(values("eth0.method"), R"(["static","dhcp"])");
    EXPECT_EQ(values("eth1.encryption"), R"(["1","wep","3","4"])");
    EXPECT_EQ(values("eth1.standards-enabled"), R"(["2","3"])");
    EXPECT_EQ(
        values("web-update"),
        R"(["off","every","daily","weekly sunday","weekly monday","weekly tuesday",)"
        R"("weekly wednesday","weekly thursday","weekly friday","weekly saturday","monthly"])");
    EXPECT_EQ(values("eth0.dns"), "[]");
    EXPECT_EQ(values("location"), "[]");
}

}  // namespace
