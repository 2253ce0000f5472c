#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <zlib.h>

namespace kvr::netlistdb::tool {

class OutputStream;

/// A part of the data of a page while it is written: compressed with gzip, in base64, inside an element of its own.
class PagePart {
  public:
    /// Writes to @p output, which must outlive the part. @p id names the element.
    PagePart(OutputStream &output, std::string_view id);
    ~PagePart();
    PagePart(const PagePart &) = delete;
    PagePart &operator=(const PagePart &) = delete;

    /// Appends @p text. @throws as OutputStream
    void write(std::string_view text);
    /// Bytes written so far, before compression.
    std::uint64_t size() const { return m_size; }
    /// Ends the element. Nothing may follow. @throws as OutputStream
    void end();

  private:
    void deflateAll(int flush);
    void writeBase64(bool isLast);

    OutputStream &m_output;
    z_stream m_stream{};
    std::string m_input;      ///< not compressed yet
    std::string m_compressed; ///< not written yet
    std::uint64_t m_size = 0;
};

} // namespace kvr::netlistdb::tool
