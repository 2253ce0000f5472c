#pragma once

#include "output/RowSource.h"
#include "serve/Arguments.h"
#include "serve/RowBuffer.h"

#include <cstdint>
#include <functional>
#include <list>
#include <memory>
#include <string>
#include <vector>

namespace kvr::netlistdb::tool {

class Call;

/// The arguments of every tool that cut its answer into pages.
std::vector<Parameter> pageParameters();

/// What is asked for, and how to find it.
struct Question {
    std::string key;  ///< the same for the same question, with all that its rows depend on
    Json head;        ///< members in front of the rows
    const char *rows; ///< name of the member that holds the rows
    std::function<std::unique_ptr<RowSource>()> find;
};

/// Hands out results page by page. A cursor says where its page begins, so that any page can be found from the
/// beginning; the last few results are also kept where their pages ended, and go on from there.
class Pages {
  public:
    /// The page that @p arguments ask for, as a JSON object: the head, the rows, how they end, and the cursor of the
    /// next page when there is one.
    /// @throws Failure for a cursor of another question, or a row that alone is longer than an answer may be;
    ///         CallCancelled; what finding throws.
    std::string page(const Question &question, const Arguments &arguments, Call &call);

  private:
    /// A result, and how much of it was handed out.
    struct Result {
        std::string key;
        std::uint64_t position = 0;
        std::unique_ptr<RowSource> source;
        std::unique_ptr<RowBuffer> rows;
        bool isAtEnd = false;
    };

    Result take(const Question &question, std::uint64_t position);
    void keep(Result result);

    std::list<Result> m_kept; ///< the last used first
};

} // namespace kvr::netlistdb::tool
