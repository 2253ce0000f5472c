#include "SavedColumns.h"

#include "AttTable.h"
#include "LineFile.h"
#include "ParamTable.h"

#include <cstring>
#include <stdexcept>

namespace Verific::saved {

namespace {

/// Chunks of texts are closed beyond this many bytes or texts, well below what one list can hold.
constexpr std::size_t CHUNK_BYTES = std::size_t{64} << 20;
constexpr std::size_t CHUNK_TEXTS = std::size_t{16} << 20;
constexpr std::uint64_t MOST_ELEMENTS = (std::uint64_t{1} << 29) - 1;

} // namespace

unsigned checkedSize(std::uint64_t size)
{
    if (size > MOST_ELEMENTS) {
        throw std::length_error("too many elements for one list");
    }
    return static_cast<unsigned>(size);
}

void TextColumn::add(const char *text)
{
    if (m_chunks.empty() || m_chunks.back().bytes.size() >= CHUNK_BYTES ||
        m_chunks.back().lengths.size() >= CHUNK_TEXTS) {
        m_chunks.emplace_back();
    }
    Chunk &chunk = m_chunks.back();
    const std::size_t length = text != nullptr ? std::strlen(text) : 0;
    chunk.lengths.push_back(text != nullptr ? checkedSize(length) + 1 : 0);
    if (length > 0) {
        chunk.bytes.append(text, length);
    }
    ++m_size;
}

void TextColumn::store(Texts::Builder to) const
{
    auto chunks = to.initChunks(checkedSize(m_chunks.size()));
    for (unsigned at = 0; at < chunks.size(); ++at) {
        const Chunk &chunk = m_chunks[at];
        TextChunk::Builder built = chunks[at];
        std::memcpy(built.initBytes(checkedSize(chunk.bytes.size())).begin(), chunk.bytes.data(), chunk.bytes.size());
        storeList(chunk.lengths, [&built](unsigned size) { return built.initLengths(size); });
    }
}

Row SharedColumns::text(const char *text)
{
    const auto [found, added] = m_textNumbers.emplace(text, static_cast<Row>(m_texts.size()));
    if (added) {
        m_texts.add(text);
    }
    return found->second;
}

Row SharedColumns::attributes(const AttTable *table)
{
    if (table == nullptr) {
        return 0;
    }
    if (table->shared()) {
        const auto known = m_shared.find(table);
        if (known != m_shared.end()) {
            return known->second;
        }
    }
    std::u32string pairs;
    for (const std::unique_ptr<Att> &att : table->atts) {
        pairs.push_back(textOrNone(att->Key()));
        pairs.push_back(textOrNone(att->Value()));
    }
    const Row number = m_attributes.add(pairs) + 1;
    if (table->shared()) {
        m_shared.emplace(table, number);
    }
    return number;
}

Row SharedColumns::parameters(const ParamTable *table)
{
    if (table == nullptr) {
        return 0;
    }
    if (table->shared()) {
        const auto known = m_shared.find(table);
        if (known != m_shared.end()) {
            return known->second;
        }
    }
    std::u32string pairs;
    MapIter iter;
    const char *key = nullptr;
    const char *value = nullptr;
    FOREACH_MAP_ITEM (table->map(), iter, &key, &value) {
        pairs.push_back(textOrNone(key));
        pairs.push_back(textOrNone(value));
    }
    const Row number = m_parameters.add(pairs) + 1;
    if (table->shared()) {
        m_shared.emplace(table, number);
    }
    return number;
}

Row SharedColumns::file(std::uint64_t handle)
{
    const char *name = LineFile::GetFileName(handle);
    if (name == nullptr) {
        return 0;
    }
    const auto [found, added] = m_fileNumbers.emplace(name, static_cast<Row>(m_fileNames.size()) + 1);
    if (added) {
        m_fileNames.push_back(text(name));
        // Of the machine that saves, nothing is kept: a relative path is made absolute where it is restored.
        m_filePaths.push_back(textOrNone(LineFile::IsMadeAbsolute(handle) ? name : LineFile::GetAbsFileName(handle)));
    }
    return found->second;
}

void SharedColumns::store(SavedNetlist::Builder to) const
{
    m_texts.store(to.initTexts());
    storeList(m_fileNames, [&to](unsigned size) { return to.initFileNames(size); });
    storeList(m_filePaths, [&to](unsigned size) { return to.initFilePaths(size); });
    m_attributes.store(to.initAttributeSets());
    m_parameters.store(to.initParameterSets());
}

Row SharedColumns::Sets::add(const std::u32string &pairs)
{
    const auto [found, added] = numbers.emplace(pairs, static_cast<Row>(counts.size()));
    if (added) {
        counts.push_back(static_cast<std::uint32_t>(pairs.size() / 2));
        for (std::size_t at = 0; at < pairs.size(); at += 2) {
            keys.push_back(pairs[at]);
            values.push_back(pairs[at + 1]);
        }
    }
    return found->second;
}

void SharedColumns::Sets::store(PairSets::Builder to) const
{
    storeList(counts, [&to](unsigned size) { return to.initCounts(size); });
    storeList(keys, [&to](unsigned size) { return to.initKeys(size); });
    storeList(values, [&to](unsigned size) { return to.initValues(size); });
}

void ObjectColumns::add(const char *name, std::uint64_t linefile, Row attributes, std::uint8_t flags,
                        SharedColumns &shared)
{
    const std::uint64_t row = size();
    m_names.add(name);
    if (linefile != 0) {
        m_files.set(row, shared.file(linefile));
        m_lines.set(row, LineFile::GetLineNo(linefile));
    }
    m_attributes.set(row, attributes);
    m_flags.set(row, flags);
}

void ObjectColumns::store(Objects::Builder to)
{
    m_names.store(to.initNames());
    storeList(m_files.finish(size()), [&to](unsigned size) { return to.initFiles(size); });
    storeList(m_lines.finish(size()), [&to](unsigned size) { return to.initLines(size); });
    storeList(m_attributes.finish(size()), [&to](unsigned size) { return to.initAttributes(size); });
    storeList(m_flags.finish(size()), [&to](unsigned size) { return to.initFlags(size); });
}

void BusColumns::store(Buses::Builder to)
{
    objects.store(to.initObjects());
    storeList(left, [&to](unsigned size) { return to.initLeft(size); });
    storeList(right, [&to](unsigned size) { return to.initRight(size); });
    storeList(directions, [&to](unsigned size) { return to.initDirections(size); });
    storeList(sizes, [&to](unsigned size) { return to.initSizes(size); });
    storeList(elements, [&to](unsigned size) { return to.initElements(size); });
}

} // namespace Verific::saved
