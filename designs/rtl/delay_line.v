// -----------------------------------------------------------------------------
// delay_line: delays a word by DEPTH enabled cycles.
//
// Has no reset on purpose, so that it fits into shift-register cells.
// -----------------------------------------------------------------------------
`default_nettype none

module delay_line #(
    parameter WIDTH = 8,
    parameter DEPTH = 16
) (
    input  wire             clk,
    input  wire             en_i,
    input  wire [WIDTH-1:0] d_i,
    output wire [WIDTH-1:0] q_o
);

    genvar b;
    generate
        for (b = 0; b < WIDTH; b = b + 1) begin : g_bit
            reg [DEPTH-1:0] line_q;

            always @(posedge clk)
                if (en_i)
                    line_q <= {line_q[DEPTH-2:0], d_i[b]};

            assign q_o[b] = line_q[DEPTH-1];
        end
    endgenerate

endmodule

`default_nettype wire
