// -----------------------------------------------------------------------------
// tb_uart: one serial port talking to itself: every byte sent comes back.
// -----------------------------------------------------------------------------
`timescale 1ns / 1ps

module tb_uart;

    reg         clk = 1'b0;
    reg         rst_n = 1'b0;
    reg         sel = 1'b0, we = 1'b0;
    reg  [3:0]  addr = 4'd0;
    reg  [15:0] wdata = 16'h0000;
    wire [15:0] rdata;
    wire        line, irq;
    integer     i, waited, errors;
    reg  [15:0] got;

    always #5 clk = ~clk;

    uart dut (
        .clk(clk), .rst_ni(rst_n), .sel_i(sel), .we_i(we), .addr_i(addr),
        .wdata_i(wdata), .rdata_o(rdata), .rx_i(line), .tx_o(line), .irq_o(irq)
    );

    task bus_write(input [3:0] a, input [15:0] d);
        begin
            @(negedge clk) sel = 1'b1; we = 1'b1; addr = a; wdata = d;
            @(negedge clk) sel = 1'b0; we = 1'b0;
        end
    endtask

    task bus_read(input [3:0] a, output [15:0] d);
        begin
            @(negedge clk) sel = 1'b1; we = 1'b0; addr = a;
            @(negedge clk) sel = 1'b0; d = rdata;
        end
    endtask

    initial begin
        errors = 0;
        #100 rst_n = 1'b1;
        bus_write(4'd2, 16'd3);
        #2000;

        for (i = 0; i < 32; i = i + 1) begin
            bus_write(4'd0, (i * 37 + 11) & 16'h00ff);
            waited = 0;
            while (!irq && waited < 5000) begin
                @(negedge clk);
                waited = waited + 1;
            end
            bus_read(4'd1, got);
            if (got[2:1] != 2'b01) begin
                $display("tb_uart: byte %0d: flags %b", i, got[2:0]);
                errors = errors + 1;
            end
            bus_read(4'd0, got);
            if (got != ((i * 37 + 11) & 16'h00ff)) begin
                $display("tb_uart: byte %0d: got %h", i, got);
                errors = errors + 1;
            end
            bus_write(4'd1, 16'h0000);
            got = 16'h0000;
            while (!got[0])
                bus_read(4'd1, got);
        end

        if (errors == 0)
            $display("PASS tb_uart");
        else
            $display("FAIL tb_uart: %0d errors", errors);
        $finish;
    end

endmodule
