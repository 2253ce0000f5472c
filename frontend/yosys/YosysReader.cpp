#include "YosysReader.h"

#include "JsonFile.h"
#include "NetlistReader.h"
#include "ReadFault.h"
#include "ShortText.h"

#include <algorithm>

namespace kvr::netlistdb::yosys {

namespace {

/// The progress of a file that may be read twice: it never falls.
class RisingProgress {
  public:
    explicit RisingProgress(const ReadOptions &options) : m_options(options)
    {
        if (options.progress) {
            m_options.progress = [this, told = options.progress](std::uint64_t done, std::uint64_t total) {
                m_done = std::max(m_done, done);
                m_isTelling = true;
                const bool goOn = told(m_done, total);
                m_isTelling = false;
                return goOn;
            };
        }
    }
    RisingProgress(const RisingProgress &) = delete;
    RisingProgress &operator=(const RisingProgress &) = delete;

    /// Options with this progress; end with the object.
    const ReadOptions &options() const { return m_options; }
    /// True when the caller's function threw.
    bool hasThrown() const { return m_isTelling; }

  private:
    ReadOptions m_options;
    std::uint64_t m_done = 0;
    bool m_isTelling = false;
};

} // namespace

Verific::Netlist *readJsonFile(const std::string &path, const ShortText::Sizes &sizes, const ReadOptions &options)
{
    const ReadFault fault(path);
    const JsonFile file(path, fault);
    RisingProgress progress(options);
    {
        const ShortText text(file, sizes);
        try {
            return readJsonText(text.input(), path, progress.options());
        } catch (const ReadError &) {
            if (text.sections().empty() || progress.hasThrown()) {
                throw;
            }
        }
    }
    // The text is damaged, or indented in another way than it seems: the whole of it tells which, and where.
    return readJsonText(ShortText(file, ShortText::WHOLE).input(), path, progress.options());
}

Verific::Netlist *readJson(const std::string &path, const ReadOptions &options)
{
    return readJsonFile(path, ShortText::Sizes(), options);
}

} // namespace kvr::netlistdb::yosys
