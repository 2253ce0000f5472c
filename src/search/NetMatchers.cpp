// The matchers that report instances, nets and buses.

#include <netlistdb/VDBHelper.h>

#include "search/BoundedExpression.h"
#include "search/FullNameExpression.h"
#include "search/FullNameText.h"
#include "search/ItemCast.h"
#include "search/RequiredText.h"
#include "search/WalkCursor.h"

#include <netlistdb/NameText.h>
#include <netlistdb/TreeIterator.h>
#include <netlistdb/VDBInstance.h>
#include <netlistdb/VDBNet.h>
#include <netlistdb/VDBNetBus.h>
#include <netlistdb/VDBSearchParam.h>

#include <locale>
#include <optional>
#include <stdexcept>
#include <string_view>
#include <typeinfo>

namespace kvr::netlistdb {

namespace {

template <typename Item> Item &notNull(Item *item, const char *complaint)
{
    if (item == nullptr) {
        throw std::runtime_error(complaint);
    }
    return *item;
}

enum class Stop { End, Instance, Net };

/// Moves on to the next instance, which becomes the context, or the next net or bus.
template <typename Cursor> Stop findStop(Cursor &cursor)
{
    for (; !cursor.isEnd(); cursor.next()) {
        IVDBItem *item = cursor.getCurrent();
        const std::uint32_t type = item != nullptr ? item->getItemType() : 0;
        if (type == ITEM_INSTANCE) {
            cursor.setContext(item);
            return Stop::Instance;
        }
        if (type == ITEM_NET || type == ITEM_NET_BUS) {
            return Stop::Net;
        }
    }
    return Stop::End;
}

/// With the cursor on a net or bus: moves on to the next instance, or the next net or bus whose full name passes a
/// test.
template <typename Test, typename Cursor, typename... Arguments>
bool matchFromNet(Cursor cursor, const Arguments &...arguments)
{
    Test test(arguments...);
    const IVDBItem *entered = nullptr;
    Stop stop = Stop::Net;
    while (stop == Stop::Net) {
        const IVDBNetBase &net =
            notNull(itemCast<IVDBNetBase, VDBNet, VDBNetBus>(cursor.getCurrent()), "Unknown item iterated");
        IVDBItem *context = cursor.getContext();
        if (context == nullptr || context != entered) {
            test.enter(notNull(itemCast<IVDBInstance, VDBInstance>(context), "Unknown item saved in context"));
            entered = context;
        }
        if (test(nameText(net))) {
            return true;
        }
        cursor.next();
        stop = findStop(cursor);
    }
    return stop == Stop::Instance;
}

/// Moves on to the next instance, or the next net or bus whose full name passes a test. The test is made from
/// @p arguments when the first net comes: many a call moves from one instance straight to the next.
template <typename Test, typename Cursor, typename... Arguments>
bool matchNetNamesAt(Cursor cursor, const Arguments &...arguments)
{
    const Stop stop = findStop(cursor);
    return stop == Stop::Net ? matchFromNet<Test>(cursor, arguments...) : stop == Stop::Instance;
}

bool isPlainWalk(const TreeIterator &iterator)
{
    return typeid(iterator) == typeid(BFSItemIterator);
}

template <typename Test, typename... Arguments>
bool matchNetNames(TreeIterator &iterator, const Arguments &...arguments)
{
    if (isPlainWalk(iterator)) {
        return matchNetNamesAt<Test>(WalkCursor(static_cast<BFSItemIterator &>(iterator)), arguments...);
    }
    return matchNetNamesAt<Test>(AnyCursor(iterator), arguments...);
}

template <typename Cursor> bool matchAllNetAt(Cursor cursor)
{
    const Stop stop = findStop(cursor);
    if (stop == Stop::Net) {
        IVDBItem *item = cursor.getCurrent();
        if (item->getItemType() == ITEM_NET_BUS) {
            notNull(itemCast<IVDBNetBus, VDBNetBus>(item), "Unknown item iterated");
        } else {
            notNull(itemCast<IVDBNet, VDBNet>(item), "Unknown item iterated");
        }
    }
    return stop != Stop::End;
}

/// An expression behind the text that stands in all it matches, which is much quicker to look for.
class ScreenedExpression {
  public:
    ScreenedExpression(const std::regex &expression, const std::string &text, std::optional<CaseFold> fold)
        : m_expression(expression), m_text(text, fold)
    {
    }

    void enter(const IVDBInstance &instance)
    {
        m_text.enter(instance);
        m_expression.enter(instance);
    }

    bool operator()(std::string_view name) { return m_text(name) && m_expression(name); }

  private:
    FullNameExpression m_expression;
    FullNameText m_text;
};

bool matchPattern(TreeIterator &iterator, const std::string &pattern, bool ignoreCase)
{
    const std::regex expression =
        compileBounded(pattern, ignoreCase ? std::regex_constants::icase : std::regex_constants::ECMAScript);
    const std::string text = requiredText(pattern);
    if (text.empty()) {
        return VDBHelper::matchNetRegex(&iterator, expression);
    }
    const std::locale locale = expression.getloc();
    return matchNetNames<ScreenedExpression>(iterator, expression, text,
                                             ignoreCase ? std::optional(CaseFold(locale)) : std::nullopt);
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
    if (isPlainWalk(*iterator)) {
        return matchAllNetAt(WalkCursor(static_cast<BFSItemIterator &>(*iterator)));
    }
    return matchAllNetAt(AnyCursor(*iterator));
}

bool VDBHelper::matchNet(TreeIterator *iterator, const std::string &pattern, bool ignoreCase)
{
    return ignoreCase ? matchNetNames<FullNameText>(*iterator, pattern, CaseFold())
                      : matchNetNames<FullNameText>(*iterator, pattern);
}

bool VDBHelper::matchNetRegex(TreeIterator *iterator, const std::regex &expression)
{
    return matchNetNames<FullNameExpression>(*iterator, expression);
}

} // namespace kvr::netlistdb
