// -----------------------------------------------------------------------------
// tb_async_fifo: words keep their order between two unrelated clocks, the queue
// fills up to exactly its depth, and nothing is lost or repeated.
// -----------------------------------------------------------------------------
`timescale 1ns / 1ps

module tb_async_fifo;

    localparam WORDS = 400;

    reg         wclk = 1'b0, rclk = 1'b0;
    reg         rst_n = 1'b0;
    reg         push = 1'b0, pop = 1'b0;
    reg  [15:0] wdata = 16'h0000;
    wire [15:0] rdata;
    wire        full, empty;
    wire [4:0]  level;
    integer     sent, received, errors, seed;
    reg         expect_word;
    reg         reading;

    always #3.5 wclk = ~wclk;
    always #5.0 rclk = ~rclk;

    async_fifo #(.WIDTH(16), .ABITS(4)) dut (
        .wclk(wclk), .wrst_ni(rst_n), .push_i(push), .wdata_i(wdata), .full_o(full),
        .rclk(rclk), .rrst_ni(rst_n), .pop_i(pop), .rdata_o(rdata), .empty_o(empty),
        .level_o(level)
    );

    // Writer: as often as there is room, with pauses once reading has begun.
    always @(negedge wclk)
        if (rst_n && sent < WORDS && !full && (!reading || ($random(seed) & 3) != 0)) begin
            push  = 1'b1;
            wdata = sent * 40503;
            sent  = sent + 1;
        end else
            push = 1'b0;

    // Reader: a word arrives one cycle after its pop.
    always @(negedge rclk) begin
        if (expect_word) begin
            if (rdata !== ((received * 40503) & 16'hffff)) begin
                $display("tb_async_fifo: word %0d: got %h", received, rdata);
                errors = errors + 1;
            end
            received = received + 1;
        end
        pop         = reading && !empty && ($random(seed) & 1);
        expect_word = pop;
    end

    initial begin
        sent = 0; received = 0; errors = 0; seed = 7;
        expect_word = 1'b0; reading = 1'b0;
        #50 rst_n = 1'b1;

        #1000;
        if (sent != 16 || !full || level != 5'd16) begin
            $display("tb_async_fifo: full after %0d words, level %0d", sent, level);
            errors = errors + 1;
        end
        reading = 1'b1;

        #20000;
        if (received != WORDS || !empty) begin
            $display("tb_async_fifo: %0d of %0d words arrived", received, WORDS);
            errors = errors + 1;
        end
        if (errors == 0)
            $display("PASS tb_async_fifo");
        else
            $display("FAIL tb_async_fifo: %0d errors", errors);
        $finish;
    end

endmodule
