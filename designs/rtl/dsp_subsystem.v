// -----------------------------------------------------------------------------
// dsp_subsystem: samples from the converter, filtered, handed to the bus.
//
// Everything up to the queue runs on the converter's clock. A trace memory keeps
// the raw samples around the last trigger; it is written with the converter's
// clock and read with the bus clock.
//
//   offset 0  next filtered sample        1  {empty, level}
//          2  coefficient index           3  coefficient value (writing loads it)
//          4  trace read address          5  trace word      6  bit 0 arms the trace
// -----------------------------------------------------------------------------
`default_nettype none

module dsp_subsystem #(
    parameter TAPS  = 8,
    parameter DELAY = 24
) (
    input  wire        clk_sys,
    input  wire        rst_sys_ni,
    input  wire        clk_adc,
    input  wire        rst_adc_ni,

    input  wire        sel_i,
    input  wire        we_i,
    input  wire [3:0]  addr_i,
    input  wire [15:0] wdata_i,
    output reg  [15:0] rdata_o,

    input  wire [11:0] adc_data_i,
    input  wire        adc_valid_i,
    output wire        overflow_o
);

    // Bus side.
    reg  [3:0]  coef_index_q;
    reg  [15:0] coef_value_q;
    reg         coef_toggle_q;
    reg  [7:0]  trace_addr_q;
    reg         arm_q;
    wire [15:0] fifo_data;
    wire        fifo_empty;
    wire [4:0]  fifo_level;
    wire [15:0] trace_data;
    wire        pop = sel_i & ~we_i & (addr_i == 4'd0);

    always @(posedge clk_sys or negedge rst_sys_ni)
        if (!rst_sys_ni) begin
            coef_index_q  <= 4'd0;
            coef_value_q  <= 16'h0000;
            coef_toggle_q <= 1'b0;
            trace_addr_q  <= 8'h00;
            arm_q         <= 1'b0;
        end else if (sel_i & we_i)
            case (addr_i)
                4'd2: coef_index_q <= wdata_i[3:0];
                4'd3: begin
                    coef_value_q  <= wdata_i;
                    coef_toggle_q <= ~coef_toggle_q;
                end
                4'd4: trace_addr_q <= wdata_i[7:0];
                4'd6: arm_q        <= wdata_i[0];
                default: ;
            endcase

    always @(posedge clk_sys)
        if (sel_i)
            case (addr_i)
                4'd0:    rdata_o <= fifo_data;
                4'd1:    rdata_o <= {fifo_empty, 10'h000, fifo_level};
                4'd5:    rdata_o <= trace_data;
                default: rdata_o <= {12'h000, coef_index_q};
            endcase

    // Converter side.
    wire        coef_toggle_adc;
    wire        arm_adc;
    reg         coef_toggle_old_q;
    reg  [15:0] sample_q;
    reg         sample_valid_q;
    wire [15:0] sample_late;
    wire        y_valid;
    wire [15:0] y;
    wire        fifo_full;
    reg  [7:0]  trace_ptr_q;
    reg         overflow_q;

    cdc_sync #(.WIDTH(2)) u_sync_ctrl (
        .clk     (clk_adc),
        .rst_ni  (rst_adc_ni),
        .async_i ({coef_toggle_q, arm_q}),
        .sync_o  ({coef_toggle_adc, arm_adc})
    );

    always @(posedge clk_adc or negedge rst_adc_ni)
        if (!rst_adc_ni) begin
            coef_toggle_old_q <= 1'b0;
            sample_q          <= 16'h0000;
            sample_valid_q    <= 1'b0;
            trace_ptr_q       <= 8'h00;
            overflow_q        <= 1'b0;
        end else begin
            coef_toggle_old_q <= coef_toggle_adc;
            sample_valid_q    <= adc_valid_i;
            if (adc_valid_i)
                sample_q <= {~adc_data_i[11], adc_data_i[10:0], 4'h0};
            if (arm_adc & sample_valid_q)
                trace_ptr_q <= trace_ptr_q + 1'b1;
            if (y_valid & fifo_full)
                overflow_q <= 1'b1;
        end

    assign overflow_o = overflow_q;

    delay_line #(.WIDTH(16), .DEPTH(DELAY)) u_align (
        .clk  (clk_adc),
        .en_i (sample_valid_q),
        .d_i  (sample_q),
        .q_o  (sample_late)
    );

    fir_filter #(.TAPS(TAPS)) u_fir (
        .clk         (clk_adc),
        .rst_ni      (rst_adc_ni),
        .coef_we_i   (coef_toggle_adc ^ coef_toggle_old_q),
        .coef_addr_i (coef_index_q),
        .coef_data_i (coef_value_q),
        .valid_i     (sample_valid_q),
        .x_i         (sample_late),
        .valid_o     (y_valid),
        .y_o         (y)
    );

    async_fifo #(.WIDTH(16), .ABITS(4)) u_fifo (
        .wclk    (clk_adc),
        .wrst_ni (rst_adc_ni),
        .push_i  (y_valid),
        .wdata_i (y),
        .full_o  (fifo_full),
        .rclk    (clk_sys),
        .rrst_ni (rst_sys_ni),
        .pop_i   (pop),
        .rdata_o (fifo_data),
        .empty_o (fifo_empty),
        .level_o (fifo_level)
    );

    ram_sdp #(.WIDTH(16), .ABITS(8)) u_trace (
        .wclk    (clk_adc),
        .we_i    (arm_adc & sample_valid_q),
        .waddr_i (trace_ptr_q),
        .wdata_i (sample_q),
        .rclk    (clk_sys),
        .re_i    (1'b1),
        .raddr_i (trace_addr_q),
        .rdata_o (trace_data)
    );

endmodule

`default_nettype wire
