// -----------------------------------------------------------------------------
// stores: memories of all kinds, shift registers and multipliers on two clocks.
// -----------------------------------------------------------------------------
`default_nettype none

module stores (
    input  wire        clk_a_i,
    input  wire        clk_b_i,
    input  wire        write_i,
    input  wire [3:0]  address_a_i,
    input  wire [3:0]  address_b_i,
    input  wire [7:0]  data_i,
    output reg  [7:0]  clocked_o,
    output wire [7:0]  open_o,
    output reg  [7:0]  both_a_o,
    output reg  [7:0]  both_b_o,
    output wire        line_o,
    output reg  [15:0] product_o,
    output reg  [7:0]  sum_o
);

    // Written by one clock, read by another.
    reg [7:0] table_q [0:15];
    reg [3:0] write_q;

    always @(posedge clk_a_i) begin
        write_q <= write_q + address_a_i;
        if (write_i)
            table_q[write_q] <= data_i ^ sum_o;
    end

    always @(posedge clk_b_i)
        clocked_o <= table_q[address_b_i];

    // Read without a clock.
    reg [7:0] scratch_q [0:15];
    reg [3:0] look_q;

    always @(posedge clk_a_i)
        if (write_i)
            scratch_q[address_a_i] <= sum_o;

    always @(posedge clk_b_i)
        look_q <= look_q + address_b_i + 4'd1;

    assign open_o = scratch_q[look_q];

    // Two ports that both read and write.
    reg [7:0] shared_q [0:15];

    always @(posedge clk_a_i) begin
        if (write_i)
            shared_q[write_q] <= sum_o;
        both_a_o <= shared_q[write_q];
    end

    always @(posedge clk_b_i)
        both_b_o <= shared_q[look_q];

    // A long line of registers.
    reg [19:0] line_q;
    always @(posedge clk_a_i)
        line_q <= {line_q[18:0], ^sum_o};
    assign line_o = line_q[19];

    // A product and a counter.
    always @(posedge clk_b_i)
        product_o <= clocked_o * {4'd0, look_q};

    always @(posedge clk_a_i)
        sum_o <= sum_o + 8'd5;

endmodule

`default_nettype wire
