// -----------------------------------------------------------------------------
// attention_line: one line that two clock domains may set.
//
// Both registers are tied to the same line, as on a board with open outputs; the
// protocol lets only one side be active at a time. Synthesis reports the second
// driver, which is expected here.
// -----------------------------------------------------------------------------
`default_nettype none

module attention_line (
    input  wire clk_a,
    input  wire set_a_i,
    input  wire clk_b,
    input  wire set_b_i,
    output wire line_o
);

    (* keep *) reg side_a_q;
    (* keep *) reg side_b_q;

    always @(posedge clk_a)
        side_a_q <= set_a_i;

    always @(posedge clk_b)
        side_b_q <= set_b_i;

    assign line_o = side_a_q;
    assign line_o = side_b_q;

endmodule

`default_nettype wire
