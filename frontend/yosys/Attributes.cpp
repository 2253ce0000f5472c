#include "Attributes.h"

#include "WordCells.h"

namespace kvr::netlistdb::yosys {

namespace {

bool hasSeveralRanges(std::string_view src)
{
    return src.find('|') != std::string_view::npos;
}

} // namespace

AttributeReader::Summary AttributeReader::summarize(json::object &attributes)
{
    Summary summary;
    m_src.clear();
    m_segments = 0;
    eachField(attributes, [&](std::string_view raw, json::value &value) {
        const std::string_view text = m_text.attributeValue(value, m_valueBuffer, "an attribute");
        const std::string_view key = m_text.text(raw, m_keyBuffer);
        summary.any = true;
        if (key == "src") {
            m_src = text;
            return;
        }
        summary.others = true;
        if (key == "hdlname") {
            m_segments = segmentsOf(text);
        }
    });
    summary.position = m_positions.encode(m_src, m_segments);
    summary.others |= hasSeveralRanges(m_src);
    return summary;
}

AttributeReader::Origin AttributeReader::originOf(json::object &attributes)
{
    m_src.clear();
    m_hdlName.clear();
    m_scopeName.clear();
    eachField(attributes, [&](std::string_view raw, json::value &value) {
        const std::string_view text = m_text.attributeValue(value, m_valueBuffer, "an attribute");
        const std::string_view key = m_text.text(raw, m_keyBuffer);
        if (key == "src") {
            m_src = text;
        } else if (key == "hdlname") {
            m_hdlName = text;
        } else if (key == "scopename") {
            m_scopeName = text;
        }
    });
    return {m_src, m_hdlName, m_scopeName};
}

bool AttributeReader::carry(std::string_view key, std::string_view value, Verific::DesignObj &object)
{
    if (key == "src") {
        m_src = value;
        return false;
    }
    if (key == "protected") {
        if (isNonZero(value)) {
            setProtected(object);
        }
        return false;
    }
    if (key == "hdlname") {
        m_segments = segmentsOf(value);
    }
    addAttribute(object, m_key.of(key), m_value.of(value));
    return true;
}

void AttributeReader::applySource(Verific::DesignObj &object, Source source)
{
    if (source == Source::Dropped || m_src.empty()) {
        return;
    }
    if (source != Source::Noted) {
        setPosition(object,
                    m_positions.encode(m_src, m_segments, source == Source::OfNet ? Innermost::Yes : Innermost::No));
    }
    if (source == Source::Noted || hasSeveralRanges(m_src)) {
        addAttribute(object, "src", m_src.c_str());
    }
}

void AttributeReader::applyParameters(json::object &parameters, Verific::Instance &inst)
{
    eachField(parameters, [&](std::string_view raw, json::value &value) {
        const std::string_view text = m_text.attributeValue(value, m_valueBuffer, "a parameter");
        addParameter(inst, m_key.of(m_text.text(raw, m_keyBuffer)), m_value.of(text));
    });
}

} // namespace kvr::netlistdb::yosys
