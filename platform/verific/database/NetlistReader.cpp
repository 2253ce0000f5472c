#include "NetlistReader.h"

#include "AttTable.h"
#include "Instance.h"
#include "Library.h"
#include "LineFile.h"
#include "Net.h"
#include "Netlist.h"
#include "ParamTable.h"
#include "Port.h"
#include "SavedFile.h"

#include <cstring>
#include <string>
#include <utility>

#include <capnp/serialize.h>
#include <kj/exception.h>

namespace Verific {

namespace {

/// Library and cell of netlists that had none.
constexpr const char *LOOSE_LIBRARY = "work";
constexpr const char *LOOSE_CELL = "top";

/// File names and parameter keys may be this many times as long together as the message. Real ones are shorter than the
/// numbers that name them are many; only a message made to waste time repeats long ones.
constexpr std::uint64_t TEXT_FACTOR = 64;

void require(bool sound)
{
    if (!sound) {
        throw NetlistReader::Damaged();
    }
}

/// Passes @p object to @p owner.
template <typename Owner, typename Object> Object *give(Owner &owner, std::unique_ptr<Object> object)
{
    owner.Add(object.get());
    return object.release();
}

template <typename List> bool isFullOrEmpty(const List &list, std::uint64_t rows)
{
    return list.size() == rows || list.size() == 0;
}

} // namespace

Netlist *Netlist::RestoreFromFile(const char *file_name)
{
    if (file_name == nullptr) {
        return nullptr;
    }
    try {
        const kj::Array<capnp::word> words = saved_file::read(file_name);
        if (words == nullptr) {
            return nullptr;
        }
        capnp::ReaderOptions options;
        // A sound message is read once from end to end; one whose lists overlap must not pass for a larger one.
        options.traversalLimitInWords = 2 * words.size() + 4096;
        capnp::FlatArrayMessageReader message(words, options);
        return NetlistReader(message.getRoot<saved::SavedNetlist>(), words.size() * sizeof(capnp::word)).read();
    } catch (const NetlistReader::Damaged &) {
        return nullptr;
    } catch (const kj::Exception &) {
        return nullptr;
    }
}

/// Walks through a column of texts.
class NetlistReader::TextCursor {
  public:
    explicit TextCursor(saved::Texts::Reader texts)
    {
        const auto chunks = texts.getChunks();
        m_chunks.reserve(chunks.size());
        for (const saved::TextChunk::Reader chunk : chunks) {
            m_chunks.push_back({chunk.getBytes(), chunk.getLengths()});
            m_size += m_chunks.back().lengths.size();
        }
    }

    std::uint64_t size() const { return m_size; }

    /// The next text; there must be one.
    SharedName next()
    {
        while (m_row == m_chunks[m_chunk].lengths.size()) {
            ++m_chunk;
            m_row = 0;
            m_offset = 0;
        }
        const OpenChunk &chunk = m_chunks[m_chunk];
        const std::uint32_t stored = chunk.lengths[m_row++];
        if (stored == 0) {
            return SharedName();
        }
        const std::uint32_t length = stored - 1;
        require(length <= chunk.bytes.size() - m_offset);
        const auto *text = reinterpret_cast<const char *>(chunk.bytes.begin()) + m_offset;
        m_offset += length;
        return SharedName(length > 0 ? text : "", length);
    }

  private:
    struct OpenChunk {
        capnp::Data::Reader bytes;
        Column lengths;
    };
    std::vector<OpenChunk> m_chunks;
    std::size_t m_chunk = 0;
    unsigned m_row = 0;
    std::size_t m_offset = 0; ///< in the bytes of the chunk
    std::uint64_t m_size = 0;
};

/// Walks through what objects of one kind have in common.
class NetlistReader::ObjectCursor {
  public:
    ObjectCursor(const NetlistReader &reader, saved::Objects::Reader objects)
        : m_reader(reader), m_names(objects.getNames()), m_files(objects.getFiles()), m_lines(objects.getLines()),
          m_attributes(objects.getAttributes()), m_flags(objects.getFlags())
    {
        require(size() < UINT32_MAX && isFullOrEmpty(m_files, size()) && isFullOrEmpty(m_lines, size()) &&
                isFullOrEmpty(m_attributes, size()) && isFullOrEmpty(m_flags, size()));
    }

