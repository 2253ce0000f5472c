// -----------------------------------------------------------------------------
// fir_tap: one multiply-accumulate stage of a transposed FIR filter.
//
// No reset: the filter is flushed by feeding it zeros.
// -----------------------------------------------------------------------------
`default_nettype none

module fir_tap (
    input  wire               clk,
    input  wire               en_i,
    input  wire signed [15:0] x_i,
    input  wire signed [15:0] coef_i,
    input  wire signed [39:0] sum_i,
    output reg  signed [39:0] sum_o
);

    always @(posedge clk)
        if (en_i)
            sum_o <= sum_i + x_i * coef_i;

endmodule

`default_nettype wire
