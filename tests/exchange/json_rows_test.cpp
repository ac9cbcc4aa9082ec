#include "exchange/json_rows.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace exchange {
namespace {

struct Found {
    std::int64_t line;
    std::string text;
    bool operator==(const Found&) const = default;
};

std::vector<Found> Rows(std::string_view bytes) {
    JsonRows rows(bytes, 1);
    std::vector<Found> found;
    while (const auto row = rows.Next())
        found.push_back({row->line, std::string(row->text)});
    EXPECT_TRUE(rows.status().ok()) << rows.status().message();
    return found;
}

std::string FailureOfJson(std::string_view bytes) {
    JsonRows rows(bytes, 1);
    while (rows.Next()) {
    }
    EXPECT_FALSE(rows.Next());
    return rows.status().message();
}

TEST(JsonRowsTest, TheThreeForms) {
    const std::vector<Found> two{{2, "{\"a\": 1}"}, {3, "{\"a\": [{}]}"}};
    EXPECT_EQ(Rows("[\n{\"a\": 1},\n{\"a\": [{}]}\n]\n"), two);
    EXPECT_EQ(Rows("\n{\"a\": 1}\n{\"a\": [{}]}\n"), two);
    EXPECT_EQ(
        Rows("{\"schema\": 1, \"columns\": [\"a\"], \"rows\": [\n{\"a\": 1},\n{\"a\": [{}]}], "
             "\"end\": {\"x\": 1}}"),
        two);
}

TEST(JsonRowsTest, NoRows) {
    EXPECT_TRUE(Rows("").empty());
    EXPECT_TRUE(Rows("[]").empty());
    EXPECT_TRUE(Rows("{\"rows\": []}").empty());
}

TEST(JsonRowsTest, BracketsInTextsAreText) {
    EXPECT_EQ(Rows("{\"a\": \"}\\\"{[\\\\\"}{\"b\": 2}").size(), 2u);
}

TEST(JsonRowsTest, AColumnMayBeCalledAsTheDocumentsMembersAre) {
    EXPECT_EQ(Rows("{\"rows\": \"12\", \"schema\": null}\n{\"a\": 1}").size(), 2u);
}

TEST(JsonRowsTest, AnUnknownSchemaIsRefused) {
    EXPECT_EQ(FailureOfJson("{\"schema\": 2, \"rows\": []}"),
              "line 1: the schema 2 is not known here");
    EXPECT_EQ(FailureOfJson("{\"rows\": [{\"a\": 1}], \"schema\": 2}"),
              "line 1: the schema 2 is not known here");
    EXPECT_EQ(FailureOfJson("{\"rows\": [{\"a\": 1}], \"rows\": [{\"a\": 2}]}"),
              "line 1: \"rows\" is there twice");
}

TEST(JsonRowsTest, WhatIsWrongIsToldWithItsLine) {
    EXPECT_EQ(FailureOfJson("[\n{} {}]"), "line 2: a comma or the end of the rows is missing");
    EXPECT_EQ(FailureOfJson("[{},\n1]"), "line 2: here should be an object");
    EXPECT_EQ(FailureOfJson("[{}]\n\nx"), "line 3: there is text behind the rows");
    EXPECT_EQ(FailureOfJson("{\"a\": 1}\n{\"a\": "), "line 2: the object does not end");
    EXPECT_EQ(FailureOfJson("{\"rows\": [{}]\n"),
              "line 2: the object around the rows does not end");
    EXPECT_EQ(FailureOfJson("[{}"), "line 1: a comma or the end of the rows is missing");
    EXPECT_EQ(FailureOfJson("hello"), "line 1: here should be an object");
}

TEST(JsonRowsTest, DepthCostsNothing) {
    const std::string deep =
        "{\"a\": " + std::string(1'000'000, '[') + std::string(1'000'000, ']') + "}";
    EXPECT_EQ(Rows(deep).size(), 1u);
}

}  // namespace
}  // namespace exchange
