#include "Attributes.h"

#include "WordCells.h"

#include <algorithm>
#include <cctype>
#include <functional>
#include <iterator>

namespace kvr::netlistdb::yosys {

namespace {

/// True for attributes that keep flip-flops where the designer put them.
bool keepsRegisters(std::string_view key)
{
    static constexpr std::string_view KEYS[] = {"async_reg",    "keep",     "dont_touch", "dont_merge", "syn_keep",
                                                "syn_preserve", "preserve", "noprune",    "syn_noprune"};
    return std::any_of(std::begin(KEYS), std::end(KEYS), [key](std::string_view each) {
        return std::equal(key.begin(), key.end(), each.begin(), each.end(),
                          [](char a, char b) { return std::tolower(static_cast<unsigned char>(a)) == b; });
    });
}

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
    m_keepKey.clear();
    eachField(attributes, [&](std::string_view raw, json::value &value) {
        const std::string_view text = m_text.attributeValue(value, m_valueBuffer, "an attribute");
        const std::string_view key = m_text.text(raw, m_keyBuffer);
        if (m_keepKey.empty() && keepsRegisters(key)) {
            m_keepKey = key;
            m_keepValue = text;
        } else if (key == "src") {
            m_src = text;
        } else if (key == "hdlname") {
            m_hdlName = text;
        } else if (key == "scopename") {
            m_scopeName = text;
        }
    });
    return {m_src, m_hdlName, m_scopeName, m_keepKey, m_keepValue};
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
    std::string_view written;
    check(parameters.raw_json().get(written));
    m_written.resize(REMEMBERED);
    WrittenParameters &known = m_written[std::hash<std::string_view>()(written) % REMEMBERED];
    if (known.inst != nullptr && known.text == written) {
        inst.ShareParams(*known.inst);
        return;
    }
    check(parameters.reset().error());
    eachField(parameters, [&](std::string_view raw, json::value &value) {
        const std::string_view text = m_text.attributeValue(value, m_valueBuffer, "a parameter");
        addParameter(inst, m_key.of(m_text.text(raw, m_keyBuffer)), m_value.of(text));
    });
    known.text = written;
    known.inst = &inst;
}

} // namespace kvr::netlistdb::yosys
