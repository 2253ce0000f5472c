// -----------------------------------------------------------------------------
// bridges: every way of taking data from one clock to another, right and wrong.
//
// The table of all crossings is crossings.csv beside this file.
// -----------------------------------------------------------------------------
`default_nettype none

module bridges (
    input  wire       clk_a_i,
    input  wire       clk_b_i,
    input  wire       rst_ni,
    input  wire [7:0] data_i,
    input  wire       send_i,
    output wire [7:0] held_o,
    output wire [7:0] picked_o,
    output wire [2:0] gray_o,
    output wire       flag_o,
    output reg        bare_o,
    output reg  [7:0] torn_o,
    output reg        hazard_o,
    output wire       pair_o,
    output wire       acknowledged_o
);

    // Sender: data, a request that toggles, a Gray counter.
    reg  [7:0] word_q;
    reg        request_q;
    reg  [2:0] count_q;
    reg  [2:0] gray_q;
    wire       acknowledge;

    always @(posedge clk_a_i or negedge rst_ni)
        if (!rst_ni) begin
            word_q    <= 8'd0;
            request_q <= 1'b0;
            count_q   <= 3'd0;
            gray_q    <= 3'd0;
        end else begin
            if (send_i && acknowledge == request_q) begin
                word_q    <= data_i;
                request_q <= ~request_q;
            end
            count_q <= count_q + 3'd1;
            gray_q  <= (count_q + 3'd1) ^ ((count_q + 3'd1) >> 1);
        end

    // One bit through two flip-flops, kept together by an attribute.
    wire request_b;
    two_flops #(.WIDTH(1)) u_request (.clk(clk_b_i), .in_i(request_q), .out_o(request_b));

    // A Gray counter, bit by bit.
    two_flops #(.WIDTH(3)) u_gray (.clk(clk_b_i), .in_i(gray_q), .out_o(gray_o));

    // Data taken when the synchronised request has changed.
    reg       last_q;
    reg [7:0] held_q;
    reg [7:0] picked_q;
    wire      fresh = request_b ^ last_q;

    always @(posedge clk_b_i or negedge rst_ni)
        if (!rst_ni) begin
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

    // Two flip-flops without an attribute.
    reg [1:0] plain_q;
    always @(posedge clk_b_i)
        plain_q <= {plain_q[0], word_q[0]};
    assign flag_o = plain_q[1];

    // One flip-flop alone, and a bus without any care.
    always @(posedge clk_b_i) begin
        bare_o <= count_q[0] & ~bare_o;
        torn_o <= torn_o + word_q;
    end

    // Logic in front of a synchroniser.
    reg middle_q;
    always @(posedge clk_b_i) begin
        middle_q <= word_q[1] & request_q;
        hazard_o <= middle_q;
    end

    // Two bits synchronised each by itself, and used together.
    wire left_b, right_b;
    two_flops #(.WIDTH(1)) u_left  (.clk(clk_b_i), .in_i(word_q[2]), .out_o(left_b));
    two_flops #(.WIDTH(1)) u_right (.clk(clk_b_i), .in_i(word_q[3]), .out_o(right_b));
    assign pair_o = left_b & right_b;

endmodule

/// A synchroniser of two flip-flops, kept together.
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

`default_nettype wire
