// -----------------------------------------------------------------------------
// ddr_out: drives a pin with d0_i while the clock is high, d1_i while it is low.
// -----------------------------------------------------------------------------
`default_nettype none

module ddr_out (
    input  wire clk,
    input  wire d0_i,
    input  wire d1_i,
    output wire pad_o
);

`ifdef SIMULATION
    reg rise_q, fall_q;

    always @(posedge clk) begin
        rise_q <= d0_i;
        fall_q <= d1_i;
    end

    assign pad_o = clk ? rise_q : fall_q;
`else
    KVR_ODDR u_oddr (
        .C  (clk),
        .D0 (d0_i),
        .D1 (d1_i),
        .Q  (pad_o)
    );
`endif

endmodule

`default_nettype wire
