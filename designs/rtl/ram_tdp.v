// -----------------------------------------------------------------------------
// ram_tdp: memory with two equal ports, A and B, each with its own clock.
//
// A port that writes keeps its last read word. Writing one word from both sides
// at once leaves the word undefined.
// -----------------------------------------------------------------------------
`default_nettype none

module ram_tdp #(
    parameter WIDTH = 8,
    parameter ABITS = 9
) (
    input  wire             clk_a,
    input  wire             en_a_i,
    input  wire             we_a_i,
    input  wire [ABITS-1:0] addr_a_i,
    input  wire [WIDTH-1:0] wdata_a_i,
    output reg  [WIDTH-1:0] rdata_a_o,

    input  wire             clk_b,
    input  wire             en_b_i,
    input  wire             we_b_i,
    input  wire [ABITS-1:0] addr_b_i,
    input  wire [WIDTH-1:0] wdata_b_i,
    output reg  [WIDTH-1:0] rdata_b_o
);

    reg [WIDTH-1:0] mem [0:(1<<ABITS)-1];

    always @(posedge clk_a)
        if (en_a_i) begin
            if (we_a_i)
                mem[addr_a_i] <= wdata_a_i;
            else
                rdata_a_o <= mem[addr_a_i];
        end

    always @(posedge clk_b)
        if (en_b_i) begin
            if (we_b_i)
                mem[addr_b_i] <= wdata_b_i;
            else
                rdata_b_o <= mem[addr_b_i];
        end

endmodule

`default_nettype wire
