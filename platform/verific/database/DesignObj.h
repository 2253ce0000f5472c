#pragma once

#include "Att.h"
#include "LineFile.h"
#include "Map.h"

#include <cstddef>
#include <cstdint>
#include <new>

namespace Verific {

class AttTable;
class Netlist;

/// What every named object of the database has: name, source position, attributes, flags.
///
/// Objects are made with `new`, passed to their owner with its `Add`, and deleted by it. Deleting an object directly
/// takes it out of its owner and out of everything it is connected to.
class VERIFIC_EXPORT DesignObj {
  public:
    virtual ~DesignObj();
    DesignObj(const DesignObj &) = delete;
    DesignObj &operator=(const DesignObj &) = delete;

    // Objects lie side by side in slabs. Embedded database only.

    /// @throws std::bad_alloc
    static void *operator new(std::size_t size);
    static void *operator new(std::size_t /*size*/, void *place) noexcept { return place; }
    static void *operator new(std::size_t size, std::align_val_t alignment) { return ::operator new(size, alignment); }
    static void operator delete(void *object, std::size_t size) noexcept;
    static void operator delete(void * /*object*/, void * /*place*/) noexcept {}
    static void operator delete(void *object, std::size_t /*size*/, std::align_val_t alignment) noexcept
    {
        ::operator delete(object, alignment);
    }

    /// The name, or null when the object was made without one. Lives as long as the object.
    const char *Name() const { return m_name.get(); }
    linefile_type Linefile() const { return m_linefile; }
    /// First attribute of that key, or null. Owned by the object; adding an attribute may replace it.
    Att *GetAtt(const char *key) const;
    /// Value of the first attribute of that key; null when absent or without value.
    const char *GetAttValue(const char *key) const;
    /// Adds an attribute and takes ownership of it.
    void AddAtt(Att *att);
    unsigned IsProtected() const { return m_protected; }
    unsigned IsUserDeclared() const { return m_userDeclared; }

    // Embedded database only.
    void SetLinefile(linefile_type linefile) { m_linefile = linefile; }
    void SetProtected(unsigned on) { m_protected = on != 0; }
    void SetUserDeclared(unsigned on) { m_userDeclared = on != 0; }

    /// Steps FOREACH_ATTRIBUTE.
    bool nextAttribute(MapIter &iter, Att *&att) const;
    unsigned attributeCount() const;

  protected:
    explicit DesignObj(const char *name);
    explicit DesignObj(SharedName name);
    /// Takes over position, flags and attributes of @p other, sharing the attributes until either side adds one.
    void copyTraits(const DesignObj &other);
    const SharedName &sharedName() const { return m_name; }

    friend class NetlistWriter;
    friend class NetlistReader;

    SharedName m_name;
    linefile_type m_linefile = 0;
    AttTable *m_atts = nullptr;     ///< shared between copies; null when there are none
    unsigned m_slot = Map::NO_SLOT; ///< place in the owner's table
    bool m_protected : 1;
    bool m_userDeclared : 1;
};

/// Called by the loop macros.
namespace loops {

/// Step of FOREACH_ATTRIBUTE that takes a null object as one without attributes.
inline bool nextAttributeOf(const DesignObj *obj, MapIter &iter, Att *&att)
{
    return obj != nullptr && obj->nextAttribute(iter, att);
}

} // namespace loops
} // namespace Verific

/// Loops over the attributes of a DesignObj in order of addition: `FOREACH_ATTRIBUTE(obj, mi, att)` with
/// `MapIter mi; Att *att;`.
#define FOREACH_ATTRIBUTE(obj, mi, att)                                                                                \
    for ((mi).start(nullptr); ::Verific::loops::nextAttributeOf((obj), (mi), (att));)
