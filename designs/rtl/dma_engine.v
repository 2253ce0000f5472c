// -----------------------------------------------------------------------------
// dma_engine: moves words over the bus without the processor.
//
//   offset 0 source   1 target   2 count (writing starts)   3 {busy, left}
//
// The source address stays fixed while bit 15 of the count is set (for queues).
// -----------------------------------------------------------------------------
`default_nettype none

module dma_engine (
    input  wire        clk,
    input  wire        rst_ni,

    input  wire        sel_i,
    input  wire        we_i,
    input  wire [3:0]  addr_i,
    input  wire [15:0] wdata_i,
    output reg  [15:0] rdata_o,

    output wire        bus_req_o,
    output wire        bus_we_o,
    output wire [15:0] bus_addr_o,
    output wire [15:0] bus_wdata_o,
    input  wire        bus_ack_i,
    input  wire [15:0] bus_rdata_i,

    output reg         irq_o
);

    localparam IDLE  = 2'd0,
               READ  = 2'd1,
               WRITE = 2'd2;

    reg [1:0]  state_q;
    reg [15:0] source_q, target_q, word_q;
    reg [7:0]  left_q;
    reg        fixed_q;

    always @(posedge clk or negedge rst_ni)
        if (!rst_ni) begin
            state_q  <= IDLE;
            source_q <= 16'h0000;
            target_q <= 16'h0000;
            word_q   <= 16'h0000;
            left_q   <= 8'h00;
            fixed_q  <= 1'b0;
            irq_o    <= 1'b0;
        end else begin
            irq_o <= 1'b0;

            case (state_q)
                READ:
                    if (bus_ack_i) begin
                        word_q  <= bus_rdata_i;
                        state_q <= WRITE;
                        if (!fixed_q)
                            source_q <= source_q + 1'b1;
                    end

                WRITE:
                    if (bus_ack_i) begin
                        target_q <= target_q + 1'b1;
                        left_q   <= left_q - 1'b1;
                        irq_o    <= (left_q == 8'h01);
                        state_q  <= (left_q == 8'h01) ? IDLE : READ;
                    end

                default:
                    if (sel_i & we_i)
                        case (addr_i)
                            4'd0: source_q <= wdata_i;
                            4'd1: target_q <= wdata_i;
                            4'd2: begin
                                left_q  <= wdata_i[7:0];
                                fixed_q <= wdata_i[15];
                                if (wdata_i[7:0] != 8'h00)
                                    state_q <= READ;
                            end
                            default: ;
                        endcase
            endcase
        end

    always @(posedge clk)
        if (sel_i)
            case (addr_i)
                4'd0:    rdata_o <= source_q;
                4'd1:    rdata_o <= target_q;
                default: rdata_o <= {7'h00, (state_q != IDLE), left_q};
            endcase

    assign bus_req_o   = (state_q == READ) | (state_q == WRITE);
    assign bus_we_o    = (state_q == WRITE);
    assign bus_addr_o  = (state_q == WRITE) ? target_q : source_q;
    assign bus_wdata_o = word_q;

endmodule

`default_nettype wire
