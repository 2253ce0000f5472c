// Patterns that `extract` looks for: registered products and sums of products.
// techmap_dsp.v turns what it found into cells.

module KVR_PATTERN_MAC_S16 (
    input  wire               clk,
    input  wire               en,
    input  wire signed [15:0] a,
    input  wire signed [15:0] b,
    input  wire signed [39:0] c,
    output reg  signed [39:0] p
);
    always @(posedge clk)
        if (en)
            p <= c + a * b;
endmodule

module KVR_PATTERN_MULT_S16 (
    input  wire               clk,
    input  wire               en,
    input  wire signed [15:0] a,
    input  wire signed [15:0] b,
    output reg  signed [39:0] p
);
    always @(posedge clk)
        if (en)
            p <= a * b;
endmodule

module KVR_PATTERN_MULT_U16 (
    input  wire        clk,
    input  wire        en,
    input  wire [15:0] a,
    input  wire [15:0] b,
    output reg  [31:0] p
);
    always @(posedge clk)
        if (en)
            p <= a * b;
endmodule
