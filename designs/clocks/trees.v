// -----------------------------------------------------------------------------
// trees: every way of making one clock from another.
//
// Two clocks come from pins. From them: an inverted edge, a gate with a latch, a
// gate without one, a multiplexer, a divider and a divider behind the divider.
// Latches hold data, and a clock is looked at as data.
// -----------------------------------------------------------------------------
`default_nettype none

module trees (
    input  wire       clk_a_i,
    input  wire       clk_b_i,
    input  wire       rst_ni,
    input  wire       enable_i,
    input  wire       choose_i,
    input  wire [3:0] data_i,
    output reg  [3:0] rise_o,
    output reg  [3:0] fall_o,
    output reg  [3:0] gated_o,
    output reg  [3:0] chosen_o,
    output reg  [3:0] slow_o,
    output wire [3:0] mixed_o,
    output reg  [3:0] latched_o,
    output reg        seen_o
);

    // Both edges of one clock.
    always @(posedge clk_a_i or negedge rst_ni)
        if (!rst_ni) rise_o <= 4'd0;
        else         rise_o <= rise_o + data_i;

    always @(negedge clk_a_i)
        fall_o <= fall_o ^ {rise_o[2:0], rise_o[3]};

    // A gate whose enable is held while the clock is high.
    reg  hold_q;
    wire clk_gated = clk_a_i & hold_q;

    always @(*)
        if (!clk_a_i) hold_q = enable_i | rise_o[0];

    always @(posedge clk_gated)
        gated_o <= gated_o + 4'd3;

    // A multiplexer, set by a register of one of its clocks.
    reg  choice_q;
    wire clk_chosen = choice_q ? clk_b_i : clk_a_i;

    always @(posedge clk_a_i or negedge rst_ni)
        if (!rst_ni) choice_q <= 1'b0;
        else         choice_q <= choose_i;

    always @(posedge clk_chosen)
        chosen_o <= ~chosen_o + data_i;

    // Dividers, one behind the other.
    reg clk_half_q, clk_quarter_q;

    always @(posedge clk_b_i or negedge rst_ni)
        if (!rst_ni) clk_half_q <= 1'b0;
        else         clk_half_q <= ~clk_half_q;

    always @(posedge clk_half_q or negedge rst_ni)
        if (!rst_ni) clk_quarter_q <= 1'b0;
        else         clk_quarter_q <= ~clk_quarter_q;

    always @(posedge clk_quarter_q)
        slow_o <= slow_o + 4'd1;

    // Logic fed by several clocks.
    assign mixed_o = (slow_o & gated_o) | (fall_o ^ {4{choice_q}});

    // A latch that is open while a clock is low.
    always @(*)
        if (!clk_b_i) latched_o = mixed_o;

    // A clock taken as data.
    always @(posedge clk_b_i)
        seen_o <= clk_a_i;

endmodule

`default_nettype wire
