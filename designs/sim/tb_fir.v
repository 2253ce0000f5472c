// -----------------------------------------------------------------------------
// tb_fir: the filter against a plain sum of products.
// -----------------------------------------------------------------------------
`timescale 1ns / 1ps

module tb_fir;

    localparam TAPS = 8;

    reg                clk = 1'b0;
    reg                rst_n = 1'b0;
    reg                coef_we = 1'b0;
    reg  [3:0]         coef_addr = 4'd0;
    reg  signed [15:0] coef = 16'sd0;
    reg                valid = 1'b0;
    reg  signed [15:0] x = 16'sd0;
    wire               y_valid;
    wire signed [15:0] y;

    reg  signed [15:0] c [0:TAPS-1];
    reg  signed [15:0] past [0:TAPS-1];
    reg  signed [39:0] sum;
    integer            i, n, errors, seed;

    always #5 clk = ~clk;

    fir_filter #(.TAPS(TAPS)) dut (
        .clk(clk), .rst_ni(rst_n), .coef_we_i(coef_we), .coef_addr_i(coef_addr),
        .coef_data_i(coef), .valid_i(valid), .x_i(x), .valid_o(y_valid), .y_o(y)
    );

    initial begin
        errors = 0; seed = 3;
        for (i = 0; i < TAPS; i = i + 1)
            past[i] = 16'sd0;
        #50 rst_n = 1'b1;

        // Coefficients; tap 0 is the last in the chain of time, so it comes last.
        for (i = 0; i < TAPS; i = i + 1) begin
            c[i] = $random(seed) >>> 18;
            @(negedge clk) coef_we = 1'b1; coef_addr = i; coef = c[i];
        end
        @(negedge clk) coef_we = 1'b0;

        // Flush with zeros, then random samples with pauses.
        valid = 1'b1;
        for (i = 0; i < TAPS; i = i + 1)
            @(negedge clk) x = 16'sd0;

        for (n = 0; n < 200; n = n + 1) begin
            x     = $random(seed);
            valid = 1'b1;
            for (i = 0; i < TAPS - 1; i = i + 1)
                past[i] = past[i+1];
            past[TAPS-1] = x;
            @(negedge clk);
            valid = 1'b0;
            sum = 40'sd16384;
            for (i = 0; i < TAPS; i = i + 1)
                sum = sum + past[i] * c[i];
            if (!y_valid || y !== sum[30:15]) begin
                $display("tb_fir: sample %0d: got %0d, not %0d", n, y, $signed(sum[30:15]));
                errors = errors + 1;
            end
            if (n % 3 == 0)
                @(negedge clk);
        end

        if (errors == 0)
            $display("PASS tb_fir");
        else
            $display("FAIL tb_fir: %0d errors", errors);
        $finish;
    end

endmodule
