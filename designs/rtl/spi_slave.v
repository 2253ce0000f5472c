// -----------------------------------------------------------------------------
// spi_slave: lets an outside host read and write a byte memory.
//
// Runs wholly on the host's clock. Mode 0, most significant bit first: a command
// byte {write, address[14:8]}, an address byte, then data bytes; the address
// moves on after each byte. What is read comes one byte late.
// -----------------------------------------------------------------------------
`include "primitives.vh"
`default_nettype none

module spi_slave (
    input  wire       sclk,
    input  wire       cs_ni,
    input  wire       mosi_i,
    output wire       miso_o,

    output wire       mem_en_o,
    output wire       mem_we_o,
    output wire [8:0] mem_addr_o,
    output wire [7:0] mem_wdata_o,
    input  wire [7:0] mem_rdata_i
);

    // The host's clock comes from a cable; the shifter gets it through a buffer.
    wire sclk_buf;

    `CLOCK_BUFFER(u_sclk_buf, sclk_buf, sclk)

    reg  [6:0] in_q;
    reg  [7:0] out_q;
    reg  [2:0] bit_q;
    reg  [1:0] phase_q;      // 0 command, 1 address, 2 data
    reg        write_q;
    reg  [8:0] addr_q;
    wire [7:0] byte_now  = {in_q, mosi_i};
    wire       byte_done = (bit_q == 3'd7);

    always @(posedge sclk_buf or posedge cs_ni)
        if (cs_ni) begin
            bit_q   <= 3'd0;
            phase_q <= 2'd0;
            write_q <= 1'b0;
        end else begin
            bit_q <= bit_q + 1'b1;
            if (byte_done) begin
                if (phase_q == 2'd0)
                    write_q <= byte_now[7];
                if (phase_q != 2'd2)
                    phase_q <= phase_q + 1'b1;
            end
        end

    always @(posedge sclk_buf) begin
        in_q <= {in_q[5:0], mosi_i};
        if (byte_done)
            case (phase_q)
                2'd0:    addr_q[8]   <= byte_now[0];
                2'd1:    addr_q[7:0] <= byte_now;
                default: addr_q      <= addr_q + 1'b1;
            endcase
    end

    assign mem_en_o    = (phase_q == 2'd2);
    assign mem_we_o    = write_q & byte_done;
    assign mem_addr_o  = addr_q;
    assign mem_wdata_o = byte_now;

    // Data leaves on the falling edge, half a period before the host samples.
    always @(negedge sclk_buf)
        if (bit_q == 3'd0)
            out_q <= mem_rdata_i;
        else
            out_q <= {out_q[6:0], 1'b0};

    assign miso_o = out_q[7];

endmodule

`default_nettype wire
