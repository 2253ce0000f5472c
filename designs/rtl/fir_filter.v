// -----------------------------------------------------------------------------
// fir_filter: transposed FIR filter with TAPS loadable coefficients.
//
// Coefficients are written one at a time in the domain of clk and start at zero,
// so an unloaded filter is silent. The result is rounded to 16 bits.
// -----------------------------------------------------------------------------
`default_nettype none

module fir_filter #(
    parameter TAPS = 8
) (
    input  wire                clk,
    input  wire                rst_ni,

    input  wire                coef_we_i,
    input  wire [3:0]          coef_addr_i,
    input  wire signed [15:0]  coef_data_i,

    input  wire                valid_i,
    input  wire signed [15:0]  x_i,
    output reg                 valid_o,
    output wire signed [15:0]  y_o
);

    wire signed [39:0] \sum.chain[0] ;      // feeds the first tap
    wire signed [39:0] rounded;

    assign \sum.chain[0] = 40'sd0;

    genvar t;
    generate
        for (t = 0; t < TAPS; t = t + 1) begin : g_tap
            reg  signed [15:0] coef_q;
            wire signed [39:0] sum_in;
            wire signed [39:0] sum_out;

            always @(posedge clk or negedge rst_ni)
                if (!rst_ni)
                    coef_q <= 16'sd0;
                else if (coef_we_i && coef_addr_i == t)
                    coef_q <= coef_data_i;

            if (t == 0) begin : g_first
                assign sum_in = \sum.chain[0] ;
            end else begin : g_next
                assign sum_in = g_tap[t-1].sum_out;
            end

            fir_tap u_tap (
                .clk    (clk),
                .en_i   (valid_i),
                .x_i    (x_i),
                .coef_i (coef_q),
                .sum_i  (sum_in),
                .sum_o  (sum_out)
            );
        end
    endgenerate

    assign rounded = g_tap[TAPS-1].sum_out + 40'sd16384;
    assign y_o     = rounded[30:15];

    always @(posedge clk or negedge rst_ni)
        if (!rst_ni)
            valid_o <= 1'b0;
        else
            valid_o <= valid_i;

endmodule

`default_nettype wire
