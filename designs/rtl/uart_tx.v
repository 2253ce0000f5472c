// -----------------------------------------------------------------------------
// uart_tx: serial transmitter, 8 data bits, no parity, one stop bit.
//
// `tick_i` comes once per bit time. A byte is taken when `valid_i` and `ready_o`
// are both high.
// -----------------------------------------------------------------------------
`default_nettype none

module uart_tx (
    input  wire       clk,
    input  wire       rst_ni,
    input  wire       tick_i,
    input  wire       valid_i,
    input  wire [7:0] data_i,
    output wire       ready_o,
    output wire       tx_o
);

    // Bit 0 goes out first, hence the ascending range: idle, start, data, stop.
    // The idle bit lasts until the next tick and so aligns the frame with the ticks.
    reg [0:10] frame_q;
    reg [3:0]  left_q;

    assign ready_o = (left_q == 4'd0);
    assign tx_o    = frame_q[0];

    always @(posedge clk or negedge rst_ni)
        if (!rst_ni) begin
            frame_q <= 11'h7ff;
            left_q  <= 4'd0;
        end else if (ready_o) begin
            if (valid_i) begin
                frame_q <= {1'b1, 1'b0, data_i[0], data_i[1], data_i[2], data_i[3],
                            data_i[4], data_i[5], data_i[6], data_i[7], 1'b1};
                left_q  <= 4'd11;
            end
        end else if (tick_i) begin
            frame_q <= {frame_q[1:10], 1'b1};
            left_q  <= left_q - 1'b1;
        end

endmodule

`default_nettype wire
