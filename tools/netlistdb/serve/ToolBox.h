#pragma once

#include "output/Json.h"
#include "serve/Call.h"
#include "serve/Pages.h"
#include "serve/Tool.h"

#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace kvr::netlistdb::tool {

/// The tools, and the designs that they are about.
class ToolBox {
  public:
    /// @p designs must outlive the object.
    explicit ToolBox(std::vector<ServedDesign> &designs);

    /// What `tools/list` shows.
    Json list() const;
    /// What an assistant should know before it asks.
    std::string instructions() const;
    /// The tool called @p name.
    /// @throws RpcFailure when there is none, about the request @p id.
    const Tool &find(const std::string &name, const Json &id) const;

    /// Runs @p tool. For one thread. Returns the result of the call as JSON, with @p more, members and a comma in
    /// front, at its end. A question that cannot be answered gives a result, too, which says why.
    /// @throws CallCancelled, Interrupted, OutputClosed; Failure when writing fails.
    std::string run(const Tool &tool, const Json &arguments, Call &call, const std::string &more);

  private:
    std::vector<Parameter> parametersOf(const Tool &tool) const;
    ServedDesign &designOf(const Arguments &arguments) const;
    std::string answer(const Tool &tool, const Json &given, Call &call);

    std::vector<ServedDesign> &m_designs;
    std::vector<std::unique_ptr<Tool>> m_tools;
    Pages m_pages;
};

} // namespace kvr::netlistdb::tool
