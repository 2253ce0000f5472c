#pragma once

#include "JsonText.h"
#include "SourcePosition.h"
#include "netlist_building.h"

namespace kvr::netlistdb::yosys {

/// Reads the `attributes` and `parameters` of modules, nets, memories and cells.
class AttributeReader {
  public:
    explicit AttributeReader(JsonText &text) : m_text(text) {}

    /// What a first look at attributes tells, without carrying anything over.
    struct Summary {
        Verific::linefile_type position = 0;
        bool others = false; ///< something stands there beside a position
    };
    Summary summarize(json::object &attributes);

    /// Carries attributes over: `src` becomes the source position (unless @p generated: such objects have none),
    /// `protected` protects the object, everything else becomes an attribute of the same key and value.
    void apply(json::object &attributes, Verific::DesignObj &object, bool generated)
    {
        apply(attributes, object, generated, [](std::string_view, std::string_view) {});
    }
    /// The same; @p seen(key, value) is told what becomes an attribute.
    template <typename Seen>
    void apply(json::object &attributes, Verific::DesignObj &object, bool generated, Seen &&seen)
    {
        eachField(attributes, [&](std::string_view raw, json::value &value) {
            const std::string_view key = m_text.text(raw, m_keyBuffer);
            const std::string_view text = m_text.attributeValue(value, m_valueBuffer, "an attribute");
            if (carry(key, text, object, generated)) {
                seen(key, text);
            }
        });
    }

    /// Carries parameters over to an instance.
    void applyParameters(json::object &parameters, Verific::Instance &inst);
    /// Calls @p visit(key, value) for every parameter; the texts live as long as the document.
    template <typename Visit> void eachParameter(json::object &parameters, Visit &&visit)
    {
        eachField(parameters, [&](std::string_view raw, json::value &value) {
            const std::string_view text = m_text.attributeValue(value, m_valueBuffer, "a parameter");
            visit(m_text.text(raw), text);
        });
    }

    Verific::linefile_type position(std::string_view src) { return m_positions.encode(src); }

  private:
    bool carry(std::string_view key, std::string_view value, Verific::DesignObj &object, bool generated);

    JsonText &m_text;
    SourcePositions m_positions;
    TextBuffer m_keyBuffer;
    TextBuffer m_valueBuffer;
    CText m_key;
    CText m_value;
};

} // namespace kvr::netlistdb::yosys