    std::uint64_t size() const { return m_names.size(); }
    /// Name of the next row. applyTo() applies the row whose name was read last.
    SharedName nextName()
    {
        ++m_next;
        return m_names.next();
    }

    void applyTo(DesignObj &object) const
    {
        const unsigned row = m_next - 1;
        if (m_attributes.size() != 0) {
            const std::uint32_t set = m_attributes[row];
            require(set <= m_reader.m_attributeSets.size());
            if (set != 0) {
                AttTable *table = m_reader.m_attributeSets[set - 1].get();
                AttTable::retain(table);
                object.m_atts = table;
            }
        }
        if (m_files.size() != 0) {
            const std::uint32_t file = m_files[row];
            require(file <= m_reader.m_files.size());
            if (file != 0) {
                object.m_linefile =
                    LineFile::OtherLine(m_reader.m_files[file - 1], m_lines.size() != 0 ? m_lines[row] : 0);
            }
        }
        if (m_flags.size() != 0) {
            const std::uint8_t flags = m_flags[row];
            require(flags <= saved::ALL_OBJECT_FLAGS);
            object.m_protected = (flags & saved::PROTECTED) != 0;
            object.m_userDeclared = (flags & saved::USER_DECLARED) != 0;
        }
    }

  private:
    const NetlistReader &m_reader;
    TextCursor m_names;
    Column m_files;
    Column m_lines;
    Column m_attributes;
    ByteColumn m_flags;
    unsigned m_next = 0;
};

/// Walks through buses.
class NetlistReader::BusCursor {
  public:
    BusCursor(const NetlistReader &reader, saved::Buses::Reader buses, bool directed)
        : objects(reader, buses.getObjects()), m_left(buses.getLeft()), m_right(buses.getRight()),
          m_directions(buses.getDirections()), m_sizes(buses.getSizes()), m_elements(buses.getElements())
    {
        require(m_left.size() == objects.size() && m_right.size() == objects.size() &&
                m_sizes.size() == objects.size() && (!directed || m_directions.size() == objects.size()));
        std::uint64_t elements = 0;
        for (const std::uint32_t size : m_sizes) {
            elements += size;
        }
        require(elements == m_elements.size());
    }

    int left() const { return m_left[m_row]; }
    int right() const { return m_right[m_row]; }
    unsigned direction() const
    {
        require(m_directions[m_row] <= DIR_INOUT);
        return m_directions[m_row];
    }

    /// Sets the elements of @p bus, taken from the @p count bits from @p first on, and steps to the next bus.
    template <typename Bus, typename Bit>
    void finish(Bus &bus, BusElements<Bit> &elements, Bit *const *first, std::uint64_t count)
    {
        const std::uint32_t size = m_sizes[m_row++];
        require(size <= elements.width());
        elements.bits().resize(size);
        for (std::uint32_t at = 0; at < size; ++at) {
            const std::uint32_t number = m_elements[m_element++];
            require(number <= count);
            if (number != 0) {
                Bit *bit = first[number - 1];
                require(bit->m_bus == nullptr);
                elements.bits()[at] = bit;
                bit->m_bus = &bus;
            }
        }
        elements.trim();
    }

    ObjectCursor objects;

