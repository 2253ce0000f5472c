// -----------------------------------------------------------------------------
// tb_soc: the whole design. The program prints "Hi", echoes a byte, and has the
// DMA engine copy sixteen words; an outside host writes and reads the mailbox.
// POSTMAP: the design is the mapped netlist, which has no levels to look into.
// -----------------------------------------------------------------------------
`timescale 1ns / 1ps

module tb_soc;

    localparam BIT_NS = 16 * 54 * 10;

    reg         clk_sys = 1'b0, clk_adc = 1'b0, clk_ref = 1'b0;
    reg         rst_n = 1'b0;
    reg         rx = 1'b1;
    wire [1:0]  tx;
    reg         sclk = 1'b0, cs_n = 1'b1, mosi = 1'b0;
    wire        miso;
    wire [0:3]  link;
    wire [3:0]  gpio;
    wire        spi_sclk, spi_mosi, attention, heartbeat, locked, ring;
    wire [0:2]  spi_cs_n;
    integer     b, errors;
    reg  [7:0]  byte_in;

    always #5   clk_sys = ~clk_sys;
    always #7   clk_adc = ~clk_adc;
    always #3   clk_ref = ~clk_ref;

    soc_top dut (
        .clk_sys_i(clk_sys), .clk_adc_i(clk_adc), .clk_ref_i(clk_ref), .rst_ni(rst_n),
        .uart_rx_i({1'b1, rx}), .uart_tx_o(tx),
        .spi_sclk_o(spi_sclk), .spi_mosi_o(spi_mosi), .spi_miso_i(spi_mosi),
        .spi_cs_no(spi_cs_n),
        .host_sclk_i(sclk), .host_cs_ni(cs_n), .host_mosi_i(mosi), .host_miso_o(miso),
        .adc_data_i(12'h123), .adc_valid_i(1'b1),
        .link_rx_i(link), .link_tx_o(link), .gpio_io(gpio),
        .attention_o(attention), .heartbeat_o(heartbeat), .pll_locked_o(locked),
        .ring_o(ring)
    );

    task receive(input [7:0] wanted);
        begin
            @(negedge tx[0]);
            #(BIT_NS / 2);
            for (b = 0; b < 8; b = b + 1)
                #(BIT_NS) byte_in[b] = tx[0];
            #(BIT_NS);
            if (byte_in !== wanted || tx[0] !== 1'b1) begin
                $display("tb_soc: received %h, not %h", byte_in, wanted);
                errors = errors + 1;
            end
        end
    endtask

    task send(input [7:0] value);
        integer k;
        begin
            rx = 1'b0;
            #(BIT_NS);
            for (k = 0; k < 8; k = k + 1) begin
                rx = value[k];
                #(BIT_NS);
            end
            rx = 1'b1;
            #(BIT_NS);
        end
    endtask

    reg [7:0] host_byte;

    task host_transfer(input [7:0] value);
        integer k;
        begin
            for (k = 7; k >= 0; k = k - 1) begin
                mosi = value[k];
                #40 sclk = 1'b1; host_byte[k] = miso;
                #40 sclk = 1'b0;
            end
        end
    endtask

    initial begin
        errors = 0;
        cs_n   = 1'b0;
        #20 cs_n = 1'b1;        // the edge resets the host side
        #180 rst_n = 1'b1;

        receive("H");
        receive("i");

        fork
            receive(8'ha5);
            send(8'ha5);
        join

`ifndef POSTMAP
        // The DMA engine has moved its sixteen words by now.
        if (dut.u_dma.left_q !== 8'h00 || dut.u_dma.target_q !== 16'h0050) begin
            $display("tb_soc: DMA left %h, target %h", dut.u_dma.left_q, dut.u_dma.target_q);
            errors = errors + 1;
        end
`endif
        if (dut.miss_count !== 8'h00) begin
            $display("tb_soc: %0d bus misses", dut.miss_count);
            errors = errors + 1;
        end

        // The host writes two bytes, then reads them back.
        cs_n = 1'b0; #100;
        host_transfer(8'h80); host_transfer(8'h10);
        host_transfer(8'h3c); host_transfer(8'hd7);
        #100 cs_n = 1'b1; #200;
`ifndef POSTMAP
        if (dut.u_mailbox.u_ram.mem[9'h010] !== 8'h3c || dut.u_mailbox.u_ram.mem[9'h011] !== 8'hd7) begin
            $display("tb_soc: mailbox holds %h %h", dut.u_mailbox.u_ram.mem[9'h010],
                     dut.u_mailbox.u_ram.mem[9'h011]);
            errors = errors + 1;
        end
`endif
        cs_n = 1'b0; #100;
        host_transfer(8'h00); host_transfer(8'h10);
        host_transfer(8'h00); host_transfer(8'h00);
        if (host_byte !== 8'h3c) begin
            $display("tb_soc: host read %h, not 3c", host_byte);
            errors = errors + 1;
        end
        host_transfer(8'h00);
        if (host_byte !== 8'hd7) begin
            $display("tb_soc: host read %h, not d7", host_byte);
            errors = errors + 1;
        end
        #100 cs_n = 1'b1;

        if (locked !== 1'b1 || dut.beat_q == 24'h000000) begin
            $display("tb_soc: locked %b, beat %h", locked, dut.beat_q);
            errors = errors + 1;
        end

        if (errors == 0)
            $display("PASS tb_soc");
        else
            $display("FAIL tb_soc: %0d errors", errors);
        $finish;
    end

    initial begin
        #2000000;
        $display("FAIL tb_soc: timeout");
        $finish;
    end

endmodule
