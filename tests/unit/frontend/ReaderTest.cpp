#include "ReaderTest.h"

#include "platform/names/OtherNames.h"
#include "tests/support/NetlistDump.h"

#include <yosys/NetlistReader.h>

#include <algorithm>
#include <fstream>
#include <simdjson.h>
#include <sstream>

#include <unistd.h>

namespace yosystest {

namespace {

std::string nameOf(const Verific::DesignObj *object)
{
    return object == nullptr ? "-" : object->Name() == nullptr ? "null" : object->Name();
}

std::string cellOf(const Verific::Netlist *netlist)
{
    const Verific::Cell *cell = netlist->Owner();
    std::string name = cell == nullptr ? "loose" : nameOf(cell->Owner()) + "/" + nameOf(cell);
    return nameOf(netlist) == "netlist" ? name : name + ":" + nameOf(netlist);
}

std::string traitsOf(const Verific::DesignObj &object)
{
    std::string text;
    if (!!object.Linefile()) {
        text += " at " + std::string(Verific::LineFile::GetFileName(object.Linefile())) + ":" +
                std::to_string(Verific::LineFile::GetLineNo(object.Linefile()));
    }
    if ((object.IsUserDeclared() != 0) != !!object.Linefile()) {
        text += " user-declared=" + std::to_string(object.IsUserDeclared());
    }
    if (object.IsProtected() != 0) {
        text += " protected";
    }
    Verific::MapIter iter;
    Verific::Att *att = nullptr;
    std::string attributes;
    FOREACH_ATTRIBUTE (&object, iter, att) {
        if (std::string_view(att->Key()) == kvr::netlistdb::names::OTHER_NAMES) {
            continue;
        }
        attributes += (attributes.empty() ? "" : ", ") + std::string(att->Key()) + "=" + att->Value();
    }
    return attributes.empty() ? text : text + " {" + attributes + "}";
}

const char *directionOf(unsigned direction)
{
    return direction == Verific::DIR_IN      ? "in"
           : direction == Verific::DIR_OUT   ? "out"
           : direction == Verific::DIR_INOUT ? "inout"
                                             : "none";
}

std::string bounds(int left, int right)
{
    return " [" + std::to_string(left) + ":" + std::to_string(right) + "]";
}

std::string kindOf(const Verific::Netlist &netlist)
{
    std::string kind;
    if (netlist.IsBlackBox() != 0) {
        kind += " blackbox";
    }
    if (netlist.IsOperator() != 0) {
        kind += " operator";
    }
    if (netlist.IsPrimitive() != 0) {
        kind += " primitive=" + std::to_string(netlist.Type());
    }
    if (netlist.GetInput() != nullptr) {
        kind += " input=" + nameOf(netlist.GetInput());
    }
    if (netlist.IsRegister() != 0) {
        kind += " clock=" + nameOf(netlist.GetClock());
    }
    return kind;
}

} // namespace

Verific::Netlist *readText(std::string_view text, const kvr::netlistdb::yosys::ReadOptions &options)
{
    simdjson::padded_string padded(text);
    const kvr::netlistdb::yosys::JsonInput input{padded.data(), padded.size(),
                                                 padded.size() + simdjson::SIMDJSON_PADDING};
    return kvr::netlistdb::yosys::readJsonText(input, "design.json", options);
}

Verific::Netlist *readModules(std::string_view modules, const kvr::netlistdb::yosys::ReadOptions &options)
{
    return readText("{\"modules\": {" + std::string(modules) + "}}", options);
}

std::string errorOf(std::string_view text)
{
    try {
        readText(text);
    } catch (const kvr::netlistdb::yosys::ReadError &error) {
        return error.what();
    }
    return "no error";
}

std::string errorOfModules(std::string_view modules)
{
    return errorOf("{\"modules\": {" + std::string(modules) + "}}");
}

Verific::Netlist *netlistOf(const char *library, const char *cell)
{
    const Verific::Library *found = Verific::Libset::Global()->GetLibrary(library);
    const Verific::Cell *owner = found != nullptr ? found->GetCell(cell) : nullptr;
    if (owner == nullptr) {
        throw std::runtime_error(std::string("no cell ") + library + "/" + cell);
    }
    return owner->GetFirstNetlist();
}

std::string print(const Verific::Netlist *netlist)
{
    std::ostringstream out;
    out << cellOf(netlist) << kindOf(*netlist) << traitsOf(*netlist) << "\n";
    Verific::MapIter iter;
    Verific::Port *port = nullptr;
    FOREACH_PORT_OF_NETLIST (netlist, iter, port) {
        out << directionOf(port->GetDir()) << " " << nameOf(port) << " = " << nameOf(port->GetNet())
            << (port->Bus() != nullptr ? " in " + nameOf(port->Bus()) : "") << traitsOf(*port) << "\n";
    }
    Verific::PortBus *portBus = nullptr;
    FOREACH_PORTBUS_OF_NETLIST (netlist, iter, portBus) {
        out << directionOf(portBus->GetDir()) << " bus " << nameOf(portBus)
            << bounds(portBus->LeftIndex(), portBus->RightIndex()) << traitsOf(*portBus) << "\n";
    }
    Verific::NetBus *bus = nullptr;
    FOREACH_NETBUS_OF_NETLIST (netlist, iter, bus) {
        out << "bus " << nameOf(bus) << bounds(bus->LeftIndex(), bus->RightIndex()) << traitsOf(*bus) << "\n";
    }
    Verific::Net *net = nullptr;
    FOREACH_NET_OF_NETLIST (netlist, iter, net) {
        if (net->IsRamNet() != 0) {
            out << "ram " << nameOf(net) << " " << net->Size() << traitsOf(*net) << "\n";
        } else {
            out << "net " << nameOf(net) << (net->Bus() != nullptr ? " in " + nameOf(net->Bus()) : "") << traitsOf(*net)
                << "\n";
        }
    }
    Verific::Instance *inst = nullptr;
    FOREACH_INSTANCE_OF_NETLIST (netlist, iter, inst) {
        out << nameOf(inst) << ": " << cellOf(inst->View()) << " (";
        Verific::MapIter pins;
        Verific::PortRef *pin = nullptr;
        const char *separator = "";
        FOREACH_PORTREF_OF_INST (inst, pins, pin) {
            out << separator << nameOf(pin->GetPort()) << "=" << nameOf(pin->GetNet());
            separator = ", ";
        }
        out << ")";
        const char *key = nullptr;
        const char *value = nullptr;
        FOREACH_PARAMETER_OF_INST (inst, pins, key, value) {
            out << " #" << key << "=" << value;
        }
        out << traitsOf(*inst) << "\n";
    }
    const char *otherNames = netlist->GetAttValue(kvr::netlistdb::names::OTHER_NAMES);
    std::istringstream names(otherNames != nullptr ? otherNames : "");
    for (std::string line; std::getline(names, line);) {
        std::replace(line.begin(), line.end(), '\t', ' ');
        out << "also " << line << "\n";
    }
    return out.str();
}

std::string linesOf(const Verific::Netlist *netlist, std::string_view prefix)
{
    std::istringstream all(print(netlist));
    std::string lines;
    for (std::string line; std::getline(all, line);) {
        if (line.compare(0, prefix.size(), prefix) == 0) {
            lines += line + "\n";
        }
    }
    return lines;
}

std::string dumpLibset()
{
    std::string dump;
    Verific::MapIter libraries;
    Verific::Library *library = nullptr;
    FOREACH_LIBRARY_OF_LIBSET (Verific::Libset::Global(), libraries, library) {
        dump += "library " + nameOf(library) + "\n";
        Verific::MapIter cells;
        Verific::Cell *cell = nullptr;
        FOREACH_CELL_OF_LIBRARY (library, cells, cell) {
            dump += "cell " + nameOf(cell) + "\n";
            Verific::MapIter netlists;
            Verific::Netlist *netlist = nullptr;
            FOREACH_NETLIST_OF_CELL (cell, netlists, netlist) {
                dump += testsupport::dumpNetlist(netlist);
                dump += "references " + std::to_string(netlist->NumOfRefs()) + "\n";
            }
        }
    }
    return dump;
}

void FilesTest::SetUp()
{
    std::string path = (std::filesystem::temp_directory_path() / "yosys_files_XXXXXX").string();
    ASSERT_NE(mkdtemp(path.data()), nullptr);
    m_directory = path;
}

std::string FilesTest::write(const char *name, const std::string &text) const
{
    std::ofstream(path(name), std::ios::binary) << text;
    return path(name);
}

} // namespace yosystest
