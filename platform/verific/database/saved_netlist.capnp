# The payload of a saved netlist: a netlist and all netlists below it.
#
# Everything is kept in columns: the objects of one kind, of all netlists, one netlist after the other, make one row
# each. Objects name each other by row, or by place within their netlist where that is said. A column that may be empty
# stands for its default (0) in every row when it is.

@0x82eb9fc0ca927a00;

using Cxx = import "/capnp/c++.capnp";
$Cxx.namespace("Verific::saved");

# Texts in sequence. A length of 0 is "no text", n + 1 a text of n bytes. Cut into chunks to stay below the size limits
# of one list.
struct Texts {
  chunks @0 :List(TextChunk);
}

struct TextChunk {
  bytes @0 :Data;
  lengths @1 :List(UInt32);
}

# What all named objects have. The number of names is the number of objects.
struct Objects {
  names @0 :Texts;
  files @1 :List(UInt32);       # may be empty; source file + 1
  lines @2 :List(UInt32);       # may be empty
  attributes @3 :List(UInt32);  # may be empty; attribute set + 1
  flags @4 :List(UInt8);        # may be empty; 1 protected, 2 user declared
}

# Distinct lists of key and value, in sequence.
struct PairSets {
  counts @0 :List(UInt32);  # pairs in each set
  keys @1 :List(UInt32);    # text + 1, 0: none
  values @2 :List(UInt32);  # text + 1, 0: none
}

struct Buses {
  objects @0 :Objects;
  left @1 :List(Int32);
  right @2 :List(Int32);
  directions @3 :List(UInt8);  # port buses only
  sizes @4 :List(UInt32);      # places from the left bound to the last one set
  elements @5 :List(UInt32);   # place of the bit in its netlist + 1, 0: unset
}

struct SavedNetlist {
  top @0 :UInt32;  # row of the top netlist

  texts @1 :Texts;  # named by the columns that say "text"
  fileNames @2 :List(UInt32);      # text
  filePaths @3 :List(UInt32);      # text + 1, 0: unknown; the name itself where that is relative
  attributeSets @4 :PairSets;
  parameterSets @5 :PairSets;

  libraries @6 :Objects;
  cells @7 :Objects;
  cellLibraries @8 :List(UInt32);  # library + 1, 0: none

  netlists @9 :Objects;
  netlistCells @10 :List(UInt32);  # cell + 1, 0: none
  netlistFlags @11 :List(UInt8);   # 1 black box, 2 register, 4 operator
  netlistTypes @12 :List(UInt32);
  netlistClocks @13 :List(UInt32); # place of the port + 1, 0: none
  netlistInputs @14 :List(UInt32); # place of the port + 1, 0: none
  portCounts @15 :List(UInt32);
  portBusCounts @16 :List(UInt32);
  netCounts @17 :List(UInt32);
  netBusCounts @18 :List(UInt32);
  instanceCounts @19 :List(UInt32);
  portNetCounts @20 :List(UInt32);

  ports @21 :Objects;
  portDirections @22 :List(UInt8);
  portBuses @23 :Buses;
  nets @24 :Objects;
  memoryNets @25 :List(UInt32);    # rows of nets that stand for memories, rising
  memoryBits @26 :List(UInt32);
  netBuses @27 :Buses;

  # Ports on nets, net by net and in order of connection on each: places in the netlist.
  portNetPorts @28 :List(UInt32);
  portNetNets @29 :List(UInt32);

  # A shape is what instances share: the view and which of its ports are connected in which order.
  shapeViews @30 :List(UInt32);    # netlist + 1, 0: none
  shapeSizes @31 :List(UInt32);    # connected pins
  shapePorts @32 :List(UInt32);    # places in the view

  instances @33 :Objects;
  instanceShapes @34 :List(UInt32);
  instanceParameters @35 :List(UInt32);  # may be empty; parameter set + 1
  pinNets @36 :List(UInt32);             # place in the netlist, pin by pin

  # Nets on which the pins were not connected in the order of the instances: row of the net (rising), and for its pins in
  # order of connection the rank of each in the order of the instances.
  mixedNets @37 :List(UInt32);
  mixedRanks @38 :List(UInt32);

  # Netlists whose references are not in the order of the instance rows: row of the netlist (rising), and the
  # instance rows in order of reference.
  mixedViews @39 :List(UInt32);
  mixedReferences @40 :List(UInt32);
}
