// -----------------------------------------------------------------------------
// soc_top: a small measurement controller.
//
// A processor and a DMA engine share a bus with memory, two serial ports, an SPI
// master, timers, two-way pins, a filter for converter samples, a multiplier, a
// mailbox for an outside host, a double-rate link and a status page.
// -----------------------------------------------------------------------------
`default_nettype none

module soc_top (
    input  wire        clk_sys_i,
    input  wire        clk_adc_i,
    input  wire        clk_ref_i,
    input  wire        rst_ni,

    input  wire [1:0]  uart_rx_i,
    output wire [1:0]  uart_tx_o,

    output wire        spi_sclk_o,
    output wire        spi_mosi_o,
    input  wire        spi_miso_i,
    output wire [0:2]  spi_cs_no,

    input  wire        host_sclk_i,
    input  wire        host_cs_ni,
    input  wire        host_mosi_i,
    output wire        host_miso_o,

    input  wire [11:0] adc_data_i,
    input  wire        adc_valid_i,

    input  wire [0:3]  link_rx_i,
    output wire [0:3]  link_tx_o,

    inout  wire [3:0]  gpio_io,

    output wire        attention_o,
    output wire        heartbeat_o,
    output wire        pll_locked_o,
    output wire        ring_o
);

    localparam SLAVES    = 12;
    localparam S_RAM     = 0,
               S_UART0   = 1,
               S_UART1   = 2,
               S_SPI     = 3,
               S_TIMER   = 4,
               S_GPIO    = 5,
               S_DSP     = 6,
               S_DMA     = 7,
               S_MUL     = 8,
               S_MAILBOX = 9,
               S_LINK    = 10,
               S_STATUS  = 11;

    // ------------------------------------------------------------ clocks, resets
    wire clk_sys   = clk_sys_i;
    wire clk_adc   = clk_adc_i;
    wire clk_ref   = clk_ref_i;
    wire host_sclk = host_sclk_i;
    wire clk_div, clk_idle, clk_link;
    wire rst_sys_n, rst_div_n, rst_adc_n, rst_link_n;
    wire pll_locked;

    reg        awake_q;
    reg        pll_off_q;
    reg  [0:3] pll_trim_q;

    clock_unit u_clocks (
        .clk_sys_i    (clk_sys),
        .clk_adc_i    (clk_adc),
        .clk_ref_i    (clk_ref),
        .rst_async_ni (rst_ni),
        .awake_i      (awake_q),
        .pll_off_i    (pll_off_q),
        .pll_trim_i   (pll_trim_q),
        .clk_div_o    (clk_div),
        .clk_idle_o   (clk_idle),
        .clk_link_o   (clk_link),
        .pll_locked_o (pll_locked),
        .rst_sys_no   (rst_sys_n),
        .rst_div_no   (rst_div_n),
        .rst_adc_no   (rst_adc_n),
        .rst_link_no  (rst_link_n)
    );

    assign pll_locked_o = pll_locked;

    // ------------------------------------------------------------ bus
    wire                 cpu_req, cpu_we, cpu_ack;
    wire [15:0]          cpu_addr, cpu_wdata;
    wire                 dma_req, dma_we, dma_ack;
    wire [15:0]          dma_addr, dma_wdata;
    wire [15:0]          m_rdata;
    wire [SLAVES-1:0]    s_sel;
    wire                 s_we;
    wire [15:0]          s_addr;
    wire [15:0]          s_wdata;
    wire [16*SLAVES-1:0] s_rdata;
    wire [7:0]           miss_count;
    wire                 cpu_halted;
    wire [7:0]           cpu_pc;
    wire [1:0]           uart_irq;
    wire                 dma_irq;

    cpu_core u_cpu (
        .clk         (clk_sys),
        .rst_ni      (rst_sys_n),
        .irq_i       (|uart_irq | dma_irq),
        .bus_req_o   (cpu_req),
        .bus_we_o    (cpu_we),
        .bus_addr_o  (cpu_addr),
        .bus_wdata_o (cpu_wdata),
        .bus_ack_i   (cpu_ack),
        .bus_rdata_i (m_rdata),
        .halted_o    (cpu_halted),
        .pc_o        (cpu_pc)
    );

    bus_interconnect #(.SLAVES(SLAVES)) u_bus (
        .clk          (clk_sys),
        .rst_ni       (rst_sys_n),
        .m0_req_i     (cpu_req),
        .m0_we_i      (cpu_we),
        .m0_addr_i    (cpu_addr),
        .m0_wdata_i   (cpu_wdata),
        .m0_ack_o     (cpu_ack),
        .m1_req_i     (dma_req),
        .m1_we_i      (dma_we),
        .m1_addr_i    (dma_addr),
        .m1_wdata_i   (dma_wdata),
        .m1_ack_o     (dma_ack),
        .m_rdata_o    (m_rdata),
        .s_sel_o      (s_sel),
        .s_we_o       (s_we),
        .s_addr_o     (s_addr),
        .s_wdata_o    (s_wdata),
        .s_rdata_i    (s_rdata),
        .miss_count_o (miss_count)
    );

    dma_engine u_dma (
        .clk         (clk_sys),
        .rst_ni      (rst_sys_n),
        .sel_i       (s_sel[S_DMA]),
        .we_i        (s_we),
        .addr_i      (s_addr[3:0]),
        .wdata_i     (s_wdata),
        .rdata_o     (s_rdata[16*S_DMA +: 16]),
        .bus_req_o   (dma_req),
        .bus_we_o    (dma_we),
        .bus_addr_o  (dma_addr),
        .bus_wdata_o (dma_wdata),
        .bus_ack_i   (dma_ack),
        .bus_rdata_i (m_rdata),
        .irq_o       (dma_irq)
    );

    // ------------------------------------------------------------ slaves
    ram_sdp #(.WIDTH(16), .ABITS(9)) u_data_ram (
        .wclk    (clk_sys),
        .we_i    (s_sel[S_RAM] & s_we),
        .waddr_i (s_addr[8:0]),
        .wdata_i (s_wdata),
        .rclk    (clk_sys),
        .re_i    (s_sel[S_RAM] & ~s_we),
        .raddr_i (s_addr[8:0]),
        .rdata_o (s_rdata[16*S_RAM +: 16])
    );

    genvar u;
    generate
        for (u = 0; u < 2; u = u + 1) begin : g_uart
            uart u_uart (
                .clk     (clk_sys),
                .rst_ni  (rst_sys_n),
                .sel_i   (s_sel[S_UART0 + u]),
                .we_i    (s_we),
                .addr_i  (s_addr[3:0]),
                .wdata_i (s_wdata),
                .rdata_o (s_rdata[16*(S_UART0 + u) +: 16]),
                .rx_i    (uart_rx_i[u]),
                .tx_o    (uart_tx_o[u]),
                .irq_o   (uart_irq[u])
            );
        end
    endgenerate

    spi_master #(.SELECTS(3)) u_spi (
        .clk     (clk_sys),
        .rst_ni  (rst_sys_n),
        .sel_i   (s_sel[S_SPI]),
        .we_i    (s_we),
        .addr_i  (s_addr[3:0]),
        .wdata_i (s_wdata),
        .rdata_o (s_rdata[16*S_SPI +: 16]),
        .sclk_o  (spi_sclk_o),
        .mosi_o  (spi_mosi_o),
        .miso_i  (spi_miso_i),
        .cs_no   (spi_cs_no)
    );

    wire [0:3] timer_expired;

    timer_bank #(.COUNT(4)) u_timers (
        .clk         (clk_sys),
        .rst_ni      (rst_sys_n),
        .clk_slow    (clk_div),
        .rst_slow_ni (rst_div_n),
        .sel_i       (s_sel[S_TIMER]),
        .we_i        (s_we),
        .addr_i      (s_addr[3:0]),
        .wdata_i     (s_wdata),
        .rdata_o     (s_rdata[16*S_TIMER +: 16]),
        .expired_o   (timer_expired)
    );

    gpio #(.WIDTH(4)) u_gpio (
        .clk     (clk_sys),
        .rst_ni  (rst_sys_n),
        .sel_i   (s_sel[S_GPIO]),
        .we_i    (s_we),
        .addr_i  (s_addr[3:0]),
        .wdata_i (s_wdata),
        .rdata_o (s_rdata[16*S_GPIO +: 16]),
        .pad_io  (gpio_io)
    );

    wire dsp_overflow;

    dsp_subsystem #(.TAPS(8), .DELAY(24)) u_dsp (
        .clk_sys     (clk_sys),
        .rst_sys_ni  (rst_sys_n),
        .clk_adc     (clk_adc),
        .rst_adc_ni  (rst_adc_n),
        .sel_i       (s_sel[S_DSP]),
        .we_i        (s_we),
        .addr_i      (s_addr[3:0]),
        .wdata_i     (s_wdata),
        .rdata_o     (s_rdata[16*S_DSP +: 16]),
        .adc_data_i  (adc_data_i),
        .adc_valid_i (adc_valid_i),
        .overflow_o  (dsp_overflow)
    );

    mul_unit u_mul (
        .clk     (clk_sys),
        .rst_ni  (rst_sys_n),
        .sel_i   (s_sel[S_MUL]),
        .we_i    (s_we),
        .addr_i  (s_addr[3:0]),
        .wdata_i (s_wdata),
        .rdata_o (s_rdata[16*S_MUL +: 16])
    );

    mailbox u_mailbox (
        .clk         (clk_sys),
        .rst_ni      (rst_sys_n),
        .sel_i       (s_sel[S_MAILBOX]),
        .we_i        (s_we),
        .addr_i      (s_addr[3:0]),
        .wdata_i     (s_wdata),
        .rdata_o     (s_rdata[16*S_MAILBOX +: 16]),
        .host_sclk   (host_sclk),
        .host_cs_ni  (host_cs_ni),
        .host_mosi_i (host_mosi_i),
        .host_miso_o (host_miso_o)
    );

    ddr_link #(.LANES(4)) u_link (
        .clk_link    (clk_link),
        .rst_link_ni (rst_link_n),
        .clk_sys     (clk_sys),
        .rst_sys_ni  (rst_sys_n),
        .sel_i       (s_sel[S_LINK]),
        .we_i        (s_we),
        .addr_i      (s_addr[3:0]),
        .wdata_i     (s_wdata),
        .rdata_o     (s_rdata[16*S_LINK +: 16]),
        .rx_i        (link_rx_i),
        .tx_o        (link_tx_o)
    );

    // ------------------------------------------------------------ status page
    //   offset 0  {overflow, halted, locked, timers}   1  random word
    //          2  {misses, program counter}            3  control (writable)
    wire [15:0] random_word;
    wire        locked_sys;
    wire        overflow_sys;
    reg  [15:0] status_q;
    reg         trng_on_q;

    cdc_sync #(.WIDTH(2)) u_sync_status (
        .clk     (clk_sys),
        .rst_ni  (rst_sys_n),
        .async_i ({pll_locked, dsp_overflow}),
        .sync_o  ({locked_sys, overflow_sys})
    );

    trng u_trng (
        .clk      (clk_sys),
        .rst_ni   (rst_sys_n),
        .enable_i (trng_on_q),
        .ring_o   (ring_o),
        .word_o   (random_word)
    );

    always @(posedge clk_sys or negedge rst_sys_n)
        if (!rst_sys_n) begin
            awake_q    <= 1'b1;
            pll_off_q  <= 1'b0;
            pll_trim_q <= 4'b1000;
            trng_on_q  <= 1'b0;
            status_q   <= 16'h0000;
        end else if (s_sel[S_STATUS]) begin
            if (s_we && s_addr[3:0] == 4'd3) begin
                awake_q    <= s_wdata[0];
                pll_off_q  <= s_wdata[1];
                trng_on_q  <= s_wdata[2];
                pll_trim_q <= s_wdata[7:4];
            end
            case (s_addr[3:0])
                4'd0:    status_q <= {9'h000, overflow_sys, cpu_halted, locked_sys, timer_expired};
                4'd1:    status_q <= random_word;
                4'd2:    status_q <= {miss_count, cpu_pc};
                default: status_q <= {8'h00, pll_trim_q, 1'b0, trng_on_q, pll_off_q, awake_q};
            endcase
        end

    assign s_rdata[16*S_STATUS +: 16] = status_q;

    // ------------------------------------------------------------ attention, heartbeat
    attention_line u_attention (
        .clk_a   (clk_sys),
        .set_a_i (uart_irq[0]),
        .clk_b   (clk_link),
        .set_b_i (rst_link_n),
        .line_o  (attention_o)
    );

    // Beats while awake: a counter on the idle clock.
    reg [23:0] beat_q;

    always @(posedge clk_idle or negedge rst_sys_n)
        if (!rst_sys_n)
            beat_q <= 24'h000000;
        else
            beat_q <= beat_q + 1'b1;

    assign heartbeat_o = beat_q[23];

endmodule

`default_nettype wire
