// -----------------------------------------------------------------------------
// clock_divider: divides a clock by an even ratio with 50 % duty cycle.
//
// The divided clock is a flip-flop output, so it is free of glitches.
// DIVIDE must be even and at least 2.
// -----------------------------------------------------------------------------
`default_nettype none

module clock_divider #(
    parameter DIVIDE = 8
) (
    input  wire clk_i,
    input  wire rst_ni,
    output wire clk_div_o,
    output wire tick_o      // one clk_i cycle per divided period
);

    localparam HALF  = DIVIDE / 2;
    localparam WIDTH = (HALF > 1) ? $clog2(HALF) : 1;

    reg [WIDTH-1:0] count_q;
    reg             clk_div_q;
    wire            wrap = (count_q == HALF - 1);

    always @(posedge clk_i or negedge rst_ni)
        if (!rst_ni) begin
            count_q   <= {WIDTH{1'b0}};
            clk_div_q <= 1'b0;
        end else if (wrap) begin
            count_q   <= {WIDTH{1'b0}};
            clk_div_q <= ~clk_div_q;
        end else begin
            count_q   <= count_q + 1'b1;
        end

    assign clk_div_o = clk_div_q;
    assign tick_o    = wrap & ~clk_div_q;

endmodule

`default_nettype wire
