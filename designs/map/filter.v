// -----------------------------------------------------------------------------
// filter: eight taps whose products and sums go into arithmetic blocks, and behind them
// rounding and saturation, whose registers the mapping may move through the logic.
// -----------------------------------------------------------------------------
`default_nettype none

module filter (
    input  wire               clk_i,
    input  wire               rst_i,
    input  wire signed [15:0] x_i,
    input  wire               valid_i,
    input  wire               load_i,
    input  wire [2:0]         tap_i,
    output reg  signed [15:0] y_o,
    output reg                clipped_o
);

    reg signed  [15:0] x_q;
    wire signed [39:0] sum [0:8];
    assign sum[0] = 40'sd0;

    always @(posedge clk_i)
        x_q <= x_i;

    genvar tap;
    generate
        for (tap = 0; tap < 8; tap = tap + 1) begin : g_tap
            reg signed [15:0] coefficient_q;
            always @(posedge clk_i)
                if (rst_i)
                    coefficient_q <= 16'sd1 <<< tap;
                else if (load_i && tap_i == tap)
                    coefficient_q <= x_i;
            multiply_add u_mac (.clk_i, .en_i(valid_i), .x_i(x_q), .c_i(coefficient_q), .sum_i(sum[tap]),
                                .sum_o(sum[tap + 1]));
        end
    endgenerate

    // Round to a sixteenth, clip to sixteen bits.
    wire signed [39:0] rounded = sum[8] + 40'sd32768;
    wire               high    = !rounded[39] && |rounded[38:31];
    wire               low     = rounded[39] && !(&rounded[38:31]);
    reg  signed [15:0] clipped_q;
    reg                did_clip_q;

    always @(posedge clk_i) begin
        clipped_q  <= high ? 16'sh7fff : low ? 16'sh8000 : rounded[31:16];
        did_clip_q <= high || low;
        y_o        <= clipped_q;
        clipped_o  <= did_clip_q;
    end

endmodule

module multiply_add (
    input  wire               clk_i,
    input  wire               en_i,
    input  wire signed [15:0] x_i,
    input  wire signed [15:0] c_i,
    input  wire signed [39:0] sum_i,
    output reg  signed [39:0] sum_o
);

    always @(posedge clk_i)
        if (en_i)
            sum_o <= sum_i + x_i * c_i;

endmodule

`default_nettype wire
