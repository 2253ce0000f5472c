#pragma once

#include <gtest/gtest.h>

#include <string>
#include <typeinfo>

namespace testsupport {

/// The message of the exception of exactly type @p E that @p call throws; a text that no exception has when it throws
/// none or another.
template <typename E, typename Call> std::string messageOf(Call call)
{
    try {
        call();
    } catch (const E &error) {
        return typeid(error) == typeid(E) ? error.what() : std::string("<thrown as ") + typeid(error).name() + ">";
    } catch (...) {
        return "<another exception>";
    }
    return "<nothing thrown>";
}

} // namespace testsupport
