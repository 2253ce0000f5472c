// Arithmetic cells for the patterns of patterns_dsp.v.

module KVR_PATTERN_MAC_S16 (
    input         clk,
    input         en,
    input  [15:0] a,
    input  [15:0] b,
    input  [39:0] c,
    output [39:0] p
);
    wire [47:0] full;

    KVR_DSP48 _TECHMAP_REPLACE_ (
        .CLK (clk),
        .CE  (en),
        .A   ({{2{a[15]}}, a}),
        .B   ({{2{b[15]}}, b}),
        .C   ({{8{c[39]}}, c}),
        .P   (full)
    );

    assign p = full[39:0];
endmodule

module KVR_PATTERN_MULT_S16 (
    input         clk,
    input         en,
    input  [15:0] a,
    input  [15:0] b,
    output [39:0] p
);
    wire [35:0] full;

    KVR_MULT _TECHMAP_REPLACE_ (
        .CLK (clk),
        .CE  (en),
        .A   ({{2{a[15]}}, a}),
        .B   ({{2{b[15]}}, b}),
        .P   (full)
    );

    assign p = {{4{full[35]}}, full};
endmodule

module KVR_PATTERN_MULT_U16 (
    input         clk,
    input         en,
    input  [15:0] a,
    input  [15:0] b,
    output [31:0] p
);
    wire [35:0] full;

    KVR_MULT _TECHMAP_REPLACE_ (
        .CLK (clk),
        .CE  (en),
        .A   ({2'b00, a}),
        .B   ({2'b00, b}),
        .P   (full)
    );

    assign p = full[31:0];
endmodule
