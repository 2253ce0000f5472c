// -----------------------------------------------------------------------------
// ring_stage: one inverter of a ring oscillator.
//
// A module of its own so that neighbouring inverters are not optimized away; the
// mapped design takes a look-up table for each.
// -----------------------------------------------------------------------------
`default_nettype none

module ring_stage (
    input  wire in_i,
    output wire out_o
);

`ifdef KVR_MAP
    KVR_LUT1 #(.INIT(2'b01)) u_inv (
        .I0 (in_i),
        .O  (out_o)
    );
`else
    assign out_o = ~in_i;
`endif

endmodule

`default_nettype wire
