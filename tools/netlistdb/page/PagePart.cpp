#include "page/PagePart.h"

#include "output/OutputStream.h"

#include <fmt/format.h>
#include <new>

namespace kvr::netlistdb::tool {

namespace {

constexpr std::size_t BLOCK = std::size_t(1) << 16;
constexpr int GZIP = 15 + 16; ///< the largest window, with the header of gzip

/// @p bytes in base64, padded at the end.
std::string base64(std::string_view bytes)
{
    constexpr std::string_view DIGITS = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
    std::string text;
    text.reserve((bytes.size() + 2) / 3 * 4);
    for (std::size_t at = 0; at < bytes.size(); at += 3) {
        std::uint32_t three = 0;
        for (std::size_t byte = 0; byte < 3; ++byte) {
            three = three << 8 | (at + byte < bytes.size() ? static_cast<unsigned char>(bytes[at + byte]) : 0U);
        }
        for (std::size_t digit = 0; digit < 4; ++digit) {
            text += at + digit > bytes.size() ? '=' : DIGITS[three >> (18 - 6 * digit) & 63U];
        }
    }
    return text;
}

} // namespace

PagePart::PagePart(OutputStream &output, std::string_view id) : m_output(output)
{
    if (deflateInit2(&m_stream, Z_BEST_COMPRESSION - 2, Z_DEFLATED, GZIP, 9, Z_DEFAULT_STRATEGY) != Z_OK) {
        throw std::bad_alloc();
    }
    m_output.write(fmt::format("<script type=\"application/gzip\" id=\"{}\">", id));
}

PagePart::~PagePart()
{
    deflateEnd(&m_stream);
}

void PagePart::write(std::string_view text)
{
    m_size += text.size();
    m_input += text;
    if (m_input.size() >= BLOCK) {
        deflateAll(Z_NO_FLUSH);
        writeBase64(false);
    }
}

void PagePart::end()
{
    deflateAll(Z_FINISH);
    writeBase64(true);
    m_output.write("</script>\n");
}

void PagePart::deflateAll(int flush)
{
    // zlib takes what it reads as not constant, although it is.
    m_stream.next_in = reinterpret_cast<Bytef *>(m_input.data());
    m_stream.avail_in = static_cast<uInt>(m_input.size());
    do {
        const std::size_t before = m_compressed.size();
        m_compressed.resize(before + BLOCK);
        m_stream.next_out = reinterpret_cast<Bytef *>(m_compressed.data() + before);
        m_stream.avail_out = static_cast<uInt>(BLOCK);
        deflate(&m_stream, flush);
        m_compressed.resize(before + BLOCK - m_stream.avail_out);
    } while (m_stream.avail_out == 0);
    m_input.clear();
}

void PagePart::writeBase64(bool isLast)
{
    const std::size_t whole = isLast ? m_compressed.size() : m_compressed.size() / 3 * 3;
    m_output.write(base64(std::string_view(m_compressed).substr(0, whole)));
    m_compressed.erase(0, whole);
}

} // namespace kvr::netlistdb::tool
