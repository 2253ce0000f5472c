// -----------------------------------------------------------------------------
// spi_master: SPI mode 0 master on the register bus.
//
// The shifter runs on a gated copy of clk that stands still while no transfer is
// under way; the request crosses on the ungated side.
//
//   offset 0  write: word to send, starts   read: word received
//   offset 1  bit 0: busy; write: chip selects (active high here, low on the pins)
// -----------------------------------------------------------------------------
`default_nettype none

module spi_master #(
    parameter SELECTS = 3
) (
    input  wire               clk,
    input  wire               rst_ni,

    input  wire               sel_i,
    input  wire               we_i,
    input  wire [3:0]         addr_i,
    input  wire [15:0]        wdata_i,
    output reg  [15:0]        rdata_o,

    output wire               sclk_o,
    output wire               mosi_o,
    input  wire               miso_i,
    output wire [0:SELECTS-1] cs_no
);

    reg                start_q;
    reg  [0:SELECTS-1] select_q;
    reg  [15:0]        request_q;

    wire clk_shift;
    wire busy;
    wire done;

    // Request side, always clocked.
    always @(posedge clk or negedge rst_ni)
        if (!rst_ni) begin
            start_q   <= 1'b0;
            select_q  <= {SELECTS{1'b0}};
            request_q <= 16'h0000;
        end else begin
            if (sel_i & we_i & (addr_i == 4'd0) & ~busy) begin
                start_q   <= 1'b1;
                request_q <= wdata_i;
            end else if (done)
                start_q <= 1'b0;
            if (sel_i & we_i & (addr_i == 4'd1))
                select_q <= wdata_i[SELECTS-1:0];
        end

    clock_gate #(.STYLE("LOGIC")) u_gate (
        .clk_i    (clk),
        .enable_i (busy),
        .clk_o    (clk_shift)
    );

    // Shifter, on the gated clock. 32 half periods move 16 bits.
    reg  [15:0] shift_q;
    reg  [5:0]  half_q;
    reg         sclk_q;
    reg         miso_q;

    assign busy = start_q;
    assign done = (half_q == 6'd33);

    always @(posedge clk_shift or negedge rst_ni)
        if (!rst_ni) begin
            half_q <= 6'd0;
            sclk_q <= 1'b0;
        end else begin
            half_q <= done ? 6'd0 : half_q + 1'b1;
            sclk_q <= half_q[0] & ~done;
        end

    always @(posedge clk_shift) begin
        if (half_q == 6'd0)
            shift_q <= request_q;
        else if (!half_q[0])
            shift_q <= {shift_q[14:0], miso_q};
        if (half_q[0])
            miso_q <= miso_i;
    end

    assign sclk_o = sclk_q;
    assign mosi_o = shift_q[15];
    assign cs_no  = ~select_q;

    always @(posedge clk or negedge rst_ni)
        if (!rst_ni)
            rdata_o <= 16'h0000;
        else if (sel_i)
            rdata_o <= (addr_i == 4'd0) ? shift_q : {15'h0000, busy};

endmodule

`default_nettype wire
