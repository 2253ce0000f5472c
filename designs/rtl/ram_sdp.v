// -----------------------------------------------------------------------------
// ram_sdp: memory with one write port and one read port, each with its clock.
//
// Reads take one cycle. Reading the word that is being written in the same
// moment gives either the old or the new word.
// -----------------------------------------------------------------------------
`default_nettype none

module ram_sdp #(
    parameter WIDTH = 16,
    parameter ABITS = 8
) (
    input  wire             wclk,
    input  wire             we_i,
    input  wire [ABITS-1:0] waddr_i,
    input  wire [WIDTH-1:0] wdata_i,

    input  wire             rclk,
    input  wire             re_i,
    input  wire [ABITS-1:0] raddr_i,
    output reg  [WIDTH-1:0] rdata_o
);

    reg [WIDTH-1:0] mem [0:(1<<ABITS)-1];

    always @(posedge wclk)
        if (we_i)
            mem[waddr_i] <= wdata_i;

    always @(posedge rclk)
        if (re_i)
            rdata_o <= mem[raddr_i];

endmodule

`default_nettype wire
