// -----------------------------------------------------------------------------
// cpu_regfile: sixteen words, one write port, two unregistered read ports.
//
// Register 0 is an ordinary register; the program keeps zero in it.
// -----------------------------------------------------------------------------
`default_nettype none

module cpu_regfile (
    input  wire        clk,
    input  wire        we_i,
    input  wire [3:0]  waddr_i,
    input  wire [15:0] wdata_i,
    input  wire [3:0]  raddr_a_i,
    input  wire [3:0]  raddr_b_i,
    output wire [15:0] rdata_a_o,
    output wire [15:0] rdata_b_o
);

    reg [15:0] regs [0:15];

    always @(posedge clk)
        if (we_i)
            regs[waddr_i] <= wdata_i;

    assign rdata_a_o = regs[raddr_a_i];
    assign rdata_b_o = regs[raddr_b_i];

endmodule

`default_nettype wire
