// -----------------------------------------------------------------------------
// ddr_link: LANES double-rate lanes with their workers, and an error word that
// crosses to the bus clock through a queue.
// -----------------------------------------------------------------------------
`default_nettype none

module ddr_link #(
    parameter LANES = 4
) (
    input  wire             clk_link,
    input  wire             rst_link_ni,
    input  wire             clk_sys,
    input  wire             rst_sys_ni,

    input  wire             sel_i,
    input  wire             we_i,
    input  wire [3:0]       addr_i,
    input  wire [15:0]      wdata_i,
    output reg  [15:0]      rdata_o,

    input  wire [0:LANES-1] rx_i,
    output wire [0:LANES-1] tx_o
);

    reg                   run_q;
    wire                  run_link;
    wire [8*LANES-1:0]    errors;
    wire [2*LANES-1:0]    rx_pair, tx_pair;

    always @(posedge clk_sys or negedge rst_sys_ni)
        if (!rst_sys_ni)
            run_q <= 1'b0;
        else if (sel_i & we_i)
            run_q <= wdata_i[0];

    cdc_sync u_sync_run (
        .clk     (clk_link),
        .rst_ni  (rst_link_ni),
        .async_i (run_q),
        .sync_o  (run_link)
    );

    genvar l;
    generate
        for (l = 0; l < LANES; l = l + 1) begin : g_lane
            ddr_in u_in (
                .clk   (clk_link),
                .pad_i (rx_i[l]),
                .q0_o  (rx_pair[2*l]),
                .q1_o  (rx_pair[2*l+1])
            );

            lane_worker #(.SEED(7'h11 + l)) \worker.core[0] (
                .clk      (clk_link),
                .rst_ni   (rst_link_ni),
                .run_i    (run_link),
                .rx_i     (rx_pair[2*l +: 2]),
                .tx_o     (tx_pair[2*l +: 2]),
                .errors_o (errors[8*l +: 8])
            );

            ddr_out u_out (
                .clk   (clk_link),
                .d0_i  (tx_pair[2*l]),
                .d1_i  (tx_pair[2*l+1]),
                .pad_o (tx_o[l])
            );
        end
    endgenerate

    // One report per 256 link cycles: the errors of the lane whose turn it is.
    reg  [9:0]  turn_q;
    wire [1:0]  turn_lane = turn_q[9:8];
    wire [7:0]  report_errors = errors[8*turn_lane +: 8];
    wire [15:0] \odd.name[3] = {6'h00, turn_lane, report_errors};
    wire [15:0] fifo_data;
    wire        fifo_empty;
    wire        fifo_full;
    wire [3:0]  fifo_level;

    always @(posedge clk_link or negedge rst_link_ni)
        if (!rst_link_ni)
            turn_q <= 10'h000;
        else
            turn_q <= turn_q + 1'b1;

    async_fifo #(.WIDTH(16), .ABITS(3)) u_report (
        .wclk    (clk_link),
        .wrst_ni (rst_link_ni),
        .push_i  (&turn_q[7:0] & ~fifo_full),
        .wdata_i (\odd.name[3] ),
        .full_o  (fifo_full),
        .rclk    (clk_sys),
        .rrst_ni (rst_sys_ni),
        .pop_i   (sel_i & ~we_i & (addr_i == 4'd0)),
        .rdata_o (fifo_data),
        .empty_o (fifo_empty),
        .level_o (fifo_level)
    );

    always @(posedge clk_sys)
        if (sel_i)
            rdata_o <= addr_i[0] ? {11'h000, fifo_empty, fifo_level} : fifo_data;

endmodule

`default_nettype wire
