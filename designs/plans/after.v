// -----------------------------------------------------------------------------
// receiver after a week of work: the frame is in two registers, the level has another
// name, the parity is gone, and what was seen is seen by the clock of the link.
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
    watch u_watch (.clk_i(clk_core_i), .clk_link_i, .rst_i, .valid_i, .take_i, .level_o, .alarm_o);

endmodule

module link (
    input  wire       clk_i,
    input  wire       rst_i,
    input  wire       valid_i,
    input  wire [7:0] data_i,
    output wire [7:0] word_o,
    output wire [7:0] count_o
);

    reg [3:0] header_q;
    reg [3:0] payload_q;
    reg [7:0] count_q;

    always @(posedge clk_i)
        if (rst_i) begin
            header_q  <= 4'd0;
            payload_q <= 4'd0;
            count_q   <= 8'd0;
        end else if (valid_i) begin
            header_q  <= data_i[7:4];
            payload_q <= data_i[3:0];
            count_q   <= count_q + 8'd1;
        end

    assign word_o  = {header_q, payload_q};
    assign count_o = count_q;

endmodule

module watch (
    input  wire       clk_i,
    input  wire       clk_link_i,
    input  wire       rst_i,
    input  wire       valid_i,
    input  wire       take_i,
    output wire [3:0] level_o,
    output reg        alarm_o
);

    reg [3:0] fill_q;
    reg       seen_q;

    always @(posedge clk_i)
        if (rst_i)
            fill_q <= 4'd0;
        else if (valid_i && !take_i && fill_q != 4'd15)
            fill_q <= fill_q + 4'd1;
        else if (!valid_i && take_i && fill_q != 4'd0)
            fill_q <= fill_q - 4'd1;

    always @(posedge clk_link_i)
        seen_q <= valid_i;

    always @(posedge clk_i)
        alarm_o <= seen_q && fill_q == 4'd15;

    assign level_o = fill_q;

endmodule

`default_nettype wire
