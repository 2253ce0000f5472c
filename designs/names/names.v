// -----------------------------------------------------------------------------
// A small design full of names: vectors whose bits are other signals, ports that
// share a net, a state machine, escaped names, parameters, and two levels below
// the top. The netlists beside it show what becomes of these names.
// -----------------------------------------------------------------------------
`default_nettype none

module names_stage #(
    parameter WIDTH = 2,
    parameter STEP  = 1
) (
    input  wire             clk,
    input  wire [WIDTH-1:0] data_i,
    output wire [WIDTH-1:0] data_o,
    output wire             carry_o
);
    reg [WIDTH:0] sum_q;
    always @(posedge clk) sum_q <= data_i + STEP;
    assign data_o  = sum_q[WIDTH-1:0];
    assign carry_o = sum_q[WIDTH];
endmodule

module names_pair (
    input  wire       clk,
    input  wire [3:0] pair_i,
    output wire [3:0] pair_o,
    output wire [1:0] carries_o
);
    wire [3:0] between;
    names_stage #(.WIDTH(4)) u_first (
        .clk(clk), .data_i(pair_i), .data_o(between), .carry_o(carries_o[0]));
    names_stage #(.WIDTH(4), .STEP(3)) u_second (
        .clk(clk), .data_i(between), .data_o(pair_o), .carry_o(carries_o[1]));
endmodule

module names_top (
    input  wire       clk,
    input  wire       rst,
    input  wire       go,
    input  wire [3:0] value_i,
    output wire [3:0] value_o,
    output wire [3:0] copy_o,
    output wire [7:0] status_o
);
    reg  [2:0] main_state;
    reg  [7:0] count;
    reg  [1:0] sync_q;
    wire [1:0] carries;
    wire [3:0] fixed = 4'b1010;
    wire       \go.now ;
    wire       \$odd ;
    reg  [7:4] high;
    reg  [0:3] up;

    assign \go.now = go & sync_q[1];
    assign \$odd = count[0] ^ rst;
    assign copy_o   = value_o;
    assign status_o = {count[7], high[5], up[2], carries, main_state == 3'd4, \$odd , fixed[1]};

    names_pair u_pair (.clk(clk), .pair_i(value_i), .pair_o(value_o), .carries_o(carries));

    always @(posedge clk) begin
        sync_q <= {sync_q[0], go};
        count  <= count + 8'd1;
        high   <= {high[6:4], count[3]};
        up     <= {up[1:3], count[2]};
        if (rst) main_state <= 3'd0;
        else
            case (main_state)
                3'd0: if (\go.now ) main_state <= 3'd1;
                3'd1: main_state <= count[3] ? 3'd2 : 3'd3;
                3'd2: main_state <= 3'd4;
                3'd3: if (count[4]) main_state <= 3'd4;
                3'd4: main_state <= rst ? 3'd0 : 3'd1;
                default: main_state <= 3'd0;
            endcase
    end
endmodule

`default_nettype wire
