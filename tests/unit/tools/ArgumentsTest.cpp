#include "serve/Arguments.h"

#include "base/Failure.h"

#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace kvr::netlistdb::tool {
namespace {

std::vector<Parameter> parameters()
{
    using Type = Parameter::Type;
    Parameter path("path", Type::Text, "Where");
    path.required = true;
    Parameter limit("limit", Type::Number, "How many");
    limit.least = 1;
    limit.most = 9;
    limit.fallback = 5;
    return {path,
            limit,
            {"depth", Type::Number, "How deep"},
            {"all", Type::Flag, "Everything"},
            {"kinds", Type::Texts, "Which", {"net", "bus"}}};
}

/// @p given as a parser makes it.
Json received(const Json &given)
{
    return Json::parse(jsonText(given));
}

/// What is wrong with @p given.
std::string refusalOf(const Json &given)
{
    const std::vector<Parameter> known = parameters();
    try {
        const Arguments arguments(received(given), known);
    } catch (const Failure &failure) {
        EXPECT_EQ(failure.exitCode(), EXIT_WRONG_USAGE);
        return failure.what();
    }
    return "nothing";
}

TEST(Arguments, GivenValuesAndFallbacksAreRead)
{
    const std::vector<Parameter> known = parameters();
    const Arguments arguments({{"path", "a/b"}, {"all", true}, {"kinds", {"bus", "net"}}, {"depth", nullptr}}, known);
    EXPECT_EQ(arguments.text("path"), "a/b");
    EXPECT_TRUE(arguments.flag("all"));
    EXPECT_EQ(arguments.texts("kinds"), (std::vector<std::string>{"bus", "net"}));
    EXPECT_EQ(arguments.number("limit"), 5U);
    EXPECT_FALSE(arguments.has("depth")) << "null is as good as nothing";
    EXPECT_EQ(arguments.number("depth"), 0U);
}

TEST(Arguments, EachFaultIsNamed)
{
    EXPECT_EQ(refusalOf(Json::object()), "path: missing");
    EXPECT_EQ(refusalOf({{"path", nullptr}}), "path: missing");
    EXPECT_EQ(refusalOf({{"path", 3}}), "path: not a text");
    EXPECT_EQ(refusalOf({{"path", ""}, {"all", "yes"}}), "all: neither true nor false");
    EXPECT_EQ(refusalOf({{"path", ""}, {"kinds", "net"}}), "kinds: not a list of texts");
    EXPECT_EQ(refusalOf({{"path", ""}, {"kinds", {"net", "port"}}}), "kinds: 'port' is none of net, bus");
    for (const Json &wrong : {Json(0), Json(10), Json(-1), Json(2.5), Json("2")}) {
        EXPECT_EQ(refusalOf({{"path", ""}, {"limit", wrong}}), "limit: not an integer from 1 to 9") << wrong;
    }
    EXPECT_EQ(refusalOf({{"path", ""}, {"depth", -1}}), "depth: not an integer 0 or more");
}

TEST(Arguments, UnknownOnesLeadToTheNearest)
{
    const std::string fault = refusalOf({{"path", ""}, {"limits", 3}});
    EXPECT_NE(fault.find("limits: no argument of this tool"), std::string::npos) << fault;
    EXPECT_NE(fault.find("'limit'"), std::string::npos) << fault;
}

TEST(Arguments, CanonicalTextIsThatOfTheQuestion)
{
    const std::vector<Parameter> known = parameters();
    const Arguments one({{"path", "a"}, {"all", false}}, known);
    const Arguments same(received({{"all", false}, {"limit", 9}, {"path", "a"}}), known);
    const Arguments other({{"path", "a"}, {"all", true}}, known);
    EXPECT_EQ(one.canonical({"limit"}), same.canonical({"limit"}));
    EXPECT_NE(one.canonical({}), same.canonical({}));
    EXPECT_NE(one.canonical({"limit"}), other.canonical({"limit"}));
}

TEST(Arguments, SchemaSaysWhatIsRefused)
{
    const Json schema = schemaOf(parameters());
    EXPECT_EQ(schema["required"], Json::array({"path"}));
    EXPECT_EQ(schema["additionalProperties"], Json(false));
    EXPECT_EQ(schema["properties"]["limit"],
              Json({{"type", "integer"}, {"minimum", 1}, {"maximum", 9}, {"description", "How many"}, {"default", 5}}));
    EXPECT_EQ(schema["properties"]["kinds"]["items"]["enum"], Json::array({"net", "bus"}));
}

} // namespace
} // namespace kvr::netlistdb::tool
