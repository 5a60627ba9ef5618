#include "core/xmlfields.h"

#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

#include "support/xmlreplies.h"

using namespace wire;

namespace {

using Fields = std::vector<std::pair<std::string, std::string>>;

/// What the walk told, and whether the text was well-formed.
std::pair<Fields, bool> walk(const std::string& text) {
    Fields fields;
    const bool wellFormed = Lattice::WalkXml(text.c_str(), [&](const QString& name, const QString& value) {
        fields.emplace_back(name.toStdString(), value.toStdString());
    });
    return {fields, wellFormed};
}

}  // namespace

TEST(WalkXml, TellsEachElementWithItsText) {
    const struct {
        const char* text;
        Fields fields;
    } rows[] = {
        {"<a/>", {{"a", ""}}},
        {"<a>x</a>", {{"a", "x"}}},
        {"<?xml version=\"1.0\"?><!-- c --><a y='1'>x</a>", {{"a", "x"}}},
        {"<a><b>1</b><c>2</c></a>", {{"b", "1"}, {"c", "2"}, {"a", ""}}},
        {"<a>x<b>1</b>y</a>", {{"b", "1"}, {"a", "xy"}}},
        {"<a>1</a> \n", {{"a", "1"}}},
        {"<a>x<![CDATA[<&>]]>&amp;&#65;</a>", {{"a", "x<&>&A"}}},
        {"<n:a xmlns:n='u'>x</n:a>", {{"a", "x"}}},
        {"<!DOCTYPE a [<!ENTITY e \"v\">]><a>&e;</a>", {{"a", "v"}}},
        {"<a> </a>", {{"a", " "}}},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.text);
        const auto [fields, wellFormed] = walk(row.text);
        EXPECT_EQ(fields, row.fields);
        EXPECT_TRUE(wellFormed);
    }
}

TEST(WalkXml, SaysWhereTheTextIsNotWellFormed) {
    for (const std::string& text :
         {std::string(), std::string(" "), std::string("x"), std::string("<a>"), std::string("<a><b></a>"),
          std::string("<a/><b/>"), std::string("<a>&no;</a>"), std::string("<a>\xFF</a>"),
          std::string("<n:a/>"), std::string("<a b=1/>")})
        EXPECT_FALSE(walk(text).second) << text;
    EXPECT_FALSE(Lattice::WalkXml(nullptr, [](const QString&, const QString&) {}));
}

TEST(WalkXml, TellsWhatStandsBeforeTheFault) {
    EXPECT_EQ(walk("<a><b>1</b><c>2").first, (Fields{{"b", "1"}}));
}

TEST(WalkXml, AnEntityBombGoesOffNowhere) {
    EXPECT_FALSE(walk(entityBomb("b")).second);
}

TEST(WalkXml, ReadsNoOtherFile) {
    for (const auto& [name, value] : walk(foreignFile("b")).first) EXPECT_EQ(value, "") << name;
}

TEST(WalkXml, GoesToAnyDepth) {
    std::string deep;
    for (int i = 0; i < 50000; ++i) deep += "<a>";
    for (int i = 0; i < 50000; ++i) deep += "</a>";
    const auto [fields, wellFormed] = walk(deep);
    EXPECT_TRUE(wellFormed);
    EXPECT_EQ(fields.size(), 50000u);
}
