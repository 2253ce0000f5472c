// -----------------------------------------------------------------------------
// uart_rx: serial receiver, 8 data bits, no parity, one stop bit.
//
// `tick16_i` comes sixteen times per bit time. A received byte is shown with a
// one-cycle `valid_o`; a missing stop bit raises `error_o` instead.
// -----------------------------------------------------------------------------
`default_nettype none

module uart_rx (
    input  wire       clk,
    input  wire       rst_ni,
    input  wire       tick16_i,
    input  wire       rx_i,
    output reg  [7:0] data_o,
    output reg        valid_o,
    output reg        error_o
);

    localparam IDLE  = 2'd0,
               START = 2'd1,
               DATA  = 2'd2,
               STOP  = 2'd3;

    reg  [1:0] state_q;
    reg  [3:0] phase_q;
    reg  [2:0] bit_q;
    reg  [0:7] shift_q;
    wire       rx;

    cdc_sync #(.WIDTH(1), .STAGES(3)) u_sync_rx (
        .clk     (clk),
        .rst_ni  (rst_ni),
        .async_i (rx_i),
        .sync_o  (rx)
    );

    always @(posedge clk or negedge rst_ni)
        if (!rst_ni) begin
            state_q <= IDLE;
            phase_q <= 4'd0;
            bit_q   <= 3'd0;
            shift_q <= 8'h00;
            data_o  <= 8'h00;
            valid_o <= 1'b0;
            error_o <= 1'b0;
        end else begin
            valid_o <= 1'b0;
            error_o <= 1'b0;

            if (tick16_i) begin
                phase_q <= phase_q + 1'b1;

                case (state_q)
                    IDLE: begin
                        phase_q <= 4'd0;
                        if (!rx)
                            state_q <= START;
                    end

                    // Sample in the middle of the start bit; a short low is noise.
                    START:
                        if (phase_q == 4'd6) begin
                            phase_q <= 4'd0;
                            bit_q   <= 3'd0;
                            state_q <= rx ? IDLE : DATA;
                        end

                    DATA:
                        if (phase_q == 4'd15) begin
                            shift_q[bit_q] <= rx;
                            bit_q          <= bit_q + 1'b1;
                            if (bit_q == 3'd7)
                                state_q <= STOP;
                        end

                    STOP:
                        if (phase_q == 4'd15) begin
                            valid_o <= rx;
                            error_o <= ~rx;
                            data_o  <= {shift_q[7], shift_q[6], shift_q[5], shift_q[4],
                                        shift_q[3], shift_q[2], shift_q[1], shift_q[0]};
                            state_q <= IDLE;
                        end
                endcase
            end
        end

endmodule

`default_nettype wire
