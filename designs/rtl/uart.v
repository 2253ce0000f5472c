// -----------------------------------------------------------------------------
// uart: serial port on the register bus.
//
//   offset 0  write: byte to send           read: last byte received
//   offset 1  write: clears the flags       read: {error, received, tx ready}
//   offset 2  baud divider: clk cycles per sixteenth of a bit, minus one
// -----------------------------------------------------------------------------
`default_nettype none

module uart (
    input  wire        clk,
    input  wire        rst_ni,

    input  wire        sel_i,
    input  wire        we_i,
    input  wire [3:0]  addr_i,
    input  wire [15:0] wdata_i,
    output reg  [15:0] rdata_o,

    input  wire        rx_i,
    output wire        tx_o,
    output wire        irq_o
);

    reg  [11:0] divider_q;
    reg  [11:0] prescale_q;
    reg  [3:0]  sixteenth_q;
    reg         tick16_q;
    reg         received_q;
    reg         error_q;

    wire       tick_bit = tick16_q & (sixteenth_q == 4'd15);
    wire       tx_ready;
    wire [7:0] rx_data;
    wire       rx_valid;
    wire       rx_error;
    wire       write    = sel_i & we_i;

    // Baud generator.
    always @(posedge clk or negedge rst_ni)
        if (!rst_ni) begin
            prescale_q  <= 12'd0;
            sixteenth_q <= 4'd0;
            tick16_q    <= 1'b0;
        end else begin
            tick16_q <= (prescale_q == 12'd0);
            if (prescale_q == 12'd0)
                prescale_q <= divider_q;
            else
                prescale_q <= prescale_q - 1'b1;
            if (tick16_q)
                sixteenth_q <= sixteenth_q + 1'b1;
        end

    // Registers.
    always @(posedge clk or negedge rst_ni)
        if (!rst_ni) begin
            divider_q  <= 12'd53;
            received_q <= 1'b0;
            error_q    <= 1'b0;
            rdata_o    <= 16'h0000;
        end else begin
            if (rx_valid)
                received_q <= 1'b1;
            if (rx_error)
                error_q <= 1'b1;
            if (write) begin
                case (addr_i)
                    4'd1: begin
                        received_q <= 1'b0;
                        error_q    <= 1'b0;
                    end
                    4'd2: divider_q <= wdata_i[11:0];
                    default: ;
                endcase
            end
            if (sel_i)
                case (addr_i)
                    4'd0:    rdata_o <= {8'h00, rx_data};
                    4'd1:    rdata_o <= {13'h0000, error_q, received_q, tx_ready};
                    default: rdata_o <= {4'h0, divider_q};
                endcase
        end

    assign irq_o = received_q | error_q;

    uart_tx u_tx (
        .clk     (clk),
        .rst_ni  (rst_ni),
        .tick_i  (tick_bit),
        .valid_i (write & (addr_i == 4'd0)),
        .data_i  (wdata_i[7:0]),
        .ready_o (tx_ready),
        .tx_o    (tx_o)
    );

    uart_rx u_rx (
        .clk      (clk),
        .rst_ni   (rst_ni),
        .tick16_i (tick16_q),
        .rx_i     (rx_i),
        .data_o   (rx_data),
        .valid_o  (rx_valid),
        .error_o  (rx_error)
    );

endmodule

`default_nettype wire
