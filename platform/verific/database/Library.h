#pragma once

#include "DesignObj.h"

namespace Verific {

class Cell;
class Library;
class Netlist;

/// A set of libraries; the process has one global set.
class VERIFIC_EXPORT Libset {
  public:
    /// The one global set, made on first use.
    static Libset *Global();
    /// Deletes everything that the global set holds. Every pointer into it is dead afterwards.
    static void Reset();

    Libset();
    ~Libset();
    Libset(const Libset &) = delete;
    Libset &operator=(const Libset &) = delete;

    /// Takes ownership of @p library. Answers 0 (and takes nothing) when it has an owner already.
    unsigned Add(Library *library);
    /// The library of that name, or null.
    Library *GetLibrary(const char *name) const;
    Map *GetLibraries() const { return const_cast<Map *>(&m_libraries); }

  private:
    friend class Library;

    void deleteLibraries();

    Map m_libraries;
};

/// A named set of cells.
class VERIFIC_EXPORT Library : public DesignObj {
  public:
    explicit Library(const char *name);
    ~Library() override;

    /// Takes ownership of @p cell. Answers 0 (and takes nothing) when it has an owner already.
    unsigned Add(Cell *cell);
    Cell *GetCell(const char *name) const;
    Libset *Owner() const { return m_owner; }
    Map *GetCells() const { return const_cast<Map *>(&m_cells); }

    /// The library "Operators" of the global set, made on first use.
    static Library *Operators();
    /// The library "Primitives" of the global set, made on first use.
    static Library *Primitives();

  private:
    friend class Cell;
    friend class Libset;
    friend class NetlistWriter;

    /// Netlist::deleteInstances() for all netlists in it.
    void deleteInstances();

    Libset *m_owner = nullptr;
    Map m_cells;
};

/// A named design unit; its netlists are its views.
class VERIFIC_EXPORT Cell : public DesignObj {
  public:
    explicit Cell(const char *name);
    ~Cell() override;

    /// Takes ownership of @p netlist. Answers 0 (and takes nothing) when it has an owner already.
    unsigned Add(Netlist *netlist);
    Netlist *GetFirstNetlist() const;
    Netlist *GetNetlist(const char *view_name) const;
    unsigned NumOfNetlists() const { return m_netlists.Size(); }
    Library *Owner() const { return m_owner; }
    Map *GetNetlists() const { return const_cast<Map *>(&m_netlists); }

  private:
    friend class Library;
    friend class Netlist;
    friend class NetlistWriter;

    void deleteInstances();

    Library *m_owner = nullptr;
    Map m_netlists;
};

} // namespace Verific
