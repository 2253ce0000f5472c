#include "serve/Pages.h"

#include "base/Failure.h"
#include "output/JsonRow.h"
#include "serve/Call.h"

#include <gtest/gtest.h>
#include <string>
#include <unistd.h>
#include <utility>
#include <vector>

namespace kvr::netlistdb::tool {
namespace {

/// Rows with the numbers from 0 on and a text, several in one step.
class NumberRows : public RowSource {
  public:
    NumberRows(std::uint64_t count, std::string text) : m_count(count), m_text(std::move(text)) {}
    std::vector<Column> columns() const override { return {{"n", nullptr}, {"text", nullptr}}; }
    bool step(ResultWriter &writer) override
    {
        for (int each = 0; each < 3 && m_next < m_count; ++each) {
            writer.row({m_next++, std::string_view(m_text)});
        }
        return m_next < m_count;
    }

  private:
    std::uint64_t m_count;
    std::string m_text;
    std::uint64_t m_next = 0;
};

class PagesTest : public testing::Test {
  protected:
    Question question(std::uint64_t count, const std::string &text = "")
    {
        Question question;
        question.key = "numbers";
        question.head = {{"format", "test"}};
        question.rows = "results";
        question.find = [this, count, text] {
            ++m_searches;
            return std::make_unique<NumberRows>(count, text);
        };
        return question;
    }

    std::string text(const Question &question, const Json &given)
    {
        const std::vector<Parameter> parameters = pageParameters();
        // Numbers are as a parser makes them.
        return m_pages.page(question, Arguments(Json::parse(jsonText(given)), parameters), m_call);
    }
    Json page(const Question &question, const Json &given) { return Json::parse(text(question, given)); }

    Pages m_pages;
    MessageWriter m_writer{STDOUT_FILENO};
    Call m_call{1, nullptr, m_writer};
    int m_searches = 0;
};

std::vector<int> numbersOf(const Json &page)
{
    std::vector<int> numbers;
    for (const Json &row : page.at("results")) {
        numbers.push_back(row.at("n").get<int>());
    }
    return numbers;
}

/// Bytes of a page in an answer, which holds it as it is and as a text.
std::size_t sizeInAnswer(const std::string &page)
{
    std::string quoted;
    appendText(quoted, page);
    return page.size() + quoted.size();
}

TEST_F(PagesTest, PageThatHoldsEverythingIsComplete)
{
    EXPECT_EQ(text(question(2), {{"limit", 2}}),
              R"({"format":"test","results":[{"n":0,"text":""},{"n":1,"text":""}],"ending":"complete"})");
    EXPECT_EQ(text(question(0), {}), R"({"format":"test","results":[],"ending":"complete"})");
}

TEST_F(PagesTest, CursorsLeadThroughAllRowsWithOneSearch)
{
    std::vector<int> all;
    Json given = {{"limit", 4}};
    for (;;) {
        const Json each = page(question(10), given);
        const std::vector<int> numbers = numbersOf(each);
        all.insert(all.end(), numbers.begin(), numbers.end());
        if (each.at("ending") == "complete") {
            EXPECT_FALSE(each.contains("next_cursor"));
            break;
        }
        given["cursor"] = each.at("next_cursor");
    }
    EXPECT_EQ(all, (std::vector<int>{0, 1, 2, 3, 4, 5, 6, 7, 8, 9}));
    EXPECT_EQ(m_searches, 1);
}

TEST_F(PagesTest, AnyCursorMayBeUsedAgainWithAnotherLimit)
{
    const Json first = page(question(10), {{"limit", 4}});
    const Json cursor = first.at("next_cursor");
    EXPECT_EQ(numbersOf(page(question(10), {{"limit", 2}, {"cursor", cursor}})), (std::vector<int>{4, 5}));
    EXPECT_EQ(numbersOf(page(question(10), {{"limit", 3}, {"cursor", cursor}})), (std::vector<int>{4, 5, 6}));
    EXPECT_EQ(numbersOf(page(question(10), {{"limit", 3}})), (std::vector<int>{0, 1, 2}));
}

TEST_F(PagesTest, CursorOfAnotherQuestionIsRefused)
{
    const Json cursor = page(question(10), {{"limit", 4}}).at("next_cursor");
    Question other = question(10);
    other.key = "others";
    for (const Json &wrong : {cursor, Json("5"), Json(""), Json("zz"), Json("5-"), Json("99999999999999999999-1")}) {
        EXPECT_THROW(page(other, {{"cursor", wrong}}), Failure) << wrong;
    }
}

TEST_F(PagesTest, AnswerKeepsWithinItsBytesWhateverTheRowsHold)
{
    for (const char *row : {"plain text of a row", "\"\\\"\\", "\n\x01\t\x7F", "\xC3\xA9\xE2\x82\xAC", "\xFF\xFE"}) {
        std::string content;
        while (content.size() < 100) {
            content += row;
        }
        Json given = {{"limit", 1000}, {"max_bytes", 4096}};
        int found = 0;
        Json each;
        do {
            const std::string answer = text(question(100, content), given);
            EXPECT_LE(sizeInAnswer(answer), 4096U) << row;
            each = Json::parse(answer);
            EXPECT_FALSE(each.at("results").empty()) << row;
            found += static_cast<int>(each.at("results").size());
            given["cursor"] = each.value("next_cursor", "");
        } while (each.at("ending") == "limit");
        EXPECT_EQ(found, 100) << row;
    }
}

TEST_F(PagesTest, RowThatIsTooLongSaysWhatItTakesAndComesWithAHigherBound)
{
    const Question wide = question(3, std::string(5000, 'x'));
    std::string fault;
    try {
        page(wide, {{"max_bytes", 4096}});
    } catch (const Failure &failure) {
        fault = failure.what();
    }
    EXPECT_NE(fault.find("of which max_bytes allows 4096"), std::string::npos) << fault;
    EXPECT_EQ(numbersOf(page(wide, {{"max_bytes", 100'000}})), (std::vector<int>{0, 1, 2}));
    EXPECT_EQ(m_searches, 1);
}

TEST_F(PagesTest, ManyQuestionsAreAnsweredWhateverIsKept)
{
    std::vector<Json> cursors;
    for (int number = 0; number < 20; ++number) {
        Question each = question(10);
        each.key = "numbers " + std::to_string(number);
        cursors.push_back(page(each, {{"limit", 4}}).at("next_cursor"));
    }
    for (int number = 0; number < 20; ++number) {
        Question each = question(10);
        each.key = "numbers " + std::to_string(number);
        EXPECT_EQ(numbersOf(page(each, {{"limit", 1}, {"cursor", cursors[static_cast<std::size_t>(number)]}})),
                  std::vector<int>{4});
    }
    EXPECT_GT(m_searches, 20) << "not everything is kept for ever";
}

TEST_F(PagesTest, CancelledCallEndsAtTheNextStep)
{
    m_call.cancel();
    EXPECT_THROW(page(question(10), {}), CallCancelled);
}

} // namespace
} // namespace kvr::netlistdb::tool
