#include "Attributes.h"

#include "WordCells.h"

namespace kvr::netlistdb::yosys {

AttributeReader::Summary AttributeReader::summarize(json::object &attributes)
{
    Summary summary;
    eachField(attributes, [&](std::string_view raw, json::value &value) {
        const std::string_view text = m_text.attributeValue(value, m_valueBuffer, "an attribute");
        if (m_text.text(raw, m_keyBuffer) == "src") {
            summary.position = m_positions.encode(text);
        } else {
            summary.others = true;
        }
    });
    return summary;
}

bool AttributeReader::carry(std::string_view key, std::string_view value, Verific::DesignObj &object, bool generated)
{
    if (key == "src") {
        if (!generated) {
            setPosition(object, m_positions.encode(value));
        }
        return false;
    }
    if (key == "protected") {
        if (isNonZero(value)) {
            setProtected(object);
        }
        return false;
    }
    addAttribute(object, m_key.of(key), m_value.of(value));
    return true;
}

void AttributeReader::applyParameters(json::object &parameters, Verific::Instance &inst)
{
    eachField(parameters, [&](std::string_view raw, json::value &value) {
        const std::string_view text = m_text.attributeValue(value, m_valueBuffer, "a parameter");
        addParameter(inst, m_key.of(m_text.text(raw, m_keyBuffer)), m_value.of(text));
    });
}

} // namespace kvr::netlistdb::yosys
