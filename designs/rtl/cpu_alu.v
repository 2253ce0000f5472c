// -----------------------------------------------------------------------------
// cpu_alu: arithmetic and logic of the processor. Purely combinational.
// -----------------------------------------------------------------------------
`default_nettype none

module cpu_alu (
    input  wire [3:0]  op_i,
    input  wire [15:0] a_i,
    input  wire [15:0] b_i,
    output reg  [15:0] y_o,
    output wire        zero_o,
    output wire        less_o       // a < b, signed
);

    always @*
        case (op_i)
            4'd1:    y_o = a_i + b_i;
            4'd2:    y_o = a_i - b_i;
            4'd3:    y_o = a_i & b_i;
            4'd4:    y_o = a_i | b_i;
            4'd5:    y_o = a_i ^ b_i;
            4'd6:    y_o = a_i << b_i[3:0];
            4'd7:    y_o = $signed(a_i) >>> b_i[3:0];
            4'd9:    y_o = {15'h0000, less_o};
            default: y_o = b_i;
        endcase

    assign zero_o = ~|a_i;
    assign less_o = $signed(a_i) < $signed(b_i);

endmodule

`default_nettype wire