  private:
    capnp::List<std::int32_t>::Reader m_left;
    capnp::List<std::int32_t>::Reader m_right;
    ByteColumn m_directions;
    Column m_sizes;
    Column m_elements;
    unsigned m_row = 0;
    unsigned m_element = 0;
};

void NetlistReader::AttTableRelease::operator()(AttTable *table) const
{
    AttTable::release(table);
}

void NetlistReader::ParamTableRelease::operator()(ParamTable *table) const
{
    ParamTable::release(table);
}

NetlistReader::NetlistReader(saved::SavedNetlist::Reader message, std::uint64_t size)
    : m_message(message), m_textBudget(TEXT_FACTOR * size)
{
}

NetlistReader::~NetlistReader()
{
    for (Netlist *netlist : m_netlists) {
        netlist->deleteInstances();
    }
    for (Netlist *netlist : m_netlists) {
        delete netlist;
    }
}

Netlist *NetlistReader::read()
{
    readShared();
    readNetlists();
    readPorts();
    readPortBuses();
    readNets();
    readPortNets();
    readNetBuses();
    readShapes();
    readInstances();
    readMixedNets();
    readMixedReferences();
    const std::uint32_t top = m_message.getTop();
    require(top < m_netlists.size());
    attach();
    // Nothing below can fail.
    Netlist *restored = m_netlists[top];
    for (Netlist *netlist : m_netlists) {
        netlist->m_reclaim.lifetime = netlist != restored ? Lifetime::RESTORED : Lifetime::OWNED;
    }
    m_netlists.clear();
    for (std::unique_ptr<Cell> &made : m_madeCells) {
        made->m_restored = true;
        static_cast<void>(made.release());
    }
    for (std::unique_ptr<Library> &made : m_madeLibraries) {
        static_cast<void>(made.release());
    }
    return restored;
}

void NetlistReader::readShared()
{
    readTexts();
    readFiles();
    readAttributeSets();
    readParameterSets();
}

void NetlistReader::readTexts()
{
    TextCursor texts(m_message.getTexts());
    m_texts.reserve(texts.size());
    for (std::uint64_t number = 0; number < texts.size(); ++number) {
        m_texts.push_back(texts.next());
        require(m_texts.back().get() != nullptr);
    }
}

SharedName NetlistReader::textAt(std::uint32_t number) const
{
    require(number < m_texts.size());
    return m_texts[number];
}

SharedName NetlistReader::textOrNone(std::uint32_t number) const
{
    return number != 0 ? textAt(number - 1) : SharedName();
}

void NetlistReader::spendOn(const SharedName &text)
{
    const std::uint64_t length = text.get() != nullptr ? std::strlen(text.get()) : 0;
    require(length <= m_textBudget);
    m_textBudget -= length;
}

void NetlistReader::readFiles()
{
    const Column names = m_message.getFileNames();
    const Column paths = m_message.getFilePaths();
    require(names.size() == paths.size());
    m_files.reserve(names.size());
    for (unsigned number = 0; number < names.size(); ++number) {
        const SharedName name = textAt(names[number]);
        const SharedName path = textOrNone(paths[number]);
        spendOn(name);
        spendOn(path);
        const bool relative = path.get() != nullptr && path.get()[0] != '/' && std::strcmp(name.get(), path.get()) == 0;
        m_files.push_back(relative ? LineFile::EncodeLineFile(name.get(), 0)
                                   : LineFile::EncodeLineFile(name.get(), path.get(), 0));
    }
}

void NetlistReader::readAttributeSets()
{
    const auto sets = m_message.getAttributeSets();
    const Column sizes = sets.getCounts();
    const Column keys = sets.getKeys();
    const Column values = sets.getValues();
    require(keys.size() == values.size());
    m_attributeSets.reserve(sizes.size());
    unsigned pair = 0;
    for (const std::uint32_t size : sizes) {
        require(size <= keys.size() - pair);
        m_attributeSets.emplace_back(new AttTable);
        AttTable &table = *m_attributeSets.back();
        table.atts.reserve(size);
        for (const unsigned end = pair + size; pair < end; ++pair) {
            table.atts.push_back(std::make_unique<Att>(textOrNone(keys[pair]), textOrNone(values[pair])));
        }
    }
    require(pair == keys.size());
}

void NetlistReader::readParameterSets()
{
    const auto sets = m_message.getParameterSets();
    const Column sizes = sets.getCounts();
    const Column keys = sets.getKeys();
    const Column values = sets.getValues();
    require(keys.size() == values.size());
    m_parameterSets.reserve(sizes.size());
    unsigned pair = 0;
    for (const std::uint32_t size : sizes) {
        require(size <= keys.size() - pair);
        m_parameterSets.emplace_back(new ParamTable);
        m_parameterSets.back()->reserve(size);
        for (const unsigned end = pair + size; pair < end; ++pair) {
            const SharedName key = textOrNone(keys[pair]);
            spendOn(key);
            require(m_parameterSets.back()->add(key, textOrNone(values[pair])));
        }
    }
    require(pair == keys.size());
}

void NetlistReader::readNetlists()
{
    ObjectCursor objects(*this, m_message.getNetlists());
    const ByteColumn flags = m_message.getNetlistFlags();
    const Column types = m_message.getNetlistTypes();
    require(flags.size() == objects.size() && types.size() == objects.size());
    m_netlists.reserve(objects.size());
    for (unsigned row = 0; row < objects.size(); ++row) {
        m_netlists.push_back(new Netlist(objects.nextName()));
        Netlist &netlist = *m_netlists.back();
        objects.applyTo(netlist);
        require(flags[row] <= saved::ALL_NETLIST_FLAGS);
        netlist.m_blackBox = (flags[row] & saved::BLACK_BOX) != 0;
        netlist.m_register = (flags[row] & saved::REGISTER) != 0;
        netlist.m_operator = (flags[row] & saved::OPERATOR) != 0;
        netlist.m_type = types[row];
    }
}

/// @p column when it has a count for each netlist and they make @p total together.
NetlistReader::Column NetlistReader::counts(Column column, std::uint64_t total) const
{
    require(column.size() == m_netlists.size());
    std::uint64_t sum = 0;
    for (const std::uint32_t count : column) {
        sum += count;
    }
    require(sum == total);
    return column;
}

void NetlistReader::readPorts()
{
    ObjectCursor objects(*this, m_message.getPorts());
    const ByteColumn directions = m_message.getPortDirections();
    require(directions.size() == objects.size());
    const Column sizes = counts(m_message.getPortCounts(), objects.size());
    const Column clocks = m_message.getNetlistClocks();
    const Column inputs = m_message.getNetlistInputs();
    require(clocks.size() == m_netlists.size() && inputs.size() == m_netlists.size());
    m_ports.reserve(objects.size());
    for (unsigned row = 0; row < m_netlists.size(); ++row) {
        Netlist &netlist = *m_netlists[row];
        const std::uint64_t first = m_ports.size();
        m_firstPort.push_back(first);
        netlist.m_ports.reserve(sizes[row]);
        for (unsigned place = 0; place < sizes[row]; ++place) {
            const unsigned direction = directions[static_cast<unsigned>(m_ports.size())];
            require(direction <= DIR_INOUT);
            m_ports.push_back(give(netlist, std::unique_ptr<Port>(new Port(objects.nextName(), direction))));
            objects.applyTo(*m_ports.back());
        }
        require(clocks[row] <= sizes[row] && inputs[row] <= sizes[row]);
        netlist.m_clock = clocks[row] != 0 ? m_ports[first + clocks[row] - 1] : nullptr;
        netlist.m_input = inputs[row] != 0 ? m_ports[first + inputs[row] - 1] : nullptr;
    }
    m_firstPort.push_back(m_ports.size());
}

void NetlistReader::readPortBuses()
{
    BusCursor buses(*this, m_message.getPortBuses(), true);
    const Column sizes = counts(m_message.getPortBusCounts(), buses.objects.size());
    for (unsigned row = 0; row < m_netlists.size(); ++row) {
        Netlist &netlist = *m_netlists[row];
        netlist.m_portBuses.reserve(sizes[row]);
        for (unsigned place = 0; place < sizes[row]; ++place) {
            std::unique_ptr<PortBus> made(
                new PortBus(buses.objects.nextName(), buses.left(), buses.right(), buses.direction()));
            PortBus *bus = give(netlist, std::move(made));
            buses.objects.applyTo(*bus);
            buses.finish(*bus, bus->m_elements, m_ports.data() + m_firstPort[row],
                         m_firstPort[row + 1] - m_firstPort[row]);
        }
    }
}

void NetlistReader::readNets()
{
    ObjectCursor objects(*this, m_message.getNets());
    const Column sizes = counts(m_message.getNetCounts(), objects.size());
    const Column memories = m_message.getMemoryNets();
    const Column bits = m_message.getMemoryBits();
    require(memories.size() == bits.size());
    unsigned memory = 0;
    m_nets.reserve(objects.size());
    for (unsigned row = 0; row < m_netlists.size(); ++row) {
        Netlist &netlist = *m_netlists[row];
        m_firstNet.push_back(m_nets.size());
        netlist.m_nets.reserve(sizes[row]);
        for (unsigned place = 0; place < sizes[row]; ++place) {
            SharedName name = objects.nextName();
            std::unique_ptr<Net> made;
            if (memory < memories.size() && memories[memory] == m_nets.size()) {
                made.reset(new RamNet(std::move(name), bits[memory++]));
            } else {
                made.reset(new Net(std::move(name)));
            }
            m_nets.push_back(give(netlist, std::move(made)));
            objects.applyTo(*m_nets.back());
        }
    }
    m_firstNet.push_back(m_nets.size());
    require(memory == memories.size());
}

void NetlistReader::readPortNets()
{
    const Column ports = m_message.getPortNetPorts();
    const Column nets = m_message.getPortNetNets();
    require(ports.size() == nets.size());
    const Column sizes = counts(m_message.getPortNetCounts(), ports.size());
    unsigned at = 0;
    for (unsigned row = 0; row < m_netlists.size(); ++row) {
        for (const unsigned end = at + sizes[row]; at < end; ++at) {
            require(ports[at] < m_firstPort[row + 1] - m_firstPort[row] &&
                    nets[at] < m_firstNet[row + 1] - m_firstNet[row]);
            Port *port = m_ports[m_firstPort[row] + ports[at]];
            require(port->m_net == nullptr);
            port->Connect(m_nets[m_firstNet[row] + nets[at]]);
        }
    }
}

void NetlistReader::readNetBuses()
{
    BusCursor buses(*this, m_message.getNetBuses(), false);
    const Column sizes = counts(m_message.getNetBusCounts(), buses.objects.size());
    for (unsigned row = 0; row < m_netlists.size(); ++row) {
        Netlist &netlist = *m_netlists[row];
        netlist.m_netBuses.reserve(sizes[row]);
        for (unsigned place = 0; place < sizes[row]; ++place) {
            NetBus *bus = give(
                netlist, std::unique_ptr<NetBus>(new NetBus(buses.objects.nextName(), buses.left(), buses.right())));
            buses.objects.applyTo(*bus);
            buses.finish(*bus, bus->m_elements, m_nets.data() + m_firstNet[row], m_firstNet[row + 1] - m_firstNet[row]);
        }
    }
}

void NetlistReader::readShapes()
{
    const Column views = m_message.getShapeViews();
    const Column sizes = m_message.getShapeSizes();
    const Column ports = m_message.getShapePorts();
    require(views.size() == sizes.size());
    m_shapes.reserve(views.size());
    m_shapeViews.reserve(views.size());
    m_shapePorts.reserve(ports.size());
    std::vector<std::uint32_t> met(m_ports.size()); // the shape that named each port last, plus 1
    unsigned at = 0;
    for (unsigned number = 0; number < views.size(); ++number) {
        const std::uint32_t view = views[number];
        const std::uint32_t size = sizes[number];
        require(view <= m_netlists.size() && size <= ports.size() - at && (view != 0 || size == 0));
        Shape shape{view != 0 ? m_netlists[view - 1] : nullptr, m_shapePorts.size(), size};
        for (const unsigned end = at + size; at < end; ++at) {
            require(ports[at] < m_firstPort[view] - m_firstPort[view - 1]);
            const std::uint64_t port = m_firstPort[view - 1] + ports[at];
            require(met[port] != number + 1);
            met[port] = number + 1;
            m_shapePorts.push_back(m_ports[port]);
        }
        m_shapes.push_back(shape);
        m_shapeViews.push_back(view);
    }
    require(at == ports.size());
}

/// Refuses netlists that contain themselves and makes room for the references of each netlist.
void NetlistReader::checkHierarchy(const Column &shapes, const Column &sizes) const
{
    saved::Children children(m_netlists.size());
    std::vector<std::uint32_t> met(m_netlists.size()); // the netlist that instantiates each, met last, plus 1
    std::vector<std::uint32_t> references(m_netlists.size());
    unsigned at = 0;
    for (std::uint32_t row = 0; row < m_netlists.size(); ++row) {
        for (const unsigned end = at + sizes[row]; at < end; ++at) {
            require(shapes[at] < m_shapes.size());
            const std::uint32_t view = m_shapeViews[shapes[at]];
            if (view == 0) {
                continue;
            }
            ++references[view - 1];
            if (met[view - 1] != row + 1) {
                met[view - 1] = row + 1;
                children[row].push_back(view - 1);
            }
        }
    }
    require(saved::isAcyclic(children));
    for (std::size_t row = 0; row < m_netlists.size(); ++row) {
        m_netlists[row]->m_references.reserve(references[row]);
    }
}

void NetlistReader::readInstances()
{
    ObjectCursor objects(*this, m_message.getInstances());
    const Column sizes = counts(m_message.getInstanceCounts(), objects.size());
    const Column shapes = m_message.getInstanceShapes();
    const Column parameters = m_message.getInstanceParameters();
    const Column pins = m_message.getPinNets();
    require(shapes.size() == objects.size() && isFullOrEmpty(parameters, objects.size()));
    checkHierarchy(shapes, sizes);
    m_instances.reserve(objects.size());
    unsigned pin = 0;
    for (unsigned row = 0; row < m_netlists.size(); ++row) {
        Netlist &netlist = *m_netlists[row];
        netlist.m_insts.reserve(sizes[row]);
        Net *const *nets = m_nets.data() + m_firstNet[row];
        const std::uint64_t netCount = m_firstNet[row + 1] - m_firstNet[row];
        for (unsigned place = 0; place < sizes[row]; ++place) {
            const auto number = static_cast<unsigned>(m_instances.size());
            const Shape &shape = m_shapes[shapes[number]];
            Instance *inst = give(netlist, std::unique_ptr<Instance>(new Instance(objects.nextName(), shape.view)));
            m_instances.push_back(inst);
            objects.applyTo(*inst);
            if (parameters.size() != 0 && parameters[number] != 0) {
                require(parameters[number] <= m_parameterSets.size());
                inst->m_params = m_parameterSets[parameters[number] - 1].get();
                ParamTable::retain(inst->m_params);
            }
            require(shape.ports <= pins.size() - pin);
            inst->reservePins(shape.ports);
            Port *const *ports = m_shapePorts.data() + shape.firstPort;
            for (std::uint32_t port = 0; port < shape.ports; ++port) {
                const std::uint32_t net = pins[pin++];
                require(net < netCount);
                inst->appendPin(ports[port], nets[net]);
            }
        }
    }
    require(pin == pins.size());
}

void NetlistReader::readMixedNets()
{
    const Column nets = m_message.getMixedNets();
    const Column ranks = m_message.getMixedRanks();
    std::vector<std::uint32_t> order;
    std::vector<bool> met;
    unsigned at = 0;
    for (unsigned number = 0; number < nets.size(); ++number) {
        require(nets[number] < m_nets.size() && (number == 0 || nets[number - 1] < nets[number]));
        Net &net = *m_nets[nets[number]];
        require(net.m_refs <= ranks.size() - at);
        order.clear();
        met.assign(net.m_refs, false);
        for (const unsigned end = at + net.m_refs; at < end; ++at) {
            require(ranks[at] < net.m_refs && !met[ranks[at]]);
            met[ranks[at]] = true;
            order.push_back(ranks[at]);
        }
        net.applyPinRanks(order);
    }
    require(at == ranks.size());
}

void NetlistReader::readMixedReferences()
{
    const Column views = m_message.getMixedViews();
    const Column rows = m_message.getMixedReferences();
    std::vector<bool> met(views.size() != 0 ? m_instances.size() : 0);
    unsigned at = 0;
    for (unsigned number = 0; number < views.size(); ++number) {
        require(views[number] < m_netlists.size() && (number == 0 || views[number - 1] < views[number]));
        Netlist &view = *m_netlists[views[number]];
        const unsigned size = view.m_references.Size();
        require(size <= rows.size() - at);
        for (unsigned slot = 0; slot < size; ++slot, ++at) {
            require(rows[at] < m_instances.size() && !met[rows[at]]);
            met[rows[at]] = true;
            Instance *inst = m_instances[rows[at]];
            require(inst->m_view == &view);
            m_newReferences.push_back({inst, slot});
        }
        for (const auto &[inst, slot] : m_newReferences) {
            view.m_references.replace(slot, inst);
            inst->m_viewSlot = slot;
        }
        m_newReferences.clear();
    }
    require(at == rows.size());
}

void NetlistReader::attach()
{
    ObjectCursor libraryObjects(*this, m_message.getLibraries());
    std::vector<Library *> libraries;
    for (std::uint64_t row = 0; row < libraryObjects.size(); ++row) {
        const SharedName name = libraryObjects.nextName();
        libraries.push_back(library(name.get(), &libraryObjects));
    }
    ObjectCursor cellObjects(*this, m_message.getCells());
    const Column cellLibraries = m_message.getCellLibraries();
    require(cellLibraries.size() == cellObjects.size());
    std::vector<Cell *> cells;
    for (unsigned row = 0; row < cellObjects.size(); ++row) {
        const SharedName name = cellObjects.nextName();
        require(cellLibraries[row] <= libraries.size());
        Library *owner = cellLibraries[row] != 0 ? libraries[cellLibraries[row] - 1] : library(LOOSE_LIBRARY, nullptr);
        cells.push_back(cell(*owner, name.get(), &cellObjects));
    }
    const Column netlistCells = m_message.getNetlistCells();
    require(netlistCells.size() == m_netlists.size());
    for (unsigned row = 0; row < m_netlists.size(); ++row) {
        Netlist &netlist = *m_netlists[row];
        require(netlistCells[row] <= cells.size());
        Cell *owner = nullptr;
        if (netlistCells[row] != 0) {
            owner = cells[netlistCells[row] - 1];
        } else {
            const bool named = netlist.Name() != nullptr && *netlist.Name() != '\0';
            owner = cell(*library(LOOSE_LIBRARY, nullptr), named ? netlist.Name() : LOOSE_CELL, nullptr);
        }
        if (owner->GetNetlist(netlist.Name()) != nullptr) {
            netlist.m_name = freeViewName(*owner, netlist.Name());
        }
        owner->Add(&netlist);
    }
}

SharedName NetlistReader::freeViewName(const Cell &cell, const std::string &name)
{
    unsigned &number = m_viewNumbers[{&cell, name}];
    for (;;) {
        const std::string candidate = name + "_" + std::to_string(++number);
        if (cell.GetNetlist(candidate.c_str()) == nullptr) {
            return SharedName(candidate.c_str());
        }
    }
}

Library *NetlistReader::library(const char *name, const ObjectCursor *traits)
{
    Library *library = Libset::Global()->GetLibrary(name);
    if (library == nullptr) {
        m_madeLibraries.push_back(std::make_unique<Library>(name));
        library = m_madeLibraries.back().get();
        if (traits != nullptr) {
            traits->applyTo(*library);
        }
        Libset::Global()->Add(library);
    }
    return library;
}

Cell *NetlistReader::cell(Library &library, const char *name, const ObjectCursor *traits)
{
    Cell *cell = library.GetCell(name);
    if (cell == nullptr) {
        m_madeCells.push_back(std::make_unique<Cell>(name));
        cell = m_madeCells.back().get();
        if (traits != nullptr) {
            traits->applyTo(*cell);
        }
        library.Add(cell);
    }
    return cell;
}

} // namespace Verific
