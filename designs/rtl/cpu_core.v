// -----------------------------------------------------------------------------
// cpu_core: 16-bit processor, about five cycles per instruction.
//
//   op  0 nop        1 add rd,rs   2 sub   3 and   4 or   5 xor   6 shl   7 sar
//       8 ldi rd,imm8              9 slt   a ld rd,[rs+imm4]     b st rd,[rs+imm4]
//       c beqz rd,imm8 (signed)    d bnez  e jmp imm8            f halt
// -----------------------------------------------------------------------------
`default_nettype none

module cpu_core (
    input  wire        clk,
    input  wire        rst_ni,
    input  wire        irq_i,

    output wire        bus_req_o,
    output wire        bus_we_o,
    output wire [15:0] bus_addr_o,
    output wire [15:0] bus_wdata_o,
    input  wire        bus_ack_i,
    input  wire [15:0] bus_rdata_i,

    output wire        halted_o,
    output wire [7:0]  pc_o
);

    localparam FETCH   = 3'd0,
               DECODE  = 3'd1,
               EXECUTE = 3'd2,
               MEMORY  = 3'd3,
               HALT    = 3'd4;

    reg  [2:0]  state_q;
    reg  [7:0]  pc_q;
    reg  [15:0] a_q, b_q;
    reg         irq_seen_q;

    wire [15:0] insn;
    wire [15:12] insn_op  = insn[15:12];    // keeps the bit numbers of the word
    wire [11:8]  insn_rd  = insn[11:8];
    wire [7:4]   insn_rs  = insn[7:4];
    wire [7:0]   insn_imm = insn[7:0];

    wire [15:0] reg_a, reg_b;
    wire [15:0] alu_y;
    wire        alu_zero;
    wire        alu_less;

    wire is_load   = (insn_op == 4'ha);
    wire is_store  = (insn_op == 4'hb);
    wire is_branch = (insn_op == 4'hc) | (insn_op == 4'hd);
    wire taken     = alu_zero ^ insn_op[12];
    wire writes    = ((insn_op >= 4'h1) & (insn_op <= 4'h9));

    wire        wb_en   = ((state_q == EXECUTE) & writes)
                        | ((state_q == MEMORY) & bus_ack_i & is_load);
    wire [15:0] wb_data = (state_q == MEMORY) ? bus_rdata_i : alu_y;

    always @(posedge clk or negedge rst_ni)
        if (!rst_ni) begin
            state_q    <= FETCH;
            pc_q       <= 8'h00;
            irq_seen_q <= 1'b0;
        end else begin
            irq_seen_q <= irq_i;
            case (state_q)
                FETCH:
                    state_q <= DECODE;

                DECODE:
                    state_q <= EXECUTE;

                EXECUTE: begin
                    pc_q    <= pc_q + 1'b1;
                    state_q <= FETCH;
                    if (is_load | is_store)
                        state_q <= MEMORY;
                    else if (is_branch & taken)
                        pc_q <= pc_q + insn_imm;
                    else if (insn_op == 4'he)
                        pc_q <= insn_imm;
                    else if (insn_op == 4'hf) begin
                        pc_q    <= pc_q;
                        state_q <= HALT;
                    end
                end

                MEMORY:
                    if (bus_ack_i)
                        state_q <= FETCH;

                default:
                    if (irq_seen_q) begin
                        pc_q    <= 8'h00;
                        state_q <= FETCH;
                    end
            endcase
        end

    // Operands, captured while the instruction is decoded.
    always @(posedge clk)
        if (state_q == DECODE) begin
            a_q <= reg_a;
            b_q <= (insn_op == 4'h8) ? {8'h00, insn_imm} : reg_b;
        end

    assign bus_req_o   = (state_q == MEMORY);
    assign bus_we_o    = is_store;
    assign bus_addr_o  = b_q + {12'h000, insn_imm[3:0]};
    assign bus_wdata_o = a_q;
    assign halted_o    = (state_q == HALT);
    assign pc_o        = pc_q;

    cpu_rom u_rom (
        .clk    (clk),
        .en_i   (state_q == FETCH),
        .addr_i (pc_q),
        .data_o (insn)
    );

    cpu_regfile u_regs (
        .clk       (clk),
        .we_i      (wb_en),
        .waddr_i   (insn_rd),
        .wdata_i   (wb_data),
        .raddr_a_i (insn_rd),
        .raddr_b_i (insn_rs),
        .rdata_a_o (reg_a),
        .rdata_b_o (reg_b)
    );

    cpu_alu u_alu (
        .op_i   (insn_op),
        .a_i    (a_q),
        .b_i    (b_q),
        .y_o    (alu_y),
        .zero_o (alu_zero),
        .less_o (alu_less)
    );

endmodule

`default_nettype wire
