// -----------------------------------------------------------------------------
// bus_interconnect: two masters, SLAVES slaves, one access at a time.
//
// Master 0 wins when both ask. A slave answers in the cycle after it was
// selected, so every access takes two cycles. Reading where nothing is mapped
// gives 0xdead and counts as a miss.
// -----------------------------------------------------------------------------
`default_nettype none

module bus_interconnect #(
    parameter SLAVES = 12
) (
    input  wire                 clk,
    input  wire                 rst_ni,

    input  wire                 m0_req_i,
    input  wire                 m0_we_i,
    input  wire [15:0]          m0_addr_i,
    input  wire [15:0]          m0_wdata_i,
    output wire                 m0_ack_o,

    input  wire                 m1_req_i,
    input  wire                 m1_we_i,
    input  wire [15:0]          m1_addr_i,
    input  wire [15:0]          m1_wdata_i,
    output wire                 m1_ack_o,

    output wire [15:0]          m_rdata_o,

    output wire [SLAVES-1:0]    s_sel_o,
    output wire                 s_we_o,
    output wire [15:0]          s_addr_o,
    output wire [15:0]          s_wdata_o,
    input  wire [16*SLAVES-1:0] s_rdata_i,

    output reg  [7:0]           miss_count_o
);

    reg              busy_q;
    reg              owner_q;
    reg [SLAVES-1:0] answer_q;
    wire             miss;

    wire grant1 = ~m0_req_i & m1_req_i;
    wire start  = (m0_req_i | m1_req_i) & ~busy_q;

    assign s_we_o    = grant1 ? m1_we_i    : m0_we_i;
    assign s_addr_o  = grant1 ? m1_addr_i  : m0_addr_i;
    assign s_wdata_o = grant1 ? m1_wdata_i : m0_wdata_i;

    bus_decoder #(.SLAVES(SLAVES)) u_decoder (
        .page_i  (s_addr_o[15:8]),
        .valid_i (start),
        .sel_o   (s_sel_o),
        .miss_o  (miss)
    );

    always @(posedge clk or negedge rst_ni)
        if (!rst_ni) begin
            busy_q       <= 1'b0;
            owner_q      <= 1'b0;
            answer_q     <= {SLAVES{1'b0}};
            miss_count_o <= 8'h00;
        end else begin
            busy_q   <= start;
            answer_q <= s_sel_o;
            if (start)
                owner_q <= grant1;
            if (miss)
                miss_count_o <= miss_count_o + 1'b1;
        end

    assign m0_ack_o = busy_q & ~owner_q;
    assign m1_ack_o = busy_q & owner_q;

    // One-hot read multiplexer, a column of gates per data bit.
    genvar b, s;
    generate
        for (b = 0; b < 16; b = b + 1) begin : g_bit
            wire [SLAVES-1:0] column;
            for (s = 0; s < SLAVES; s = s + 1) begin : g_slave
                assign column[s] = answer_q[s] & s_rdata_i[16*s + b];
            end
        end
        for (b = 0; b < 16; b = b + 1) begin : g_out
            localparam [15:0] NOTHING = 16'hdead;
            assign m_rdata_o[b] = (|g_bit[b].column) | (NOTHING[b] & ~|answer_q);
        end
    endgenerate

endmodule

`default_nettype wire
