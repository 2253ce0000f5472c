#pragma once

#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace kvr::netlistdb::names {

/// Attribute of a netlist that keeps the other names of its nets. A net has the best of its
/// names, and a vector is a net bus only when all of its bits have its name: everything else that the file calls
/// something stands here, so that it is saved, restored and copied with the netlist.
///
/// The value has a line for each name, of fields separated by tabs; a backslash, a tab and a line feed within a field
/// are written `\\`, `\t` and `\n`:
///
///     kind  name  left  right  src  hdlname  bits…
///
/// | field | content |
/// |---|---|
/// | kind | `d` declared by the user, `s` derived by synthesis, `h` hidden |
/// | left, right | bounds of a vector, empty for a single bit |
/// | src | the attribute of that name, as written |
/// | hdlname | hierarchical name, its segments separated by blanks; empty when not known |
/// | bits | from the least significant one on: `=net`, or `5:7=vector` for the nets `vector[5]` to `vector[7]`, or
/// `8*0` for eight bits of the constant 0 (`0`, `1`, `x` or `z`) |
constexpr const char *OTHER_NAMES = "netlistdb.names";

enum class NameKind : char { Declared = 'd', Derived = 's', Hidden = 'h' };

/// Adjacent bits of a name, from the least significant one on.
struct NetRun {
    enum class Kind { Net, Vector, Constant };
    Kind kind = Kind::Net;
    std::string net;     ///< name of the net or vector
    int first = 0;       ///< index of the first bit in the vector
    int last = 0;        ///< of the last one; less than @c first when the indices fall
    char constant = '0'; ///< of a constant
    unsigned count = 1;  ///< number of bits
};

/// One more name of one or several nets.
struct OtherName {
    NameKind kind = NameKind::Hidden;
    std::string name;
    bool isVector = false;
    int left = 0;
    int right = 0;
    std::string src;
    std::string hdlName;
    std::vector<NetRun> bits;
};

/// Puts the value of the attribute together.
class OtherNamesText {
  public:
    /// Starts a line.
    void begin(NameKind kind, std::string_view name, std::string_view src, std::string_view hdlName);
    void begin(NameKind kind, std::string_view name, int left, int right, std::string_view src,
               std::string_view hdlName);
    void addNet(std::string_view net);
    void addVectorBit(std::string_view vector, int index);
    void addConstant(char constant);
    /// Completes the line.
    void end();

    const std::string &text() const { return m_text; }

  private:
    void addRun();
    void append(std::string_view field);

    std::string m_text;
    NetRun m_run;
    bool m_open = false; ///< the run holds bits
};

/// Calls @p visit for every name in @p text, a value of the attribute. Lines that are none are passed over.
void readOtherNames(std::string_view text, const std::function<void(const OtherName &name)> &visit);

/// The hierarchical name of an object: its attribute @p hdlName, or its name within @p scopeName, which is what hidden
/// objects of flattened instances have instead; empty when it has neither.
std::string hierarchicalName(std::string_view name, std::string_view hdlName, std::string_view scopeName);

} // namespace kvr::netlistdb::names
