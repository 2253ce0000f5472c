// -----------------------------------------------------------------------------
// lane_worker: one lane of the link: pattern generator and checker.
//
// Sends a pseudo-random sequence (x^7 + x^6 + 1) and counts the bits that do not
// follow it on the way back.
// -----------------------------------------------------------------------------
`default_nettype none

module lane_worker #(
    parameter [6:0] SEED = 7'h01
) (
    input  wire       clk,
    input  wire       rst_ni,
    input  wire       run_i,
    input  wire [1:0] rx_i,         // two bits per cycle, bit 0 earlier
    output wire [1:0] tx_o,
    output reg  [7:0] errors_o
);

    reg  [6:0] tx_q;
    reg  [6:0] rx_q;
    wire [1:0] expect_now;

    wire tx_next0 = tx_q[6] ^ tx_q[5];
    wire tx_next1 = tx_q[5] ^ tx_q[4];

    always @(posedge clk or negedge rst_ni)
        if (!rst_ni)
            tx_q <= SEED;
        else if (run_i)
            tx_q <= {tx_q[4:0], tx_next0, tx_next1};

    assign tx_o = {tx_next1, tx_next0};

    // The checker locks by itself: it predicts from what it received last.
    assign expect_now = {rx_q[5] ^ rx_q[4], rx_q[6] ^ rx_q[5]};

    wire \bit.wrong[0] = rx_i[0] ^ expect_now[0];
    wire \bit.wrong[1] = rx_i[1] ^ expect_now[1];

    always @(posedge clk or negedge rst_ni)
        if (!rst_ni) begin
            rx_q     <= 7'h00;
            errors_o <= 8'h00;
        end else if (run_i) begin
            rx_q <= {rx_q[4:0], rx_i[0], rx_i[1]};
            if ((\bit.wrong[0] | \bit.wrong[1] ) & ~&errors_o)
                errors_o <= errors_o + 1'b1;
        end

endmodule

`default_nettype wire
