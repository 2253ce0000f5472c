#pragma once

#include "output/Json.h"

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

namespace kvr::netlistdb::tool {

/// An argument that a tool takes.
struct Parameter {
    enum class Type { Text, Flag, Number, Texts };

    Parameter(std::string itsName, Type itsType, std::string itsDescription, std::vector<std::string> itsChoices = {})
        : name(std::move(itsName)), type(itsType), description(std::move(itsDescription)),
          choices(std::move(itsChoices))
    {
    }

    std::string name;
    Type type;
    std::string description;
    std::vector<std::string> choices; ///< of a text or texts; empty: any
    bool required = false;
    std::uint64_t least = 0; ///< of a number
    std::uint64_t most = UINT64_MAX;
    Json fallback = nullptr; ///< when it is not given; null: nothing
};

/// JSON schema of an object with @p parameters.
Json schemaOf(const std::vector<Parameter> &parameters);

/// What a client gives a tool. Nothing that breaks the schema gets through.
class Arguments {
  public:
    /// @p parameters must outlive the object.
    /// @throws Failure that says which argument is wrong, and how.
    Arguments(const Json &given, const std::vector<Parameter> &parameters);

    bool has(const std::string &name) const;
    /// The text called @p name; empty when it was not given.
    std::string text(const std::string &name) const;
    /// False when it was not given.
    bool flag(const std::string &name) const;
    /// Zero when it was not given and has no fallback.
    std::uint64_t number(const std::string &name) const;
    /// Empty when they were not given.
    std::vector<std::string> texts(const std::string &name) const;

    /// The same text for the same question, whatever the order of the arguments. Those called in @p without are left
    /// out.
    std::string canonical(const std::vector<std::string> &without) const;

  private:
    Json m_values = Json::object();
};

} // namespace kvr::netlistdb::tool
