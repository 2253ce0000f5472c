// -----------------------------------------------------------------------------
// receiver: takes words from a link, keeps them for a reader on a clock of its own, and
// counts. The plan probes.plan was made on the netlists of this text.
// -----------------------------------------------------------------------------
`default_nettype none

module receiver (
    input  wire       clk_link_i,
    input  wire       clk_core_i,
    input  wire       rst_i,
    input  wire       valid_i,
    input  wire [7:0] data_i,
    input  wire       take_i,
    output wire [7:0] word_o,
    output wire [3:0] level_o,
    output wire [7:0] count_o,
    output wire       alarm_o
);

    link u_link (.clk_i(clk_link_i), .rst_i, .valid_i, .data_i, .word_o, .count_o);
    watch u_watch (.clk_i(clk_core_i), .rst_i, .valid_i, .take_i, .level_o, .alarm_o);

endmodule

module link (
    input  wire       clk_i,
    input  wire       rst_i,
    input  wire       valid_i,
    input  wire [7:0] data_i,
    output wire [7:0] word_o,
    output wire [7:0] count_o
);

    reg [7:0] frame_q; // four bits of header, four of payload
    reg [7:0] count_q;
    reg       parity_q;

    always @(posedge clk_i)
        if (rst_i) begin
            frame_q  <= 8'd0;
            count_q  <= 8'd0;
            parity_q <= 1'b0;
        end else if (valid_i) begin
            frame_q  <= data_i;
            count_q  <= count_q + 8'd1;
            parity_q <= parity_q ^ ^data_i;
        end

    assign word_o  = frame_q ^ {8{parity_q}};
    assign count_o = count_q;

endmodule

module watch (
    input  wire       clk_i,
    input  wire       rst_i,
    input  wire       valid_i,
    input  wire       take_i,
    output wire [3:0] level_o,
    output reg        alarm_o
);

    reg [3:0] level_q;
    reg       seen_q;

    always @(posedge clk_i)
        if (rst_i)
            level_q <= 4'd0;
        else if (valid_i && !take_i && level_q != 4'd15)
            level_q <= level_q + 4'd1;
        else if (!valid_i && take_i && level_q != 4'd0)
            level_q <= level_q - 4'd1;

    always @(posedge clk_i) begin
        seen_q  <= valid_i;
        alarm_o <= seen_q && level_q == 4'd15;
    end

    assign level_o = level_q;

endmodule

`default_nettype wire
