// -----------------------------------------------------------------------------
// bridges: every way of taking data from one clock to another, right and wrong.
//
// The table of all crossings is crossings.csv beside this file.
// -----------------------------------------------------------------------------
`default_nettype none

module bridges (
    input  wire        clk_a_i,
    input  wire        clk_b_i,
    input  wire        clk_c_i,
    input  wire        rst_ni,
    input  wire [15:0] data_i,
    input  wire        send_i,
    input  wire [1:0]  place_i,
    output wire        kept_o,
    output wire        single_o,
    output wire [2:0]  gray_o,
    output wire [2:0]  loose_gray_o,
    output wire [2:0]  onehot_o,
    output wire [1:0]  loose_o,
    output wire [7:0]  held_o,
    output wire [7:0]  picked_o,
    output reg         bare_o,
    output reg  [3:0]  torn_o,
    output wire        hazard_o,
    output wire        mixed_o,
    output reg         split_o,
    output wire        twin_o,
    output wire        pair_o,
    output reg  [3:0]  stored_o,
    output reg         latched_o,
    output reg         near_o,
    output reg         stray_o,
    output wire        acknowledged_o
);

    // Resets: one released through flip-flops that are kept together, one through two that are not.
    wire rst_a_n;
    reset_chain u_rst_a (.clk(clk_a_i), .rst_ni(rst_ni), .rst_no(rst_a_n));

    reg [1:0] rst_b_q;
    always @(posedge clk_b_i or negedge rst_ni)
        if (!rst_ni) rst_b_q <= 2'b00;
        else         rst_b_q <= {rst_b_q[0], 1'b1};
    wire rst_b_n = rst_b_q[1];

    // Sender: a word with a request that toggles, two Gray counters, and single bits.
    reg  [7:0] word_q;
    reg        request_q;
    reg  [2:0] count_q, gray_q;
    reg  [2:0] slow_q, loose_gray_q;
    wire [2:0] count_next = count_q + 3'd1;
    wire [2:0] slow_next  = slow_q + {2'b00, send_i};
    wire       acknowledge;

    always @(posedge clk_a_i or negedge rst_a_n)
        if (!rst_a_n) begin
            word_q       <= 8'd0;
            request_q    <= 1'b0;
            count_q      <= 3'd0;
            gray_q       <= 3'd0;
            slow_q       <= 3'd0;
            loose_gray_q <= 3'd0;
        end else begin
            if (send_i && acknowledge == request_q) begin
                word_q    <= data_i[7:0];
                request_q <= ~request_q;
            end
            count_q      <= count_next;
            gray_q       <= count_next ^ (count_next >> 1);
            slow_q       <= slow_next;
            loose_gray_q <= slow_next ^ (slow_next >> 1);
        end

    reg       kept_q, single_q, bare_q, split_q, left_q, right_q, near_q, late_q;
    reg [2:0] onehot_q;
    reg [1:0] loose_q, apart_q;
    reg [3:0] torn_q;
    reg       some_q;

    always @(posedge clk_a_i) begin
        kept_q   <= data_i[0];
        single_q <= data_i[1];
        bare_q   <= data_i[2];
        split_q  <= data_i[3];
        left_q   <= data_i[4];
        right_q  <= data_i[5];
        near_q   <= data_i[6];
        late_q   <= data_i[7];
        onehot_q <= data_i[10:8];
        loose_q  <= data_i[12:11];
        apart_q  <= data_i[14:13];
        torn_q   <= data_i[3:0] ^ data_i[7:4];
        some_q   <= data_i[15];
    end

    reg other_q;
    always @(posedge clk_c_i)
        other_q <= data_i[15];

    // One bit through two flip-flops: kept together, and not.
    two_flops #(.WIDTH(1)) u_kept (.clk(clk_b_i), .in_i(kept_q), .out_o(kept_o));
    loose_flops #(.WIDTH(1)) u_single (.clk(clk_b_i), .in_i(single_q), .out_o(single_o));

    // Gray counters and plain words, bit by bit: kept together, and not.
    two_flops #(.WIDTH(3)) u_gray (.clk(clk_b_i), .in_i(gray_q), .out_o(gray_o));
    loose_flops #(.WIDTH(3)) u_loose_gray (.clk(clk_b_i), .in_i(loose_gray_q), .out_o(loose_gray_o));
    two_flops #(.WIDTH(3)) u_onehot (.clk(clk_b_i), .in_i(onehot_q), .out_o(onehot_o));
    loose_flops #(.WIDTH(2)) u_loose (.clk(clk_b_i), .in_i(loose_q), .out_o(loose_o));

    // The word, taken when the synchronized request has changed.
    wire      request_b;
    reg       last_q;
    reg [7:0] held_q;
    reg [7:0] picked_q;
    wire      fresh = request_b ^ last_q;

    two_flops #(.WIDTH(1)) u_request (.clk(clk_b_i), .in_i(request_q), .out_o(request_b));

    always @(posedge clk_b_i or negedge rst_b_n)
        if (!rst_b_n) begin
            last_q <= 1'b0;
            held_q <= 8'd0;
        end else begin
            last_q <= request_b;
            if (fresh)
                held_q <= word_q;
        end

    always @(posedge clk_b_i)
        picked_q <= fresh ? word_q : {picked_q[6:0], picked_q[7]};

    assign held_o   = held_q;
    assign picked_o = picked_q;

    // The way back.
    two_flops #(.WIDTH(1)) u_acknowledge (.clk(clk_a_i), .in_i(last_q), .out_o(acknowledge));
    assign acknowledged_o = acknowledge;

    // One flip-flop alone, and a word without any care.
    always @(posedge clk_b_i) begin
        bare_o <= bare_q & ~bare_o;
        torn_o <= torn_q;
    end

    // Logic in front of a synchronizer; registers of two clocks there.
    two_flops #(.WIDTH(1)) u_hazard (.clk(clk_b_i), .in_i(apart_q[0] & apart_q[1]), .out_o(hazard_o));
    two_flops #(.WIDTH(1)) u_mixed (.clk(clk_b_i), .in_i(some_q ^ other_q), .out_o(mixed_o));

    // A source that is synchronized, and read beside the synchronizer.
    two_flops #(.WIDTH(1)) u_split (.clk(clk_b_i), .in_i(split_q), .out_o(twin_o));
    always @(posedge clk_b_i)
        split_o <= split_q ^ place_i[0];

    // Two bits synchronized each by itself, and used together.
    wire left_b, right_b;
    two_flops #(.WIDTH(1)) u_left  (.clk(clk_b_i), .in_i(left_q), .out_o(left_b));
    two_flops #(.WIDTH(1)) u_right (.clk(clk_b_i), .in_i(right_q), .out_o(right_b));
    assign pair_o = left_b & right_b;

    // A memory between the clocks.
    reg [3:0] store_q [0:15];
    always @(posedge clk_a_i)
        if (send_i)
            store_q[{count_q[0], count_q}] <= data_i[3:0];
    always @(posedge clk_b_i)
        stored_o <= store_q[{place_i, place_i}];

    // A latch that is open while the other clock is high.
    always @(*)
        if (clk_b_i) latched_o = late_q;

    // A divided clock is in step with its parent.
    reg half_q;
    always @(posedge clk_a_i or negedge rst_a_n)
        if (!rst_a_n) half_q <= 1'b0;
        else          half_q <= ~half_q;
    always @(posedge half_q)
        near_o <= near_q;

    // A reset without care.
    always @(posedge clk_c_i or negedge rst_ni)
        if (!rst_ni) stray_o <= 1'b0;
        else         stray_o <= other_q;

endmodule

/// A synchronizer of two flip-flops, kept together.
module two_flops #(
    parameter WIDTH = 1
) (
    input  wire             clk,
    input  wire [WIDTH-1:0] in_i,
    output wire [WIDTH-1:0] out_o
);

    (* async_reg = "TRUE", keep *) reg [WIDTH-1:0] first_q;
    (* async_reg = "TRUE", keep *) reg [WIDTH-1:0] second_q;

    always @(posedge clk) begin
        first_q  <= in_i;
        second_q <= first_q;
    end

    assign out_o = second_q;

endmodule

/// The same with nothing that keeps the flip-flops together.
module loose_flops #(
    parameter WIDTH = 1
) (
    input  wire             clk,
    input  wire [WIDTH-1:0] in_i,
    output wire [WIDTH-1:0] out_o
);

    reg [WIDTH-1:0] first_q;
    reg [WIDTH-1:0] second_q;

    always @(posedge clk) begin
        first_q  <= in_i;
        second_q <= first_q;
    end

    assign out_o = second_q;

endmodule

/// Asserts a reset at once and releases it in step with the clock.
module reset_chain (
    input  wire clk,
    input  wire rst_ni,
    output wire rst_no
);

    (* async_reg = "TRUE", keep *) reg [1:0] chain_q;

    always @(posedge clk or negedge rst_ni)
        if (!rst_ni) chain_q <= 2'b00;
        else         chain_q <= {chain_q[0], 1'b1};

    assign rst_no = chain_q[1];

endmodule

`default_nettype wire
