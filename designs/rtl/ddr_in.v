// -----------------------------------------------------------------------------
// ddr_in: samples a pin on both clock edges.
//
// q0_o holds the bit of the rising edge, q1_o that of the falling edge; both are
// valid on the next rising edge.
// -----------------------------------------------------------------------------
`default_nettype none

module ddr_in (
    input  wire clk,
    input  wire pad_i,
    output wire q0_o,
    output wire q1_o
);

`ifdef SIMULATION
    reg rise_q, fall_q, rise_out_q, fall_out_q;

    always @(posedge clk) rise_q <= pad_i;
    always @(negedge clk) fall_q <= pad_i;

    always @(posedge clk) begin
        rise_out_q <= rise_q;
        fall_out_q <= fall_q;
    end

    assign q0_o = rise_out_q;
    assign q1_o = fall_out_q;
`else
    KVR_IDDR u_iddr (
        .C  (clk),
        .D  (pad_i),
        .Q0 (q0_o),
        .Q1 (q1_o)
    );
`endif

endmodule

`default_nettype wire
