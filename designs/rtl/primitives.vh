// -----------------------------------------------------------------------------
// primitives.vh: cells that must be written as instances to survive synthesis.
//
//   CLOCK_BUFFER(NAME, OUT, IN)   a buffer in a clock line
//
// Elaboration with yosys needs `read_verilog -icells` for the generic buffer; the
// mapped design (KVR_MAP) takes a global clock buffer.
// -----------------------------------------------------------------------------
`ifdef KVR_MAP
    `define CLOCK_BUFFER(NAME, OUT, IN) \
        KVR_GBUFCE NAME (.I(IN), .CE(1'b1), .O(OUT));
`else
    `ifdef YOSYS
        `define CLOCK_BUFFER(NAME, OUT, IN) \
            (* keep *) \$_BUF_ NAME (.A(IN), .Y(OUT));
    `else
        `define CLOCK_BUFFER(NAME, OUT, IN) \
            buf NAME (OUT, IN);
    `endif
`endif
