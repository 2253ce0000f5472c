#include "serve/LineReader.h"

#include <gtest/gtest.h>
#include <string>
#include <thread>
#include <unistd.h>
#include <utility>
#include <vector>

namespace kvr::netlistdb::tool {
namespace {

using Kind = LineReader::Kind;
using Lines = std::vector<std::pair<Kind, std::string>>;

constexpr std::size_t LONGEST = 8;

/// A pipe, both ends of which are closed at the end.
class Pipe {
  public:
    Pipe() { EXPECT_EQ(pipe(m_ends), 0); }
    ~Pipe()
    {
        close(m_ends[0]);
        finish();
    }
    Pipe(const Pipe &) = delete;
    Pipe &operator=(const Pipe &) = delete;

    int out() const { return m_ends[0]; }
    void write(const std::string &bytes) const
    {
        EXPECT_EQ(::write(m_ends[1], bytes.data(), bytes.size()), static_cast<ssize_t>(bytes.size()));
    }
    /// Ends what is read from it.
    void finish()
    {
        if (m_ends[1] >= 0) {
            close(std::exchange(m_ends[1], -1));
        }
    }

  private:
    int m_ends[2] = {-1, -1};
};

/// All lines of @p pieces, which arrive one after the other; of one that is no line its kind only.
Lines linesOf(const std::vector<std::string> &pieces)
{
    Pipe pipe;
    std::thread writer([&] {
        for (const std::string &piece : pieces) {
            pipe.write(piece);
        }
        pipe.finish();
    });
    LineReader reader(pipe.out(), -1, LONGEST);
    Lines lines;
    do {
        std::string line;
        const Kind kind = reader.next(line);
        lines.emplace_back(kind, kind == Kind::Line ? line : "");
    } while (lines.back().first != Kind::End);
    writer.join();
    lines.pop_back();
    return lines;
}

TEST(LineReader, LinesComeWithoutTheirEnds)
{
    EXPECT_EQ(linesOf({"one\ntwo\r\n\n"}), (Lines{{Kind::Line, "one"}, {Kind::Line, "two"}, {Kind::Line, ""}}));
}

TEST(LineReader, LastLineMayLackItsEnd)
{
    EXPECT_EQ(linesOf({"one\ntw", "o"}), (Lines{{Kind::Line, "one"}, {Kind::Line, "two"}}));
    EXPECT_EQ(linesOf({""}), Lines());
}

TEST(LineReader, LineOfTheLongestLengthIsTakenAndALongerOneSkipped)
{
    EXPECT_EQ(linesOf({"12345678\n123456789\nnext\n"}),
              (Lines{{Kind::Line, "12345678"}, {Kind::TooLong, ""}, {Kind::Line, "next"}}));
}

TEST(LineReader, EndlessLineIsSkippedOnceAndNotKept)
{
    const std::string piece(200'000, 'x');
    EXPECT_EQ(linesOf({piece, piece, piece + "\nnext\n"}), (Lines{{Kind::TooLong, ""}, {Kind::Line, "next"}}));
    EXPECT_EQ(linesOf({piece}), (Lines{{Kind::TooLong, ""}}));
}

TEST(LineReader, StopEndsTheWaiting)
{
    const Pipe input;
    const Pipe stop;
    LineReader reader(input.out(), stop.out(), LONGEST);
    std::string line;
    input.write("one\n");
    EXPECT_EQ(reader.next(line), Kind::Line);
    stop.write("x");
    EXPECT_EQ(reader.next(line), Kind::Stopped);
}

} // namespace
} // namespace kvr::netlistdb::tool
