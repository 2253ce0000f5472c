#include "FileText.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <simdjson.h>

namespace kvr::netlistdb::yosys {

namespace {

constexpr std::size_t READ_SIZE = std::size_t{256} * 1024;

bool isBlank(char c)
{
    return c == ' ' || c == '\t';
}

/// Eight bytes of a text. Lines are short: calls of memchr() and memcpy() for each take longer than this.
class EightBytes {
  public:
    static constexpr std::ptrdiff_t SIZE = 8;

    explicit EightBytes(const char *text) { std::memcpy(&m_word, text, SIZE); }
    void copyTo(char *text) const { std::memcpy(text, &m_word, SIZE); }
    /// The number of bytes before the first @p c; SIZE when there is none.
    std::ptrdiff_t before(char c) const { return leading(~zeros(m_word ^ repeated(c))); }
    /// The number of bytes that it begins with and that are @p c.
    std::ptrdiff_t leading(char c) const { return leading(zeros(m_word ^ repeated(c))); }

  private:
    static constexpr std::uint64_t LOW_BITS = 0x7F7F7F7F7F7F7F7F;

    static std::uint64_t repeated(char c) { return std::uint64_t{0x0101010101010101} * static_cast<unsigned char>(c); }
    /// All bits of each byte that is zero.
    static std::uint64_t zeros(std::uint64_t word)
    {
        const std::uint64_t high = ~(((word & LOW_BITS) + LOW_BITS) | word | LOW_BITS); // no carry leaves a byte
        return (high >> 7) * 0xFF;
    }
    /// The number of bytes that @p word begins with, in memory, and that have all bits.
    static std::ptrdiff_t leading(std::uint64_t word)
    {
        if (word == ~std::uint64_t{0}) {
            return SIZE;
        }
#if __BYTE_ORDER__ == __ORDER_LITTLE_ENDIAN__
        return __builtin_ctzll(~word) / 8;
#else
        return __builtin_clzll(~word) / 8;
#endif
    }

    std::uint64_t m_word;
};

/// The first character of [@p begin, @p end) that is no blank.
const char *skipBlanks(const char *begin, const char *end)
{
    for (; end - begin >= EightBytes::SIZE; begin += EightBytes::SIZE) {
        const std::ptrdiff_t blanks = EightBytes(begin).leading(' ');
        if (blanks < EightBytes::SIZE) {
            begin += blanks;
            break;
        }
    }
    return std::find_if_not(begin, end, isBlank);
}

/// Copies [@p begin, @p end) to @p to, with the first line break at most, and moves @p to behind it. Returns what is
/// left. Up to EightBytes::SIZE bytes behind the copy are overwritten, which is no more than what is left.
const char *copyLine(const char *begin, const char *end, char *&to)
{
    for (; end - begin >= EightBytes::SIZE; begin += EightBytes::SIZE, to += EightBytes::SIZE) {
        const EightBytes bytes(begin);
        bytes.copyTo(to);
        const std::ptrdiff_t text = bytes.before('\n');
        if (text < EightBytes::SIZE) {
            to += text + 1;
            return begin + text + 1;
        }
    }
    while (begin != end) {
        const char c = *begin++;
        *to++ = c;
        if (c == '\n') {
            break;
        }
    }
    return begin;
}

} // namespace

FileText::FileText(const std::string &path, std::uint64_t size, const ReadFault &fault)
    : m_path(path), m_capacity(static_cast<std::size_t>(size) + simdjson::SIMDJSON_PADDING),
      m_data(new char[m_capacity])
{
    const std::unique_ptr<char[]> block(new char[READ_SIZE]);
    const std::unique_ptr<std::FILE, int (*)(std::FILE *)> file(std::fopen(path.c_str(), "rbe"), &std::fclose);
    for (std::uint64_t left = size; left > 0;) {
        const std::size_t wanted = std::min<std::uint64_t>(left, READ_SIZE);
        const std::size_t count = file ? std::fread(block.get(), 1, wanted, file.get()) : 0;
        if (count < wanted) {
            const bool isShorter = file && std::ferror(file.get()) == 0;
            fault.fail(std::string("cannot read the file: ") +
                       (isShorter ? "it became shorter meanwhile" : std::strerror(errno)));
        }
        addBlock(block.get(), block.get() + count);
        left -= count;
    }
    std::memset(m_data.get() + m_size, 0, simdjson::SIMDJSON_PADDING);
}

void FileText::addBlock(const char *begin, const char *end)
{
    char *to = m_data.get() + m_size;
    for (const char *at = begin;;) {
        if (m_isLineStart) {
            at = skipBlanks(at, end);
        }
        if (at == end) {
            break;
        }
        at = copyLine(at, end, to);
        m_isLineStart = to[-1] == '\n';
    }
    m_size = static_cast<std::size_t>(to - m_data.get());
}

std::size_t FileText::blanksOf(std::size_t number) const
{
    std::ifstream file(m_path, std::ios::binary);
    std::string line;
    for (std::size_t at = 0; at < number; ++at) {
        if (!std::getline(file, line)) {
            return 0;
        }
    }
    const auto blanks = std::find_if_not(line.begin(), line.end(), isBlank) - line.begin();
    return number > 1 ? static_cast<std::size_t>(blanks) : 0;
}

} // namespace kvr::netlistdb::yosys
