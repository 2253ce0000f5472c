// -----------------------------------------------------------------------------
// mailbox: byte memory shared by the bus and an outside SPI host.
//
// Side A belongs to the bus clock, side B to the host's clock.
//   offset 0 address   1 byte at the address (moves on after each access)
// -----------------------------------------------------------------------------
`default_nettype none

module mailbox (
    input  wire        clk,
    input  wire        rst_ni,

    input  wire        sel_i,
    input  wire        we_i,
    input  wire [3:0]  addr_i,
    input  wire [15:0] wdata_i,
    output wire [15:0] rdata_o,

    input  wire        host_sclk,
    input  wire        host_cs_ni,
    input  wire        host_mosi_i,
    output wire        host_miso_o
);

    reg  [8:0] pointer_q;
    wire [7:0] byte_a;
    wire       data_access = sel_i & addr_i[0];

    wire       host_en;
    wire       host_we;
    wire [8:0] host_addr;
    wire [7:0] host_wdata;
    wire [7:0] host_rdata;

    always @(posedge clk or negedge rst_ni)
        if (!rst_ni)
            pointer_q <= 9'h000;
        else if (sel_i) begin
            if (addr_i[0])
                pointer_q <= pointer_q + 1'b1;
            else if (we_i)
                pointer_q <= wdata_i[8:0];
        end

    assign rdata_o = {8'h00, byte_a};

    ram_tdp #(.WIDTH(8), .ABITS(9)) u_ram (
        .clk_a     (clk),
        .en_a_i    (data_access),
        .we_a_i    (we_i),
        .addr_a_i  (pointer_q),
        .wdata_a_i (wdata_i[7:0]),
        .rdata_a_o (byte_a),
        .clk_b     (host_sclk),
        .en_b_i    (host_en),
        .we_b_i    (host_we),
        .addr_b_i  (host_addr),
        .wdata_b_i (host_wdata),
        .rdata_b_o (host_rdata)
    );

    spi_slave u_host (
        .sclk        (host_sclk),
        .cs_ni       (host_cs_ni),
        .mosi_i      (host_mosi_i),
        .miso_o      (host_miso_o),
        .mem_en_o    (host_en),
        .mem_we_o    (host_we),
        .mem_addr_o  (host_addr),
        .mem_wdata_o (host_wdata),
        .mem_rdata_i (host_rdata)
    );

endmodule

`default_nettype wire
