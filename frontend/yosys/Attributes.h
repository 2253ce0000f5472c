#pragma once

#include "JsonText.h"
#include "SourcePosition.h"
#include "netlist_building.h"

namespace kvr::netlistdb::yosys {

/// What becomes of the `src` attribute of an object.
enum class Source {
    Dropped,    ///< nobody wrote the object, it has no position
    Noted,      ///< the same, but where it comes from stays readable in an attribute `src`
    OfNet,      ///< becomes the position of a declaration
    OfInstance, ///< becomes the position of an instantiation
};

/// Reads the `attributes` and `parameters` of modules, nets, memories and cells.
class AttributeReader {
  public:
    explicit AttributeReader(JsonText &text) : m_text(text) {}

    /// What a first look at the attributes of a net finds, without copying any.
    struct Summary {
        Verific::linefile_type position = 0;
        bool any = false;    ///< there are attributes
        bool others = false; ///< something else than one position
    };
    Summary summarize(json::object &attributes);

    /// What a net is known for under any of its names: where it comes from, and the attribute that keeps its register
    /// as it was written (the first of several). The texts live until the next call.
    struct Origin {
        std::string_view src;
        std::string_view hdlName;
        std::string_view scopeName;
        std::string_view keepKey; ///< empty: none
        std::string_view keepValue;
    };
    Origin originOf(json::object &attributes);

    /// Carries attributes over: `src` becomes the source position as @p source says, and stays an attribute as well
    /// when it holds more than that; `protected` protects the object; everything else becomes an attribute of the same
    /// key and value.
    void apply(json::object &attributes, Verific::DesignObj &object, Source source)
    {
        apply(attributes, object, source, [](std::string_view, std::string_view) {});
    }
    /// The same; @p seen(key, value) is called with what becomes an attribute.
    template <typename Seen>
    void apply(json::object &attributes, Verific::DesignObj &object, Source source, Seen &&seen)
    {
        m_src.clear();
        m_segments = 0;
        eachField(attributes, [&](std::string_view raw, json::value &value) {
            const std::string_view key = m_text.text(raw, m_keyBuffer);
            const std::string_view text = m_text.attributeValue(value, m_valueBuffer, "an attribute");
            if (carry(key, text, object)) {
                seen(key, text);
            }
        });
        applySource(object, source);
    }

    /// Carries parameters over to an instance. Instances with parameters that are written alike share them: in a
    /// netlist of device cells, these are most.
    void applyParameters(json::object &parameters, Verific::Instance &inst);
    /// Calls @p visit(key, value) for every parameter; the texts live as long as what they are read from.
    template <typename Visit> void eachParameter(json::object &parameters, Visit &&visit)
    {
        eachField(parameters, [&](std::string_view raw, json::value &value) {
            const std::string_view text = m_text.attributeValue(value, "a parameter");
            visit(m_text.text(raw), text);
        });
    }

  private:
    /// Parameters as they are written, and an instance that has them.
    struct WrittenParameters {
        std::string text;
        const Verific::Instance *inst = nullptr;
    };
    /// So many texts of parameters are remembered.
    static constexpr std::size_t REMEMBERED = 4096;

    bool carry(std::string_view key, std::string_view value, Verific::DesignObj &object);
    void applySource(Verific::DesignObj &object, Source source);

    JsonText &m_text;
    SourcePositions m_positions;
    TextBuffer m_keyBuffer;
    TextBuffer m_valueBuffer;
    CText m_key;
    CText m_value;
    std::vector<WrittenParameters> m_written; ///< by hash of the text; a later one replaces it
    // Of the object whose attributes are being read.
    std::string m_src;
    std::string m_hdlName;
    std::string m_scopeName;
    std::string m_keepKey;
    std::string m_keepValue;
    std::size_t m_segments = 0;
};

} // namespace kvr::netlistdb::yosys
