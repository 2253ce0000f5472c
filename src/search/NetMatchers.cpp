// The matchers that report instances, nets and buses.

#include <netlistdb/VDBHelper.h>

#include "search/CaseFold.h"
#include "search/FullNameExpression.h"
#include "search/FullNameText.h"
#include "search/RequiredText.h"

#include <netlistdb/IVDBInstance.h>
#include <netlistdb/IVDBNet.h>
#include <netlistdb/IVDBNetBus.h>
#include <netlistdb/TreeIterator.h>
#include <netlistdb/VDBSearchParam.h>

#include <optional>
#include <stdexcept>

namespace kvr::netlistdb {

namespace {

template <typename Kind> Kind &checked(IVDBItem *item, const char *complaint)
{
    auto *result = dynamic_cast<Kind *>(item);
    if (result == nullptr) {
        throw std::runtime_error(complaint);
    }
    return *result;
}

/// Moves on to the next instance, which becomes the context, or the next net or bus that @p hit takes.
template <typename Hit> bool matchNets(TreeIterator &iterator, Hit hit)
{
    for (; !iterator.isEnd(); iterator.next()) {
        IVDBItem *item = iterator.getCurrent();
        const std::uint32_t type = item != nullptr ? item->getItemType() : 0;
        if (type == ITEM_INSTANCE) {
            iterator.setContext(item);
            return true;
        }
        if ((type == ITEM_NET || type == ITEM_NET_BUS) && hit(item, type)) {
            return true;
        }
    }
    return false;
}

/// Moves on to the next instance, or the next net or bus whose full name passes @p test.
template <typename Test> bool matchNetNames(TreeIterator &iterator, Test &test)
{
    const IVDBItem *entered = nullptr;
    return matchNets(iterator, [&](IVDBItem *item, std::uint32_t) {
        const auto &net = checked<IVDBNetBase>(item, "Unknown item iterated");
        IVDBItem *context = iterator.getContext();
        if (context == nullptr || context != entered) {
            test.enter(checked<IVDBInstance>(context, "Unknown item saved in context"));
            entered = context;
        }
        return test(net.getName());
    });
}

/// An expression behind the text that stands in all it matches, which is much quicker to look for.
class ScreenedExpression {
  public:
    ScreenedExpression(const std::regex &expression, const std::string &text, const CaseFold *fold)
        : m_expression(expression), m_text(text, fold)
    {
    }

    void enter(const IVDBInstance &instance)
    {
        m_text.enter(instance);
        m_expression.enter(instance);
    }

    bool operator()(const std::string &name) { return m_text(name) && m_expression(name); }

  private:
    FullNameExpression m_expression;
    FullNameText m_text;
};

bool matchPattern(TreeIterator &iterator, const std::string &pattern, bool ignoreCase)
{
    const std::regex expression(pattern, ignoreCase ? std::regex_constants::icase : std::regex_constants::ECMAScript);
    const std::string text = requiredText(pattern);
    if (text.empty()) {
        return VDBHelper::matchNetRegex(&iterator, expression);
    }
    std::optional<CaseFold> fold;
    if (ignoreCase) {
        fold = CaseFold::ofLocale(expression.getloc());
    }
    ScreenedExpression test(expression, text, fold ? &*fold : nullptr);
    return matchNetNames(iterator, test);
}

} // namespace

bool VDBHelper::matchParam(TreeIterator *iterator, const VDBSearchParam &param)
{
    if (!param.filterByName) {
        return matchAllNet(iterator);
    }
    if (!param.useRegex) {
        return matchNet(iterator, param.pattern, param.ignoreCase);
    }
    return matchPattern(*iterator, param.pattern, param.ignoreCase);
}

bool VDBHelper::matchAllNet(TreeIterator *iterator)
{
    return matchNets(*iterator, [](IVDBItem *item, std::uint32_t type) {
        if (type == ITEM_NET_BUS) {
            checked<IVDBNetBus>(item, "Unknown item iterated");
        } else {
            checked<IVDBNet>(item, "Unknown item iterated");
        }
        return true;
    });
}

bool VDBHelper::matchNet(TreeIterator *iterator, const std::string &pattern, bool ignoreCase)
{
    std::optional<CaseFold> fold;
    if (ignoreCase) {
        fold = CaseFold::ofCLibrary();
    }
    FullNameText test(pattern, fold ? &*fold : nullptr);
    return matchNetNames(*iterator, test);
}

bool VDBHelper::matchNetRegex(TreeIterator *iterator, const std::regex &expression)
{
    FullNameExpression test(expression);
    return matchNetNames(*iterator, test);
}

} // namespace kvr::netlistdb
