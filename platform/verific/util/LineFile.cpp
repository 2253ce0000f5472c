#include "LineFile.h"

#include <cstring>
#include <deque>
#include <filesystem>
#include <limits>
#include <memory>
#include <string>
#include <unordered_map>

namespace Verific {

namespace {

struct SourceFile {
    std::string name;
    std::string absolute;
    bool absoluteKnown;
    bool madeAbsolute; ///< from the name and the working directory
};

/// Files by number. A number is given only once in a process, so that a handle from before DeleteAllLineFiles() never
/// comes to mean another file.
class FileTable {
  public:
    /// Number of the file under @p key, or 0.
    std::uint32_t find(const std::string &key) const
    {
        const auto found = m_numbers.find(key);
        return found == m_numbers.end() ? 0 : found->second;
    }

    std::uint32_t add(const std::string &key, SourceFile file)
    {
        if (m_next == std::numeric_limits<std::uint32_t>::max()) {
            return 0;
        }
        m_files.push_back(std::move(file));
        try {
            m_numbers.emplace(key, m_next);
        } catch (...) {
            m_files.pop_back();
            throw;
        }
        return m_next++;
    }

    const SourceFile *at(std::uint32_t number) const
    {
        return number >= m_first && number < m_next ? &m_files[number - m_first] : nullptr;
    }

    void clear()
    {
        m_files.clear();
        forgetNumbers();
        m_first = m_next;
    }

    void forgetNumbers()
    {
        m_numbers.clear();
        lastGiven = 0;
    }

    std::uint32_t lastGiven = 0; ///< the file named by the latest call without an absolute path, 0: none

  private:
    std::deque<SourceFile> m_files; ///< the texts that callers hold must not move
    std::unordered_map<std::string, std::uint32_t> m_numbers;
    std::uint32_t m_first = 1;
    std::uint32_t m_next = 1;
};

FileTable &table()
{
    // Never destroyed: handles may be queried while other static objects are destroyed.
    static FileTable &files = *std::make_unique<FileTable>().release();
    return files;
}

/// Directory in front of relative paths; empty: the working directory.
std::string &root()
{
    static std::string &directory = *std::make_unique<std::string>().release();
    return directory;
}

linefile_type handleOf(std::uint32_t number, unsigned line)
{
    return number == 0 ? 0 : (static_cast<linefile_type>(number) << 32) | line;
}

std::uint32_t numberOf(linefile_type handle)
{
    return static_cast<std::uint32_t>(handle >> 32);
}

} // namespace

linefile_type LineFile::EncodeLineFile(const char *file, unsigned line)
{
    if (file == nullptr || *file == '\0') {
        return 0;
    }
    FileTable &files = table();
    const SourceFile *last = files.at(files.lastGiven);
    if (last != nullptr && last->name == file) {
        return handleOf(files.lastGiven, line);
    }
    std::string key = std::string("g") + file;
    std::uint32_t number = files.find(key);
    if (number == 0) {
        std::error_code failed;
        const std::filesystem::path absolute =
            std::filesystem::absolute(std::filesystem::path(root()) / file, failed).lexically_normal();
        const bool relative = std::filesystem::path(file).is_relative();
        number = files.add(key, SourceFile{file, failed ? std::string() : absolute.string(), !failed, relative});
    }
    files.lastGiven = number;
    return handleOf(number, line);
}

linefile_type LineFile::EncodeLineFile(const char *file, const char *absolute, unsigned line)
{
    if (file == nullptr || *file == '\0') {
        return 0;
    }
    FileTable &files = table();
    std::string key = absolute != nullptr ? "a" : "u";
    key += file;
    if (absolute != nullptr) {
        key.push_back('\0');
        key += absolute;
    }
    std::uint32_t number = files.find(key);
    if (number == 0) {
        number = files.add(key, SourceFile{file, absolute != nullptr ? absolute : "", absolute != nullptr, false});
    }
    return handleOf(number, line);
}

linefile_type LineFile::OtherLine(linefile_type handle, unsigned line)
{
    return handleOf(numberOf(handle), line);
}

const char *LineFile::GetAbsFileName(linefile_type handle)
{
    const SourceFile *file = table().at(numberOf(handle));
    return file != nullptr && file->absoluteKnown ? file->absolute.c_str() : nullptr;
}

void LineFile::SetRoot(const char *directory)
{
    root() = directory != nullptr ? directory : "";
    ResetFileIdMaps();
}

bool LineFile::IsMadeAbsolute(linefile_type handle)
{
    const SourceFile *file = table().at(numberOf(handle));
    return file != nullptr && file->absoluteKnown && file->madeAbsolute;
}

const char *LineFile::GetFileName(linefile_type handle)
{
    const SourceFile *file = table().at(numberOf(handle));
    return file != nullptr ? file->name.c_str() : nullptr;
}

unsigned LineFile::GetLineNo(linefile_type handle)
{
    return table().at(numberOf(handle)) != nullptr ? static_cast<unsigned>(handle & 0xFFFFFFFFu) : 0;
}

void LineFile::DeleteAllLineFiles()
{
    table().clear();
}

void LineFile::ResetFileIdMaps()
{
    table().forgetNumbers();
}

} // namespace Verific
