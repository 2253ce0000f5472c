#include "design/VerilogSources.h"

#include "base/Failure.h"
#include "design/FileListWords.h"
#include "design/InputFile.h"

#include <algorithm>
#include <filesystem>
#include <fmt/format.h>
#include <optional>
#include <string_view>

namespace kvr::netlistdb::tool {

namespace {

namespace fs = std::filesystem;

class FileListReader {
  public:
    FileListReader(std::vector<std::string> &sources, VerilogOptions &options) : m_sources(sources), m_options(options)
    {
    }

    void read(const std::string &list)
    {
        if (std::find(m_open.begin(), m_open.end(), list) != m_open.end()) {
            throw refused(list, "is a file list that names itself");
        }
        m_open.push_back(list);
        const std::vector<FileListWord> words = wordsOfFileList(list, readText(list));
        for (std::size_t at = 0; at < words.size(); ++at) {
            take(words, at);
        }
        m_open.pop_back();
    }

  private:
    [[noreturn]] void fail(const FileListWord &word, const std::string &fault) const
    {
        throw refused(fmt::format("{}:{}", m_open.back(), word.line), fault);
    }

    /// What an option such as `-I DIR` or `-IDIR` is given; @p at steps over it. Nothing when the word is another one.
    std::optional<std::string> valueOf(const char *option, const std::vector<FileListWord> &words, std::size_t &at)
    {
        const std::string &text = words[at].text;
        const std::string_view name = option;
        if (text.compare(0, name.size(), name) != 0) {
            return std::nullopt;
        }
        if (text.size() > name.size()) {
            return text.substr(name.size());
        }
        if (at + 1 == words.size()) {
            fail(words[at], "nothing follows '" + text + "'");
        }
        return words[++at].text;
    }

    void take(const std::vector<FileListWord> &words, std::size_t &at)
    {
        const FileListWord &word = words[at];
        if (word.text.compare(0, 8, "+incdir+") == 0) {
            addEach(word, 8, [this, &word](const std::string &part) { addDirectory(word, part); });
        } else if (word.text.compare(0, 8, "+define+") == 0) {
            addEach(word, 8, [this](const std::string &part) { m_options.defines.push_back(part); });
        } else if (const auto directory = valueOf("-I", words, at)) {
            addDirectory(word, *directory);
        } else if (const auto define = valueOf("-D", words, at)) {
            m_options.defines.push_back(*define);
        } else if (word.text == "-f" || word.text == "-F") {
            read(found(word, *valueOf(word.text.c_str(), words, at)));
        } else if (word.text == "-sv") {
            // Every source is read as SystemVerilog.
        } else if (word.text.empty()) {
            fail(word, "an empty word");
        } else if (word.text.front() == '-' || word.text.front() == '+') {
            fail(word, "'" + word.text + "' is no option of a file list; there are -I, +incdir+, -D, +define+ and -f");
        } else {
            m_sources.push_back(found(word, word.text));
        }
    }

    /// Calls @p add with each of the parts behind the first @p skipped characters, which a plus sign separates.
    template <typename Add> static void addEach(const FileListWord &word, std::size_t skipped, Add add)
    {
        for (std::size_t begin = skipped; begin < word.text.size();) {
            const std::size_t end = std::min(word.text.find('+', begin), word.text.size());
            if (end > begin) {
                add(word.text.substr(begin, end - begin));
            }
            begin = end + 1;
        }
    }

    void addDirectory(const FileListWord &word, const std::string &directory)
    {
        m_options.includeDirectories.push_back(found(word, directory));
    }

    /// @p path from the directory of the list, or else from the working directory.
    std::string found(const FileListWord &word, const std::string &path) const
    {
        std::error_code ignored;
        const fs::path beside = fs::path(m_open.back()).parent_path() / path;
        if (fs::exists(beside, ignored)) {
            return beside.string();
        }
        if (!fs::exists(path, ignored)) {
            fail(word, "there is no '" + path + "' beside the list or in the working directory");
        }
        return path;
    }

    std::vector<std::string> &m_sources;
    VerilogOptions &m_options;
    std::vector<std::string> m_open; ///< the list being read, below it the one that named it, and so on
};

} // namespace

void readFileList(const std::string &list, std::vector<std::string> &sources, VerilogOptions &options)
{
    FileListReader(sources, options).read(list);
}

} // namespace kvr::netlistdb::tool
