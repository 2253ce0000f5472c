// -----------------------------------------------------------------------------
// clock_gate: stops a clock without glitches.
//
// STYLE "LOGIC"  captures the enable while the clock is low and ANDs it in.
// STYLE "BUFFER" uses the enable pin of a global clock buffer (the buffer does
//                the capturing); the simulation model is the same logic.
// -----------------------------------------------------------------------------
`default_nettype none

module clock_gate #(
    parameter STYLE = "LOGIC"
) (
    input  wire clk_i,
    input  wire enable_i,
    output wire clk_o
);

`ifdef SIMULATION
    localparam USE_LOGIC = 1;
`else
    localparam USE_LOGIC = (STYLE == "LOGIC");
`endif

    generate
        if (USE_LOGIC) begin : g_logic
            reg enable_q;

            // The enable changes only while the clock is low.
            always @(negedge clk_i)
                enable_q <= enable_i;

            assign clk_o = clk_i & enable_q;
        end else begin : g_buffer
`ifndef SIMULATION
            KVR_GBUFCE u_gbufce (
                .I  (clk_i),
                .CE (enable_i),
                .O  (clk_o)
            );
`endif
        end
    endgenerate

endmodule

`default_nettype wire
