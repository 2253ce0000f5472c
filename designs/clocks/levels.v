// -----------------------------------------------------------------------------
// levels: the same modules on different clocks, clocks that come out of modules,
// ports that pass straight through, two-way pins, and a loop that stands still.
// -----------------------------------------------------------------------------
`default_nettype none

module levels (
    input  wire       clk_a_i,
    input  wire       clk_b_i,
    input  wire       rst_ni,
    input  wire [3:0] data_i,
    inout  wire [3:0] pad_io,
    output wire [3:0] first_o,
    output wire [3:0] second_o,
    output wire [3:0] third_o,
    output wire [3:0] through_o,
    output wire       set_o,
    output wire       \odd.name[0] 
);

    wire       clk_made, clk_again;
    wire [3:0] a_to_b;

    stage_pair u_first (
        .clk_one_i (clk_a_i), .clk_two_i (clk_b_i), .rst_ni (rst_ni),
        .data_i (data_i), .data_o (first_o), .straight_o (a_to_b), .clk_o (clk_made)
    );

    // The same module with its clocks the other way round.
    stage_pair u_second (
        .clk_one_i (clk_b_i), .clk_two_i (clk_a_i), .rst_ni (rst_ni),
        .data_i (a_to_b ^ first_o), .data_o (second_o), .straight_o (through_o), .clk_o (clk_again)
    );

    // And on a clock that another instance makes, which a register gates.
    reg go_q;
    always @(posedge clk_made or negedge rst_ni)
        if (!rst_ni) go_q <= 1'b0;
        else         go_q <= data_i[0] | ~go_q;

    stage_pair u_third (
        .clk_one_i (clk_made), .clk_two_i (clk_again), .rst_ni (rst_ni),
        .data_i (pad_io), .data_o (third_o), .straight_o (), .clk_o ()
    );

    // Two-way pins.
    assign pad_io = go_q ? first_o : 4'bzzzz;

    // A loop of two gates that keeps what it was told last.
    wire keep_on, keep_off;
    assign keep_on  = ~(keep_off & ~first_o[0]);
    assign keep_off = ~(keep_on & ~second_o[0]);
    assign set_o    = keep_on;
    assign \odd.name[0]  = keep_off ^ third_o[3];

endmodule

/// Two stages on two clocks; the second makes a clock.
module stage_pair (
    input  wire       clk_one_i,
    input  wire       clk_two_i,
    input  wire       rst_ni,
    input  wire [3:0] data_i,
    output wire [3:0] data_o,
    output wire [3:0] straight_o,
    output wire       clk_o
);

    wire [3:0] middle;

    stage u_one (.clk(clk_one_i), .rst_ni(rst_ni), .data_i(data_i), .data_o(middle));
    stage u_two (.clk(clk_two_i), .rst_ni(rst_ni), .data_i(middle + 4'd1), .data_o(data_o));

    reg half_q;
    always @(posedge clk_one_i or negedge rst_ni)
        if (!rst_ni) half_q <= 1'b0;
        else         half_q <= ~half_q;

    assign clk_o      = half_q;
    assign straight_o = data_i;

endmodule

module stage (
    input  wire       clk,
    input  wire       rst_ni,
    input  wire [3:0] data_i,
    output reg  [3:0] data_o
);

    always @(posedge clk or negedge rst_ni)
        if (!rst_ni) data_o <= 4'd0;
        else         data_o <= data_o + data_i + 4'd1;

endmodule

`default_nettype wire
