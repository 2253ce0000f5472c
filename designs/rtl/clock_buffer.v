// -----------------------------------------------------------------------------
// clock_buffer: one buffer in a clock line.
//
// Marks the point where a clock leaves its source and enters the fabric. The
// buffered and the raw clock stay two different nets.
// -----------------------------------------------------------------------------
`include "primitives.vh"
`default_nettype none

module clock_buffer (
    input  wire clk_i,
    output wire clk_o
);

    `CLOCK_BUFFER(u_buf, clk_o, clk_i)

endmodule

`default_nettype wire
