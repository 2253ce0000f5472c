// Any pattern over any names: the search answers what the full names written out would.
//
// Input: one byte of flags, then lines: the pattern, the instance's name, and the nets' names. Texts are cut short and
// expressions that repeat repetitions are left out, because std::regex takes exponential time for those.

#include <netlistdb/BFSItemIterator.h>
#include <netlistdb/VDBHelper.h>

#include "tests/support/MockItems.h"

#include <algorithm>
#include <cctype>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <regex>
#include <string>

using namespace kvr::netlistdb;

namespace {

constexpr std::size_t longestPattern = 16;
constexpr std::size_t longestName = 12;
constexpr std::size_t mostNets = 16;
constexpr std::ptrdiff_t mostRepetitions = 3;

std::string nextLine(std::string &text, std::size_t longest)
{
    const std::size_t end = std::min(text.find('\n'), text.size());
    const std::string line = text.substr(0, std::min(end, longest));
    text.erase(0, end + 1);
    return line;
}

std::string lower(std::string text)
{
    std::transform(text.begin(), text.end(), text.begin(),
                   [](char c) { return static_cast<char>(std::tolower(static_cast<unsigned char>(c))); });
    return text;
}

/// False for repetitions of repetitions, and for counts of thousands: the search refuses those for lack of stack, which
/// the frames of a sanitized build use up sooner.
bool isQuick(const std::string &expression)
{
    static const std::regex longCount("[{,][0-9]{4}");
    if (std::regex_search(expression, longCount)) {
        return false;
    }
    const std::string quantifiers = "*+?{";
    std::ptrdiff_t repetitions = 0;
    for (std::size_t i = 0; i < expression.size(); ++i) {
        if (quantifiers.find(expression[i]) != std::string::npos) {
            ++repetitions;
            if (i > 0 && (expression[i - 1] == '}' || quantifiers.find(expression[i - 1]) != std::string::npos)) {
                return false;
            }
        }
    }
    return repetitions <= (expression.find('(') == std::string::npos ? mostRepetitions : 1);
}

bool isHit(const VDBSearchParam &param, const std::regex &expression, const std::string &name)
{
    if (!param.filterByName) {
        return true;
    }
    if (param.useRegex) {
        return std::regex_search(name, expression, std::regex_constants::match_any);
    }
    return (param.ignoreCase ? lower(name).find(lower(param.pattern)) : name.find(param.pattern)) != std::string::npos;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    if (size == 0) {
        return 0;
    }
    const unsigned flags = data[0];
    std::string text(data + 1, data + size);
    VDBSearchParam param;
    param.filterByName = (flags & 1) == 0;
    param.useRegex = (flags & 2) != 0;
    param.ignoreCase = (flags & 4) != 0;
    param.sortItems = (flags & 8) != 0;
    param.nameOrder = (flags & 16) != 0 ? SORT_DESCENDING : SORT_ASCENDING;
    param.pattern = nextLine(text, longestPattern);
    if (param.useRegex && !isQuick(param.pattern)) {
        return 0;
    }

    testsupport::MockTree tree;
    testsupport::MockNetlist &module = tree.module("module");
    testsupport::MockInstance &top = tree.instance(nextLine(text, longestName), &module);
    while (!text.empty() && module.nets.size() < mostNets) {
        tree.net(module, nextLine(text, longestName));
    }
    param.startItem = &top;

    std::regex expression;
    bool isValid = true;
    if (param.filterByName && param.useRegex) {
        try {
            expression.assign(param.pattern,
                              param.ignoreCase ? std::regex_constants::icase : std::regex_constants::ECMAScript);
        } catch (const std::regex_error &) {
            isValid = false;
        }
    }
    BFSItemIterator walk(nullptr, param);
    BFSItemIterator found(nullptr, param);
    try {
        for (; !walk.isEnd(); walk.next()) {
            auto *net = dynamic_cast<IVDBNet *>(walk.getCurrent());
            if (net != nullptr && !isHit(param, expression, VDBHelper::getNetFullName(net, &top))) {
                continue;
            }
            if (!VDBHelper::matchParam(&found, param) || !isValid || found.getCurrent() != walk.getCurrent()) {
                std::abort();
            }
            found.next();
        }
        if (VDBHelper::matchParam(&found, param)) {
            std::abort();
        }
    } catch (const std::regex_error &) {
        if (isValid) {
            std::abort();
        }
    }
    return 0;
}
