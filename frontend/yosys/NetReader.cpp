#include "NetReader.h"

#include "BitReader.h"
#include "MadeUpNames.h"

namespace kvr::netlistdb::yosys {

namespace {

names::NameKind kindOf(NetNames::Rank rank)
{
    switch (rank) {
    case NetNames::Rank::Derived:
        return names::NameKind::Derived;
    case NetNames::Rank::Hidden:
        return names::NameKind::Hidden;
    default:
        return names::NameKind::Declared;
    }
}

} // namespace

void NetReader::read(Module &module)
{
    m_module = &module;
    m_netlist = module.type.netlist();
    m_names.start(module.textSize);
    m_netAttributes.clear();
    m_texts = TextBuffer();
    m_portNames.clear();
    m_reserved.clear();
    m_constantNets = {};
    m_otherNames = {};

    addPortNames();
    if (module.netNames) {
        readNetNames(*module.netNames);
    }
    m_names.choose();
    makeNets();
    connectPorts();
}

void NetReader::finish()
{
    for (std::uint32_t number = 0; number < m_names.names().size(); ++number) {
        if (m_names.names()[number].range.width > 0 && !m_names.takenWhole(number)) {
            noteName(number);
        }
    }
    if (!m_otherNames.text().empty()) {
        addAttribute(*m_netlist, names::OTHER_NAMES, m_otherNames.text().c_str());
    }
}

void NetReader::addPortNames()
{
    std::size_t at = 0;
    for (const CellType::Group &group : m_module->type.groups()) {
        for (unsigned position = 0; position < group.range.width; ++position) {
            m_names.addBit(m_module->portBits[at++]);
        }
        m_portNames.emplace(group.name, static_cast<std::uint32_t>(m_names.names().size()));
        m_names.add(group.name, NetNames::Rank::Port, group.range);
    }
}

void NetReader::readNetNames(const Section &netNames)
{
    m_progress.eachFieldOf(m_text, netNames,
                           [&](std::string_view raw, json::value &value) { readNetName(raw, value); });
    m_fault.leaveItem();
}

NetNames::Rank NetReader::rankOf(std::string_view name, bool hidden, bool hasPosition) const
{
    // A name that looks generated and is used nowhere is no user's name.
    if (hidden || (looksGenerated(name) && !hasPosition)) {
        return NetNames::Rank::Hidden;
    }
    return m_derived.contains(name) ? NetNames::Rank::Derived : NetNames::Rank::Declared;
}

void NetReader::readNetName(std::string_view raw, json::value &value)
{
    const std::string_view text = m_text.text(raw, m_nameBuffer);
    m_fault.enterItem("net", text);
    json::object object = m_text.object(value, "a net");
    bool hidden = looksGenerated(text);
    bool shown = false;
    bool bitsRead = false;
    VectorRange range;
    AttributeReader::Summary summary;
    std::uint32_t attributeNumber = NetNames::NO_ATTRIBUTES;
    eachField(object, [&](std::string_view key, json::value &field) {
        if (key == "bits") {
            json::array bits = m_text.array(field, "\"bits\"");
            if (bitsRead) {
                m_fault.fail("\"bits\" appears twice");
            }
            bitsRead = true;
            eachElement(bits, [&](json::value &bit) { m_names.addBit(readBit(bit, m_fault)); });
        } else if (key == "attributes") {
            const char *const begin = field.raw_json_token().data();
            json::object attributes = m_text.object(field, "\"attributes\"");
            summary = m_attributes.summarize(attributes);
            if (summary.any) {
                attributeNumber = static_cast<std::uint32_t>(m_netAttributes.size());
                m_netAttributes.push_back(m_texts.copy(m_text.objectFrom(begin)));
            }
        } else if (key == "hide_name") {
            hidden = m_text.flag(field, "\"hide_name\"");
            shown = !hidden;
        } else if (key == "offset") {
            range.offset = m_text.integer(field, "\"offset\"");
        } else if (key == "upto") {
            range.upto = m_text.flag(field, "\"upto\"");
        } else {
            m_text.passOver(field);
        }
    });
    if (!bitsRead) {
        m_fault.fail("the net has no \"bits\"");
    }
    setWidth(range, m_names.pendingBits(), text, m_fault);

    NetNames::Name *name = nullptr;
    const auto port = m_portNames.find(text);
    if (port != m_portNames.end()) {
        name = &m_names.names()[port->second];
        bool same = name->range.width == range.width;
        for (unsigned position = 0; same && position < range.width; ++position) {
            same = m_names.bitOf(*name, position) == m_names.pendingBit(position);
        }
        if (!same) {
            m_fault.fail("the net has other bits than the port of its name");
        }
        m_names.dropPendingBits();
    } else {
        name = &m_names.add(m_texts.copy(text), rankOf(text, hidden, !!summary.position), range);
        if (looksMadeUp(text)) {
            m_reserved.emplace(text);
        }
    }
    const bool written = name->rank < NetNames::Rank::Derived && !hidden;
    name->position = written ? summary.position : 0;
    name->declared = written && (shown || name->position);
    name->attributes = attributeNumber;
    name->more = summary.others || (summary.any && name->rank == NetNames::Rank::Derived);
}

void NetReader::makeNets()
{
    const std::vector<NetNames::Name> &names = m_names.names();
    for (std::uint32_t number = 0; number < names.size(); ++number) {
        const NetNames::Name &name = names[number];
        if (name.range.isVector()) {
            makeVector(number);
        } else if (BitTable::Entry *entry = m_names.taken(number, 0)) {
            entry->net = addNet(*m_netlist, m_scratch.of(name.text));
            dress(name, *entry->net);
        }
    }
}

void NetReader::makeVector(std::uint32_t number)
{
    const NetNames::Name &name = m_names.names()[number];
    Verific::NetBus *bus = nullptr;
    if (name.range.width > 0 && m_names.takenWhole(number)) {
        bus = addNetBus(*m_netlist, m_scratch.of(name.text), name.range.left(), name.range.right());
        dress(name, *bus);
    }
    for (unsigned position = 0; position < name.range.width; ++position) {
        BitTable::Entry *entry = m_names.taken(number, position);
        if (entry == nullptr) {
            continue;
        }
        const int index = name.range.indexOf(position);
        entry->net = addNet(*m_netlist, m_scratch.indexed(name.text, index));
        if (bus == nullptr) {
            dress(name, *entry->net);
            continue;
        }
        // The attributes are the vector's; what holds for every bit of it is repeated on each.
        setPosition(*entry->net, bus->Linefile());
        setDeclared(*entry->net, bus->IsUserDeclared() != 0);
        if (bus->IsProtected() != 0) {
            setProtected(*entry->net);
        }
        putInBus(*bus, index, entry->net);
    }
}

void NetReader::dress(const NetNames::Name &name, Verific::DesignObj &object)
{
    setPosition(object, name.position);
    if (name.more) {
        const Source source = !!name.position                        ? Source::OfNet
                              : name.rank == NetNames::Rank::Derived ? Source::Noted
                                                                     : Source::Dropped;
        m_fault.enterItem("net", name.text);
        m_text.readObject(m_netAttributes[name.attributes],
                          [&](json::object &attributes) { m_attributes.apply(attributes, object, source); });
        m_fault.leaveItem();
    }
    setDeclared(object, name.declared);
}

void NetReader::connectPorts()
{
    const std::vector<Verific::Port *> &pins = m_module->type.pins();
    std::size_t pin = 0;
    std::uint32_t number = 0;
    for (const CellType::Group &group : m_module->type.groups()) {
        const NetNames::Name &name = m_names.names()[number++];
        if (group.range.isVector() && group.range.width > 0) {
            dress(name, *pins[pin]->Bus());
        }
        for (unsigned position = 0; position < group.range.width; ++position, ++pin) {
            dress(name, *pins[pin]);
            pins[pin]->Connect(netOf(m_module->portBits[pin]));
        }
    }
}

void NetReader::noteName(std::uint32_t number)
{
    const NetNames::Name &name = m_names.names()[number];
    AttributeReader::Origin origin;
    std::string hdlName;
    std::string keepKey;
    std::string keepValue;
    if (name.attributes != NetNames::NO_ATTRIBUTES) {
        m_text.readObject(m_netAttributes[name.attributes],
                          [&](json::object &attributes) { origin = m_attributes.originOf(attributes); });
        hdlName = names::hierarchicalName(name.text, origin.hdlName, origin.scopeName);
        keepKey = origin.keepKey;
        keepValue = origin.keepValue;
    }
    const VectorRange &range = name.range;
    if (range.isVector()) {
        m_otherNames.begin(kindOf(name.rank), name.text, range.left(), range.right(), origin.src, hdlName);
    } else {
        m_otherNames.begin(kindOf(name.rank), name.text, origin.src, hdlName);
    }
    for (unsigned position = 0; position < range.width; ++position) {
        const Bit bit = m_names.bitOf(name, position);
        if (isConstant(bit)) {
            m_otherNames.addConstant(CONSTANT_NAMES[bit - FIRST_CONSTANT]);
            continue;
        }
        const BitTable::Entry &entry = m_names.entry(bit);
        const NetNames::Name &best = m_names.names()[entry.name];
        if (!keepKey.empty() && entry.net != nullptr && entry.net->GetAtt(keepKey.c_str()) == nullptr) {
            addAttribute(*entry.net, keepKey.c_str(), keepValue.c_str());
        }
        if (best.range.isVector()) {
            m_otherNames.addVectorBit(best.text, best.range.indexOf(entry.position));
        } else {
            m_otherNames.addNet(best.text);
        }
    }
    m_otherNames.end();
}

Verific::Net *NetReader::namelessNet(Bit bit, BitTable::Entry &entry)
{
    const std::string name = freeName(std::string(NAMELESS) + std::to_string(bit), m_reserved);
    entry.net = addNet(*m_netlist, name.c_str());
    return entry.net;
}

Verific::Net *NetReader::constantNet(unsigned constant)
{
    Verific::Net *&net = m_constantNets[constant];
    if (net == nullptr) {
        net = addNet(*m_netlist, freeName(std::string(CONSTANT) + CONSTANT_NAMES[constant], m_reserved).c_str());
    }
    return net;
}

} // namespace kvr::netlistdb::yosys
