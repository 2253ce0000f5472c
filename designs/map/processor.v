// -----------------------------------------------------------------------------
// processor: accumulator-free, four stages of nothing fancy. Sixteen registers of
// sixteen bits, a program that comes in from outside, branches on flags.
// -----------------------------------------------------------------------------
`default_nettype none

module processor (
    input  wire        clk_i,
    input  wire        rst_ni,
    input  wire [15:0] insn_i,
    input  wire        insn_valid_i,
    input  wire [15:0] data_i,
    output wire [9:0]  pc_o,
    output wire [15:0] result_o,
    output wire        store_o
);

    wire [3:0] op  = insn_q[15:12];
    wire [3:0] rd  = insn_q[11:8];
    wire [3:0] ra  = insn_q[7:4];
    wire [3:0] rb  = insn_q[3:0];
    wire [15:0] a, b, y;
    wire        carry;

    reg [15:0] insn_q;
    reg        valid_q;
    reg [9:0]  pc_q;
    reg        zero_q, carry_q;

    registers u_registers (
        .clk_i, .write_i(write), .rd_i(rd), .y_i(op == 4'hc ? data_i : y), .ra_i(ra), .rb_i(rb), .a_o(a), .b_o(b));
    unit u_unit (.op_i(op), .a_i(a), .b_i(b), .carry_i(carry_q), .y_o(y), .carry_o(carry));

    wire write  = valid_q && op < 4'hd;
    wire branch = valid_q && (op == 4'hd || (op == 4'he && zero_q) || (op == 4'hf && carry_q));

    always @(posedge clk_i or negedge rst_ni)
        if (!rst_ni) begin
            insn_q  <= 16'd0;
            valid_q <= 1'b0;
            pc_q    <= 10'd0;
            zero_q  <= 1'b0;
            carry_q <= 1'b0;
        end else begin
            valid_q <= insn_valid_i;
            if (insn_valid_i)
                insn_q <= insn_i;
            pc_q <= branch ? a[9:0] : pc_q + {9'd0, valid_q};
            if (write) begin
                zero_q  <= y == 16'd0;
                carry_q <= carry;
            end
        end

    reg [15:0] result_q;
    reg        store_q;
    always @(posedge clk_i) begin
        result_q <= y ^ {16{carry_q}};
        store_q  <= valid_q && op == 4'hb;
    end

    assign pc_o     = pc_q;
    assign result_o = result_q;
    assign store_o  = store_q;

endmodule

/// One write port, two read ports; register 0 reads as 0.
module registers (
    input  wire        clk_i,
    input  wire        write_i,
    input  wire [3:0]  rd_i,
    input  wire [15:0] y_i,
    input  wire [3:0]  ra_i,
    input  wire [3:0]  rb_i,
    output wire [15:0] a_o,
    output wire [15:0] b_o
);

    reg [15:0] file [0:15];

    always @(posedge clk_i)
        if (write_i)
            file[rd_i] <= y_i;

    assign a_o = ra_i == 4'd0 ? 16'd0 : file[ra_i];
    assign b_o = rb_i == 4'd0 ? 16'd0 : file[rb_i];

endmodule

module unit (
    input  wire [3:0]  op_i,
    input  wire [15:0] a_i,
    input  wire [15:0] b_i,
    input  wire        carry_i,
    output reg  [15:0] y_o,
    output reg         carry_o
);

    wire [16:0] sum        = {1'b0, a_i} + {1'b0, b_i} + {16'd0, op_i[0] & carry_i};
    wire [16:0] difference = {1'b0, a_i} - {1'b0, b_i};

    always @* begin
        carry_o = carry_i;
        case (op_i)
        4'h0, 4'h1: {carry_o, y_o} = sum;
        4'h2:       {carry_o, y_o} = difference;
        4'h3:       y_o = a_i & b_i;
        4'h4:       y_o = a_i | b_i;
        4'h5:       y_o = a_i ^ b_i;
        4'h6:       y_o = a_i << b_i[3:0];
        4'h7:       y_o = a_i >> b_i[3:0];
        4'h8:       y_o = {15'd0, $signed(a_i) < $signed(b_i)};
        4'h9:       y_o = {a_i[7:0], a_i[15:8]};
        4'ha:       y_o = ~b_i;
        default:    y_o = b_i;
        endcase
    end

endmodule

`default_nettype wire
