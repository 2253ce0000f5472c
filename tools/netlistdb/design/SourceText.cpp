#include "design/SourceText.h"

#include <filesystem>

namespace kvr::netlistdb::tool {

std::string workingDirectory()
{
    std::error_code error;
    const std::filesystem::path path = std::filesystem::current_path(error);
    return error ? std::string() : (path / "").string();
}

} // namespace kvr::netlistdb::tool
