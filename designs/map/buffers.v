// -----------------------------------------------------------------------------
// buffers: two queues with memories, a small one that reads at once and a large one with
// a register behind the memory, and a delay line between them.
// -----------------------------------------------------------------------------
`default_nettype none

module buffers (
    input  wire        clk_i,
    input  wire        rst_i,
    input  wire        push_i,
    input  wire [11:0] data_i,
    input  wire        pop_i,
    output wire [11:0] data_o,
    output wire        empty_o,
    output wire        full_o,
    output wire [9:0]  level_o
);

    wire        small_empty, large_full;
    wire [11:0] small_data;
    wire        move = !small_empty && !large_full;
    wire [11:0] late_data;
    wire        late;

    small_queue u_small (.clk_i, .rst_i, .push_i, .data_i, .pop_i(move), .data_o(small_data), .empty_o(small_empty),
                         .full_o);
    delay #(.WIDTH(12)) u_data (.clk_i, .d_i(small_data ^ {12{move}}), .q_o(late_data));
    delay #(.WIDTH(1)) u_move (.clk_i, .d_i(move), .q_o(late));
    large_queue u_large (.clk_i, .rst_i, .push_i(late), .data_i(~late_data), .pop_i, .data_o, .empty_o,
                         .full_o(large_full), .level_o);

endmodule

module small_queue (
    input  wire        clk_i,
    input  wire        rst_i,
    input  wire        push_i,
    input  wire [11:0] data_i,
    input  wire        pop_i,
    output wire [11:0] data_o,
    output wire        empty_o,
    output wire        full_o
);

    reg [11:0] memory [0:15];
    reg [4:0]  write_q, read_q;
    wire       push = push_i && !full_o;

    assign data_o  = memory[read_q[3:0]];
    assign empty_o = write_q == read_q;
    assign full_o  = write_q == {~read_q[4], read_q[3:0]};

    always @(posedge clk_i) begin
        if (push)
            memory[write_q[3:0]] <= data_i;
        if (rst_i) begin
            write_q <= 5'd0;
            read_q  <= 5'd0;
        end else begin
            write_q <= write_q + {4'd0, push};
            read_q  <= read_q + {4'd0, pop_i && !empty_o};
        end
    end

endmodule

module large_queue (
    input  wire        clk_i,
    input  wire        rst_i,
    input  wire        push_i,
    input  wire [11:0] data_i,
    input  wire        pop_i,
    output reg  [11:0] data_o,
    output wire        empty_o,
    output wire        full_o,
    output wire [9:0]  level_o
);

    reg [11:0] memory [0:511];
    reg [9:0]  write_q, read_q;
    wire       push = push_i && level_o != 10'd512;
    wire       pop  = pop_i && !empty_o;

    assign level_o = write_q - read_q;
    assign empty_o = write_q == read_q;
    assign full_o  = level_o > 10'd496;

    always @(posedge clk_i) begin
        if (push)
            memory[write_q[8:0]] <= data_i;
        if (pop)
            data_o <= memory[read_q[8:0]];
        if (rst_i) begin
            write_q <= 10'd0;
            read_q  <= 10'd0;
        end else begin
            write_q <= write_q + {9'd0, push};
            read_q  <= read_q + {9'd0, pop};
        end
    end

endmodule

/// Six cycles without reset: what shift registers are made for.
module delay #(
    parameter WIDTH = 1
) (
    input  wire             clk_i,
    input  wire [WIDTH-1:0] d_i,
    output wire [WIDTH-1:0] q_o
);

    reg [WIDTH-1:0] line_q [0:5];
    integer         stage;

    always @(posedge clk_i) begin
        line_q[0] <= d_i;
        for (stage = 1; stage < 6; stage = stage + 1)
            line_q[stage] <= line_q[stage - 1];
    end

    assign q_o = line_q[5];

endmodule

`default_nettype wire
